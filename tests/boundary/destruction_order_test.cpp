// What the producer sees when things end, and which handles end with them.
#include "tests/boundary/tree_test.h"
#include "tests/support/journal.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

class DestructionOrder : public TreeTest
{
protected:
    DestructionOrder() { producer->ClearJournal(); }

    Strings Closes() const
    {
        return CallsOf(producer->Journal(), {"TLClose", "IFClose", "DevClose", "DSClose", "GCCloseLib"});
    }

    // One getter for each kind of handle of the tree; each answers without the producer.
    static Error OutcomeOf(KORO_ProducerLibraryHandle handle) { return Key(KORO_ProducerLibrary_GetKey, handle); }
    static Error OutcomeOf(KORO_SystemDescriptorHandle handle) { return Key(KORO_SystemDescriptor_GetKey, handle); }
    static Error OutcomeOf(KORO_SystemHandle handle) { return Key(KORO_System_GetKey, handle); }
    static Error OutcomeOf(KORO_InterfaceDescriptorHandle handle)
    {
        return Key(KORO_InterfaceDescriptor_GetKey, handle);
    }
    static Error OutcomeOf(KORO_InterfaceHandle handle) { return Key(KORO_Interface_GetKey, handle); }
    static Error OutcomeOf(KORO_DeviceDescriptorHandle handle) { return Key(KORO_DeviceDescriptor_GetKey, handle); }
    static Error OutcomeOf(KORO_DeviceHandle handle) { return Key(KORO_Device_GetKey, handle); }
    static Error OutcomeOf(KORO_DataStreamDescriptorHandle handle)
    {
        return Key(KORO_DataStreamDescriptor_GetKey, handle);
    }
    static Error OutcomeOf(KORO_DataStreamHandle handle) { return Key(KORO_DataStream_GetKey, handle); }
    static Error OutcomeOf(KORO_RemoteDeviceHandle handle)
    {
        KORO_DeviceHandle device = nullptr;
        return Outcome(KORO_RemoteDevice_GetLocalDevice(handle, &device));
    }

    void ExpectEndedBelowDevice() const
    {
        EXPECT_EQ(OutcomeOf(tree.streamDescriptor), InvalidHandle("dataStreamDescriptorHandle"));
        EXPECT_EQ(OutcomeOf(tree.stream), InvalidHandle("dataStreamHandle"));
        EXPECT_EQ(OutcomeOf(tree.remoteDevice), InvalidHandle("remoteDeviceHandle"));
    }

    void ExpectEndedBelowInterface() const
    {
        EXPECT_EQ(OutcomeOf(tree.deviceDescriptor), InvalidHandle("deviceDescriptorHandle"));
        EXPECT_EQ(OutcomeOf(tree.device), InvalidHandle("deviceHandle"));
        ExpectEndedBelowDevice();
    }

    void ExpectEndedBelowSystem() const
    {
        EXPECT_EQ(OutcomeOf(tree.interfaceDescriptor), InvalidHandle("interfaceDescriptorHandle"));
        EXPECT_EQ(OutcomeOf(tree.interface), InvalidHandle("interfaceHandle"));
        ExpectEndedBelowInterface();
    }

private:
    template <class Handle>
    static Error Key(TextExport<Handle> getKey, Handle handle)
    {
        std::size_t size = 0;
        return Outcome(getKey(handle, nullptr, &size));
    }
};

} // namespace

TEST_F(DestructionOrder, LeavesFirstIsTheOrderThatTheStandardAsksFor)
{
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), Error{});
    EXPECT_EQ(Outcome(KORO_System_Destruct(tree.system)), Error{});
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});

    EXPECT_EQ(
        Closes(),
        (Strings{
            "DSClose(if0-dev0-stream0)", "DevClose(if0-dev0)", "IFClose(if0)", "TLClose(system)", "GCCloseLib()"}));
    EXPECT_EQ(producer->Open(), Strings{});
}

TEST_F(DestructionOrder, LeafThatGoesLeavesEverythingAboveUsable)
{
    Require(KORO_DataStream_Destruct(tree.stream));
    EXPECT_EQ(OutcomeOf(tree.streamDescriptor), Error{});
    EXPECT_EQ(OutcomeOf(tree.device), Error{});
    Require(KORO_Device_Destruct(tree.device));
    ExpectEndedBelowDevice();
    EXPECT_EQ(OutcomeOf(tree.deviceDescriptor), Error{});
    EXPECT_EQ(OutcomeOf(tree.interface), Error{});
    Require(KORO_Interface_Destruct(tree.interface));
    ExpectEndedBelowInterface();
    EXPECT_EQ(OutcomeOf(tree.interfaceDescriptor), Error{});
    EXPECT_EQ(OutcomeOf(tree.system), Error{});
    Require(KORO_System_Destruct(tree.system));
    ExpectEndedBelowSystem();
    EXPECT_EQ(OutcomeOf(tree.systemDescriptor), Error{});
    EXPECT_EQ(OutcomeOf(tree.producerLibrary), Error{});
}

// A stream whose device went first is not closed by itself: the device was closed over it.
TEST_F(DestructionOrder, SystemClosesBeforeItsInterfacesAndTheseBeforeTheirDevices)
{
    EXPECT_EQ(Outcome(KORO_System_Destruct(tree.system)), Error{});

    EXPECT_EQ(Closes(), (Strings{"TLClose(system)", "IFClose(dead)", "DevClose(dead)"}));
    EXPECT_EQ(OutcomeOf(tree.system), InvalidHandle("systemHandle"));
    ExpectEndedBelowSystem();
    EXPECT_EQ(OutcomeOf(tree.systemDescriptor), Error{});
}

TEST_F(DestructionOrder, InterfaceClosesBeforeItsDevices)
{
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), Error{});

    EXPECT_EQ(Closes(), (Strings{"IFClose(if0)", "DevClose(dead)"}));
    ExpectEndedBelowInterface();
    EXPECT_EQ(OutcomeOf(tree.interfaceDescriptor), Error{});
}

TEST_F(DestructionOrder, DeviceTakesItsStreamAlong)
{
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});

    EXPECT_EQ(Closes(), Strings{"DevClose(if0-dev0)"});
    ExpectEndedBelowDevice();
}

TEST_F(DestructionOrder, LibraryEndsItsTreeBeforeItClosesTheProducer)
{
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});

    EXPECT_EQ(Closes(), (Strings{"TLClose(system)", "IFClose(dead)", "DevClose(dead)", "GCCloseLib()"}));
    EXPECT_EQ(OutcomeOf(tree.producerLibrary), InvalidHandle("producerLibraryHandle"));
    EXPECT_EQ(OutcomeOf(tree.systemDescriptor), InvalidHandle("systemDescriptorHandle"));
    EXPECT_EQ(OutcomeOf(tree.system), InvalidHandle("systemHandle"));
    ExpectEndedBelowSystem();
}

TEST_F(DestructionOrder, CloseOfTheLibraryGoesChildrenFirst)
{
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});

    EXPECT_EQ(
        Closes(),
        (Strings{
            "DSClose(if0-dev0-stream0)", "DevClose(if0-dev0)", "IFClose(if0)", "TLClose(system)", "GCCloseLib()"}));
    EXPECT_EQ(producer->Open(), Strings{});
}

TEST_F(DestructionOrder, CloseThatIsNotTheLastEndsNothing)
{
    Require(KORO_Library_Initialize());
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});

    EXPECT_EQ(Closes(), Strings{});
    EXPECT_EQ(OutcomeOf(tree.stream), Error{});
}

TEST_F(DestructionOrder, HandlesFromBeforeAFullCloseAreUnknown)
{
    Require(KORO_Library_Close());
    Require(KORO_Library_Initialize());

    EXPECT_EQ(OutcomeOf(tree.producerLibrary), InvalidHandle("producerLibraryHandle"));
    ExpectEndedBelowSystem();
}

TEST_F(DestructionOrder, FailuresOfTheClosesReachNobody)
{
    for (const auto* function : {"DSClose", "DevClose", "IFClose", "TLClose", "GCCloseLib"})
        producer->Answer(function, GenTL::GC_ERR_BUSY);
    producer->Answer("GCGetLastError", GenTL::GC_ERR_ERROR);

    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), Error{});
    EXPECT_EQ(Outcome(KORO_System_Destruct(tree.system)), Error{});
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    EXPECT_EQ(Closes().size(), 5u);
}

TEST_F(DestructionOrder, ExceptionsOutOfTheClosesReachNobody)
{
    for (const auto* function : {"DevClose", "IFClose", "TLClose", "GCCloseLib"})
        producer->OnEntry(function, [] { throw 5; });

    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    EXPECT_EQ(Closes().size(), 4u);
}

TEST_F(DestructionOrder, ModuleInUseEndsWhenItsCallDoes)
{
    Error destruct;
    Strings closesMeanwhile;
    producer->OnEntry("TLGetInfo", [&] {
        producer->OnEntry("TLGetInfo", nullptr);
        destruct = Outcome(KORO_System_Destruct(tree.system));
        closesMeanwhile = Closes();
    });

    // The call goes on with the open system: its second query succeeds too.
    char vendor[8];
    std::size_t size = sizeof vendor;
    EXPECT_EQ(Outcome(KORO_System_GetVendorName(tree.system, vendor, &size)), Error{});
    EXPECT_STREQ(vendor, "ZVR");
    EXPECT_EQ(destruct, Error{});
    EXPECT_EQ(closesMeanwhile, Strings{});
    EXPECT_EQ(Closes().front(), "TLClose(system)");
    EXPECT_EQ(OutcomeOf(tree.system), InvalidHandle("systemHandle"));
}

TEST_F(DestructionOrder, SecondDestructIsInvalid)
{
    Require(KORO_Interface_Destruct(tree.interface));
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), InvalidHandle("interfaceHandle"));
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(nullptr)), InvalidHandle("interfaceHandle"));
}

TEST_F(DestructionOrder, SiblingsStay)
{
    const auto otherDescriptor =
        Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, std::size_t{1});
    const auto other = Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, otherDescriptor);
    Require(KORO_Interface_Destruct(tree.interface));

    EXPECT_EQ(OutcomeOf(other), Error{});
    EXPECT_EQ(OutcomeOf(otherDescriptor), Error{});
    EXPECT_EQ(producer->Open(), (Strings{"if1", "system"}));
}

TEST_F(DestructionOrder, ManyRoundsOfOpeningAndClosingHoldNothing)
{
    Require(KORO_Library_Close());
    Require(KORO_Library_Initialize());
    producer->KeepJournal(false);
    for (int round = 0; round < 100; ++round)
    {
        const OpenTree again(producer.Path());
        if (round % 2 == 0) Require(KORO_Interface_Destruct(again.interface));
        Require(KORO_ProducerLibrary_Destruct(again.producerLibrary));
        ASSERT_EQ(producer->Open(), Strings{});
        ASSERT_EQ(producer->InitCount(), 0);
    }
}

} // namespace koro::test

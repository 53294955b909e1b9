// Modules and descriptors as their bases: the casts, what they are tied to, and the port.
#include "tests/boundary/tree_test.h"
#include "tests/support/journal.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;
using Module = TreeTest;
using ModuleDescriptor = TreeTest;

Error OutcomeOfPort(KORO_ModuleHandle module)
{
    KORO_PortHandle port = nullptr;
    return Outcome(KORO_Module_GetPort(module, &port));
}

Error OutcomeOfEvents(KORO_EventSupportingModuleHandle module)
{
    KORO_EventControllerHandle controller = nullptr;
    return Outcome(KORO_EventSupportingModule_EnableEvents(module, 9999, &controller));
}

Error OutcomeOfID(KORO_ModuleDescriptorHandle descriptor)
{
    std::size_t size = 0;
    return Outcome(KORO_ModuleDescriptor_GetID(descriptor, nullptr, &size));
}

// Both base kinds of one module, and what ends it.
template <class Handle>
struct Bases
{
    Bases(
        Handle handle, KORO_ReturnCode (*toModule)(Handle, KORO_ModuleHandle*),
        KORO_ReturnCode (*toEventSupportingModule)(Handle, KORO_EventSupportingModuleHandle*))
        : module(Get<KORO_ModuleHandle>(toModule, handle)),
          events(Get<KORO_EventSupportingModuleHandle>(toEventSupportingModule, handle))
    {
        EXPECT_EQ(Get<KORO_ModuleHandle>(toModule, handle), module);
        EXPECT_EQ(Get<KORO_EventSupportingModuleHandle>(toEventSupportingModule, handle), events);
        EXPECT_EQ(Outcome(toModule(handle, nullptr)), NullPointer("moduleHandle"));
        EXPECT_EQ(Outcome(toEventSupportingModule(handle, nullptr)), NullPointer("eventSupportingModuleHandle"));
    }

    void ExpectEnded() const
    {
        EXPECT_EQ(OutcomeOfPort(module), InvalidHandle("moduleHandle"));
        EXPECT_EQ(OutcomeOfEvents(events), InvalidHandle("eventSupportingModuleHandle"));
    }

    KORO_ModuleHandle module;
    KORO_EventSupportingModuleHandle events;
};

struct AllBases
{
    explicit AllBases(const OpenTree& tree)
        : system(tree.system, KORO_System_ToModule, KORO_System_ToEventSupportingModule),
          interface(tree.interface, KORO_Interface_ToModule, KORO_Interface_ToEventSupportingModule),
          device(tree.device, KORO_Device_ToModule, KORO_Device_ToEventSupportingModule),
          stream(tree.stream, KORO_DataStream_ToModule, KORO_DataStream_ToEventSupportingModule)
    {}

    Bases<KORO_SystemHandle> system;
    Bases<KORO_InterfaceHandle> interface;
    Bases<KORO_DeviceHandle> device;
    Bases<KORO_DataStreamHandle> stream;
};

} // namespace

TEST_F(Module, PortIsThereFromTheStartAndMakesNoProducerCall)
{
    const AllBases bases(tree);
    producer->ClearJournal();
    for (const auto module : {bases.system.module, bases.interface.module, bases.device.module, bases.stream.module})
    {
        const auto port = Get<KORO_PortHandle>(KORO_Module_GetPort, module);
        EXPECT_EQ(Get<KORO_PortHandle>(KORO_Module_GetPort, module), port);
    }
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(Module, PortIsThatOfTheModule)
{
    const AllBases bases(tree);
    const auto portID = [](KORO_ModuleHandle module) {
        return GetText(KORO_Port_GetID, Get<KORO_PortHandle>(KORO_Module_GetPort, module));
    };
    EXPECT_EQ(portID(bases.system.module), "system");
    EXPECT_EQ(portID(bases.interface.module), "if0");
    EXPECT_EQ(portID(bases.device.module), "if0-dev0");
    EXPECT_EQ(portID(bases.stream.module), "if0-dev0-stream0");
}

TEST_F(Module, PortTestsHandleAndPointer)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
    EXPECT_EQ(Outcome(KORO_Module_GetPort(nullptr, nullptr)), InvalidHandle("moduleHandle"));
    EXPECT_EQ(Outcome(KORO_Module_GetPort(module, nullptr)), NullPointer("portHandle"));
}

TEST_F(Module, CastIsNoHandleOfTheOtherKind)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
    std::size_t size = 0;

    EXPECT_EQ(
        Outcome(KORO_System_GetKey(reinterpret_cast<KORO_SystemHandle>(module), nullptr, &size)),
        InvalidHandle("systemHandle"));
    EXPECT_EQ(
        OutcomeOfEvents(reinterpret_cast<KORO_EventSupportingModuleHandle>(tree.interface)),
        InvalidHandle("eventSupportingModuleHandle"));
    EXPECT_EQ(OutcomeOfPort(reinterpret_cast<KORO_ModuleHandle>(tree.producerLibrary)), InvalidHandle("moduleHandle"));
}

TEST_F(Module, CastsDoNotKeepTheModuleOpen)
{
    const AllBases bases(tree);
    producer->ClearJournal();
    Require(KORO_DataStream_Destruct(tree.stream));
    bases.stream.ExpectEnded();
    Require(KORO_Device_Destruct(tree.device));
    bases.device.ExpectEnded();
    Require(KORO_Interface_Destruct(tree.interface));
    bases.interface.ExpectEnded();
    Require(KORO_System_Destruct(tree.system));
    bases.system.ExpectEnded();

    EXPECT_EQ(
        CallsOf(producer->Journal(), {"DSClose", "DevClose", "IFClose", "TLClose"}),
        (Strings{"DSClose(if0-dev0-stream0)", "DevClose(if0-dev0)", "IFClose(if0)", "TLClose(system)"}));
}

TEST_F(Module, CastsEndInTheCascadeAndLeaveNothingOpen)
{
    const AllBases bases(tree);
    producer->ClearJournal();
    Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));

    bases.system.ExpectEnded();
    bases.interface.ExpectEnded();
    bases.device.ExpectEnded();
    bases.stream.ExpectEnded();
    EXPECT_EQ(CallsOf(producer->Journal(), {"TLClose", "IFClose", "DevClose", "GCCloseLib"}).back(), "GCCloseLib()");
    EXPECT_EQ(producer->InitCount(), 0);
}

TEST_F(Module, PortEndsWithItsModule)
{
    const auto port =
        Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_Interface_ToModule, tree.interface));
    const auto url = Get<KORO_PortURLHandle>(KORO_Port_GetURL, port, std::size_t{0});
    Require(KORO_Interface_Destruct(tree.interface));

    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_Port_GetID(port, nullptr, &size)), InvalidHandle("portHandle"));
    EXPECT_EQ(Outcome(KORO_PortURL_GetURL(url, nullptr, &size)), InvalidHandle("portUrlHandle"));
}

TEST_F(ModuleDescriptor, CastTwiceIsTheSameHandleAndGivesTheID)
{
    const auto check = [](auto toDescriptor, auto handle, const std::string& id) {
        const auto base = Get<KORO_ModuleDescriptorHandle>(toDescriptor, handle);
        EXPECT_EQ(Get<KORO_ModuleDescriptorHandle>(toDescriptor, handle), base);
        EXPECT_EQ(Outcome(toDescriptor(handle, nullptr)), NullPointer("moduleDescriptorHandle"));
        ExpectTextOut("id", id, KORO_ModuleDescriptor_GetID, base);
    };
    check(KORO_SystemDescriptor_ToModuleDescriptor, tree.systemDescriptor, "scripted producer");
    check(KORO_InterfaceDescriptor_ToModuleDescriptor, tree.interfaceDescriptor, "if0");
    check(KORO_DeviceDescriptor_ToModuleDescriptor, tree.deviceDescriptor, "if0-dev0");
    check(KORO_DataStreamDescriptor_ToModuleDescriptor, tree.streamDescriptor, "if0-dev0-stream0");
}

TEST_F(ModuleDescriptor, CastsEndWithTheDescriptorsParent)
{
    const auto ofSystem =
        Get<KORO_ModuleDescriptorHandle>(KORO_SystemDescriptor_ToModuleDescriptor, tree.systemDescriptor);
    const auto ofInterface =
        Get<KORO_ModuleDescriptorHandle>(KORO_InterfaceDescriptor_ToModuleDescriptor, tree.interfaceDescriptor);
    const auto ofDevice =
        Get<KORO_ModuleDescriptorHandle>(KORO_DeviceDescriptor_ToModuleDescriptor, tree.deviceDescriptor);

    Require(KORO_Interface_Destruct(tree.interface));
    EXPECT_EQ(OutcomeOfID(ofDevice), InvalidHandle("moduleDescriptorHandle"));
    EXPECT_EQ(OutcomeOfID(ofInterface), Error{});
    Require(KORO_System_Destruct(tree.system));
    EXPECT_EQ(OutcomeOfID(ofInterface), InvalidHandle("moduleDescriptorHandle"));
    EXPECT_EQ(OutcomeOfID(ofSystem), Error{});
    Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
    EXPECT_EQ(OutcomeOfID(ofSystem), InvalidHandle("moduleDescriptorHandle"));
}

} // namespace koro::test

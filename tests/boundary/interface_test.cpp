#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"
#include "tests/boundary/update_listener.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

class Interface : public TreeTest
{
protected:
    Interface() { producer->ClearJournal(); }

    void Update(std::uint64_t timeout_ms = 0) const
    {
        Require(KORO_Interface_UpdateDevices(tree.interface, timeout_ms));
    }

    KORO_DeviceDescriptorHandle Device(std::size_t index) const
    {
        return Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, index);
    }

    Error OutcomeOfKey(KORO_DeviceDescriptorHandle deviceDescriptor) const
    {
        std::size_t size = 0;
        return Outcome(KORO_DeviceDescriptor_GetKey(deviceDescriptor, nullptr, &size));
    }

    void SetDevices(const Strings& ids) const
    {
        producer->Edit([&](scripted::Tree& edited) {
            auto& devices = edited.interfaces[0]->devices;
            const auto before = std::exchange(devices, {});
            for (const auto& id : ids)
            {
                const auto kept =
                    std::find_if(before.begin(), before.end(), [&](const auto& device) { return device->id == id; });
                devices.push_back(kept == before.end() ? scripted::MakeDevice(id) : *kept);
            }
        });
    }

    std::string KeyOf(const std::string& device) const { return producer.Path() + "|scripted producer|if0|" + device; }
};

using Listener = UpdateListener<
    KORO_InterfaceHandle, KORO_DeviceDescriptorHandle, KORO_DeviceFoundCallbackHandle, KORO_DeviceLostCallbackHandle,
    KORO_Interface_RegisterDeviceFoundCallback, KORO_Interface_UnregisterDeviceFoundCallback,
    KORO_Interface_RegisterDeviceLostCallback, KORO_Interface_UnregisterDeviceLostCallback,
    KORO_DeviceDescriptor_GetKey>;

} // namespace

TEST_F(Interface, TextsComeFromTheInterfacesInformation)
{
    ExpectTextGetters(
        producer, "IFGetInfo", tree.interface,
        {{1, "INTERFACE_INFO_DISPLAYNAME", "displayName", KORO_Interface_GetDisplayName},
         {2, "INTERFACE_INFO_TLTYPE", "tlType", KORO_Interface_GetTLType}});
}

TEST_F(Interface, RawInformationComesFromTheInterfacesInformation)
{
    ExpectRawInfo(producer, "IFGetInfo", KORO_Interface_GetInfo, tree.interface);
}

TEST_F(Interface, KeyAndIDAreStored)
{
    ExpectTextOut("key", producer.Path() + "|scripted producer|if0", KORO_Interface_GetKey, tree.interface);
    ExpectTextOut("id", "if0", KORO_Interface_GetID, tree.interface);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(Interface, ParentIsTheSystem)
{
    EXPECT_EQ(Get<KORO_SystemHandle>(KORO_Interface_GetParentSystem, tree.interface), tree.system);
    EXPECT_EQ(Outcome(KORO_Interface_GetParentSystem(tree.interface, nullptr)), NullPointer("systemHandle"));
}

TEST_F(Interface, UpdatePassesTheTimeoutOn)
{
    Update(1234);
    EXPECT_EQ(producer->Journal(), Strings{"IFUpdateDeviceList(if0, 1234)"});
}

TEST_F(Interface, LaterUpdateWalksTheListOnlyWhenTheProducerSaysSo)
{
    producer->SetChanged("IFUpdateDeviceList", 1);
    Update();
    EXPECT_EQ(
        producer->Journal(),
        (Strings{
            "IFUpdateDeviceList(if0, 0)", "IFGetNumDevices(if0)", "IFGetDeviceID(if0, 0, size)",
            "IFGetDeviceID(if0, 0, data)", "IFGetDeviceID(if0, 1, size)", "IFGetDeviceID(if0, 1, data)"}));
}

TEST_F(Interface, FirstUpdateFindsDevicesThatTheProducerDoesNotCallAChange)
{
    Require(KORO_Interface_Destruct(tree.interface));
    const auto interface = Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, tree.interfaceDescriptor);
    producer->SetChanged("IFUpdateDeviceList", 0);

    Require(KORO_Interface_UpdateDevices(interface, 0));
    EXPECT_EQ(Get<std::size_t>(KORO_Interface_GetNumDevices, interface), 2u);
}

TEST_F(Interface, NumberOfDevicesIsZeroBeforeAnyUpdate)
{
    Require(KORO_Interface_Destruct(tree.interface));
    const auto interface = Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, tree.interfaceDescriptor);
    KORO_DeviceDescriptorHandle device = nullptr;
    producer->ClearJournal();

    ExpectScalarOut<KORO_InterfaceHandle, std::size_t>("numDevices", 0, KORO_Interface_GetNumDevices, interface);
    EXPECT_EQ(Outcome(KORO_Interface_GetDevice(interface, 0, &device)), outOfRange);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(Interface, DeviceTwiceIsTheSameHandleAndAsksNothing)
{
    EXPECT_EQ(Device(0), Device(0));
    EXPECT_NE(Device(0), Device(1));
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(Interface, DeviceTestsHandleThenPointerThenIndex)
{
    KORO_DeviceDescriptorHandle device = nullptr;
    EXPECT_EQ(Outcome(KORO_Interface_GetDevice(nullptr, 9, nullptr)), InvalidHandle("interfaceHandle"));
    EXPECT_EQ(Outcome(KORO_Interface_GetDevice(tree.interface, 9, nullptr)), NullPointer("deviceDescriptorHandle"));
    EXPECT_EQ(Outcome(KORO_Interface_GetDevice(tree.interface, 2, &device)), outOfRange);
    EXPECT_EQ(device, nullptr);
}

TEST_F(Interface, LostDeviceTakesItsDescriptorHandleAlongAndLeavesTheOpenDevice)
{
    SetDevices({"if0-dev1"});
    Update();

    EXPECT_EQ(OutcomeOfKey(tree.deviceDescriptor), InvalidHandle("deviceDescriptorHandle"));
    EXPECT_EQ(GetText(KORO_Device_GetID, tree.device), "if0-dev0");
    EXPECT_EQ(GetText(KORO_Device_GetVendorName, tree.device), "ZVR"); // the producer still answers
}

TEST_F(Interface, DeviceFoundAgainIsAnotherObjectAndKnowsNothingOfTheOldDevice)
{
    for (int round = 0; round < 3; ++round)
    {
        const auto device = Device(1);
        EXPECT_EQ(OutcomeOfKey(device), Error{});
        SetDevices({"if0-dev0"});
        Update();
        EXPECT_EQ(OutcomeOfKey(device), InvalidHandle("deviceDescriptorHandle"));
        SetDevices({"if0-dev0", "if0-dev1"});
        Update();
        EXPECT_EQ(OutcomeOfKey(Device(1)), Error{});
    }
}

TEST_F(Interface, FoundCallbackGetsAHandleThatIsWithdrawnWhenItIsLost)
{
    Listener listener(tree.interface);
    SetDevices({"if0-dev0", "if0-dev1", "new"});
    Update();

    ASSERT_EQ(listener.found.size(), 1u);
    EXPECT_EQ(listener.found[0], Device(2));
    EXPECT_EQ(GetText(KORO_DeviceDescriptor_GetKey, listener.found[0]), KeyOf("new"));

    SetDevices({"if0-dev0", "if0-dev1"});
    Update();
    EXPECT_EQ(OutcomeOfKey(listener.found[0]), InvalidHandle("deviceDescriptorHandle"));
    EXPECT_EQ(listener.reports, (Strings{"found " + KeyOf("new"), "lost new (4)"}));
}

TEST_F(Interface, LostOnesAreReportedBeforeFoundOnesAndTheseInOrder)
{
    Listener listener(tree.interface);
    SetDevices({"c", "a", "b"});
    Update();

    ASSERT_EQ(listener.reports.size(), 5u);
    EXPECT_THAT(
        Strings(listener.reports.begin(), listener.reports.begin() + 2),
        testing::UnorderedElementsAre("lost if0-dev0 (9)", "lost if0-dev1 (9)"));
    EXPECT_EQ(
        Strings(listener.reports.begin() + 2, listener.reports.end()),
        (Strings{"found " + KeyOf("c"), "found " + KeyOf("a"), "found " + KeyOf("b")}));
}

TEST_F(Interface, WalkThatFindsNothingLosesAllDevices)
{
    Listener listener(tree.interface);
    SetDevices({});
    Update();

    EXPECT_THAT(listener.reports, testing::UnorderedElementsAre("lost if0-dev0 (9)", "lost if0-dev1 (9)"));
    EXPECT_EQ(Get<std::size_t>(KORO_Interface_GetNumDevices, tree.interface), 0u);
}

TEST_F(Interface, LostCallbackSeesTheNewList)
{
    Listener listener(tree.interface);
    std::vector<std::size_t> counts;
    listener.onLost = [&] { counts.push_back(Get<std::size_t>(KORO_Interface_GetNumDevices, tree.interface)); };
    SetDevices({"if0-dev1"});
    Update();

    EXPECT_EQ(counts, std::vector<std::size_t>{1});
}

TEST_F(Interface, UnregisteredAndUnknownCallbacksAreNotCalled)
{
    Listener listener(tree.interface);
    listener.Unregister();
    EXPECT_EQ(Outcome(KORO_Interface_UnregisterDeviceFoundCallback(tree.interface, listener.foundHandle)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_UnregisterDeviceLostCallback(tree.interface, listener.lostHandle)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_UnregisterDeviceLostCallback(tree.interface, nullptr)), Error{});
    SetDevices({"new"});
    Update();

    EXPECT_EQ(listener.reports, Strings{});
}

TEST_F(Interface, RegistrationsTestHandleThenCallbackThenPlaceOfTheHandle)
{
    const auto found = [](KORO_DeviceDescriptorHandle, void*) {};
    const auto lost = [](const char*, std::size_t, void*) {};
    EXPECT_EQ(
        Outcome(KORO_Interface_RegisterDeviceFoundCallback(nullptr, nullptr, nullptr, nullptr)),
        InvalidHandle("interfaceHandle"));
    EXPECT_EQ(
        Outcome(KORO_Interface_RegisterDeviceFoundCallback(tree.interface, nullptr, nullptr, nullptr)),
        NullPointer("callback"));
    EXPECT_EQ(
        Outcome(KORO_Interface_RegisterDeviceFoundCallback(tree.interface, found, nullptr, nullptr)),
        NullPointer("callbackHandle"));
    EXPECT_EQ(
        Outcome(KORO_Interface_RegisterDeviceLostCallback(tree.interface, nullptr, nullptr, nullptr)),
        NullPointer("callback"));
    EXPECT_EQ(
        Outcome(KORO_Interface_RegisterDeviceLostCallback(tree.interface, lost, nullptr, nullptr)),
        NullPointer("callbackHandle"));
}

TEST_F(Interface, RegisteringFromInsideTheSameRegistryIsCodeOneAndDoesNotHang)
{
    Listener listener(tree.interface);
    std::vector<KORO_ReturnCode> returned;
    listener.onFound = [&] {
        KORO_DeviceFoundCallbackHandle handle = nullptr;
        const auto callback = [](KORO_DeviceDescriptorHandle, void*) {};
        returned.push_back(KORO_Interface_RegisterDeviceFoundCallback(tree.interface, callback, nullptr, &handle));
        returned.push_back(KORO_Interface_UnregisterDeviceFoundCallback(tree.interface, listener.foundHandle));
    };
    listener.onLost = [&] {
        KORO_DeviceDescriptorHandle device = nullptr;
        KORO_DeviceLostCallbackHandle handle = nullptr;
        const auto callback = [](const char*, std::size_t, void*) {};
        returned.push_back(KORO_Interface_RegisterDeviceLostCallback(tree.interface, callback, nullptr, &handle));
        returned.push_back(KORO_Interface_UnregisterDeviceLostCallback(tree.interface, listener.lostHandle));
        returned.push_back(KORO_Interface_GetDevice(tree.interface, 1, &device));
    };
    SetDevices({"if0-dev0", "new"});

    EXPECT_EQ(Outcome(KORO_Interface_UpdateDevices(tree.interface, 0)), Error{});
    EXPECT_EQ(returned, (std::vector<KORO_ReturnCode>(5, KORO_RETURN_CODE_ERROR)));
}

TEST_F(Interface, SystemThatGoesDuringACallHasExpired)
{
    producer->OnEntry("IFGetInfo", [this] { KORO_System_Destruct(tree.system); });
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_Interface_GetTLType(tree.interface, nullptr, &size)), parentExpired);
    EXPECT_EQ(Outcome(KORO_Interface_GetTLType(tree.interface, nullptr, &size)), InvalidHandle("interfaceHandle"));
}

TEST_F(Interface, SystemThatGoesInsideAFoundCallbackEndsTheUpdateCleanly)
{
    Listener listener(tree.interface);
    listener.onFound = [&] { KORO_System_Destruct(tree.system); };
    SetDevices({"if0-dev0", "if0-dev1", "a", "b"});
    KORO_Interface_UpdateDevices(tree.interface, 0);

    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), InvalidHandle("interfaceHandle"));
    EXPECT_EQ(producer->Open(), Strings{});
}

TEST_F(Interface, InterfaceThatGoesInsideACallbackEndsTheUpdateCleanly)
{
    Listener listener(tree.interface);
    listener.onReport = [&] { KORO_Interface_Destruct(tree.interface); };
    SetDevices({"a", "b"});
    KORO_Interface_UpdateDevices(tree.interface, 0);

    EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), InvalidHandle("interfaceHandle"));
    EXPECT_EQ(producer->Open(), Strings{"system"});
}

} // namespace koro::test

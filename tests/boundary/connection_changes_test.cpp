// A producer's own reports on its devices: what each record calls, and what it leaves alone.
#include "tests/boundary/connection_changes.h"
#include "tests/boundary/described_camera.h"
#include "tests/boundary/producer_errors.h"
#include "tests/support/journal.h"

#include <cstdint>
#include <cstring>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

constexpr std::uint16_t bothKinds[] = {1, 2};

class ConnectionChanges : public testing::Test
{
protected:
    KORO_DeviceDescriptorHandle Descriptor(std::size_t index) const
    {
        return Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, index);
    }
    KORO_InterfaceHandle OpenSecondInterface() const
    {
        const auto second = Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, std::size_t{1});
        return Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, second);
    }

    // Reports come one after the other: when this one is there, all records before it have been dealt with.
    void ExpectNothingBeforeTheNextReport()
    {
        ASSERT_TRUE(producer.Send({.id = "if0-dev1", .changeKind = 2}));
        EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(Descriptor(1)));
    }

    const ReportingProducer producer;
    const KoroLibrary library;
    OpenTree tree{producer.Path()};
    ConnectionReports reports{tree.interface};
    const KORO_DeviceDescriptorHandle descriptor = tree.deviceDescriptor; // of "if0-dev0"
};

} // namespace

TEST_F(ConnectionChanges, DeviceThatWentAndCameIsReportedByItsDescriptor)
{
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
        EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(descriptor));
        ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1, .reconnectValue = 77}));
        EXPECT_EQ(reports.Next(), ConnectionReports::Reconnected(descriptor, 0, 0, 77));
    }
}

TEST_F(ConnectionChanges, EveryKindButOneMeansThatItWent)
{
    for (const auto kind : std::initializer_list<std::uint16_t>{0, 2, 3, 0x0101, 0xffff})
    {
        ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = kind}));
        EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(descriptor)) << kind;
    }
}

TEST_F(ConnectionChanges, DeviceFlagOfZeroIsNewsOfTheListAloneWhateverTheKindAndTheID)
{
    for (const auto kind : bothKinds)
    {
        for (const char* id : {"if0-dev0", "unknown", ""})
        {
            ASSERT_TRUE(producer.Send({.id = id, .changeKind = kind, .deviceFlag = 0}));
            EXPECT_EQ(reports.Next(), "list changed");
        }
    }
    ExpectNothingBeforeTheNextReport();
}

TEST_F(ConnectionChanges, EveryOtherDeviceFlagIsNewsOfTheDevice)
{
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2, .deviceFlag = 0x80}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(descriptor));
}

TEST_F(ConnectionChanges, UnknownIDIsNoNewsAtAll)
{
    for (const auto kind : bothKinds)
    {
        for (const char* id : {"unknown", "", "if0-dev", "if0-dev00", "IF0-DEV0", "if1-dev0"})
            ASSERT_TRUE(producer.Send({.id = id, .changeKind = kind}));
    }
    ExpectNothingBeforeTheNextReport();
}

TEST_F(ConnectionChanges, IDIsReadToItsTerminatorAndWholeWithoutOne)
{
    const std::string longest(256, 'x');
    producer->Edit([&](scripted::Tree& edited) {
        edited.interfaces[0]->devices.push_back(scripted::MakeDevice(longest));
        edited.interfaces[0]->devices.push_back(scripted::MakeDevice(longest.substr(1)));
    });
    Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    ASSERT_TRUE(producer.Send({.id = longest, .changeKind = 2}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(Descriptor(2)));
    ASSERT_TRUE(producer.Send({.id = longest.substr(1), .changeKind = 2}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(Descriptor(3)));
}

TEST_F(ConnectionChanges, FirstOfTwoDevicesWithOneIDIsReported)
{
    producer->Edit([&](scripted::Tree& edited) {
        auto& devices = edited.interfaces[0]->devices;
        devices.push_back(scripted::MakeDevice("twin"));
        devices.push_back(scripted::MakeDevice("twin"));
    });
    Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    ASSERT_TRUE(producer.Send({.id = "twin", .changeKind = 2}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(Descriptor(2)));
}

TEST_F(ConnectionChanges, FlagsOfAReconnectAreExactlyZeroOrOneAndAllElseIsZero)
{
    ASSERT_TRUE(
        producer.Send({.id = "if0-dev0", .reconnectFlag1 = 0xff, .reconnectFlag2 = 2, .reconnectValue = 0xfedcba98}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Reconnected(descriptor, 1, 1, 0xfedcba98));

    unsigned char expected[32] = {1, 1};
    expected[8] = 0x98;
    expected[9] = 0xba;
    expected[10] = 0xdc;
    expected[11] = 0xfe;
    static_assert(sizeof reports.lastInformation == sizeof expected);
    EXPECT_EQ(std::memcmp(&reports.lastInformation, expected, sizeof expected), 0);

    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .reconnectFlag1 = 0, .reconnectFlag2 = 1}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Reconnected(descriptor, 0, 1, 0));
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .reconnectFlag1 = 0x40, .reconnectFlag2 = 0}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Reconnected(descriptor, 1, 0, 0));
}

TEST_F(ConnectionChanges, RecordIsForItsInterfaceAlone)
{
    const auto second = OpenSecondInterface();
    Require(KORO_Interface_UpdateDevices(second, 0));
    ConnectionReports ofSecond(second);
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}, "if1")); // a device of the other one
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}, "nobody"));
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}, "system"));
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}, "if1"));
    EXPECT_EQ(ofSecond.Next(), "list changed");
    ExpectNothingBeforeTheNextReport();
    EXPECT_EQ(ofSecond.NumUnread(), 0u);
    Require(KORO_Interface_Destruct(second));
}

TEST_F(ConnectionChanges, InterfaceThatAnUpdateLostIsReportedToWhileItIsOpen)
{
    const ConnectionRecord record{.interface = producer->HandleOf("if0"), .id = "if0-dev1", .changeKind = 2};
    producer->Edit([](scripted::Tree& edited) { edited.interfaces.erase(edited.interfaces.begin()); });
    for (int round = 0; round < 2; ++round)
    {
        Require(KORO_System_UpdateInterfaces(tree.system, 0));
        EXPECT_EQ(Get<std::size_t>(KORO_System_GetNumInterfaces, tree.system), 1u);
        ASSERT_TRUE(producer.SendBytes(record.Bytes()));
        EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(Descriptor(1)));
    }
}

TEST_F(ConnectionChanges, BlockOfAnotherSizeIsPassedOver)
{
    const std::string record = ConnectionRecord{.interface = producer->HandleOf("if0"), .deviceFlag = 0}.Bytes();
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{275}, std::size_t{350}})
        ASSERT_TRUE(producer.SendBytes(record.substr(0, size)));
    ExpectNothingBeforeTheNextReport();
}

TEST_F(ConnectionChanges, ReportsChangeNoListAndFoundAndLostComeOutOfUpdatesAlone)
{
    Strings updates;
    KORO_DeviceFoundCallbackHandle found = nullptr;
    KORO_DeviceLostCallbackHandle lost = nullptr;
    Require(KORO_Interface_RegisterDeviceFoundCallback(
        tree.interface,
        [](KORO_DeviceDescriptorHandle, void* context) { static_cast<Strings*>(context)->push_back("found"); },
        &updates, &found));
    Require(KORO_Interface_RegisterDeviceLostCallback(
        tree.interface,
        [](const char*, std::size_t, void* context) { static_cast<Strings*>(context)->push_back("lost"); }, &updates,
        &lost));

    producer->Edit(
        [](scripted::Tree& edited) { edited.interfaces[0]->devices.erase(edited.interfaces[0]->devices.begin()); });
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(descriptor));
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    EXPECT_EQ(reports.Next(), "list changed");
    EXPECT_EQ(Get<std::size_t>(KORO_Interface_GetNumDevices, tree.interface), 2u);
    EXPECT_EQ(updates, Strings());
    Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    EXPECT_EQ(updates, Strings{"lost"});
}

TEST_F(ConnectionChanges, DeviceThatAnUpdateLostIsNotReconnectedButFound)
{
    std::shared_ptr<scripted::Device> taken;
    producer->Edit([&](scripted::Tree& edited) {
        auto& devices = edited.interfaces[0]->devices;
        taken = devices.front();
        devices.erase(devices.begin());
    });
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(descriptor));
    Require(KORO_Interface_UpdateDevices(tree.interface, 0));

    producer->Edit([&](scripted::Tree& edited) { edited.interfaces[0]->devices.push_back(taken); });
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1}));
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    EXPECT_EQ(reports.Next(), "list changed");

    Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Reconnected(Descriptor(1)));
    EXPECT_NE(Descriptor(1), descriptor);
}

TEST_F(ConnectionChanges, HandleThatTheApplicationNeverFetchedIsUnknown)
{
    std::vector<Error> outcomes;
    reports.onReport = [&](KORO_DeviceDescriptorHandle reported) {
        std::size_t size = 0;
        outcomes.push_back(Outcome(KORO_DeviceDescriptor_GetKey(reported, nullptr, &size)));
    };
    for (const auto kind : bothKinds)
    {
        ASSERT_TRUE(producer.Send({.id = "if0-dev1", .changeKind = kind}));
        reports.Next();
        EXPECT_EQ(outcomes.back(), InvalidHandle("deviceDescriptorHandle"));
        ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = kind}));
        reports.Next();
        EXPECT_EQ(outcomes.back(), Error{});
    }
}

TEST_F(ConnectionChanges, HandleIsTheOneThatAFetchGivesLater)
{
    ASSERT_TRUE(producer.Send({.id = "if0-dev1", .changeKind = 2}));
    const std::string report = reports.Next();
    EXPECT_EQ(report, ConnectionReports::Disconnected(Descriptor(1)));
}

TEST_F(ConnectionChanges, EveryCallbackOfAKindIsCalledUntilItIsUnregistered)
{
    ConnectionReports others(tree.interface);
    const ConnectionRecord records[] = {
        {.deviceFlag = 0}, {.id = "if0-dev0", .changeKind = 2}, {.id = "if0-dev0", .changeKind = 1}};
    for (const auto& record : records)
    {
        ASSERT_TRUE(producer.Send(record));
        EXPECT_EQ(reports.Next(), others.Next());
    }

    EXPECT_EQ(
        Outcome(KORO_Interface_UnregisterDeviceListChangedCallback(tree.interface, reports.listChanged)), Error{});
    EXPECT_EQ(
        Outcome(KORO_Interface_UnregisterDeviceDisconnectedCallback(tree.interface, reports.disconnected)), Error{});
    EXPECT_EQ(
        Outcome(KORO_Interface_UnregisterDeviceReconnectedCallback(tree.interface, reports.reconnected)), Error{});
    for (const auto& record : records)
    {
        ASSERT_TRUE(producer.Send(record));
        others.Next();
    }
    EXPECT_EQ(reports.NumUnread(), 0u);
}

TEST_F(ConnectionChanges, RegistrationNeedsACallbackAndAPlaceForItsHandle)
{
    const Error noCallback{KORO_RETURN_CODE_INVALID_ARGUMENT, "callback is not a valid pointer!"};
    const Error noPlace{KORO_RETURN_CODE_INVALID_ARGUMENT, "callbackHandle is not a valid pointer!"};
    const auto expect = [&](auto registerCallback, auto* handle, auto callback) {
        EXPECT_EQ(Outcome(registerCallback(tree.interface, nullptr, nullptr, &handle)), noCallback);
        EXPECT_EQ(Outcome(registerCallback(tree.interface, callback, nullptr, nullptr)), noPlace);
        EXPECT_EQ(Outcome(registerCallback(nullptr, nullptr, nullptr, nullptr)), InvalidHandle("interfaceHandle"));
    };
    expect(KORO_Interface_RegisterDeviceListChangedCallback, reports.listChanged, [](void*) {});
    expect(
        KORO_Interface_RegisterDeviceDisconnectedCallback, reports.disconnected,
        [](KORO_DeviceDescriptorHandle, void*) {});
    expect(
        KORO_Interface_RegisterDeviceReconnectedCallback, reports.reconnected,
        [](KORO_DeviceDescriptorHandle, const KORO_DEVICE_RECONNECT_INFORMATION*, void*) {});
}

TEST_F(ConnectionChanges, UnknownCallbackHandleIsIgnored)
{
    EXPECT_EQ(Outcome(KORO_Interface_UnregisterDeviceListChangedCallback(tree.interface, nullptr)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_UnregisterDeviceDisconnectedCallback(tree.interface, nullptr)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_UnregisterDeviceReconnectedCallback(tree.interface, nullptr)), Error{});
}

TEST_F(ConnectionChanges, CallbackMayUpdateAndChangeOtherKindsAndOtherInterfaces)
{
    const auto second = OpenSecondInterface();
    std::unique_ptr<ConnectionReports> others;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        EXPECT_EQ(Outcome(KORO_Interface_UpdateDevices(tree.interface, 0)), Error{});
        EXPECT_EQ(GetText(KORO_Interface_GetID, tree.interface), "if0");
        EXPECT_EQ(
            Outcome(KORO_Interface_UnregisterDeviceReconnectedCallback(tree.interface, reports.reconnected)), Error{});
        others = std::make_unique<ConnectionReports>(second);
    };
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(descriptor));
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}, "if1"));
    EXPECT_EQ(others->Next(), "list changed");
    reports.onReport = {};
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1}));
    ExpectNothingBeforeTheNextReport();
    Require(KORO_Interface_Destruct(second));
}

TEST_F(ConnectionChanges, CallbackMayOpenTheReconnectedDeviceAnew)
{
    Strings calls;
    reports.onReport = [&](KORO_DeviceDescriptorHandle reconnected) {
        producer->ClearJournal();
        EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
        EXPECT_EQ(
            Outcome(KORO_DeviceDescriptor_OpenDevice(reconnected, OpenTree::exclusiveAccess, &tree.device)), Error{});
        calls = CallsOf(producer->Journal(), {"DevClose", "IFOpenDevice"});
    };
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Reconnected(descriptor));
    EXPECT_EQ(calls, (Strings{"DevClose(if0-dev0)", "IFOpenDevice(if0, if0-dev0, 4)"}));
}

TEST_F(ConnectionChanges, CallbackThatBlocksHoldsUpAllInterfacesAndNothingElse)
{
    const auto second = OpenSecondInterface();
    ConnectionReports ofSecond(second);
    std::promise<void> entered;
    std::promise<void> release;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        entered.set_value();
        release.get_future().wait();
    };
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}, "if1"));
    entered.get_future().wait();
    EXPECT_EQ(Outcome(KORO_Interface_UpdateDevices(tree.interface, 0)), Error{});
    EXPECT_EQ(Outcome(KORO_Interface_UpdateDevices(second, 0)), Error{});
    Require(KORO_Device_Destruct(tree.device));
    tree.device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
    EXPECT_EQ(
        Outcome(KORO_Interface_UnregisterDeviceListChangedCallback(second, ofSecond.listChanged)),
        Error{}); // another registry than the one that is calling
    ConnectionReports others(second);
    EXPECT_EQ(others.NumUnread(), 0u);
    release.set_value();
    EXPECT_EQ(reports.Next(), "list changed");
    EXPECT_EQ(others.Next(), "list changed");
    Require(KORO_Interface_Destruct(second));
    EXPECT_EQ(ofSecond.NumUnread(), 0u);
}

TEST_F(ConnectionChanges, CallbackThatChangesItsOwnKindGetsTheDeadlockErrorAndStays)
{
    std::vector<Error> outcomes;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        outcomes.push_back(
            Outcome(KORO_Interface_UnregisterDeviceListChangedCallback(tree.interface, reports.listChanged)));
        KORO_DeviceListChangedCallbackHandle another = nullptr;
        outcomes.push_back(Outcome(KORO_Interface_RegisterDeviceListChangedCallback(
            tree.interface, [](void*) {}, nullptr, &another)));
    };
    for (std::size_t round = 1; round <= 2; ++round)
    {
        ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
        EXPECT_EQ(reports.Next(), "list changed");
        EXPECT_EQ(outcomes, std::vector<Error>(2 * round, deadlock));
    }
}

TEST_F(ConnectionChanges, CallbackCannotEndWhatItComesFromAndTheHandlesStay)
{
    const auto second = OpenSecondInterface();
    std::vector<Error> outcomes;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        outcomes = {
            Outcome(KORO_Interface_Destruct(tree.interface)), Outcome(KORO_Interface_Destruct(second)),
            Outcome(KORO_System_Destruct(tree.system)), Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)),
            Outcome(KORO_Library_Close())};
    };
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
        EXPECT_EQ(reports.Next(), "list changed");
        EXPECT_EQ(outcomes, std::vector<Error>(5, deadlock));
    }
    EXPECT_EQ(GetText(KORO_Interface_GetID, second), "if1");
}

TEST_F(ConnectionChanges, CallbackCannotOpenAnInterfaceOfItsSystemAndLeavesNoneOpen)
{
    const auto closed = Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, std::size_t{1});
    KORO_InterfaceHandle opened = nullptr;
    std::optional<Error> outcome;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        outcome = Outcome(KORO_InterfaceDescriptor_OpenInterface(closed, &opened));
    };
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    EXPECT_EQ(reports.Next(), "list changed");
    EXPECT_EQ(outcome, deadlock);
    EXPECT_EQ(opened, nullptr);
    EXPECT_EQ(producer->HandleOf("if1"), nullptr);
    Require(KORO_Interface_Destruct(OpenSecondInterface()));
}

TEST_F(ConnectionChanges, ReconnectOfADeviceThatIsNotOpenReadsAndWritesNothing)
{
    Require(KORO_Device_Destruct(tree.device));
    producer->ClearJournal();
    ASSERT_TRUE(producer.Send({.id = "if0-dev0"}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Reconnected(descriptor));
    EXPECT_EQ(
        CallsOf(
            producer->Journal(),
            {"GCReadPort", "GCWritePort", "GCGetPortInfo", "GCGetNumPortURLs", "GCGetPortURLInfo", "DevGetPort"}),
        Strings());
}

TEST_F(ConnectionChanges, ReconnectInvalidatesTheNodesOfTheRemoteDeviceBeforeItIsReported)
{
    producer->Edit([](scripted::Tree& edited) {
        DescribePort(edited.interfaces[0]->devices[0]->remotePort, DescriptionOf(IntRegister("Value", 0)));
    });
    Require(KORO_Device_Destruct(tree.device));
    tree.device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
    const auto remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);
    const auto map = Get<KORO_NodeMapHandle>(
        KORO_Module_GetNodeMap, Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, remoteDevice), std::size_t{0});
    const auto node = Get<KORO_IntegerNodeHandle>(
        KORO_Node_ToIntegerNode, Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, "Value", std::size_t{6}));
    const auto numReads = [&] {
        producer->ClearJournal();
        Get<std::int64_t>(KORO_IntegerNode_GetValue, node, KORO_NODE_CACHE_POLICY_USE_CACHE);
        return CallsOf(producer->Journal(), {"GCReadPort"}).size();
    };
    numReads();
    ASSERT_EQ(numReads(), 0u); // it is cached

    std::size_t readsInCallback = 0;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) { readsInCallback = numReads(); };
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
    reports.Next();
    EXPECT_EQ(readsInCallback, 0u);
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1}));
    reports.Next();
    EXPECT_EQ(readsInCallback, 1u);
}

// The listener is inside the device as a call is: nobody waits for it, and the callbacks to come do not run any more.
TEST_F(ConnectionChanges, DeviceThatEndsWhileItsReconnectChangesItsNodesIsClosedBehindIt)
{
    producer->Edit([](scripted::Tree& edited) {
        DescribePort(
            edited.interfaces[0]->devices[0]->remotePort,
            DescriptionOf(IntRegister("First", 0) + IntRegister("Second", 4)));
    });
    Require(KORO_Device_Destruct(tree.device));
    tree.device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
    const auto remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);
    const auto map = Get<KORO_NodeMapHandle>(
        KORO_Module_GetNodeMap, Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, remoteDevice), std::size_t{0});

    struct Changes
    {
        int count = 0;
        std::promise<void> entered;
        std::promise<void> gate;
    } changes;
    const auto onChange = [](KORO_NodeHandle, void* context) {
        auto& self = *static_cast<Changes*>(context);
        if (++self.count > 1) return;
        self.entered.set_value();
        self.gate.get_future().wait();
    };
    for (const std::string name : {"First", "Second"})
    {
        KORO_NodeChangedCallbackHandle handle = nullptr;
        const auto node = Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, name.c_str(), name.size() + 1);
        Require(KORO_Node_RegisterChangedCallback(node, onChange, &changes, &handle));
    }
    producer->ClearJournal();
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1}));
    changes.entered.get_future().wait();
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{}); // and does not wait
    EXPECT_EQ(CallsOf(producer->Journal(), {"DevClose"}), Strings{});
    changes.gate.set_value();
    EXPECT_EQ(reports.Next(), ConnectionReports::Reconnected(descriptor));
    EXPECT_EQ(CallsOf(producer->Journal(), {"DevClose"}), Strings{"DevClose(if0-dev0)"});
    EXPECT_EQ(changes.count, 1);
}

TEST_F(ConnectionChanges, ReconnectTestsTheCommandLengthAgain)
{
    const std::string testRegister =
        "<Register "
        "Name=\"GevGVCPCMDLengthTest\"><Address>4096</Address><Length>4096</Length><AccessMode>WO</AccessMode>"
        "<pPort>Device</pPort></Register>";
    const std::string length =
        "<IntReg Name=\"GevGVCPCMDLength\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
        "<pPort>DevicePort</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
    producer->Edit([&](scripted::Tree& edited) {
        auto& device = *edited.interfaces[0]->devices[0];
        DescribePort(device.remotePort, DescriptionOf(testRegister + IntRegister("GevGVCPCMDLength", 0)));
        DescribePort(device.port, DescriptionOf(length, "DevicePort"));
        device.remotePort.registers[0].replace(0, 4, std::string("\0\x3\0\0", 4)); // 768
        device.remotePort.registers[0x1000] = std::string(0x1000, 'x');
    });
    Require(KORO_Device_Destruct(tree.device));
    tree.device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
    const Strings expected{
        "GCWritePort(if0-dev0-remote, 4096, 536)", "GCWritePort(if0-dev0, 0, 4)",
        "GCWritePort(if0-dev0-remote, 4096, 768)"};
    Strings writes;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) { writes = CallsOf(producer->Journal(), {"GCWritePort"}); };

    producer->ClearJournal();
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
    reports.Next();
    EXPECT_EQ(writes, Strings());
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1}));
    reports.Next();
    EXPECT_EQ(writes, expected);
}

TEST_F(ConnectionChanges, FailureBeforeTheCallbacksEndsItsRecordAlone)
{
    producer->Edit(
        [](scripted::Tree& edited) { DescribePort(edited.interfaces[0]->devices[0]->remotePort, "broken"); });
    Require(KORO_Device_Destruct(tree.device));
    tree.device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 1})); // its nodes cannot be invalidated
    ExpectNothingBeforeTheNextReport();
    ASSERT_TRUE(producer.Send({.id = "if0-dev0", .changeKind = 2}));
    EXPECT_EQ(reports.Next(), ConnectionReports::Disconnected(descriptor));
}

} // namespace koro::test

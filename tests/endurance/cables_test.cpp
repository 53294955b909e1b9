// Endurance: a simulated camera that is unplugged and plugged in again while two applications listen. Each of them
// hears of every change exactly once, and nothing is left behind. The whole: 1,000 times.
#include "tests/endurance/growth.h"
#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/temporary_folder.h"

#include <condition_variable>
#include <cstdint>
#include <gtest/gtest.h>
#include <mutex>
#include <string>

using namespace koro::test;

namespace
{

// The callbacks of one application at one interface, which count.
class Application
{
public:
    explicit Application(KORO_InterfaceHandle listenedInterface) : interface(listenedInterface)
    {
        Require(KORO_Library_Initialize());
        Require(KORO_Interface_RegisterDeviceListChangedCallback(
            interface, [](void* self) { Of(self).Count(&Application::numListChanged); }, this, &listChanged));
        Require(KORO_Interface_RegisterDeviceDisconnectedCallback(
            interface,
            [](KORO_DeviceDescriptorHandle descriptor, void* self) {
                EXPECT_EQ(GetText(KORO_DeviceDescriptor_GetUserDefinedName, descriptor), "mono");
                Of(self).Count(&Application::numDisconnected);
            },
            this, &disconnected));
        Require(KORO_Interface_RegisterDeviceReconnectedCallback(
            interface,
            [](KORO_DeviceDescriptorHandle descriptor, const KORO_DEVICE_RECONNECT_INFORMATION* information,
               void* self) {
                EXPECT_EQ(GetText(KORO_DeviceDescriptor_GetUserDefinedName, descriptor), "mono");
                Of(self).Count(&Application::numReconnected);
                EXPECT_EQ(information->reconnectFlag1, 1);
                EXPECT_EQ(information->reconnectFlag2, 1);
                EXPECT_EQ(information->reconnectValue, Of(self).numReconnected);
            },
            this, &reconnected));
    }
    ~Application()
    {
        KORO_Interface_UnregisterDeviceListChangedCallback(interface, listChanged);
        KORO_Interface_UnregisterDeviceDisconnectedCallback(interface, disconnected);
        KORO_Interface_UnregisterDeviceReconnectedCallback(interface, reconnected);
        KORO_Library_Close();
    }
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    // Each change is reported once for the camera and once for the list.
    void AwaitChanges(std::uint64_t count)
    {
        std::unique_lock lock(mutex);
        counted.wait(lock, [&] { return numListChanged >= count; });
    }

    void ExpectReports(std::uint64_t cycles)
    {
        const std::lock_guard lock(mutex);
        EXPECT_EQ(numDisconnected, cycles);
        EXPECT_EQ(numReconnected, cycles);
        EXPECT_EQ(numListChanged, 2 * cycles);
    }

private:
    static Application& Of(void* self) { return *static_cast<Application*>(self); }

    void Count(std::uint64_t Application::*reports)
    {
        const std::lock_guard lock(mutex);
        ++(this->*reports);
        counted.notify_all();
    }

    const KORO_InterfaceHandle interface;
    KORO_DeviceListChangedCallbackHandle listChanged = nullptr;
    KORO_DeviceDisconnectedCallbackHandle disconnected = nullptr;
    KORO_DeviceReconnectedCallbackHandle reconnected = nullptr;
    std::mutex mutex;
    std::condition_variable counted;
    std::uint64_t numListChanged = 0;
    std::uint64_t numDisconnected = 0;
    std::uint64_t numReconnected = 0; // written by the listener's thread alone
};

template <class NodeHandle, class Cast>
NodeHandle FindNode(KORO_ModuleHandle module, const std::string& name, Cast cast)
{
    const auto map = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    return Get<NodeHandle>(cast, Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, name.c_str(), name.size() + 1));
}

std::int64_t ValueOf(KORO_IntegerNodeHandle node)
{
    return Get<std::int64_t>(KORO_IntegerNode_GetValue, node, KORO_NODE_CACHE_POLICY_USE_CACHE);
}

} // namespace

TEST(CablesEndurance, EveryUnpluggingAndPluggingInIsToldOnceToEachApplication)
{
    constexpr std::uint64_t warmUp = 10;
    const std::uint64_t cycles = 10 * Factor();
    const TemporaryFolder folder;
    const EnvironmentVariable settings{
        "KORO_SIMULATOR_CONFIG",
        folder.MakeFile(
            "simulator.json", R"({"connection": {"stepwise": true, "listRecords": true, "repeat": )" +
                                  std::to_string(warmUp + cycles) +
                                  R"(, "script": [{"camera": "KS0001", "do": "unplug"},
                                                  {"camera": "KS0001", "do": "replug"}]}})")};
    const KoroLibrary library;
    const OpenTree tree(BuiltProducer("zvr_koro_simulator"));
    const auto systemModule = Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
    const auto step = FindNode<KORO_CommandNodeHandle>(systemModule, "SimulatedScriptStep", KORO_Node_ToCommandNode);
    const auto stepsLeft =
        FindNode<KORO_IntegerNodeHandle>(systemModule, "SimulatedScriptStepsLeft", KORO_Node_ToIntegerNode);
    const auto remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);
    const auto width = FindNode<KORO_IntegerNodeHandle>(
        Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, remoteDevice), "Width", KORO_Node_ToIntegerNode);

    Application first(tree.interface);
    Application second(tree.interface);
    std::uint64_t changes = 0;
    const auto change = [&] {
        Require(KORO_CommandNode_Execute(step));
        ++changes;
        first.AwaitChanges(changes);
        second.AwaitChanges(changes);
    };
    const auto runCycle = [&] {
        change();
        change();
        Require(KORO_Interface_UpdateDevices(tree.interface, 0));
        EXPECT_EQ(ValueOf(width), 640); // what was open works on
    };
    FillStoresOfEndedObjects();
    for (std::uint64_t cycle = 0; cycle < warmUp; ++cycle)
        runCycle();
    Growth growth;
    for (std::uint64_t cycle = 0; cycle < cycles; ++cycle)
        runCycle();
    growth.Report(std::to_string(cycles) + " times unplugged and plugged in");

    EXPECT_EQ(ValueOf(stepsLeft), 0);
    EXPECT_NE(Outcome(KORO_CommandNode_Execute(step)), Error{}); // none is left
    first.ExpectReports(warmUp + cycles);
    second.ExpectReports(warmUp + cycles);
}

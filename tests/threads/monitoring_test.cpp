// Callbacks, roles and intervals of one descriptor that change under many threads while its information does.
#include "tests/boundary/tree_test.h"
#include "tests/threads/threads.h"

#include <atomic>
#include <gtest/gtest.h>

using namespace koro::test;

namespace
{

class MonitoringInThreads : public TreeTest
{};

} // namespace

TEST_F(MonitoringInThreads, ListenersComeAndGoWhileRolesIntervalsAndValuesChange)
{
    using CallbackHandle = KORO_DeviceDescriptorInformationChangedCallbackHandle;
    const auto descriptor = tree.deviceDescriptor;
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, 0));
    std::atomic<int> reports{0};
    const auto count = [](const std::int32_t*, std::size_t numRoles, void* context) {
        EXPECT_GT(numRoles, 0u);
        ++*static_cast<std::atomic<int>*>(context);
    };

    std::atomic<bool> done{false};
    Threads threads;
    threads.Add(2, [&](std::size_t) {
        while (!done)
        {
            const auto handle = Get<CallbackHandle>(
                KORO_DeviceDescriptor_RegisterInformationChangedCallback, descriptor, +count,
                static_cast<void*>(&reports));
            std::this_thread::yield();
            Require(KORO_DeviceDescriptor_UnregisterInformationChangedCallback(descriptor, handle));
        }
    });
    threads.Add(1, [&](std::size_t) {
        for (std::int32_t status = 1; !done; status = status % 4 + 1)
        {
            producer->SetInfo("IFGetDeviceInfo", GenTL::DEVICE_INFO_ACCESS_STATUS, scripted::Int32(status));
            Require(KORO_DeviceDescriptor_AddInformationRoleToMonitoring(descriptor, GenTL::DEVICE_INFO_VENDOR));
            Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(descriptor, status > 2));
            Require(KORO_DeviceDescriptor_RemoveInformationRoleFromMonitoring(descriptor, GenTL::DEVICE_INFO_VENDOR));
        }
    });
    threads.Add(1, [&](std::size_t) {
        while (reports < 50)
            std::this_thread::yield();
        done = true;
    });
    threads.Join();
    EXPECT_GE(reports, 50);
}

// A reading that is under way holds the interface, and so its list of devices.
TEST_F(MonitoringInThreads, LibraryClosesDuringAReading)
{
    for (int round = 0; round < 30; ++round)
    {
        if (round > 0) tree = OpenTree(producer.Path());
        Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(tree.deviceDescriptor, 0));
        std::atomic<bool> reported{false};
        Get<KORO_DeviceDescriptorInformationChangedCallbackHandle>(
            KORO_DeviceDescriptor_RegisterInformationChangedCallback, tree.deviceDescriptor,
            +[](const std::int32_t*, std::size_t, void* context) { *static_cast<std::atomic<bool>*>(context) = true; },
            static_cast<void*>(&reported));
        while (!reported)
            std::this_thread::yield();
        Require(KORO_Library_Close());
        EXPECT_EQ(producer->Open(), std::vector<std::string>());
        Require(KORO_Library_Initialize());
    }
}

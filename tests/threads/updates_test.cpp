// Child lists that are updated and listened to by many threads while the producer's children come and go.
#include "tests/boundary/tree_test.h"
#include "tests/threads/threads.h"

#include <atomic>
#include <gtest/gtest.h>

using namespace koro::test;

namespace
{

class UpdatesInThreads : public TreeTest
{
protected:
    // Plugs and unplugs one more device.
    void Plug(bool present) const
    {
        producer->Edit([&](scripted::Tree& scriptedTree) {
            auto& devices = scriptedTree.interfaces[0]->devices;
            if (present)
                devices.push_back(scripted::MakeDevice("if0-guest"));
            else
                devices.pop_back();
        });
    }

    std::size_t NumDevices() const { return Get<std::size_t>(KORO_Interface_GetNumDevices, tree.interface); }
};

} // namespace

TEST_F(UpdatesInThreads, EachArrivalAndDepartureIsReportedOnce)
{
    constexpr int rounds = 30;
    std::atomic<int> found{0};
    std::atomic<int> lost{0};
    const auto countFound = [](KORO_DeviceDescriptorHandle, void* count) { ++*static_cast<std::atomic<int>*>(count); };
    const auto countLost = [](const char*, std::size_t, void* count) { ++*static_cast<std::atomic<int>*>(count); };
    KORO_DeviceFoundCallbackHandle foundHandle = nullptr;
    KORO_DeviceLostCallbackHandle lostHandle = nullptr;
    Require(KORO_Interface_RegisterDeviceFoundCallback(tree.interface, countFound, &found, &foundHandle));
    Require(KORO_Interface_RegisterDeviceLostCallback(tree.interface, countLost, &lost, &lostHandle));

    for (int round = 0; round < rounds; ++round)
    {
        Plug(round % 2 == 0);
        Threads threads;
        threads.Add(3, [&](std::size_t) { Require(KORO_Interface_UpdateDevices(tree.interface, 0)); });
        threads.Join();
        EXPECT_EQ(NumDevices(), round % 2 == 0 ? 3u : 2u);
    }
    EXPECT_EQ(found, rounds / 2);
    EXPECT_EQ(lost, rounds / 2);
}

TEST_F(UpdatesInThreads, ListenersComeAndGoWhileTheListChanges)
{
    std::atomic<bool> done{false};
    Threads threads;
    threads.Add(2, [&](std::size_t) {
        // The new device can be asked from inside the report.
        const auto listen = [](KORO_DeviceDescriptorHandle device, void*) {
            EXPECT_EQ(GetText(KORO_DeviceDescriptor_GetVendorName, device), "ZVR");
        };
        while (!done)
        {
            KORO_DeviceFoundCallbackHandle handle = nullptr;
            Require(KORO_Interface_RegisterDeviceFoundCallback(tree.interface, listen, nullptr, &handle));
            std::this_thread::yield();
            Require(KORO_Interface_UnregisterDeviceFoundCallback(tree.interface, handle));
        }
    });
    threads.Add(1, [&](std::size_t) {
        while (!done)
        {
            const auto count = NumDevices();
            EXPECT_TRUE(count == 2 || count == 3);
            const auto first =
                Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{0});
            EXPECT_EQ(GetText(KORO_DeviceDescriptor_GetSerialNumber, first), "serial of if0-dev0");
            std::this_thread::yield();
        }
    });
    threads.Start();
    for (int round = 0; round < 40; ++round)
    {
        Plug(round % 2 == 0);
        Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    }
    done = true;
    threads.Join();
}

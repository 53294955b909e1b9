// Devices that are unplugged and plugged in again while several applications listen, update and come and go.
#include "tests/boundary/connection_changes.h"
#include "tests/boundary/outputs.h"
#include "tests/threads/threads.h"

#include <array>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

using namespace koro::test;

namespace
{

// One application's callbacks at one interface, which count.
struct Counts
{
    explicit Counts(KORO_InterfaceHandle interface)
    {
        const auto count = [](void* context) { ++*static_cast<std::atomic<int>*>(context); };
        Require(KORO_Interface_RegisterDeviceListChangedCallback(interface, count, &listChanged, &listChangedHandle));
        Require(KORO_Interface_RegisterDeviceDisconnectedCallback(
            interface, [](KORO_DeviceDescriptorHandle, void* context) { ++*static_cast<std::atomic<int>*>(context); },
            &disconnected, &disconnectedHandle));
        Require(KORO_Interface_RegisterDeviceReconnectedCallback(
            interface,
            [](KORO_DeviceDescriptorHandle, const KORO_DEVICE_RECONNECT_INFORMATION*, void* context) {
                ++*static_cast<std::atomic<int>*>(context);
            },
            &reconnected, &reconnectedHandle));
    }
    Counts(const Counts&) = delete;
    Counts& operator=(const Counts&) = delete;

    std::atomic<int> listChanged{0};
    std::atomic<int> disconnected{0};
    std::atomic<int> reconnected{0};
    KORO_DeviceListChangedCallbackHandle listChangedHandle = nullptr;
    KORO_DeviceDisconnectedCallbackHandle disconnectedHandle = nullptr;
    KORO_DeviceReconnectedCallbackHandle reconnectedHandle = nullptr;
};

class ConnectionChangesInThreads : public testing::Test
{
protected:
    KORO_InterfaceHandle OpenSecondInterface() const
    {
        const auto descriptor =
            Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, std::size_t{1});
        return Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, descriptor);
    }

    // The device goes, the list changes, the device comes.
    void Cycle(const std::string& interfaceID, std::uint32_t number) const
    {
        const std::string id = interfaceID + "-dev0";
        ASSERT_TRUE(producer.Send({.id = id, .changeKind = 2}, interfaceID));
        ASSERT_TRUE(producer.Send({.deviceFlag = 0}, interfaceID));
        ASSERT_TRUE(producer.Send({.id = id, .changeKind = 1, .reconnectValue = number}, interfaceID));
    }

    const ReportingProducer producer;
    const KoroLibrary library;
    OpenTree tree{producer.Path()};
};

} // namespace

TEST_F(ConnectionChangesInThreads, TwoApplicationsHearOfEveryChangeExactlyOnce)
{
    constexpr int numCycles = 1000;
    const auto second = OpenSecondInterface();
    Require(KORO_Interface_UpdateDevices(second, 0));
    producer->KeepJournal(false);

    const std::array<KORO_InterfaceHandle, 2> interfaces{tree.interface, second};
    std::vector<std::unique_ptr<Counts>> counts;
    for (int application = 0; application < 2; ++application)
    {
        for (const auto interface : interfaces)
            counts.push_back(std::make_unique<Counts>(interface));
    }

    std::atomic<int> senders{2};
    Threads threads;
    threads.Add(2, [&](std::size_t number) {
        for (int cycle = 0; cycle < numCycles; ++cycle)
            Cycle("if" + std::to_string(number), static_cast<std::uint32_t>(cycle));
        --senders;
    });
    threads.Add(1, [&](std::size_t) {
        while (senders > 0)
            Require(KORO_Interface_UpdateDevices(tree.interface, 0));
    });
    threads.Add(1, [&](std::size_t) {
        while (senders > 0)
        {
            const Counts shortLived(second);
            Require(KORO_Interface_UnregisterDeviceListChangedCallback(second, shortLived.listChangedHandle));
            Require(KORO_Interface_UnregisterDeviceDisconnectedCallback(second, shortLived.disconnectedHandle));
            Require(KORO_Interface_UnregisterDeviceReconnectedCallback(second, shortLived.reconnectedHandle));
        }
    });
    threads.Join();

    // Each interface's last record; the records of one are delivered in order.
    for (const auto& count : counts)
    {
        while (count->reconnected < numCycles)
            std::this_thread::yield();
    }
    Require(KORO_Interface_Destruct(second));
    Require(KORO_Interface_Destruct(tree.interface));
    for (const auto& count : counts)
    {
        EXPECT_EQ(count->listChanged, numCycles);
        EXPECT_EQ(count->disconnected, numCycles);
        EXPECT_EQ(count->reconnected, numCycles);
    }
}

TEST_F(ConnectionChangesInThreads, InterfacesComeAndGoWhileRecordsArrive)
{
    producer->KeepJournal(false);
    std::atomic<bool> done{false};
    Threads threads;
    threads.Add(1, [&](std::size_t) {
        for (std::uint32_t number = 0; !done; ++number)
        {
            Cycle("if0", number);
            Cycle("if1", number);
            producer->AwaitWaiters(1); // so that the producer's queue does not grow
        }
    });
    threads.Add(1, [&](std::size_t) {
        for (int round = 0; round < 200; ++round)
        {
            const auto interface = OpenSecondInterface();
            Require(KORO_Interface_UpdateDevices(interface, 0));
            {
                const Counts counts(interface);
                while (round % 8 == 0 && counts.disconnected == 0)
                    std::this_thread::yield();
                Require(KORO_Interface_Destruct(interface));
            } // no callback runs any more
        }
        done = true;
    });
    threads.Join();
}

// Nobody else listens: the thread starts and ends with each round.
TEST_F(ConnectionChangesInThreads, SystemEndsWhileRecordsArrive)
{
    producer->KeepJournal(false);
    for (int round = 0; round < 30; ++round)
    {
        if (round > 0) tree = OpenTree(producer.Path());
        std::atomic<bool> done{false};
        const auto counts = std::make_unique<Counts>(tree.interface);
        Threads threads;
        threads.Add(1, [&](std::size_t) {
            while (!done)
                producer.Send({.id = "if0-dev0", .changeKind = 1});
        });
        threads.Add(1, [&](std::size_t) {
            while (counts->reconnected == 0)
                std::this_thread::yield();
            Require(
                round % 2 ? KORO_ProducerLibrary_Destruct(tree.producerLibrary) : KORO_System_Destruct(tree.system));
            done = true;
        });
        threads.Join();
        if (round % 2 == 0) Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
        EXPECT_EQ(producer->Open(), std::vector<std::string>());
    }
}

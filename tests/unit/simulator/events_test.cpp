// Registration, EventGetData and its order of tests, kills, waiters.
#include "tests/unit/simulator/producer.h"

#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace koro::simulator::test
{
namespace
{

// A thread that waits without end on the tree's new-buffer event.
class Waiter
{
public:
    explicit Waiter(const Tree& tree) : thread([this, &tree] { result = tree.TryNext(GENTL_INFINITE); }) {}
    ~Waiter()
    {
        if (thread.joinable()) thread.join();
    }

    GC_ERROR Join()
    {
        thread.join();
        return result;
    }

private:
    GC_ERROR result = GC_ERR_SUCCESS;
    std::thread thread;
};

TEST(SimulatorEvents, ErrorAndModuleRegisterOnEveryModuleButTheRemoteDevice)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    EVENT_HANDLE event = nullptr;
    for (const EVENT_TYPE type : {EVENT_ERROR, EVENT_MODULE})
    {
        for (void* module : {tree.system, tree.interface, tree.device, tree.stream, tree.Announce(false)})
            EXPECT_EQ(producer.GCRegisterEvent(module, type, &event), GC_ERR_SUCCESS);
        EXPECT_EQ(producer.GCRegisterEvent(tree.remote, type, &event), GC_ERR_INVALID_HANDLE);
    }
}

TEST(SimulatorEvents, FeatureEventsRegisterOnTheLocalDeviceAlone)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    EVENT_HANDLE event = nullptr;
    for (const EVENT_TYPE type : {EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE})
    {
        EXPECT_EQ(producer.GCRegisterEvent(tree.device, type, &event), GC_ERR_SUCCESS);
        for (void* module : {tree.system, tree.interface, tree.stream})
            EXPECT_EQ(producer.GCRegisterEvent(module, type, &event), GC_ERR_NOT_IMPLEMENTED);
    }
    EXPECT_EQ(producer.GCRegisterEvent(tree.device, EVENT_NEW_BUFFER, &event), GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimulatorEvents, CustomAndUnknownTypesAreNotImplemented)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    EVENT_HANDLE event = nullptr;
    for (const EVENT_TYPE type : {EVENT_TYPE{EVENT_CUSTOM_ID} + 1, 6, -1})
    {
        EXPECT_EQ(producer.GCRegisterEvent(tree.system, type, &event), GC_ERR_NOT_IMPLEMENTED);
        EXPECT_EQ(producer.GCUnregisterEvent(tree.system, type), GC_ERR_NOT_IMPLEMENTED);
    }
    for (void* module : {tree.interface, tree.device, tree.stream})
        EXPECT_EQ(producer.GCRegisterEvent(module, EVENT_CUSTOM_ID, &event), GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimulatorEvents, OneRegistrationForEachModuleAndType)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    EVENT_HANDLE event = nullptr;
    EXPECT_EQ(producer.GCRegisterEvent(tree.stream, EVENT_NEW_BUFFER, &event), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(producer.GCUnregisterEvent(tree.stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.GCUnregisterEvent(tree.stream, EVENT_NEW_BUFFER), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(producer.EventFlush(tree.event), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.GCRegisterEvent(tree.stream, EVENT_NEW_BUFFER, &event), GC_ERR_SUCCESS);
}

TEST(SimulatorEvents, InformationTellsTypeSizesAndCountsSinceRegistration)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    EXPECT_EQ(tree.EventInfo<std::int32_t>(EVENT_EVENT_TYPE), EVENT_NEW_BUFFER);
    EXPECT_EQ(tree.EventInfo<std::size_t>(EVENT_SIZE_MAX), 16U);
    EXPECT_EQ(tree.EventInfo<std::size_t>(EVENT_INFO_DATA_SIZE_MAX), 8U);
    tree.Announce();
    tree.Announce();
    tree.Start(2);
    ASSERT_TRUE(Eventually([&] { return tree.EventInfo<std::size_t>(EVENT_NUM_IN_QUEUE) == 2; }));
    tree.Next();
    EXPECT_EQ(tree.EventInfo<std::uint64_t>(EVENT_NUM_FIRED), 2U);
    ASSERT_EQ(producer.EventFlush(tree.event), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.EventInfo<std::uint64_t>(EVENT_NUM_FIRED), 2U);
    ASSERT_EQ(producer.GCUnregisterEvent(tree.stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(tree.stream, EVENT_NEW_BUFFER, &event), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Get<std::uint64_t>(producer.EventGetInfo, event, EVENT_NUM_FIRED), 0U);
    ASSERT_EQ(producer.GCRegisterEvent(tree.device, EVENT_FEATURE_INVALIDATE, &event), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Result(producer.EventGetInfo, event, EVENT_INFO_DATA_SIZE_MAX), GC_ERR_NOT_AVAILABLE);
}

TEST(SimulatorEvents, BlockOfANewBufferTellsHandleAndUserPointer)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    int user = 0;
    const BUFFER_HANDLE buffer = tree.Announce(true, 0, &user);
    tree.Start();
    const EVENT_NEW_BUFFER_DATA data = tree.Next();
    const auto block = [&](EVENT_DATA_INFO_CMD command, std::size_t size = sizeof data) {
        return producer.Result(producer.EventGetDataInfo, tree.event, &data, size, command);
    };
    EXPECT_EQ(producer.Get<void*>(producer.EventGetDataInfo, tree.event, &data, sizeof data, EVENT_DATA_ID), buffer);
    EXPECT_EQ(producer.Get<void*>(producer.EventGetDataInfo, tree.event, &data, sizeof data, EVENT_DATA_VALUE), &user);
    EXPECT_EQ(
        producer.Get<std::uint64_t>(producer.EventGetDataInfo, tree.event, &data, sizeof data, EVENT_DATA_NUMID),
        reinterpret_cast<std::uintptr_t>(buffer));
    EXPECT_EQ(block(3), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(block(EVENT_DATA_ID, 0), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(block(EVENT_DATA_ID, 8), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(
        producer.Result(producer.EventGetDataInfo, tree.event, nullptr, sizeof data, EVENT_DATA_ID),
        GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorEvents, PendingKillComesBeforeAnEntryAndTakesNothingOff)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    tree.Announce();
    tree.Start();
    ASSERT_TRUE(Eventually([&] { return tree.EventInfo<std::size_t>(EVENT_NUM_IN_QUEUE) == 1; }));
    ASSERT_EQ(producer.EventKill(tree.event), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.TryNext(), GC_ERR_ABORT);
    EXPECT_EQ(tree.EventInfo<std::size_t>(EVENT_NUM_IN_QUEUE), 1U);
    EXPECT_EQ(tree.TryNext(), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.TryNext(), GC_ERR_TIMEOUT);
}

TEST(SimulatorEvents, ShortBufferLeavesTheEntry)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    tree.Announce();
    tree.Start();
    char block[16];
    std::size_t size = 15;
    ASSERT_EQ(producer.EventGetData(tree.event, block, &size, 60000), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(tree.EventInfo<std::size_t>(EVENT_NUM_IN_QUEUE), 1U);
    size = 16;
    EXPECT_EQ(producer.EventGetData(tree.event, block, &size, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_DELIVERED), 1U);
}

TEST(SimulatorEvents, NullBlockThrowsTheEntryAway)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    EXPECT_EQ(producer.EventGetData(tree.event, nullptr, nullptr, 0), GC_ERR_INVALID_PARAMETER);
    std::size_t size = 0;
    ASSERT_EQ(producer.EventGetData(tree.event, nullptr, &size, 60000), GC_ERR_SUCCESS);
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_IS_QUEUED));
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_DELIVERED), 0U);
    EXPECT_EQ(tree.TryNext(), GC_ERR_TIMEOUT);
}

TEST(SimulatorEvents, KillsWithoutAWaiterAccumulate)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    for (int kill = 0; kill < 3; ++kill)
        ASSERT_EQ(producer.EventKill(tree.event), GC_ERR_SUCCESS);
    for (int wait = 0; wait < 3; ++wait)
        EXPECT_EQ(tree.TryNext(GENTL_INFINITE), GC_ERR_ABORT);
    EXPECT_EQ(tree.TryNext(), GC_ERR_TIMEOUT);
}

TEST(SimulatorEvents, UnregisteringForgetsPendingKills)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    ASSERT_EQ(producer.EventKill(tree.event), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.GCUnregisterEvent(tree.stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    EVENT_HANDLE event = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(tree.stream, EVENT_NEW_BUFFER, &event), GC_ERR_SUCCESS);
    std::size_t size = 16;
    char block[16];
    EXPECT_EQ(producer.EventGetData(event, block, &size, 0), GC_ERR_TIMEOUT);
}

TEST(SimulatorEvents, EachKillEndsOneOfSeveralWaits)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    std::atomic<int> ended{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < 3; ++index)
        threads.emplace_back([&] {
            EXPECT_EQ(tree.TryNext(GENTL_INFINITE), GC_ERR_ABORT);
            ++ended;
        });
    for (int kill = 1; kill <= 3; ++kill)
    {
        ASSERT_EQ(producer.EventKill(tree.event), GC_ERR_SUCCESS);
        EXPECT_TRUE(Eventually([&] { return ended == kill; }));
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(tree.TryNext(), GC_ERR_TIMEOUT);
}

TEST(SimulatorEvents, UnregisteringWakesAWaiterWithAbort)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    for (int round = 0; round < 50; ++round)
    {
        EVENT_HANDLE event = nullptr;
        ASSERT_EQ(producer.GCRegisterEvent(tree.stream, EVENT_ERROR, &event), GC_ERR_SUCCESS);
        GC_ERROR result = GC_ERR_SUCCESS;
        std::atomic<bool> running{false};
        std::thread waiter([&] {
            running = true;
            char block[512];
            std::size_t size = sizeof block;
            result = producer.EventGetData(event, block, &size, GENTL_INFINITE);
        });
        EXPECT_TRUE(Eventually([&] { return running.load(); }));
        ASSERT_EQ(producer.GCUnregisterEvent(tree.stream, EVENT_ERROR), GC_ERR_SUCCESS);
        waiter.join();
        // The thread may come to the wait only after the end.
        EXPECT_TRUE(result == GC_ERR_ABORT || result == GC_ERR_INVALID_HANDLE) << result;
    }
}

TEST(SimulatorEvents, BlockedWaiterHoldsUpNobody)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    Waiter waiter(tree);
    const BUFFER_HANDLE buffer = tree.Announce(false);
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_ANNOUNCED), 1U);
    EXPECT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.EventInfo<std::size_t>(EVENT_NUM_IN_QUEUE), 0U);
    ASSERT_EQ(producer.EventKill(tree.event), GC_ERR_SUCCESS);
    EXPECT_EQ(waiter.Join(), GC_ERR_ABORT);
}

TEST(SimulatorEvents, ClosingTheSystemEndsAWait)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    Waiter waiter(tree);
    ASSERT_EQ(producer.TLClose(tree.system), GC_ERR_SUCCESS);
    const GC_ERROR result = waiter.Join();
    EXPECT_TRUE(result == GC_ERR_ABORT || result == GC_ERR_INVALID_HANDLE) << result;
}

TEST(SimulatorEvents, EachEntryGoesToOneOfSeveralWaiters)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    for (int index = 0; index < 8; ++index)
        tree.Announce();
    constexpr int perThread = 500;
    std::vector<std::thread> threads;
    std::mutex mutex;
    std::vector<bool> seen(perThread * 4 + 1);
    for (int index = 0; index < 4; ++index)
        threads.emplace_back([&] {
            for (int frame = 0; frame < perThread; ++frame)
            {
                const BUFFER_HANDLE buffer = tree.Next().BufferHandle;
                const auto id = tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID);
                {
                    const std::lock_guard lock(mutex);
                    ASSERT_LT(id, seen.size());
                    EXPECT_FALSE(seen[id]) << id;
                    seen[id] = true;
                }
                ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
            }
        });
    tree.Start(perThread * 4);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_DELIVERED), perThread * 4U);
}

} // namespace
} // namespace koro::simulator::test

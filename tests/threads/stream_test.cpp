// One stream or two in many threads: waits, kills, queueing and the end.
#include "tests/boundary/stream_test.h"

#include "tests/threads/threads.h"

#include <algorithm>
#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

using namespace koro::test;
using namespace GenTL;
using testing::IsEmpty;

namespace
{

using StreamInThreads = StreamTest;

// Delivers until `count` frames have found a queued buffer.
void DeliverFrames(const ScriptedProducer& producer, const std::string& stream, std::size_t count)
{
    for (std::size_t delivered = 0; delivered < count;)
    {
        if (producer->Deliver(stream))
            ++delivered;
        else
            std::this_thread::yield();
    }
}

// Takes frames and queues their buffers again until a kill; counts what it got.
void GrabUntilKilled(KORO_DataStreamHandle stream, std::atomic<std::size_t>& frames, std::size_t last)
{
    KORO_BufferHandle buffer = nullptr;
    for (;;)
    {
        const auto outcome = Outcome(KORO_DataStream_WaitForFinishedBuffer(stream, KORO_INFINITE, &buffer));
        if (outcome == aborted) return;
        EXPECT_EQ(outcome, Error{});
        EXPECT_NE(Get<void*>(KORO_Buffer_GetBasePtr, buffer), nullptr);
        Require(KORO_DataStream_QueueBuffer(stream, buffer));
        if (++frames == last) Require(KORO_DataStream_KillWait(stream));
    }
}

} // namespace

TEST_F(StreamInThreads, FirstOfManyRegistersTheEventOnce)
{
    Threads threads;
    threads.Add(4, [&](std::size_t number) {
        if (number == 0)
            Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
        else if (number == 1)
            EXPECT_THAT(OutcomeOfWait(), testing::AnyOf(timedOut, aborted));
        else
            Require(KORO_DataStream_KillWait(tree.stream));
    });
    threads.Join();
    EXPECT_EQ(CallsOf({"GCRegisterEvent"}), Journal{"GCRegisterEvent(if0-dev0-stream0, 1)"});
}

TEST_F(StreamInThreads, EachKillEndsOneWaiterAndEachFrameServesOne)
{
    constexpr std::size_t waiters = 6;
    constexpr std::size_t frames = 2;
    StartWithBuffers(frames);
    std::atomic<std::size_t> served{0};
    std::atomic<std::size_t> killed{0};
    Threads threads;
    threads.Add(waiters, [&](std::size_t) {
        const auto outcome = OutcomeOfWait(KORO_INFINITE);
        if (outcome == Error{}) ++served;
        if (outcome == aborted) ++killed;
    });
    threads.Start();
    producer->AwaitWaiters(waiters);

    Threads others;
    others.Add(waiters - frames, [&](std::size_t) { Require(KORO_DataStream_KillWait(tree.stream)); });
    others.Add(frames, [&](std::size_t) { EXPECT_TRUE(Deliver()); });
    others.Join();
    threads.Join();
    // A kill that meets no waiter is kept for the next one, so nothing is lost on either side.
    EXPECT_EQ(served, frames);
    EXPECT_EQ(killed, waiters - frames);
    EXPECT_EQ(OutcomeOfWait(), timedOut);
}

TEST_F(StreamInThreads, FramesAreTakenQueuedAndAskedForByManyThreads)
{
    constexpr std::size_t frames = 200;
    constexpr std::size_t waiters = 3;
    const auto buffers = StartWithBuffers(5);
    producer->KeepJournal(false);
    std::atomic<std::size_t> taken{0};
    std::atomic<bool> done{false};
    Threads threads;
    // The one that takes the last frame kills the first; each one that is killed passes it on.
    threads.Add(waiters, [&](std::size_t) {
        GrabUntilKilled(tree.stream, taken, frames);
        Require(KORO_DataStream_KillWait(tree.stream));
    });
    Threads others;
    others.Add(1, [&](std::size_t) { DeliverFrames(producer, streamID, frames); });
    others.Add(2, [&](std::size_t number) {
        while (!done)
        {
            EXPECT_EQ(Get<KORO_Bool8>(KORO_DataStream_GetIsGrabbing, tree.stream), 1);
            EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetSize, buffers[number]), 8u);
            std::this_thread::yield();
        }
    });
    others.Add(1, [&](std::size_t) {
        while (!done)
        {
            Memory memory{};
            int revocations = 0;
            const auto buffer = Announce(
                memory, [](void*, void*, void* count) { ++*static_cast<int*>(count); }, &revocations);
            Require(KORO_DataStream_RevokeBuffer(tree.stream, buffer));
            EXPECT_EQ(revocations, 1);
            std::this_thread::yield();
        }
    });
    threads.Start();
    others.Start();
    threads.Join();
    done = true;
    others.Join();
    EXPECT_EQ(taken, frames);
}

TEST_F(StreamInThreads, TwoStreamsServeTheirOwnThreads)
{
    constexpr std::size_t frames = 200;
    const auto second = OpenSecondStream();
    const std::array streams = {tree.stream, second};
    const std::array<std::string, 2> ids = {streamID, "if0-dev1-stream0"};
    std::array<std::set<KORO_BufferHandle>, 2> seen;
    std::array<std::atomic<std::size_t>, 2> taken{};
    for (const auto stream : streams)
    {
        for (std::size_t index = 0; index < 3; ++index)
        {
            Require(KORO_DataStream_QueueBuffer(
                stream,
                Get<KORO_BufferHandle>(
                    KORO_DataStream_AllocAndAnnounceBuffer, stream, std::size_t{8}, static_cast<void*>(nullptr))));
        }
        Require(KORO_DataStream_StartAcquisitionInfinite(stream, 0));
    }
    Threads threads;
    threads.Add(2, [&](std::size_t number) {
        for (; taken[number] < frames; ++taken[number])
        {
            const auto buffer = Get<KORO_BufferHandle>(
                KORO_DataStream_WaitForFinishedBuffer, streams[number], std::uint64_t{KORO_INFINITE});
            seen[number].insert(buffer);
            Require(KORO_DataStream_QueueBuffer(streams[number], buffer));
        }
    });
    threads.Add(2, [&](std::size_t number) { DeliverFrames(producer, ids[number], frames); });
    threads.Join();
    std::vector<KORO_BufferHandle> common;
    std::set_intersection(seen[0].begin(), seen[0].end(), seen[1].begin(), seen[1].end(), std::back_inserter(common));
    EXPECT_THAT(common, IsEmpty());
    EXPECT_EQ(taken[0], frames);
    EXPECT_EQ(taken[1], frames);
}

TEST_F(StreamInThreads, OneOfManyRevokesABuffer)
{
    for (int round = 0; round < 5; ++round)
    {
        Memory memory{};
        std::atomic<int> revocations{0};
        std::atomic<int> successes{0};
        const auto buffer = Announce(
            memory, [](void*, void*, void* count) { ++*static_cast<std::atomic<int>*>(count); }, &revocations);
        Threads threads;
        threads.Add(4, [&](std::size_t) {
            if (KORO_DataStream_RevokeBuffer(tree.stream, buffer) == KORO_RETURN_CODE_SUCCESS) ++successes;
        });
        threads.Join();
        EXPECT_EQ(successes, 1);
        EXPECT_EQ(revocations, 1);
        EXPECT_FALSE(IsAlive(buffer));
    }
}

// The wait holds the stream: it goes on under a handle that is gone, and its end is the stream's end.
TEST_F(StreamInThreads, StreamThatIsDestructedUnderAWaiterEndsTheWait)
{
    const auto buffers = StartWithBuffers(2);
    Error outcome{KORO_RETURN_CODE_ERROR, "not waited yet"};
    Threads threads;
    threads.Add(1, [&](std::size_t) { outcome = OutcomeOfWait(KORO_INFINITE); });
    threads.Start();
    producer->AwaitWaiters(1);
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
    EXPECT_EQ(Outcome(KORO_DataStream_KillWait(tree.stream)), InvalidHandle("dataStreamHandle"));
    EXPECT_FALSE(IsAlive(buffers[0]));

    threads.Join();
    EXPECT_EQ(outcome, aborted);
    EXPECT_EQ(CallsOf({"DSClose"}), Journal{"DSClose(if0-dev0-stream0)"});
    EXPECT_FALSE(IsAlive(buffers[0]));
    EXPECT_FALSE(IsAlive(buffers[1]));
}

// The producer's own end wakes everybody.
TEST_F(StreamInThreads, LibraryThatIsDestructedUnderWaitersEndsTheWaits)
{
    constexpr std::size_t waiters = 3;
    StartWithBuffers(1);
    std::atomic<std::size_t> ended{0};
    Threads threads;
    threads.Add(waiters, [&](std::size_t) {
        KORO_BufferHandle buffer = nullptr;
        if (KORO_DataStream_WaitForFinishedBuffer(tree.stream, KORO_INFINITE, &buffer) != KORO_RETURN_CODE_SUCCESS)
        {
            ++ended;
        }
    });
    threads.Start();
    producer->AwaitWaiters(waiters);
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
    threads.Join();
    EXPECT_EQ(ended, waiters);
    EXPECT_THAT(producer->Open(), IsEmpty());
}

TEST_F(StreamInThreads, EachEventGoesToOneWaiter)
{
    constexpr std::size_t events = 300;
    constexpr std::size_t waiters = 3;
    const auto controller = EnableEvents(EVENT_MODULE);
    std::mutex mutex;
    std::multiset<std::string> blocks; // guarded by mutex
    Threads threads;
    threads.Add(waiters, [&](std::size_t) {
        KORO_EventHandle event = nullptr;
        for (;;)
        {
            const auto outcome = Outcome(KORO_EventController_WaitForEvent(controller, KORO_INFINITE, &event));
            if (outcome == aborted) return;
            EXPECT_EQ(outcome, Error{});
            const auto block = GetBytes(KORO_Event_GetRawData, event);
            Require(KORO_Event_Destruct(event));
            const std::lock_guard lock(mutex);
            blocks.insert(block);
        }
    });
    threads.Start();
    std::multiset<std::string> fired;
    for (std::size_t number = 0; number < events; ++number)
    {
        fired.insert("event " + std::to_string(number));
        ASSERT_TRUE(producer->Fire(streamID, EVENT_MODULE, "event " + std::to_string(number)));
    }
    // A kill goes before what is queued, so the waiters come first.
    while (Get<std::size_t>(KORO_EventController_GetNumEventsInQueue, controller) > 0)
        std::this_thread::yield();
    for (std::size_t waiter = 0; waiter < waiters; ++waiter)
        Require(KORO_EventController_KillWait(controller));
    threads.Join();
    EXPECT_EQ(blocks, fired);
}

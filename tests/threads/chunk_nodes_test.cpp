// Chunks and events as nodes, on several threads at once.
#include "tests/boundary/chunk_test.h"
#include "tests/boundary/event_nodes_test.h"
#include "tests/threads/threads.h"

#include <atomic>
#include <gtest/gtest.h>

namespace koro::test
{

namespace
{

using ChunkNodesOnThreads = ChunkTest;
using EventNodesOnThreads = EventNodesTest;

constexpr int rounds = 200;

} // namespace

TEST_F(ChunkNodesOnThreads, ReadersSeeOneOfTheBuffersThatAreAttached)
{
    const KORO_BufferHandle buffers[] = {
        Deliver(Chunks(1, 11)), Deliver(Chunks(2, 12)), Deliver(FrameOf(Chunks(3, 13), "GEV", 2))};
    Require(KORO_NodeMap_UpdateChunkNodes(map, buffers[0]));
    Threads threads;
    threads.Add(2, [&](std::size_t number) {
        for (int round = 0; round < rounds; ++round)
            Require(KORO_NodeMap_UpdateChunkNodes(map, buffers[(static_cast<std::size_t>(round) + number) % 3]));
    });
    threads.Add(2, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            Require(KORO_NodeMap_Lock(map));
            const auto counter = Value("Counter");
            const auto gain = Value("Gain");
            Require(KORO_NodeMap_Unlock(map));
            EXPECT_EQ(*counter + 10, *gain);
        }
    });
    threads.Join();
}

// Not to be done; but with memory that stays it neither hangs nor leaves a buffer attached.
TEST_F(ChunkNodesOnThreads, RevocationDuringAnUpdateLeavesNothingAttached)
{
    for (int round = 0; round < rounds / 4; ++round)
    {
        const auto buffer = Deliver(Chunks(1, 2));
        const auto other = Deliver(FrameOf(Chunks(3, 4), "GEV", 2));
        Threads threads;
        threads.Add(1, [&](std::size_t) {
            for (const auto next : {buffer, other, buffer, other})
                KORO_NodeMap_UpdateChunkNodes(map, next);
        });
        threads.Add(1, [&](std::size_t) {
            Revoke(buffer);
            Revoke(other);
        });
        threads.Join();
        EXPECT_EQ(Value("Counter"), std::nullopt);
    }
}

TEST_F(ChunkNodesOnThreads, RevocationOfOtherBuffersGoesBesideUpdates)
{
    const auto attached = Deliver(Chunks(1, 2));
    std::vector<KORO_BufferHandle> others;
    for (int round = 0; round < rounds; ++round)
    {
        others.push_back(Deliver(Chunks(3, 4)));
        Require(KORO_NodeMap_UpdateChunkNodes(map, others.back()));
    }
    Require(KORO_NodeMap_UpdateChunkNodes(map, attached));
    Threads threads;
    threads.Add(1, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
            Require(KORO_NodeMap_UpdateChunkNodes(map, attached));
    });
    threads.Add(1, [&](std::size_t) {
        for (const auto other : others)
            Revoke(other);
    });
    threads.Join();
    EXPECT_EQ(Value("Counter"), 1);
}

TEST_F(EventNodesOnThreads, EachEventIsDeliveredAsAWhole)
{
    std::vector<KORO_EventHandle> events;
    for (const std::uint32_t value : {1u, 2u, 3u})
        events.push_back(Take(GEVEvent(0x9001, BigEndian(value, 4))));
    Require(KORO_NodeMap_UpdateEventNodes(map, events[0]));
    std::atomic<int> changes{0};
    KORO_NodeChangedCallbackHandle ignored = nullptr;
    Require(KORO_Node_RegisterChangedCallback(
        Find(map, "Exposure"), [](KORO_NodeHandle, void* count) { ++*static_cast<std::atomic<int>*>(count); }, &changes,
        &ignored));
    Threads threads;
    threads.Add(2, [&](std::size_t number) {
        for (int round = 0; round < rounds; ++round)
        {
            EXPECT_TRUE(IsSupported(map, events[number]));
            Require(KORO_NodeMap_UpdateEventNodes(map, events[number]));
        }
    });
    threads.Add(2, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            const auto value = Value("Exposure");
            EXPECT_TRUE(value == 1 || value == 2);
        }
    });
    threads.Join();
    EXPECT_EQ(changes, 2 * rounds);
}

} // namespace koro::test

// Announcing, queues, flushes: each row of the tables of transitions and flush operations.
#include "tests/unit/simulator/producer.h"

#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

// A camera whose every frame hangs in its buffer until somebody gives it up.
std::string HangingCamera()
{
    return OneCamera(R"(, "misbehaviour": {"frames": [{"camera": "A", "count": "every", "late_ms": 60000}]})");
}

// The states of buffers, as far as queries distinguish them.
struct Counts
{
    std::size_t queued;
    std::size_t awaiting;
    std::size_t events;

    bool operator==(const Counts&) const = default;
};

void PrintTo(const Counts& counts, std::ostream* out)
{
    *out << counts.queued << " queued, " << counts.awaiting << " awaiting, " << counts.events << " events";
}

Counts CountsOf(const Tree& tree)
{
    return {
        tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_QUEUED),
        tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), tree.EventInfo<std::size_t>(EVENT_NUM_IN_QUEUE)};
}

// One buffer in each place: `output` filled, `filling` hanging, `input` queued, `idle`.
struct FourPlaces
{
    explicit FourPlaces(const Tree& opened) : tree(opened)
    {
        output = tree.Announce();
        filling = tree.Announce();
        input = tree.Announce();
        idle = tree.Announce(false);
        tree.Start();
        const bool there = Eventually([this] {
            return tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) == 1 &&
                   tree.Flag(filling, BUFFER_INFO_IS_ACQUIRING);
        });
        EXPECT_TRUE(there);
    }

    bool IsQueued(BUFFER_HANDLE buffer) const { return tree.Flag(buffer, BUFFER_INFO_IS_QUEUED); }

    const Tree& tree;
    BUFFER_HANDLE output;
    BUFFER_HANDLE filling;
    BUFFER_HANDLE input;
    BUFFER_HANDLE idle;
};

// The second frame hangs.
std::string FourPlacesCamera()
{
    return OneCamera(R"(, "misbehaviour": {"frames": [{"camera": "A", "at": 2, "count": "every", "late_ms": 60000}]})");
}

TEST(SimulatorBuffers, AnnouncedMemoryIsTheConsumersAndComesBackOnRevoke)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    std::uint8_t memory[64];
    int user = 0;
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(producer.DSAnnounceBuffer(tree.stream, memory, sizeof memory, &user, &buffer), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.BufferInfo<void*>(buffer, BUFFER_INFO_BASE), memory);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE), sizeof memory);
    EXPECT_EQ(tree.BufferInfo<void*>(buffer, BUFFER_INFO_USER_PTR), &user);
    void* base = nullptr;
    void* pointer = nullptr;
    ASSERT_EQ(producer.DSRevokeBuffer(tree.stream, buffer, &base, &pointer), GC_ERR_SUCCESS);
    EXPECT_EQ(base, memory);
    EXPECT_EQ(pointer, &user);
    EXPECT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_INVALID_HANDLE);
}

TEST(SimulatorBuffers, AllocatedMemoryIsNotHandedOutOnRevoke)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    int user = 0;
    const BUFFER_HANDLE buffer = tree.Announce(false, 100, &user);
    void* base = &user;
    void* pointer = nullptr;
    ASSERT_EQ(producer.DSRevokeBuffer(tree.stream, buffer, &base, &pointer), GC_ERR_SUCCESS);
    EXPECT_EQ(base, nullptr);
    EXPECT_EQ(pointer, &user);
}

TEST(SimulatorBuffers, WrongAnnouncementsAreRefused)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    std::uint8_t memory[64];
    BUFFER_HANDLE buffer = nullptr;
    EXPECT_EQ(producer.DSAnnounceBuffer(tree.stream, nullptr, 64, nullptr, &buffer), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.DSAnnounceBuffer(tree.stream, memory, 0, nullptr, &buffer), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.DSAnnounceBuffer(tree.stream, memory, 64, nullptr, nullptr), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.DSAllocAndAnnounceBuffer(tree.stream, 0, nullptr, &buffer), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(
        producer.DSAllocAndAnnounceBuffer(tree.stream, std::size_t{1} << 40, nullptr, &buffer), GC_ERR_OUT_OF_MEMORY);
    ASSERT_EQ(producer.DSAnnounceBuffer(tree.stream, memory, 64, nullptr, &buffer), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.DSAnnounceBuffer(tree.stream, memory, 64, nullptr, &buffer), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_ANNOUNCED), 1U);
}

TEST(SimulatorBuffers, AreFoundByIndexInOrderOfAnnouncementAndARevokeMovesLaterOnesUp)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE first = tree.Announce(false);
    const BUFFER_HANDLE second = tree.Announce(false);
    BUFFER_HANDLE found = nullptr;
    ASSERT_EQ(producer.DSGetBufferID(tree.stream, 1, &found), GC_ERR_SUCCESS);
    EXPECT_EQ(found, second);
    ASSERT_EQ(producer.DSRevokeBuffer(tree.stream, first, nullptr, nullptr), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.DSGetBufferID(tree.stream, 0, &found), GC_ERR_SUCCESS);
    EXPECT_EQ(found, second);
    EXPECT_EQ(producer.DSGetBufferID(tree.stream, 1, &found), GC_ERR_INVALID_INDEX);
}

TEST(SimulatorBuffers, QueueingTakesAnIdleBufferOnly)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    for (const BUFFER_HANDLE buffer : {places.output, places.filling, places.input})
        EXPECT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(producer.DSQueueBuffer(tree.stream, places.idle), GC_ERR_SUCCESS);
}

TEST(SimulatorBuffers, RevokingTakesAnIdleBufferOnly)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    for (const BUFFER_HANDLE buffer : {places.output, places.filling, places.input})
        EXPECT_EQ(producer.DSRevokeBuffer(tree.stream, buffer, nullptr, nullptr), GC_ERR_BUSY);
    EXPECT_EQ(producer.DSRevokeBuffer(tree.stream, places.idle, nullptr, nullptr), GC_ERR_SUCCESS);
}

TEST(SimulatorBuffers, QueuedBuffersAnswerTheStateQueriesOnly)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    for (const BUFFER_HANDLE buffer : {places.output, places.filling, places.input})
    {
        EXPECT_TRUE(places.IsQueued(buffer));
        EXPECT_NE(tree.BufferInfo<void*>(buffer, BUFFER_INFO_BASE), nullptr);
        EXPECT_EQ(
            producer.Result(producer.DSGetBufferInfo, tree.stream, buffer, BUFFER_INFO_WIDTH), GC_ERR_NOT_AVAILABLE);
        EXPECT_EQ(
            producer.Result(producer.DSGetBufferInfo, tree.stream, buffer, BUFFER_INFO_IS_INCOMPLETE),
            GC_ERR_NOT_AVAILABLE);
    }
    EXPECT_FALSE(places.IsQueued(places.idle));
    EXPECT_EQ(tree.BufferInfo<std::size_t>(places.input, BUFFER_INFO_SIZE_FILLED), 0U);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(places.input, BUFFER_INFO_DATA_SIZE), 0U);
    EXPECT_TRUE(tree.Flag(places.output, BUFFER_INFO_NEW_DATA));
    EXPECT_FALSE(tree.Flag(places.input, BUFFER_INFO_NEW_DATA));
    EXPECT_TRUE(tree.Flag(places.filling, BUFFER_INFO_IS_ACQUIRING));
    EXPECT_FALSE(tree.Flag(places.output, BUFFER_INFO_IS_ACQUIRING));
    EXPECT_EQ(CountsOf(tree), (Counts{2, 1, 1}));
}

TEST(SimulatorFlush, InputToOutputAddsEntriesBehindWithoutNewData)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    ASSERT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_INPUT_TO_OUTPUT), GC_ERR_SUCCESS);
    EXPECT_EQ(CountsOf(tree), (Counts{1, 2, 2}));
    EXPECT_TRUE(tree.Flag(places.filling, BUFFER_INFO_IS_ACQUIRING));
    EXPECT_EQ(tree.Next().BufferHandle, places.output);
    EXPECT_EQ(tree.Next().BufferHandle, places.input);
    EXPECT_TRUE(tree.Flag(places.output, BUFFER_INFO_NEW_DATA));
    EXPECT_FALSE(tree.Flag(places.input, BUFFER_INFO_NEW_DATA));
    EXPECT_EQ(
        producer.Result(producer.DSGetBufferInfo, tree.stream, places.input, BUFFER_INFO_WIDTH), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_DELIVERED), 2U);
    EXPECT_FALSE(places.IsQueued(places.idle));
}

TEST(SimulatorFlush, OutputDiscardEmptiesTheEventQueueAndLeavesTheRest)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    ASSERT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_OUTPUT_DISCARD), GC_ERR_SUCCESS);
    EXPECT_EQ(CountsOf(tree), (Counts{2, 0, 0}));
    EXPECT_FALSE(places.IsQueued(places.output));
    EXPECT_TRUE(tree.Flag(places.filling, BUFFER_INFO_IS_ACQUIRING));
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_DELIVERED), 0U);
}

TEST(SimulatorFlush, AllToInputQueuesEveryBufferAlsoTheOneBeingFilled)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    ASSERT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_ALL_TO_INPUT), GC_ERR_SUCCESS);
    EXPECT_EQ(CountsOf(tree), (Counts{4, 0, 0}));
    for (const BUFFER_HANDLE buffer : {places.output, places.filling, places.input, places.idle})
        EXPECT_TRUE(places.IsQueued(buffer));
}

TEST(SimulatorFlush, UnqueuedToInputQueuesIdleBuffersAlone)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    ASSERT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_UNQUEUED_TO_INPUT), GC_ERR_SUCCESS);
    EXPECT_EQ(CountsOf(tree), (Counts{3, 1, 1}));
    EXPECT_TRUE(places.IsQueued(places.idle));
    EXPECT_TRUE(tree.Flag(places.filling, BUFFER_INFO_IS_ACQUIRING));
}

TEST(SimulatorFlush, AllDiscardMakesEveryBufferIdle)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    ASSERT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
    EXPECT_EQ(CountsOf(tree), (Counts{0, 0, 0}));
    for (const BUFFER_HANDLE buffer : {places.output, places.filling, places.input, places.idle})
        EXPECT_EQ(producer.DSRevokeBuffer(tree.stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
}

TEST(SimulatorFlush, UnknownOperationIsNotImplemented)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    EXPECT_EQ(producer.DSFlushQueue(tree.stream, 5), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.DSFlushQueue(tree.stream, -1), GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimulatorBuffers, EventFlushAndUnregisteringMakeOutputBuffersIdle)
{
    const Producer producer(FourPlacesCamera());
    const Tree tree(producer);
    const FourPlaces places(tree);
    ASSERT_EQ(producer.EventFlush(tree.event), GC_ERR_SUCCESS);
    EXPECT_EQ(CountsOf(tree), (Counts{2, 0, 0}));
    EXPECT_FALSE(places.IsQueued(places.output));
    ASSERT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_INPUT_TO_OUTPUT), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.GCUnregisterEvent(tree.stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    EXPECT_FALSE(places.IsQueued(places.input));
    EXPECT_TRUE(tree.Flag(places.filling, BUFFER_INFO_IS_ACQUIRING));
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), 0U);
}

TEST(SimulatorBuffers, BufferOfAnotherStreamIsAnInvalidHandle)
{
    const Producer producer(R"({"interfaces": [{"id": "I", "cameras": [{"serial": "A"}, {"serial": "B"}]}]})");
    const Tree tree(producer);
    DEV_HANDLE device = nullptr;
    DS_HANDLE other = nullptr;
    ASSERT_EQ(producer.IFOpenDevice(tree.interface, "B", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.DevOpenDataStream(device, "Stream0", &other), GC_ERR_SUCCESS);
    const BUFFER_HANDLE buffer = tree.Announce(false);
    EXPECT_EQ(producer.DSQueueBuffer(other, buffer), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.DSRevokeBuffer(other, buffer, nullptr, nullptr), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer.Result(producer.DSGetBufferInfo, other, buffer, BUFFER_INFO_BASE), GC_ERR_INVALID_HANDLE);
}

TEST(SimulatorBuffers, ImagesHaveNeitherChunksNorParts)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    ASSERT_EQ(tree.Next().BufferHandle, buffer);
    std::size_t chunks = 0;
    std::uint32_t parts = 0;
    EXPECT_EQ(producer.DSGetBufferChunkData(tree.stream, buffer, nullptr, &chunks), GC_ERR_NO_DATA);
    EXPECT_EQ(producer.DSGetNumBufferParts(tree.stream, buffer, &parts), GC_ERR_NO_DATA);
    EXPECT_EQ(
        producer.Result(producer.DSGetBufferPartInfo, tree.stream, buffer, 0U, BUFFER_PART_INFO_BASE), GC_ERR_NO_DATA);
    EXPECT_EQ(producer.Result(producer.DSGetBufferInfo, tree.stream, buffer, BUFFER_INFO_FILENAME), GC_ERR_NO_DATA);
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
}

TEST(SimulatorBuffers, StackedQueriesHaveAResultEach)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce(false);
    std::size_t size = 0;
    char small = 0;
    DS_BUFFER_INFO_STACKED queries[3] = {};
    queries[0] = {BUFFER_INFO_SIZE, 0, &size, sizeof size, GC_ERR_ERROR};
    queries[1] = {BUFFER_INFO_BASE, 0, &small, 1, GC_ERR_ERROR};
    queries[2] = {BUFFER_INFO_WIDTH, 0, nullptr, 0, GC_ERR_ERROR};
    ASSERT_EQ(producer.DSGetBufferInfoStacked(tree.stream, buffer, queries, 3), GC_ERR_SUCCESS);
    EXPECT_EQ(static_cast<GC_ERROR>(queries[0].iResult), GC_ERR_SUCCESS);
    EXPECT_EQ(static_cast<INFO_DATATYPE>(queries[0].iType), INFO_DATATYPE_SIZET);
    EXPECT_EQ(size, 64U);
    EXPECT_EQ(static_cast<GC_ERROR>(queries[1].iResult), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(static_cast<GC_ERROR>(queries[2].iResult), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(producer.DSGetBufferInfoStacked(tree.stream, buffer, queries, 0), GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorBuffers, FlushOfAHangingFillReturnsAndTheEngineGoesOn)
{
    const Producer producer(HangingCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    ASSERT_TRUE(Eventually([&] { return tree.Flag(buffer, BUFFER_INFO_IS_ACQUIRING); }));
    ASSERT_EQ(producer.DSFlushQueue(tree.stream, ACQ_QUEUE_ALL_DISCARD), GC_ERR_SUCCESS);
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_IS_QUEUED));
    ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    EXPECT_TRUE(Eventually([&] { return tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_STARTED) == 2; }));
}

} // namespace
} // namespace koro::simulator::test

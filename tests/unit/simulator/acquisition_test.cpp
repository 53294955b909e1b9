// The acquisition engine: start, stop, counters, pacing, frames.
#include "producers/simulator/frames/pattern.h"
#include "tests/unit/simulator/producer.h"

#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

TEST(SimulatorAcquisition, StartIsRefusedWithTheStandardsReasons)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const auto start = [&](ACQ_START_FLAGS flags, std::uint64_t number) {
        return producer.DSStartAcquisition(tree.stream, flags, number);
    };
    EXPECT_EQ(start(ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_INVALID_BUFFER);
    tree.Announce(false);
    EXPECT_EQ(start(1, 1), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(start(ACQ_START_FLAGS_DEFAULT, 0), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(start(ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_SUCCESS);
    EXPECT_EQ(start(ACQ_START_FLAGS_DEFAULT, 1), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(tree.StreamInfo<bool8_t>(STREAM_INFO_IS_GRABBING), 1);
}

TEST(SimulatorAcquisition, OneStopForEachStart)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    tree.Announce(false);
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_RESOURCE_IN_USE);
    tree.Start();
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, 7), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.StreamInfo<bool8_t>(STREAM_INFO_IS_GRABBING), 0);
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_RESOURCE_IN_USE);
}

TEST(SimulatorAcquisition, EndsByNumberAndOneStopIsStillDue)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    for (int index = 0; index < 4; ++index)
        tree.Announce();
    tree.Start(3);
    ASSERT_TRUE(Eventually([&] { return tree.StreamInfo<bool8_t>(STREAM_INFO_IS_GRABBING) == 0; }));
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY), 3U);
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_QUEUED), 1U);
    EXPECT_EQ(producer.DSStartAcquisition(tree.stream, 0, 1), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.TryNext(), GC_ERR_SUCCESS);
}

TEST(SimulatorAcquisition, RestartResetsDeliveredOnly)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start(1);
    tree.Next();
    ASSERT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_DELIVERED), 1U);
    tree.Start(1);
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_DELIVERED), 0U);
    ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    tree.Next();
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_STARTED), 2U);
    EXPECT_EQ(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID), 1U);
}

TEST(SimulatorAcquisition, BuffersComeOldestFirstWithConsecutiveFramesOnTheVirtualClock)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffers[] = {tree.Announce(), tree.Announce(), tree.Announce()};
    tree.Start();
    for (std::uint64_t frame = 1; frame <= 30; ++frame)
    {
        const BUFFER_HANDLE buffer = tree.Next().BufferHandle;
        ASSERT_EQ(buffer, buffers[(frame - 1) % 3]);
        ASSERT_EQ(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID), frame);
        ASSERT_EQ(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_TIMESTAMP_NS), frame * 1000000);
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    }
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_UNDERRUN), 0U);
}

TEST(SimulatorAcquisition, DeliveredBufferDescribesItsImage)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    int user = 0;
    const BUFFER_HANDLE buffer = tree.Announce(true, 100, &user);
    tree.Start();
    const EVENT_NEW_BUFFER_DATA data = tree.Next();
    EXPECT_EQ(static_cast<void*>(data.BufferHandle), buffer);
    EXPECT_EQ(static_cast<void*>(data.pUserPointer), &user);
    const auto size = [&](BUFFER_INFO_CMD command) { return tree.BufferInfo<std::size_t>(buffer, command); };
    EXPECT_EQ(size(BUFFER_INFO_WIDTH), 16U);
    EXPECT_EQ(size(BUFFER_INFO_HEIGHT), 4U);
    EXPECT_EQ(size(BUFFER_INFO_XOFFSET), 0U);
    EXPECT_EQ(size(BUFFER_INFO_YOFFSET), 0U);
    EXPECT_EQ(size(BUFFER_INFO_XPADDING), 0U);
    EXPECT_EQ(size(BUFFER_INFO_YPADDING), 0U);
    EXPECT_EQ(size(BUFFER_INFO_IMAGEOFFSET), 0U);
    EXPECT_EQ(size(BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 4U);
    EXPECT_EQ(size(BUFFER_INFO_SIZE_FILLED), 64U);
    EXPECT_EQ(size(BUFFER_INFO_DATA_SIZE), 64U);
    EXPECT_EQ(size(BUFFER_INFO_SIZE), 100U);
    EXPECT_EQ(size(BUFFER_INFO_PAYLOADTYPE), static_cast<std::size_t>(PAYLOAD_TYPE_IMAGE));
    EXPECT_EQ(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT), 0x01080001U);
    EXPECT_EQ(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT_NAMESPACE), 4U);
    EXPECT_EQ(tree.BufferInfo<std::int32_t>(buffer, BUFFER_INFO_PIXEL_ENDIANNESS), PIXELENDIANNESS_LITTLE);
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_IMAGEPRESENT));
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_NEW_DATA));
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_IS_QUEUED));
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
}

TEST(SimulatorAcquisition, TooSmallBufferIsDeliveredIncompleteAndRaisesAnError)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    EVENT_HANDLE errors = nullptr;
    ASSERT_EQ(producer.GCRegisterEvent(tree.stream, EVENT_ERROR, &errors), GC_ERR_SUCCESS);
    const BUFFER_HANDLE buffer = tree.Announce(true, 40);
    tree.Start();
    tree.Next();
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 2U);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED), 32U);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_DATA_SIZE), 64U);
    char block[512];
    std::size_t size = sizeof block;
    ASSERT_EQ(producer.EventGetData(errors, block, &size, 60000), GC_ERR_SUCCESS);
    EXPECT_EQ(
        producer.Get<std::int32_t>(producer.EventGetDataInfo, errors, block, size, EVENT_DATA_ID),
        GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(
        producer.Get(producer.EventGetDataInfo, errors, block, size, EVENT_DATA_VALUE),
        "the buffer is too small for the image");
}

TEST(SimulatorAcquisition, PacedCameraLosesFramesAsUnderrunsWithoutInputBuffers)
{
    const Producer producer(PacedCamera(1000));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce(false);
    tree.Start();
    ASSERT_TRUE(Eventually([&] { return tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_UNDERRUN) >= 3; }));
    ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    tree.Next();
    EXPECT_GT(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_FRAMEID), 3U);
    EXPECT_EQ(tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_STARTED), 1U);
}

TEST(SimulatorAcquisition, PacedTimestampsGrow)
{
    const Producer producer(PacedCamera(500));
    const Tree tree(producer);
    tree.Announce();
    tree.Announce();
    tree.Start();
    std::uint64_t last = 0;
    for (int frame = 0; frame < 10; ++frame)
    {
        const BUFFER_HANDLE buffer = tree.Next().BufferHandle;
        const auto timestamp = tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_TIMESTAMP);
        ASSERT_GT(timestamp, last);
        last = timestamp;
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    }
}

TEST(SimulatorAcquisition, SlowestCameraStillStopsAtOnce)
{
    const Producer producer(PacedCamera(0.001));
    const Tree tree(producer);
    tree.Announce();
    tree.Start();
    EXPECT_EQ(tree.TryNext(), GC_ERR_TIMEOUT);
    EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
}

TEST(SimulatorAcquisition, KillDeliversTheHalfFilledBufferIncomplete)
{
    const Producer producer(OneCamera(R"(, "misbehaviour": {"frames": [{"camera": "A", "late_ms": 60000}]})"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    ASSERT_TRUE(Eventually([&] { return tree.Flag(buffer, BUFFER_INFO_IS_ACQUIRING); }));
    ASSERT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_KILL), GC_ERR_SUCCESS);
    EXPECT_EQ(tree.TryNext(), GC_ERR_SUCCESS);
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_NEW_DATA));
}

TEST(SimulatorAcquisition, DefaultStopFinishesTheBufferBeingFilled)
{
    const Producer producer(OneCamera(R"(, "misbehaviour": {"frames": [{"camera": "A", "late_ms": 300}]})"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    ASSERT_TRUE(Eventually([&] { return tree.StreamInfo<std::uint64_t>(STREAM_INFO_NUM_STARTED) == 1; }));
    ASSERT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
    ASSERT_EQ(tree.TryNext(), GC_ERR_SUCCESS);
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_EQ(tree.Pixels(buffer)[17], PatternValue(Component::Mono, 1, 1, 1));
}

TEST(SimulatorAcquisition, BufferFilledWhileTheEventIsNotRegisteredGoesIdle)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    ASSERT_EQ(producer.GCUnregisterEvent(tree.stream, EVENT_NEW_BUFFER), GC_ERR_SUCCESS);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start(1);
    ASSERT_TRUE(Eventually([&] { return tree.StreamInfo<bool8_t>(STREAM_INFO_IS_GRABBING) == 0; }));
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_IS_QUEUED));
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_NEW_DATA));
}

TEST(SimulatorAcquisition, ClosingTheStreamWhileItRunsStopsIt)
{
    const Producer producer(PacedCamera(1000));
    const Tree tree(producer);
    tree.Announce();
    tree.Start();
    tree.Next();
    EXPECT_EQ(producer.DSClose(tree.stream), GC_ERR_SUCCESS);
    DS_HANDLE again = nullptr;
    EXPECT_EQ(producer.DevOpenDataStream(tree.device, "Stream0", &again), GC_ERR_SUCCESS);
    EXPECT_EQ(producer.Get<std::size_t>(producer.DSGetInfo, again, STREAM_INFO_NUM_ANNOUNCED), 0U);
}

} // namespace
} // namespace koro::simulator::test

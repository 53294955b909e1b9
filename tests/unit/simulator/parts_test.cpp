// Multi-part buffers: what the producer says of each part, and that their content is the documented surface.
#include "producers/simulator/frames/surface.h"
#include "tests/unit/simulator/producer.h"

#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

constexpr std::size_t width = 21;
constexpr std::size_t height = 18;
constexpr std::size_t imageBytes = width * height;
constexpr std::size_t rangeStart = 384; // the next multiple of eight
constexpr std::size_t confidenceStart = rangeStart + (imageBytes * 2 + 7) / 8 * 8;

std::string DepthCamera(const std::string& keys = "", const std::string& extra = "")
{
    return R"({"interfaces": [{"id": "I", "tlType": "U3V", "cameras": [{"serial": "A", "width": 21, "height": 18,
        "scan3d": true, "startWithStream": true, "rate": 0)" +
           keys + "}]}]" + extra + "}";
}

class Depth
{
public:
    explicit Depth(const std::string& keys = "", const std::string& extra = "", std::size_t bytes = 0)
        : producer(DepthCamera(keys, extra)), tree(producer), buffer(tree.Announce(true, bytes))
    {
        tree.Start();
        tree.Next();
    }

    template <typename T>
    T Info(std::uint32_t index, BUFFER_PART_INFO_CMD command) const
    {
        return producer.Get<T>(producer.DSGetBufferPartInfo, tree.stream, buffer, index, command);
    }
    const std::uint8_t* Base(std::uint32_t index) const
    {
        return Info<const std::uint8_t*>(index, BUFFER_PART_INFO_BASE);
    }
    GC_ERROR Result(std::uint32_t index, BUFFER_PART_INFO_CMD command) const
    {
        return producer.Result(producer.DSGetBufferPartInfo, tree.stream, buffer, index, command);
    }
    std::uint32_t NumParts() const
    {
        std::uint32_t number = 0;
        EXPECT_EQ(producer.DSGetNumBufferParts(tree.stream, buffer, &number), GC_ERR_SUCCESS);
        return number;
    }

    const Producer producer;
    const Tree tree;
    const BUFFER_HANDLE buffer;
};

TEST(SimulatorParts, HoldTheSurface)
{
    const Depth depth;
    ASSERT_EQ(depth.NumParts(), 3U);
    const std::uint8_t* const ranges = depth.Base(1);
    const std::uint8_t* const confidences = depth.Base(2);
    std::size_t numUnseen = 0;
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
        {
            const std::size_t at = y * width + x;
            const unsigned range = ranges[2 * at] | static_cast<unsigned>(ranges[2 * at + 1]) << 8;
            ASSERT_EQ(range, RangeValue(x, y, 1, width, height)) << x << ", " << y;
            ASSERT_EQ(confidences[at], ConfidenceValue(x, y, width, height)) << x << ", " << y;
            ASSERT_EQ(confidences[at] == 0, range == noRange);
            if (range == noRange) ++numUnseen;
        }
    EXPECT_GT(numUnseen, 0U);
    EXPECT_LT(numUnseen, imageBytes / 2);
}

TEST(SimulatorParts, SurfaceIsWhatTheDocumentSays)
{
    // Corners of the plane, the top of the dome in the first and the tenth frame, the crescent.
    EXPECT_EQ(RangeValue(0, 0, 1, 640, 480), 20000);
    EXPECT_EQ(RangeValue(639, 0, 1, 640, 480), 20000 + 9984);
    EXPECT_EQ(RangeValue(0, 479, 1, 640, 480), 20000 - 4989);
    EXPECT_EQ(RangeValue(320, 240, 1, 640, 480), 20000 + 5000 - 2500 - 6600);
    EXPECT_EQ(RangeValue(320, 240, 10, 640, 480), 20000 + 5000 - 2500 - 6000);
    EXPECT_EQ(RangeValue(320, 240, 19, 640, 480), RangeValue(320, 240, 9, 640, 480));
    EXPECT_EQ(RangeValue(480, 240, 1, 640, 480), noRange);
    EXPECT_NE(RangeValue(479, 240, 1, 640, 480), noRange);
    EXPECT_NE(RangeValue(520, 240, 1, 640, 480), noRange);
    EXPECT_NE(RangeValue(160, 240, 1, 640, 480), noRange);
    EXPECT_EQ(ConfidenceValue(320, 240, 640, 480), 255);
    EXPECT_EQ(ConfidenceValue(0, 0, 640, 480), 100);
    EXPECT_EQ(SurfaceValue(0, 0, 1, 640, 480), 255 - 20000 / 128);
    EXPECT_EQ(SurfaceValue(480, 240, 1, 640, 480), 0);
}

TEST(SimulatorParts, SurfaceCanBeThePictureToo)
{
    const Depth depth(R"(, "source": "surface")");
    const std::uint8_t* const image = depth.Base(0);
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
            ASSERT_EQ(image[y * width + x], SurfaceValue(x, y, 1, width, height)) << x << ", " << y;
}

TEST(SimulatorParts, AnswerAllQueries)
{
    const Depth depth;
    struct Expected
    {
        std::size_t start;
        std::size_t bytes;
        std::size_t type;
        std::uint64_t format;
        std::uint64_t purpose;
    };
    const Expected parts[] = {
        {0, imageBytes, PART_DATATYPE_2D_IMAGE, 0x01080001, 1},
        {rangeStart, imageBytes * 2, PART_DATATYPE_3D_IMAGE, 0x011000B8, 4},
        {confidenceStart, imageBytes, PART_DATATYPE_CONFIDENCE_MAP, 0x010800C6, 6}};
    const auto* const base = depth.tree.BufferInfo<const std::uint8_t*>(depth.buffer, BUFFER_INFO_BASE);
    for (std::uint32_t index = 0; index < 3; ++index)
    {
        SCOPED_TRACE(index);
        EXPECT_EQ(depth.Base(index), base + parts[index].start);
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_DATA_SIZE), parts[index].bytes);
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_DATA_TYPE), parts[index].type);
        EXPECT_EQ(depth.Info<std::uint64_t>(index, BUFFER_PART_INFO_DATA_FORMAT), parts[index].format);
        EXPECT_EQ(
            depth.Info<std::uint64_t>(index, BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE),
            std::uint64_t{PIXELFORMAT_NAMESPACE_PFNC_32BIT});
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_WIDTH), width);
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_HEIGHT), height);
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_XOFFSET), 0U);
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_YOFFSET), 0U);
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_XPADDING), 0U);
        EXPECT_EQ(depth.Info<std::uint64_t>(index, BUFFER_PART_INFO_SOURCE_ID), 0U);
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT), height);
        EXPECT_EQ(depth.Info<std::uint64_t>(index, BUFFER_PART_INFO_REGION_ID), 0U);
        EXPECT_EQ(depth.Info<std::uint64_t>(index, BUFFER_PART_INFO_DATA_PURPOSE_ID), parts[index].purpose);
        EXPECT_EQ(depth.Result(index, 14), GC_ERR_NOT_IMPLEMENTED);
    }
    EXPECT_EQ(depth.Result(3, BUFFER_PART_INFO_BASE), GC_ERR_INVALID_INDEX);
}

TEST(SimulatorParts, TakeTheWholeBuffersPlaceInItsQueries)
{
    const Depth depth;
    const Tree& tree = depth.tree;
    EXPECT_EQ(
        tree.BufferInfo<std::size_t>(depth.buffer, BUFFER_INFO_PAYLOADTYPE), std::size_t{PAYLOAD_TYPE_MULTI_PART});
    EXPECT_FALSE(tree.Flag(depth.buffer, BUFFER_INFO_IMAGEPRESENT));
    const std::size_t payload = confidenceStart + imageBytes;
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE), payload);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(depth.buffer, BUFFER_INFO_SIZE_FILLED), payload);
    EXPECT_EQ(tree.BufferInfo<std::uint64_t>(depth.buffer, BUFFER_INFO_FRAMEID), 1U);
    for (const BUFFER_INFO_CMD command :
         {BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT, BUFFER_INFO_XOFFSET, BUFFER_INFO_YOFFSET, BUFFER_INFO_XPADDING,
          BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_PIXELFORMAT_NAMESPACE, BUFFER_INFO_DELIVERED_IMAGEHEIGHT})
        EXPECT_EQ(
            depth.producer.Result(depth.producer.DSGetBufferInfo, tree.stream, depth.buffer, command), GC_ERR_NO_DATA)
            << command;
}

TEST(SimulatorParts, AreNotToldOfOtherBuffers)
{
    const Depth depth;
    const BUFFER_HANDLE empty = depth.tree.Announce(false);
    const BUFFER_HANDLE queued = depth.tree.Announce();
    ASSERT_TRUE(Eventually([&] { return depth.tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_AWAIT_DELIVERY) == 1; }));
    std::uint32_t number = 0;
    EXPECT_EQ(depth.producer.DSGetNumBufferParts(depth.tree.stream, empty, &number), GC_ERR_NO_DATA);
    EXPECT_EQ(depth.producer.DSGetNumBufferParts(depth.tree.stream, queued, &number), GC_ERR_NOT_AVAILABLE);
    EXPECT_EQ(depth.producer.DSGetNumBufferParts(depth.tree.stream, depth.buffer, nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorParts, AnswerStackedQueriesEachByItself)
{
    const Depth depth;
    std::size_t size = 0;
    std::uint64_t format = 0;
    DS_BUFFER_PART_INFO_STACKED queries[3] = {};
    queries[0] = {1, BUFFER_PART_INFO_DATA_SIZE, GC_ERR_SUCCESS, INFO_DATATYPE_UNKNOWN, &size, sizeof size};
    queries[1] = {3, BUFFER_PART_INFO_DATA_SIZE, GC_ERR_SUCCESS, INFO_DATATYPE_UNKNOWN, &size, sizeof size};
    queries[2] = {2, BUFFER_PART_INFO_DATA_FORMAT, GC_ERR_SUCCESS, INFO_DATATYPE_UNKNOWN, &format, sizeof format};
    ASSERT_EQ(depth.producer.DSGetBufferPartInfoStacked(depth.tree.stream, depth.buffer, queries, 3), GC_ERR_SUCCESS);
    EXPECT_EQ(queries[0].iResult, GC_ERR_SUCCESS);
    EXPECT_EQ(size, imageBytes * 2);
    EXPECT_EQ(queries[1].iResult, GC_ERR_INVALID_INDEX);
    EXPECT_EQ(queries[2].iResult, GC_ERR_SUCCESS);
    EXPECT_EQ(format, 0x010800C6U);
}

TEST(SimulatorParts, EachLosesItsLastLinesInAnIncompleteFrame)
{
    const Depth depth("", R"(, "misbehaviour": {"frames": [{"camera": "A", "deliveredLines": 5}]})");
    EXPECT_TRUE(depth.tree.Flag(depth.buffer, BUFFER_INFO_IS_INCOMPLETE));
    for (std::uint32_t index = 0; index < 3; ++index)
    {
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT), 5U);
        EXPECT_EQ(depth.Info<std::size_t>(index, BUFFER_PART_INFO_HEIGHT), height);
    }
    EXPECT_EQ(depth.Info<std::size_t>(1, BUFFER_PART_INFO_DATA_SIZE), 5 * 2 * width);
}

TEST(SimulatorParts, BehindTheEndOfTheBufferAreLost)
{
    const Depth depth("", "", rangeStart + 2 * width * 3 + 1);
    EXPECT_TRUE(depth.tree.Flag(depth.buffer, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
    EXPECT_EQ(depth.NumParts(), 3U);
    EXPECT_EQ(depth.Info<std::size_t>(0, BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT), height);
    EXPECT_EQ(depth.Info<std::size_t>(1, BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT), 3U);
    EXPECT_EQ(depth.Info<std::size_t>(2, BUFFER_PART_INFO_DATA_SIZE), 0U);
    EXPECT_EQ(depth.tree.BufferInfo<std::size_t>(depth.buffer, BUFFER_INFO_SIZE_FILLED), rangeStart + 2 * width * 3);
}

TEST(SimulatorParts, HaveTheirChunksBehindThemAll)
{
    const Depth depth(R"(, "chunks": ["FrameID"])");
    ASSERT_EQ(depth.NumParts(), 3U);
    std::vector<SINGLE_CHUNK_DATA> chunks(2);
    std::size_t count = chunks.size();
    ASSERT_EQ(
        depth.producer.DSGetBufferChunkData(depth.tree.stream, depth.buffer, chunks.data(), &count), GC_ERR_SUCCESS);
    const std::size_t padded = (confidenceStart + imageBytes + 3) / 4 * 4;
    EXPECT_EQ(chunks[0].ChunkOffset, 0);
    EXPECT_EQ(chunks[0].ChunkLength, padded);
    EXPECT_EQ(chunks[1].ChunkOffset, static_cast<std::ptrdiff_t>(padded + 8));
    EXPECT_EQ(
        depth.tree.BufferInfo<std::size_t>(depth.buffer, BUFFER_INFO_PAYLOADTYPE),
        std::size_t{PAYLOAD_TYPE_MULTI_PART});
}

} // namespace
} // namespace koro::simulator::test

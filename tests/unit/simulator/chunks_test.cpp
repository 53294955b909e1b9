// Chunks as bytes: their trailers on each transport, what the producer says of them, and how they can be spoilt.
#include "tests/unit/simulator/producer.h"

#include <array>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>

namespace koro::simulator::test
{
namespace
{

constexpr std::size_t imageBytes = 54; // 18 x 3
constexpr std::size_t paddedImageBytes = 56;
constexpr std::uint64_t imageId = 0x4B530000;

std::string CameraOf(
    const std::string& tlType, const std::string& keys = R"("chunks": "all")", const std::string& extra = "")
{
    return R"({"interfaces": [{"id": "I", "tlType": ")" + tlType +
           R"(", "cameras": [{"serial": "A", "width": 18, "height": 3, "startWithStream": true, "rate": 0, )" + keys +
           "}]}]" + extra + "}";
}

std::string Spoilt(const std::string& how, const std::string& occurrences = "\"count\": \"every\"")
{
    return R"(, "misbehaviour": {"frames": [{"camera": "A", "chunks": ")" + how + "\", " + occurrences + "}]}";
}

struct Located
{
    std::uint64_t id;
    std::size_t offset;
    std::size_t length;

    bool operator==(const Located&) const = default;
};

void PrintTo(const Located& chunk, std::ostream* out)
{
    *out << std::hex << chunk.id << std::dec << " at " << chunk.offset << ", " << chunk.length << " bytes";
}

// The trailers are read here a second time on purpose: nothing of the simulator's code is used.
using Bytes = std::vector<std::uint8_t>;

std::uint64_t Number(const Bytes& bytes, std::size_t at, std::size_t count, bool isBigEndian)
{
    std::uint64_t number = 0;
    for (std::size_t byte = 0; byte < count; ++byte)
        number = number << 8 | bytes.at(at + (isBigEndian ? byte : count - 1 - byte));
    return number;
}

// Null text, or what is wrong with the chain.
std::string Walk(const std::string& tlType, const Bytes& payload, bool hasChecksum, std::vector<Located>& chunks)
{
    const bool isIIDC = tlType == "IIDC";
    const std::size_t trailer = isIIDC ? 24 : 8;
    std::size_t at = payload.size() - (hasChecksum ? 4 : 0);
    while (at > 0)
    {
        if (at < trailer) return "half a trailer";
        const std::size_t start = at - trailer;
        std::uint64_t length = Number(payload, isIIDC ? start + 16 : start + 4, 4, tlType == "GEV");
        if (isIIDC)
        {
            if (length + Number(payload, start + 20, 4, false) != UINT32_MAX) return "no inverse";
            if (length < trailer) return "shorter than the trailer";
            length -= trailer;
        }
        if (length > start) return "too long";
        const std::uint64_t id = isIIDC ? Number(payload, start, 8, true) : Number(payload, start, 4, tlType == "GEV");
        at = start - length;
        chunks.insert(chunks.begin(), {id, at, length});
    }
    return "";
}

std::uint16_t BitwiseCRC(const std::uint8_t* bytes, std::size_t count)
{
    unsigned rest = 0;
    for (std::size_t bit = 0; bit < count * 8; ++bit)
    {
        const unsigned next = bytes[bit / 8] >> (7 - bit % 8) & 1U;
        const bool carry = ((rest >> 15 & 1U) ^ next) != 0;
        rest = (rest << 1 & 0xFFFFU) ^ (carry ? 0x1021U : 0U);
    }
    return static_cast<std::uint16_t>(rest);
}

std::vector<Located> Ask(const Tree& tree, BUFFER_HANDLE buffer)
{
    std::size_t count = 0;
    EXPECT_EQ(tree.producer.DSGetBufferChunkData(tree.stream, buffer, nullptr, &count), GC_ERR_SUCCESS)
        << tree.producer.Last().text;
    std::vector<SINGLE_CHUNK_DATA> told(count);
    EXPECT_EQ(tree.producer.DSGetBufferChunkData(tree.stream, buffer, told.data(), &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, told.size());
    std::vector<Located> chunks;
    for (const SINGLE_CHUNK_DATA& chunk : told)
        chunks.push_back({chunk.ChunkID, static_cast<std::size_t>(chunk.ChunkOffset), chunk.ChunkLength});
    return chunks;
}

GC_ERROR Query(const Tree& tree, BUFFER_HANDLE buffer)
{
    std::size_t count = 0;
    return tree.producer.DSGetBufferChunkData(tree.stream, buffer, nullptr, &count);
}

class SimulatorChunks : public testing::TestWithParam<const char*>
{
protected:
    static bool HasChecksum() { return GetParam() == std::string("IIDC"); }
};

INSTANTIATE_TEST_SUITE_P(
    OnEveryTransport, SimulatorChunks, testing::Values("GEV", "U3V", "IIDC", "CL"),
    [](const testing::TestParamInfo<const char*>& tested) { return std::string(tested.param); });

TEST_P(SimulatorChunks, EndInTrailersThatLeadToTheStart)
{
    const Producer producer(CameraOf(GetParam()));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    tree.Next();

    const Bytes payload = tree.Pixels(buffer);
    EXPECT_EQ(payload.size(), tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE));
    std::vector<Located> chunks;
    ASSERT_EQ(Walk(GetParam(), payload, HasChecksum(), chunks), "");
    EXPECT_EQ(Ask(tree, buffer), chunks);
    ASSERT_EQ(chunks.size(), 13U);
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_NUM_CHUNKS_MAX), 13U);
    for (std::size_t index = 0; index < chunks.size(); ++index)
        EXPECT_EQ(chunks[index].id, HasChecksum() ? (imageId + index) << 32 | 0x6F0E4A54 : imageId + index);
    EXPECT_EQ(chunks[0].offset, 0U);
    EXPECT_EQ(chunks[0].length, paddedImageBytes);
}

TEST_P(SimulatorChunks, AreToldByTheBuffer)
{
    const Producer producer(CameraOf(GetParam()));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    tree.Next();
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_IMAGEPRESENT));
    EXPECT_FALSE(tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE));
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_PAYLOADTYPE), std::size_t{PAYLOAD_TYPE_IMAGE});
    const auto payload = tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED), payload);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_DATA_SIZE), payload);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE), payload - paddedImageBytes);
    EXPECT_NE(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_CHUNKLAYOUTID), 0U);
}

TEST_P(SimulatorChunks, LeaveTheImageAsItIsWithoutThem)
{
    const auto imageOf = [](const std::string& keys) {
        const Producer producer(CameraOf(GetParam(), keys));
        const Tree tree(producer);
        const BUFFER_HANDLE buffer = tree.Announce();
        tree.Start();
        tree.Next();
        Bytes payload = tree.Pixels(buffer);
        payload.resize(imageBytes);
        return payload;
    };
    EXPECT_EQ(imageOf(R"("chunks": "all")"), imageOf(R"("vendor": "zvr")"));
}

TEST_P(SimulatorChunks, OfTheListAloneAreSent)
{
    const Producer producer(CameraOf(GetParam(), R"("chunks": ["Gain", "FrameID"])"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    tree.Next();
    const auto chunks = Ask(tree, buffer);
    ASSERT_EQ(chunks.size(), 3U);
    const unsigned shift = HasChecksum() ? 32 : 0;
    EXPECT_EQ(chunks[1].id >> shift, imageId + 1);
    EXPECT_EQ(chunks[1].length, 8U);
    EXPECT_EQ(chunks[2].id >> shift, imageId + 4);
    EXPECT_EQ(chunks[2].length, 16U);
}

TEST_P(SimulatorChunks, QueryFollowsTheRulesOfTheStandard)
{
    const Producer producer(CameraOf(GetParam()));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    EXPECT_EQ(Query(tree, buffer), GC_ERR_NOT_AVAILABLE); // it is queued
    tree.Start();
    tree.Next();
    std::vector<SINGLE_CHUNK_DATA> told(13);
    std::size_t count = 12;
    EXPECT_EQ(producer.DSGetBufferChunkData(tree.stream, buffer, told.data(), &count), GC_ERR_BUFFER_TOO_SMALL);
    count = 14;
    told.resize(14);
    EXPECT_EQ(producer.DSGetBufferChunkData(tree.stream, buffer, told.data(), &count), GC_ERR_SUCCESS);
    EXPECT_EQ(count, 13U);
    EXPECT_EQ(producer.DSGetBufferChunkData(tree.stream, buffer, told.data(), nullptr), GC_ERR_INVALID_PARAMETER);
    const BUFFER_HANDLE empty = tree.Announce(false);
    EXPECT_EQ(Query(tree, empty), GC_ERR_NO_DATA);
}

TEST_P(SimulatorChunks, AreLostWithTheEndOfTheImage)
{
    const Producer producer(CameraOf(
        GetParam(), R"("chunks": "all")", R"(, "misbehaviour": {"frames": [{"camera": "A", "deliveredLines": 2}]})"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    const BUFFER_HANDLE small = tree.Announce(true, imageBytes + 3);
    tree.Start();
    tree.Next();
    tree.Next();
    for (const BUFFER_HANDLE one : {buffer, small})
    {
        EXPECT_FALSE(tree.Flag(one, BUFFER_INFO_CONTAINS_CHUNKDATA));
        EXPECT_TRUE(tree.Flag(one, BUFFER_INFO_IS_INCOMPLETE));
        EXPECT_EQ(tree.BufferInfo<std::size_t>(one, BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE), 0U);
        EXPECT_EQ(Query(tree, one), GC_ERR_NO_DATA);
    }
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED), 36U);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(small, BUFFER_INFO_SIZE_FILLED), imageBytes);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(small, BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 3U);
    EXPECT_TRUE(tree.Flag(small, BUFFER_INFO_DATA_LARGER_THAN_BUFFER));
}

TEST_P(SimulatorChunks, OfASpoiltFrameDoNotParseAndOthersDo)
{
    const std::vector<std::pair<std::string, std::string>> spoils = {
        {"tooLong", "too long"}, {"zeroLength", ""}, {"truncated", ""}, {"leftOver", "half a trailer"}};
    for (const auto& [how, complaint] : spoils)
    {
        SCOPED_TRACE(how);
        const Producer producer(CameraOf(GetParam(), R"("chunks": "all")", Spoilt(how, "\"at\": 2")));
        const Tree tree(producer);
        const std::array<BUFFER_HANDLE, 3> buffers{tree.Announce(), tree.Announce(), tree.Announce()};
        tree.Start();
        for (int frame = 0; frame < 3; ++frame)
            tree.Next();
        EXPECT_EQ(Query(tree, buffers[0]), GC_ERR_SUCCESS);
        EXPECT_EQ(Query(tree, buffers[1]), GC_ERR_PARSING_CHUNK_DATA);
        EXPECT_EQ(Query(tree, buffers[2]), GC_ERR_SUCCESS);
        EXPECT_TRUE(tree.Flag(buffers[1], BUFFER_INFO_CONTAINS_CHUNKDATA));

        // The whole memory, as a reader takes it that goes by the announced size.
        const auto* base = tree.BufferInfo<const std::uint8_t*>(buffers[1], BUFFER_INFO_BASE);
        const Bytes memory(base, base + tree.BufferInfo<std::size_t>(buffers[1], BUFFER_INFO_SIZE));
        std::vector<Located> chunks;
        const std::string found = Walk(GetParam(), memory, HasChecksum(), chunks);
        EXPECT_NE(found, "");
        if (!complaint.empty())
        {
            EXPECT_EQ(found, complaint);
        }
    }
}

TEST_P(SimulatorChunks, OfATruncatedFrameEndInsideTheLastTrailer)
{
    const Producer producer(CameraOf(GetParam(), R"("chunks": "all")", Spoilt("truncated")));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    tree.Next();
    const auto payload = tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE);
    EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED), payload - (HasChecksum() ? 16 : 4));
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_IS_INCOMPLETE));
}

TEST(SimulatorChunkChecksum, IsThatOfTheWholePayload)
{
    const Bytes digits = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    ASSERT_EQ(BitwiseCRC(digits.data(), digits.size()), 0x31C3);

    const Producer producer(CameraOf("IIDC", R"("chunks": "all")", Spoilt("wrongChecksum", "\"at\": 2")));
    const Tree tree(producer);
    const std::array<BUFFER_HANDLE, 3> buffers{tree.Announce(), tree.Announce(), tree.Announce()};
    tree.Start();
    for (const BUFFER_HANDLE buffer : buffers)
    {
        tree.Next();
        const Bytes payload = tree.Pixels(buffer);
        const std::size_t covered = payload.size() - 4;
        const bool isRight = Number(payload, covered, 4, false) == BitwiseCRC(payload.data(), covered);
        EXPECT_EQ(isRight, buffer != buffers[1]);
        EXPECT_EQ(Query(tree, buffer), GC_ERR_SUCCESS);
    }
}

TEST(SimulatorChunkChecksum, CanBeLeftOut)
{
    const Producer producer(CameraOf("IIDC", R"("chunks": "all", "chunkChecksum": false)"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    tree.Next();
    std::vector<Located> chunks;
    EXPECT_EQ(Walk("IIDC", tree.Pixels(buffer), false, chunks), "");
    EXPECT_EQ(Ask(tree, buffer), chunks);
}

TEST(SimulatorChunkLayoutId, CanBeUnknownToTheProducer)
{
    const Producer producer(CameraOf(
        "U3V", R"("chunks": "all")",
        R"(, "misbehaviour": {"info": [{"function": "DSGetBufferInfo", "command": 24, "error": "GC_ERR_NOT_IMPLEMENTED"}]})"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    tree.Next();
    EXPECT_EQ(
        producer.Result(producer.DSGetBufferInfo, tree.stream, buffer, BUFFER_INFO_CHUNKLAYOUTID),
        GC_ERR_NOT_IMPLEMENTED);
    EXPECT_TRUE(tree.Flag(buffer, BUFFER_INFO_CONTAINS_CHUNKDATA));
}

// The query ends and stays within the buffer, regardless of what a consumer has written there.
TEST(SimulatorChunkQuery, SurvivesAnyMemory)
{
    const Producer producer(CameraOf("GEV"));
    const Tree tree(producer);
    const auto size = tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE);
    Bytes memory(size);
    BUFFER_HANDLE buffer = nullptr;
    ASSERT_EQ(producer.DSAnnounceBuffer(tree.stream, memory.data(), size, nullptr, &buffer), GC_ERR_SUCCESS);
    producer.DSQueueBuffer(tree.stream, buffer);
    tree.Start();
    tree.Next();
    std::fill(memory.begin(), memory.end(), 0xFF);
    EXPECT_EQ(Query(tree, buffer), GC_ERR_PARSING_CHUNK_DATA);
    EXPECT_THAT(producer.Last().text, testing::HasSubstr("begins in front of the buffer"));
    std::fill(memory.begin(), memory.end(), 0); // chunks without bytes, to the start
    EXPECT_EQ(Query(tree, buffer), size % 8 == 0 ? GC_ERR_SUCCESS : GC_ERR_PARSING_CHUNK_DATA);
}

} // namespace
} // namespace koro::simulator::test

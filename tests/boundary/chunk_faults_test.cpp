// Chunks as nobody should deliver them: refused with the reason, and the nodes read what they read before.
#include "tests/boundary/chunk_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace koro::test
{

namespace
{

using testing::StartsWith;

class ChunkFaults : public ChunkTest
{
protected:
    // The camera, with 7 in the node.
    void OpenAs(const std::string& type)
    {
        tlType = type;
        Open(chunkFeatures);
        Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(FrameOf(Good(7), tlType, nextLayout++))));
    }
    std::string Good(std::uint32_t counter) const
    {
        const std::string data = LittleEndian(counter, 4);
        if (tlType == "IIDC") return IIDCChunk(idBytes, data);
        return tlType == "U3V" ? U3VChunk(0xa1, data) : GEVChunk(0xa1, data);
    }
    const char* Feature() const { return tlType == "IIDC" ? "Wide" : "Counter"; }

    // Each has a layout of its own.
    KORO_BufferHandle DeliverAs(const std::string& bytes) { return Deliver(FrameOf(bytes, tlType, nextLayout++)); }
    void ExpectBroken(const std::string& bytes, const std::string& reason)
    {
        const auto buffer = DeliverAs(bytes);
        EXPECT_FALSE(IsSupported(buffer));
        const Error outcome = Update(buffer);
        EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
        EXPECT_THAT(outcome.text, StartsWith("The chunk layout of the buffer is broken at " + reason));
        EXPECT_EQ(Value(Feature()), 7);
        Revoke(buffer);
        EXPECT_EQ(Value(Feature()), 7);
    }
    std::size_t TrailerSize() const { return tlType == "IIDC" ? 24 : 8; }

    std::string tlType;
    std::uint64_t nextLayout = 1;
};

const char* const transports[] = {"GEV", "U3V", "IIDC"};

} // namespace

TEST_F(ChunkFaults, BufferCutAtAnyByteIsBroken)
{
    for (const char* const type : transports)
    {
        SCOPED_TRACE(type);
        OpenAs(type);
        const std::string bytes = Good(9);
        for (std::size_t size = 1; size < bytes.size(); ++size)
        {
            const bool isShort = size < TrailerSize();
            ExpectBroken(bytes.substr(0, size), isShort ? std::to_string(size) + ": no room for a trailer" : "");
        }
    }
}

TEST_F(ChunkFaults, BufferOfNoBytesIsBroken)
{
    for (const char* const type : transports)
    {
        OpenAs(type);
        ExpectBroken("", "0: the buffer is empty");
    }
}

TEST_F(ChunkFaults, LengthBeyondTheBufferIsBroken)
{
    for (const char* const type : {"GEV", "U3V"})
    {
        OpenAs(type);
        const auto number = std::string(type) == "GEV" ? BigEndian : LittleEndian;
        for (const std::uint64_t length : {5u, 0x7fffffffu, 0x80000000u, 0xfffffff8u, 0xffffffffu})
        {
            const std::string trailer = number(0xa1, 4) + number(length, 4);
            ExpectBroken("data" + trailer, "4: the chunk is longer than what lies before its trailer");
        }
    }
    OpenAs("IIDC");
    for (const std::uint32_t length : {29u, 0x7fffffffu, 0xffffffffu})
    {
        const std::string trailer = idBytes + LittleEndian(length, 4) + LittleEndian(~length, 4);
        ExpectBroken("data" + trailer, "4: the chunk is longer than what lies before its trailer");
    }
}

TEST_F(ChunkFaults, LengthThatLeavesARestIsBroken)
{
    OpenAs("GEV");
    ExpectBroken("data" + BigEndian(0xa1, 4) + BigEndian(3, 4), "1: no room for a trailer");
    OpenAs("U3V");
    ExpectBroken("data" + LittleEndian(0xa1, 4) + LittleEndian(0, 4), "4: no room for a trailer");
}

TEST_F(ChunkFaults, LengthAndInverseThatDoNotMatchAreBroken)
{
    OpenAs("IIDC");
    ExpectBroken(idBytes + LittleEndian(24, 4) + LittleEndian(24, 4), "0: the length and its inverse do not match");
    const std::uint32_t length = 23;
    ExpectBroken(
        idBytes + LittleEndian(length, 4) + LittleEndian(~length, 4), "0: the chunk is shorter than its trailer");
}

TEST_F(ChunkFaults, ChunksOfLengthZeroAreChunks)
{
    for (const char* const type : transports)
    {
        SCOPED_TRACE(type);
        OpenAs(type);
        const std::string empty = tlType == "IIDC"  ? IIDCChunk(idBytes, "")
                                  : tlType == "U3V" ? U3VChunk(0xa1, "")
                                                    : GEVChunk(0xa1, "");
        const auto buffer = DeliverAs(empty + empty + empty);
        EXPECT_TRUE(IsSupported(buffer));
        EXPECT_EQ(Update(buffer), Error{});
        const auto node = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, Find(map, Feature()));
        std::int64_t value = 0;
        EXPECT_EQ(
            Outcome(KORO_IntegerNode_GetValue(node, KORO_NODE_CACHE_POLICY_USE_CACHE, &value)).code,
            KORO_RETURN_CODE_ERROR);
    }
}

TEST_F(ChunkFaults, OfTwoChunksWithOneIdTheFirstInTheBufferIsRead)
{
    OpenAs("GEV");
    EXPECT_EQ(Update(DeliverAs(Good(9) + Good(8))), Error{});
    EXPECT_EQ(Value("Counter"), 9);
}

TEST_F(ChunkFaults, LayoutThatChangesAtEveryFrameIsFollowed)
{
    OpenAs("GEV");
    const auto buffer = Announce(256);
    for (std::uint32_t frame = 0; frame < 100; ++frame)
    {
        // The chunk moves, and is missing in each third frame.
        const std::string data = LittleEndian(frame, 4);
        const std::string chunk = frame % 3 == 0 ? GEVChunk(2, data) : GEVChunk(0xa1, data);
        const std::string before = GEVChunk(1, std::string(frame, 'x'));
        const std::size_t rest = 256 - before.size() - chunk.size() - 8;
        Fill(buffer, FrameOf(before + chunk + GEVChunk(3, std::string(rest, 'y')), "GEV", nextLayout++));
        EXPECT_EQ(Update(buffer), Error{});
        EXPECT_EQ(Value("Counter"), frame % 3 == 0 ? std::nullopt : std::optional<std::int64_t>(frame));
    }
}

// The offsets are those of the layout that the producer says it still is, and lie in the buffer.
TEST_F(ChunkFaults, LayoutThatChangesBehindAnEqualIdIsReadWithinTheBuffer)
{
    OpenAs("GEV");
    const auto buffer = Announce(Good(0).size());
    const std::uint64_t layout = nextLayout++;
    Fill(buffer, FrameOf(Good(9), "GEV", layout));
    EXPECT_EQ(Update(buffer), Error{});
    Fill(buffer, FrameOf(GEVChunk(5, "") + "\1\2\3\4", "GEV", layout));
    EXPECT_EQ(Update(buffer), Error{});
    EXPECT_EQ(Value("Counter"), 0x05000000);
}

TEST_F(ChunkFaults, BaseOfNowhereIsRefusedOnBothRoads)
{
    OpenAs("GEV");
    auto frame = FrameOf(Good(9), "GEV", 1); // the layout of what is attached
    frame.info[GenTL::BUFFER_INFO_BASE] = scripted::Pointer(nullptr);
    const Error outcome = Update(Deliver(frame));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_THAT(outcome.text, StartsWith("The base address must not be NULL"));
    frame.info[GenTL::BUFFER_INFO_CHUNKLAYOUTID] = scripted::UInt64(99);
    const auto buffer = Deliver(frame);
    EXPECT_FALSE(IsSupported(buffer));
    EXPECT_THAT(Update(buffer).text, StartsWith("The chunk layout of the buffer is broken at 0: the buffer is empty"));
    EXPECT_EQ(Value("Counter"), 7);
}

TEST_F(ChunkFaults, SizeBeyondAllMemoryIsRefused)
{
    OpenAs("GEV");
    auto frame = FrameOf(Good(9), "GEV", 99);
    frame.info[GenTL::BUFFER_INFO_SIZE] = scripted::Size(SIZE_MAX);
    frame.info[GenTL::BUFFER_INFO_SIZE_FILLED] = scripted::Failing(GenTL::GC_ERR_NOT_AVAILABLE);
    const auto buffer = Deliver(frame);
    EXPECT_FALSE(IsSupported(buffer));
    EXPECT_THAT(Update(buffer).text, StartsWith("The chunk layout of the buffer is broken at 0: the buffer is empty"));
    EXPECT_EQ(Value("Counter"), 7);
}

} // namespace koro::test

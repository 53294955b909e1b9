#include "tests/unit/genicam/adapter_support.h"

#include <GenApi/ChunkAdapterDcam.h>
#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterGeneric.h>
#include <GenApi/ChunkAdapterU3V.h>
#include <gtest/gtest.h>
#include <limits>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Bytes;
using koro::test::ChunkPortElement;
using koro::test::HeapBlock;
using koro::test::ModeOf;
using koro::test::PortRegister;
using koro::test::Refusal;
using koro::test::SmallMap;

const std::string twoPorts = ChunkPortElement("One", "11223344") + PortRegister("A", "One") +
                             ChunkPortElement("Two", "00000002") + PortRegister("B", "Two", "0", 1);

bool Fits(CChunkAdapter& adapter, const Bytes& bytes)
{
    const HeapBlock block(bytes);
    return adapter.CheckBufferLayout(block.Data(), block.Size());
}

std::string RefusalOf(CChunkAdapter& adapter, const Bytes& bytes)
{
    const HeapBlock block(bytes);
    return Refusal<RuntimeException>([&] { adapter.AttachBuffer(block.Data(), block.Size()); });
}

// Both answers to one buffer must agree, and a refused one must leave what was attached.
void ExpectRefused(const SmallMap& map, CChunkAdapter& adapter, const Bytes& bytes, const std::string& what)
{
    EXPECT_FALSE(Fits(adapter, bytes)) << what;
    const int64_t before = map.Integer("A")->GetValue();
    EXPECT_NE(RefusalOf(adapter, bytes), "") << what;
    EXPECT_EQ(map.Integer("A")->GetValue(false, true), before) << what;
}

TEST(ChunkLayouts, GigEVisionTrailersAreBigEndian)
{
    const SmallMap map(twoPorts);
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Bytes{0x78, 0x56, 0x34, 0x12, 0x11, 0x22, 0x33, 0x44, 0x00,
                                 0x00, 0x00, 0x04, // data, id, length
                                 0xaa, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x01});
    ASSERT_TRUE(adapter.CheckBufferLayout(buffer.Data(), buffer.Size()));
    AttachStatistics_t statistics = {};
    adapter.AttachBuffer(buffer.Data(), buffer.Size(), &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 2);
    EXPECT_EQ(statistics.NumChunks, 2);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x12345678) << "the bytes inside have the order of the register";
    EXPECT_EQ(map.Integer("B")->GetValue(), 0xaa);
}

TEST(ChunkLayouts, USB3VisionTrailersAreLittleEndian)
{
    const SmallMap map(twoPorts);
    CChunkAdapterU3V adapter(map.map);
    const HeapBlock buffer(Bytes{0x78, 0x56, 0x34, 0x12, 0x44, 0x33, 0x22, 0x11, 0x04,
                                 0x00, 0x00, 0x00, // data, id, length
                                 0xaa, 0x02, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00});
    ASSERT_TRUE(adapter.CheckBufferLayout(buffer.Data(), buffer.Size()));
    AttachStatistics_t statistics = {};
    adapter.AttachBuffer(buffer.Data(), buffer.Size(), &statistics);
    EXPECT_EQ(statistics.NumChunks, 2);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x12345678);
    EXPECT_EQ(map.Integer("B")->GetValue(), 0xaa);
}

TEST(ChunkLayouts, TrailersAreEightAndTwentyFourBytes)
{
    EXPECT_EQ(sizeof(GVCP_CHUNK_TRAILER), 8u);
    EXPECT_EQ(sizeof(U3V_CHUNK_TRAILER), 8u);
    EXPECT_EQ(sizeof(DCAM_CHUNK_TRAILER), 24u);
    EXPECT_EQ(sizeof(DCAM_CHECKSUM), 4u);
    EXPECT_EQ(sizeof(GUID), 16u);
}

// GigE Vision and USB3 Vision differ in the byte order alone.
class TrailerLayouts : public testing::TestWithParam<bool>
{
protected:
    TrailerLayouts() : map(twoPorts)
    {
        if (GetParam())
            adapter = std::make_unique<CChunkAdapterGEV>(map.map);
        else
            adapter = std::make_unique<CChunkAdapterU3V>(map.map);
        HeapBlock first(Chunk(Bytes{1, 2, 3, 4}, 0x11223344));
        adapter->AttachBuffer(first.Data(), first.Size());
        attached = std::make_unique<HeapBlock>(std::move(first));
    }

    Bytes& Number(Bytes& bytes, uint32_t number) const
    {
        return GetParam() ? bytes.Big(number, 4) : bytes.Little(number, 4);
    }
    Bytes Chunk(const Bytes& data, uint32_t id) const
    {
        Bytes bytes = data;
        Number(bytes, id);
        Number(bytes, static_cast<uint32_t>(data.Size()));
        return bytes;
    }
    void SetLength(Bytes& bytes, size_t trailer, uint32_t length) const
    {
        if (GetParam())
            bytes.SetBig(trailer + 4, length, 4);
        else
            bytes.SetLittle(trailer + 4, length, 4);
    }
    // 20 bytes, 0 bytes and 5 bytes of data; the trailers stand at 20, 28 and 41.
    Bytes ThreeChunks() const
    {
        Bytes bytes = Chunk(Bytes().Fill(20, 0xee), 1);
        bytes.Add(Chunk({}, 2));
        return bytes.Add(Chunk(Bytes().Fill(5, 0xee), 0x11223344));
    }

    SmallMap map;
    std::unique_ptr<HeapBlock> attached;
    std::unique_ptr<CChunkAdapter> adapter;
};

TEST_P(TrailerLayouts, ChainMustEndExactlyAtTheStart)
{
    EXPECT_TRUE(Fits(*adapter, ThreeChunks())) << "lengths of 0 and odd lengths are fine";
    const struct
    {
        size_t trailer;
        uint32_t length;
    } trailers[] = {{20, 20}, {28, 0}, {41, 5}};
    for (const auto& [trailer, length] : trailers)
    {
        for (const uint32_t wrong : {length + 1, length - 1, 0xffffffffu, 0x7fffffffu, 0x80000000u})
        {
            Bytes bytes = ThreeChunks();
            SetLength(bytes, trailer, wrong);
            ExpectRefused(map, *adapter, bytes, "length " + std::to_string(wrong) + " at " + std::to_string(trailer));
        }
    }
}

TEST_P(TrailerLayouts, BufferCutAnywhereButBehindAChunkIsRefused)
{
    const Bytes whole = ThreeChunks();
    for (size_t size = 1; size < whole.Size(); ++size)
    {
        if (size == 28 || size == 36)
            EXPECT_TRUE(Fits(*adapter, whole.First(size))) << size;
        else
            ExpectRefused(map, *adapter, whole.First(size), "cut at " + std::to_string(size));
    }
}

TEST_P(TrailerLayouts, BufferShorterThanATrailerIsRefused)
{
    for (size_t size = 0; size < 8; ++size)
        ExpectRefused(map, *adapter, Bytes().Fill(size, 0), std::to_string(size) + " bytes");
    EXPECT_EQ(
        RefusalOf(*adapter, Bytes().Fill(7, 0)),
        "The chunk layout of the buffer is broken at 7: no room for a trailer");
    EXPECT_TRUE(Fits(*adapter, Bytes().Fill(8, 0)));
}

TEST_P(TrailerLayouts, NullAndLengthsNotAboveZeroAreRefused)
{
    const HeapBlock block(ThreeChunks());
    for (const int64_t length : {int64_t{0}, int64_t{-1}, std::numeric_limits<int64_t>::min()})
    {
        EXPECT_FALSE(adapter->CheckBufferLayout(block.Data(), length));
        EXPECT_EQ(
            Refusal<RuntimeException>([&] { adapter->AttachBuffer(block.Data(), length); }),
            "The chunk layout of the buffer is broken at 0: the buffer is empty");
    }
    EXPECT_FALSE(adapter->CheckBufferLayout(nullptr, 8));
    EXPECT_NE(Refusal<RuntimeException>([&] { adapter->AttachBuffer(nullptr, 8); }), "");
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x04030201) << "what was attached stays";
}

TEST_P(TrailerLayouts, RefusalTellsWhereAndWhy)
{
    Bytes bytes = ThreeChunks();
    SetLength(bytes, 28, 29);
    EXPECT_EQ(
        RefusalOf(*adapter, bytes),
        "The chunk layout of the buffer is broken at 28: the chunk is longer than what lies before its trailer");
    EXPECT_EQ(
        RefusalOf(*adapter, Bytes{1, 2, 3}), "The chunk layout of the buffer is broken at 3: no room for a trailer");
}

TEST_P(TrailerLayouts, RefusedBufferLeavesTheStatistics)
{
    AttachStatistics_t statistics = {7, 8, 9};
    const HeapBlock block(Bytes{1, 2, 3});
    EXPECT_THROW(adapter->AttachBuffer(block.Data(), block.Size(), &statistics), RuntimeException);
    EXPECT_EQ(statistics.NumChunkPorts, 7);
    EXPECT_EQ(statistics.NumChunks, 8);
    EXPECT_EQ(statistics.NumAttachedChunks, 9);
}

INSTANTIATE_TEST_SUITE_P(ByteOrders, TrailerLayouts, testing::Bool(), [](const testing::TestParamInfo<bool>& order) {
    return order.param ? "GigEVision" : "USB3Vision";
});

// Bit by bit, as the definition says; the adapter takes several bytes at once.
uint16_t ChecksumOf(const Bytes& bytes)
{
    unsigned crc = 0;
    for (size_t i = 0; i < bytes.Size(); ++i)
    {
        crc ^= static_cast<unsigned>(bytes.Data()[i]) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc << 1 ^ ((crc & 0x8000) != 0 ? 0x1021u : 0u)) & 0xffff;
    }
    return static_cast<uint16_t>(crc);
}

class DcamLayout : public testing::Test
{
protected:
    DcamLayout()
        : map(ChunkPortElement("One", "4E00343B841BD81183B300105A5BAE55") + PortRegister("A", "One") +
              ChunkPortElement("Zeros", "0000003B841BD81183B300105A5BAE55") + PortRegister("B", "Zeros")),
          adapter(map.map)
    {}

    static Bytes Chunk(const Bytes& data, int firstOfID)
    {
        Bytes bytes = data;
        if (firstOfID == 0)
            bytes.Add({0x00, 0x00, 0x00, 0x3b});
        else
            bytes.Add({firstOfID, 0x00, 0x34, 0x3b});
        bytes.Add({0x84, 0x1b, 0xd8, 0x11, 0x83, 0xb3, 0x00, 0x10, 0x5a, 0x5b, 0xae, 0x55});
        const uint32_t length = static_cast<uint32_t>(data.Size()) + 24;
        return bytes.Little(length, 4).Little(~length, 4);
    }
    // Trailers at 4 and 38, 62 bytes.
    static Bytes TwoChunks() { return Chunk(Bytes{1, 2, 3, 4}, 0x4e).Add(Chunk(Bytes().Fill(10, 0xee), 0x4f)); }
    static Bytes WithChecksum(const Bytes& bytes) { return Bytes(bytes).Little(ChecksumOf(bytes), 2).Add({0, 0}); }

    SmallMap map;
    CChunkAdapterDcam adapter;
};

TEST_F(DcamLayout, LengthCountsTheTrailerAndIDsAreTheBytesInTheirOrder)
{
    const HeapBlock buffer(TwoChunks());
    AttachStatistics_t statistics = {};
    adapter.AttachBuffer(buffer.Data(), buffer.Size(), &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 2);
    EXPECT_EQ(statistics.NumChunks, 2);
    EXPECT_EQ(statistics.NumAttachedChunks, 1);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x04030201);
    EXPECT_EQ(ModeOf(map, "B"), NA);
}

TEST_F(DcamLayout, IDThatBeginsWithZerosIsFound)
{
    const HeapBlock buffer(Chunk(Bytes{5, 0, 0, 0}, 0));
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(map.Integer("B")->GetValue(), 5);
}

TEST_F(DcamLayout, WrongLengthsAreRefused)
{
    const HeapBlock attached(TwoChunks());
    adapter.AttachBuffer(attached.Data(), attached.Size());
    const struct
    {
        size_t trailer;
        uint32_t length;
    } trailers[] = {{4, 28}, {38, 34}};
    for (const auto& [trailer, length] : trailers)
    {
        for (const uint32_t wrong : {length + 1, length - 1, 24u - 1, 0u, 0xffffffffu, 0x80000000u})
        {
            Bytes bytes = TwoChunks();
            bytes.SetLittle(trailer + 16, wrong, 4).SetLittle(trailer + 20, ~wrong, 4);
            ExpectRefused(map, adapter, bytes, "length " + std::to_string(wrong) + " at " + std::to_string(trailer));
        }
        for (int bit = 0; bit < 32; ++bit)
        {
            Bytes bytes = TwoChunks();
            bytes.SetLittle(trailer + 20, ~length ^ 1u << bit, 4);
            ExpectRefused(map, adapter, bytes, "inverse with bit " + std::to_string(bit));
        }
    }
}

TEST_F(DcamLayout, BufferCutAnywhereButBehindAChunkIsRefused)
{
    const HeapBlock attached(TwoChunks());
    adapter.AttachBuffer(attached.Data(), attached.Size());
    for (const Bytes& whole : {TwoChunks(), WithChecksum(TwoChunks())})
    {
        for (size_t size = 0; size < 62; ++size)
        {
            // The first four bytes behind a trailer pass for a checksum.
            const bool good = size == 28 || size == 32;
            if (good)
                EXPECT_TRUE(Fits(adapter, whole.First(size))) << size;
            else
                ExpectRefused(map, adapter, whole.First(size), "cut at " + std::to_string(size));
        }
    }
}

TEST_F(DcamLayout, ChecksumIsFoundBySeekingTheLastTrailer)
{
    const HeapBlock with(WithChecksum(TwoChunks()));
    const HeapBlock without(TwoChunks());
    EXPECT_TRUE(adapter.HasCRC(with.Data(), with.Size()));
    EXPECT_FALSE(adapter.HasCRC(without.Data(), without.Size()));
    EXPECT_FALSE(adapter.HasCRC(nullptr, 100));
    for (size_t size = 0; size < 28; ++size)
    {
        const HeapBlock cut(WithChecksum(Chunk({}, 1)).First(size));
        EXPECT_FALSE(adapter.HasCRC(cut.Data(), cut.Size())) << size;
    }
    const HeapBlock least(WithChecksum(Chunk({}, 1)));
    EXPECT_TRUE(adapter.HasCRC(least.Data(), least.Size()));
    // The rest of the chain is not looked at.
    const HeapBlock broken(Bytes{1, 2, 3}.Add(WithChecksum(Chunk({}, 1))));
    EXPECT_TRUE(adapter.HasCRC(broken.Data(), broken.Size()));
    EXPECT_FALSE(adapter.CheckBufferLayout(broken.Data(), broken.Size()));
}

// Four bytes before its end stands what would be a trailer, too.
TEST_F(DcamLayout, TrailerAtTheEndComesBeforeAChecksum)
{
    const uint32_t length = 40;
    const HeapBlock buffer(Bytes().Fill(16 + 12, 0xee).Little(~length, 4).Little(length, 4).Little(~length, 4));
    EXPECT_FALSE(adapter.HasCRC(buffer.Data(), buffer.Size()));
    EXPECT_TRUE(adapter.CheckBufferLayout(buffer.Data(), buffer.Size()));
}

TEST_F(DcamLayout, ChecksumIsTakenOverAllBytesBeforeIt)
{
    Bytes digits;
    for (int digit = '1'; digit <= '9'; ++digit)
        digits.Add({digit});
    ASSERT_EQ(ChecksumOf(digits), 0x31c3) << "the check value of this checksum";
    for (size_t size = 0; size < 20; ++size)
    {
        const Bytes bytes = Chunk(Bytes().Fill(size, 0x5a), 1);
        const HeapBlock good(WithChecksum(bytes));
        EXPECT_TRUE(adapter.CheckCRC(good.Data(), good.Size())) << size;
        good.Data()[0] ^= 0x10;
        EXPECT_FALSE(adapter.CheckCRC(good.Data(), good.Size())) << size;
        good.Data()[0] ^= 0x10;
        good.Data()[good.Size() - 1] = good.Data()[good.Size() - 2] = 0xff;
        EXPECT_TRUE(adapter.CheckCRC(good.Data(), good.Size())) << "the last two bytes are reserved";
    }
    const HeapBlock without(TwoChunks());
    EXPECT_EQ(
        Refusal<RuntimeException>([&] { adapter.CheckCRC(without.Data(), without.Size()); }),
        "The buffer has no checksum");
    EXPECT_THROW(adapter.CheckCRC(nullptr, 28), RuntimeException);
}

TEST_F(DcamLayout, AttachingDoesNotAskForTheChecksum)
{
    Bytes bytes = WithChecksum(TwoChunks());
    bytes.SetLittle(62, 0xffff, 2);
    const HeapBlock buffer(bytes);
    EXPECT_FALSE(adapter.CheckCRC(buffer.Data(), buffer.Size()));
    EXPECT_TRUE(adapter.CheckBufferLayout(buffer.Data(), buffer.Size()));
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x04030201);
}

class ListedLayout : public testing::Test
{
protected:
    ListedLayout()
        : map(ChunkPortElement("One", "11223344") + PortRegister("A", "One") +
              ChunkPortElement("Wide", "0123456789abcdef") + PortRegister("B", "Wide", "0", 1) +
              ChunkPortElement("Wider", "01ffffffffffffffff") + PortRegister("C", "Wider", "0", 1)),
          adapter(map.map), block(Bytes{1, 2, 3, 4, 5, 6})
    {}

    SmallMap map;
    CChunkAdapterGeneric adapter;
    HeapBlock block;
};

TEST_F(ListedLayout, ChunksLieWhereTheListSays)
{
    SingleChunkData_t list[] = {{0x0123456789abcdef, 5, 1}, {0x11223344, 1, 4}, {0xffffffffffffffff, 0, 1}};
    AttachStatistics_t statistics = {};
    adapter.AttachBuffer(block.Data(), list, 3, &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 3);
    EXPECT_EQ(statistics.NumChunks, 3);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x05040302);
    EXPECT_EQ(map.Integer("B")->GetValue(), 6);
    EXPECT_EQ(ModeOf(map, "C"), NA) << "an id of more than 64 bits is no number of 64 bits";
}

TEST_F(ListedLayout, TextsAreIDsOfAnyLength)
{
    SingleChunkDataStr_t list[] = {{"1FFFFFFFFFFFFFFFF", 0, 1}, {"0x00000000000011223344", 1, 4}, {"no id", 0, 1}};
    AttachStatistics_t statistics = {};
    adapter.AttachBuffer(block.Data(), list, 3, &statistics);
    EXPECT_EQ(statistics.NumChunks, 3);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    EXPECT_EQ(map.Integer("C")->GetValue(), 1);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x05040302);
}

TEST_F(ListedLayout, TextThatIsNoIDIsNotTheIDZero)
{
    const SmallMap zero(ChunkPortElement("Zero", "0") + PortRegister("A", "Zero", "0", 1));
    CChunkAdapterGeneric other(zero.map);
    SingleChunkDataStr_t list[] = {{"", 0, 1}, {"x", 0, 1}, {"0x", 0, 1}};
    AttachStatistics_t statistics = {};
    other.AttachBuffer(block.Data(), list, 3, &statistics);
    EXPECT_EQ(statistics.NumAttachedChunks, 0);
    SingleChunkDataStr_t number[] = {{"000", 2, 1}};
    other.AttachBuffer(block.Data(), number, 1, &statistics);
    EXPECT_EQ(zero.Integer("A")->GetValue(), 3);
}

TEST_F(ListedLayout, EmptyListDetachesAllPorts)
{
    SingleChunkData_t list[] = {{0x11223344, 0, 4}};
    adapter.AttachBuffer(block.Data(), list, 1);
    EXPECT_EQ(ModeOf(map, "A"), RW);
    AttachStatistics_t statistics = {};
    adapter.AttachBuffer(block.Data(), list, 0, &statistics);
    EXPECT_EQ(statistics.NumChunks, 0);
    EXPECT_EQ(ModeOf(map, "A"), NA);
}

TEST_F(ListedLayout, OffsetsAndLengthsThatNoBufferHasAreRefused)
{
    SingleChunkData_t good[] = {{0x11223344, 0, 4}};
    adapter.AttachBuffer(block.Data(), good, 1);
    const SingleChunkData_t records[] = {
        {0x11223344, -1, 4},
        {0x11223344, std::numeric_limits<ptrdiff_t>::min(), 4},
        {0x11223344, 1, std::numeric_limits<size_t>::max()},
        {0x11223344, 1, static_cast<size_t>(std::numeric_limits<ptrdiff_t>::max())},
        {0x11223344, std::numeric_limits<ptrdiff_t>::max(), 1}};
    for (const SingleChunkData_t& record : records)
    {
        SingleChunkData_t list[] = {{0x11223344, 2, 4}, record};
        EXPECT_THROW(adapter.AttachBuffer(block.Data(), list, 2), RuntimeException);
        EXPECT_EQ(map.Integer("A")->GetValue(false, true), 0x04030201) << "what was attached stays";
    }
}

TEST_F(ListedLayout, MissingBufferOrListIsRefused)
{
    SingleChunkData_t list[] = {{0x11223344, 0, 4}};
    SingleChunkData_t* const none = nullptr;
    EXPECT_THROW(adapter.AttachBuffer(nullptr, list, 1), RuntimeException);
    EXPECT_THROW(adapter.AttachBuffer(block.Data(), none, 1), RuntimeException);
    EXPECT_THROW(adapter.AttachBuffer(block.Data(), list, -1), RuntimeException);
    EXPECT_NO_THROW(adapter.AttachBuffer(block.Data(), none, 0));
}

TEST_F(ListedLayout, BytesAloneTellOfNoChunks)
{
    const HeapBlock trailer(Bytes{0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_FALSE(adapter.CheckBufferLayout(trailer.Data(), trailer.Size()));
    EXPECT_THROW(adapter.AttachBuffer(trailer.Data(), trailer.Size()), RuntimeException);
}

} // namespace

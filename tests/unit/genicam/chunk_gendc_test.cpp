#include "tests/unit/genicam/adapter_support.h"

#include <GenApi/ChunkAdapterGenDC.h>
#include <gtest/gtest.h>

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

// Places of the fields in the container below.
const size_t componentCount = 52;
const size_t componentOffset = 56;
const size_t component = 64;
const size_t componentFlags = component + 2;
const size_t partCount = component + 46;
const size_t imageOffset = component + 48;
const size_t chunkOffset = component + 56;
const size_t image = 128;
const size_t chunks = 168;
const size_t chunkDataSize = chunks + 24;
const size_t chunkDataOffset = chunks + 32;
const size_t data = 208;

Bytes Chunk(uint32_t id, uint32_t value)
{
    return Bytes().Little(value, 4).Little(id, 4).Little(4, 4);
}

// One component with an image part of 16 bytes and a part with two chunks.
Bytes Container()
{
    Bytes bytes = {'G', 'N', 'D', 'C', 1, 0, 0, 0};
    bytes.Little(0x1000, 2).Little(0, 2).Little(64, 4).Little(7, 8).Little(0, 8);
    bytes.Little(40, 8).Little(data, 8).Little(data, 4).Little(1, 4).Little(component, 8);
    bytes.Little(0x2000, 2).Little(0, 2).Little(64, 4).Fill(2, 0).Fill(6, 0).Fill(8, 0).Little(99, 8);
    bytes.Little(1, 8).Little(0x01080001, 4).Fill(2, 0).Little(2, 2).Little(image, 8).Little(chunks, 8);
    bytes.Little(0x4200, 2).Little(0, 2).Little(40, 4).Fill(8, 0).Little(0, 8).Little(16, 8).Little(data, 8);
    bytes.Little(0x4000, 2).Little(0, 2).Little(40, 4).Fill(8, 0).Little(16, 8).Little(24, 8).Little(data + 16, 8);
    return bytes.Fill(16, 0xee).Add(Chunk(1, 0x1111)).Add(Chunk(2, 0x2222));
}

class GenDCLayout : public testing::Test
{
protected:
    GenDCLayout()
        : map(ChunkPortElement("One", "1") + PortRegister("A", "One") + ChunkPortElement("Two", "2") +
              PortRegister("B", "Two")),
          adapter(map.map), attached(Container())
    {
        adapter.AttachBuffer(attached.Data(), attached.Size(), &statistics);
    }

    void ExpectRefused(const Bytes& bytes, const std::string& what)
    {
        const HeapBlock block(bytes);
        EXPECT_FALSE(adapter.CheckBufferLayout(block.Data(), block.Size())) << what;
        EXPECT_THROW(adapter.AttachBuffer(block.Data(), block.Size()), RuntimeException) << what;
        EXPECT_EQ(map.Integer("A")->GetValue(false, true), 0x1111) << what;
    }
    bool Fits(const Bytes& bytes)
    {
        const HeapBlock block(bytes);
        return adapter.CheckBufferLayout(block.Data(), block.Size());
    }

    SmallMap map;
    CChunkAdapterGenDC adapter;
    HeapBlock attached;
    AttachStatistics_t statistics = {};
};

TEST_F(GenDCLayout, ChunksOfTheMetadataPartAreFound)
{
    EXPECT_TRUE(adapter.CheckBufferLayout(attached.Data(), attached.Size()));
    EXPECT_EQ(statistics.NumChunks, 2);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x1111);
    EXPECT_EQ(map.Integer("B")->GetValue(), 0x2222);
}

TEST_F(GenDCLayout, ContainerCutAnywhereIsRefused)
{
    const Bytes whole = Container();
    ASSERT_EQ(whole.Size(), data + 40);
    for (size_t size = 0; size < whole.Size(); ++size)
        ExpectRefused(whole.First(size), "cut at " + std::to_string(size));
    EXPECT_FALSE(adapter.CheckBufferLayout(nullptr, 100));
}

TEST_F(GenDCLayout, OffsetsAndCountsBeyondTheContainerAreRefused)
{
    const uint64_t size = Container().Size();
    for (const size_t field : {componentOffset, imageOffset, chunkOffset, chunkDataOffset})
    {
        for (const uint64_t wrong :
             {size, size - 7, size + 1, ~uint64_t{0}, uint64_t{1} << 63, (uint64_t{1} << 63) - 1})
            ExpectRefused(Container().SetLittle(field, wrong, 8), "offset at " + std::to_string(field));
    }
    for (const uint64_t wrong : {uint64_t{23}, uint64_t{25}, size, ~uint64_t{0}, uint64_t{1} << 63})
        ExpectRefused(Container().SetLittle(chunkDataSize, wrong, 8), "size " + std::to_string(wrong));
    for (const uint64_t wrong : {0x10000u, 0xffffffffu})
        ExpectRefused(Container().SetLittle(componentCount, wrong, 4), "components");
    ExpectRefused(Container().SetLittle(partCount, 0xffff, 2), "parts");
    ExpectRefused(Container().SetLittle(0, 0x43444E48, 4), "signature");
}

TEST_F(GenDCLayout, ContainerWithoutChunkDataIsRefused)
{
    ExpectRefused(Container().SetLittle(chunks, 0x4100, 2), "no part of the kind");
    ExpectRefused(Container().SetLittle(componentFlags, 1, 2), "the component is not valid");
    ExpectRefused(Container().SetLittle(partCount, 0, 2), "no part");
    ExpectRefused(Container().SetLittle(componentCount, 0, 4), "no component");
    ExpectRefused(Container().SetLittle(chunkDataSize, 0, 8), "an empty part");
}

TEST_F(GenDCLayout, PartsThatLieInEachOtherAreRefused)
{
    // 7 components of 1 part each would fit; here many offsets lead to the same headers.
    Bytes bytes = {'G', 'N', 'D', 'C', 1, 0, 0, 0};
    const size_t count = 40;
    const uint64_t shared = 56 + 8 * count;
    bytes.Fill(44, 0).Little(count, 4);
    for (size_t i = 0; i < count; ++i)
        bytes.Little(shared, 8);
    bytes.Little(0x2000, 2).Fill(44, 0).Little(1, 2).Little(shared + 56, 8);
    bytes.Little(0x4000, 2).Fill(22, 0).Little(12, 8).Little(shared + 96, 8).Add(Chunk(1, 1));
    ExpectRefused(bytes, "shared headers");
    EXPECT_TRUE(Fits(Bytes(bytes).SetLittle(52, 1, 4))) << "one of them alone is good";

    // Both parts lead to one chunk, which fills the larger half of the container.
    bytes = Container().First(data);
    bytes.Fill(1000, 0xee).Little(1, 4).Little(1000, 4).SetLittle(image, 0x4000, 2);
    for (const size_t part : {image, chunks})
        bytes.SetLittle(part + 24, 1008, 8).SetLittle(part + 32, data, 8);
    ExpectRefused(bytes, "shared data");
    EXPECT_TRUE(Fits(bytes.SetLittle(image, 0x4200, 2))) << "one of them alone is good";

    bytes = Container().SetLittle(image, 0x4000, 2).SetLittle(image + 24, Container().Size(), 8);
    ExpectRefused(bytes.SetLittle(image + 32, 0, 8), "one part's data is the whole container");
}

TEST_F(GenDCLayout, OtherBuffersAreRefused)
{
    ExpectRefused(Chunk(1, 1), "chunks of USB3 Vision outside of a container");
}

} // namespace

// What a buffer costs: nothing of the heap, as long as the layout is the one of the buffer before.
#include "tests/unit/genicam/adapter_support.h"
#include "tests/unit/genicam/counted_new.h"

#include <GenApi/ChunkAdapterGEV.h>
#include <gtest/gtest.h>

namespace
{

using namespace GENAPI_NAMESPACE;
using koro::test::Bytes;
using koro::test::ChunkPortElement;
using koro::test::HeapBlock;
using koro::test::PortRegister;
using koro::test::SmallMap;

Bytes Buffer(uint32_t value)
{
    Bytes bytes = Bytes().Fill(64, 0xee).Big(7, 4).Big(64, 4);
    for (uint32_t id = 1; id <= 3; ++id)
        bytes.Little(value + id, 4).Big(id, 4).Big(4, 4);
    return bytes;
}

TEST(ChunkMemory, BuffersOfOneLayoutNeedNoHeap)
{
    const SmallMap map(
        ChunkPortElement("One", "1") + PortRegister("A", "One") +
        ChunkPortElement("Two", "2", "<CacheChunkData>Yes</CacheChunkData>") + PortRegister("B", "Two") +
        ChunkPortElement("Three", "112233445566778899aabbccddeeff00") + PortRegister("C", "Three") +
        "<Integer Name=\"Above\"><pValue>A</pValue></Integer>");
    CChunkAdapterGEV adapter(map.map);
    const CIntegerPtr a = map.Integer("A");
    const CIntegerPtr b = map.Integer("B");
    const HeapBlock first(Buffer(10));
    const HeapBlock second(Buffer(20));
    adapter.AttachBuffer(first.Data(), first.Size());
    a->GetValue();
    b->GetValue();

    const size_t before = koro::test::AllocationsSoFar().calls;
    AttachStatistics_t statistics = {};
    adapter.AttachBuffer(second.Data(), second.Size(), &statistics);
    const int64_t attached = a->GetValue() + b->GetValue();
    adapter.UpdateBuffer(first.Data());
    const int64_t updated = a->GetValue() + b->GetValue();
    adapter.CheckBufferLayout(first.Data(), first.Size());
    const size_t after = koro::test::AllocationsSoFar().calls;

    EXPECT_EQ(after - before, 0u);
    EXPECT_EQ(attached, 21 + 22);
    EXPECT_EQ(updated, 11 + 12);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
}

} // namespace

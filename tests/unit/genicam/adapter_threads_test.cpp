// Adapters at work while other threads use the nodes.
#include "tests/unit/genicam/adapter_support.h"

#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/EventAdapterGeneric.h>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using namespace GENAPI_NAMESPACE;
using koro::test::Bytes;
using koro::test::ChunkPortElement;
using koro::test::HeapBlock;
using koro::test::PortElement;
using koro::test::PortRegister;
using koro::test::SmallMap;

TEST(AdapterThreads, ReadersSeeWholeBuffers)
{
    const SmallMap map(
        ChunkPortElement("One", "1") + PortRegister("A", "One") + ChunkPortElement("Two", "2") +
        PortRegister("B", "Two") + PortElement("Event", "<EventID>3</EventID>") + PortRegister("C", "Event"));
    CChunkAdapterGEV chunks(map.map);
    CEventAdapterGeneric events(map.map);
    const auto buffer = [](uint32_t value) {
        return Bytes().Little(value, 4).Big(1, 4).Big(4, 4).Little(value, 4).Big(2, 4).Big(4, 4);
    };
    const HeapBlock ones(buffer(0x01010101));
    const HeapBlock twos(buffer(0x02020202));
    chunks.AttachBuffer(ones.Data(), ones.Size());
    events.DeliverMessage(ones.Data(), 4, 3);

    std::atomic<bool> over{false};
    int mixed = 0;
    std::thread reader([&] {
        const CIntegerPtr a = map.Integer("A");
        const CIntegerPtr b = map.Integer("B");
        const CIntegerPtr c = map.Integer("C");
        while (!over)
        {
            const AutoLock held(map.map->GetLock());
            const int64_t value = a->GetValue();
            if (b->GetValue() != value) ++mixed;
            if (c->GetValue() % 0x01010101 != 0) ++mixed;
        }
    });
    std::thread sender([&] {
        for (int i = 0; i < 500; ++i)
            events.DeliverMessage((i % 2 ? ones : twos).Data(), 4, 3);
    });
    for (int i = 0; i < 500; ++i)
    {
        const HeapBlock& next = i % 2 ? ones : twos;
        if (i % 3 == 0)
            chunks.AttachBuffer(next.Data(), next.Size());
        else
            chunks.UpdateBuffer(next.Data());
    }
    sender.join();
    over = true;
    reader.join();
    EXPECT_EQ(mixed, 0);
}

} // namespace

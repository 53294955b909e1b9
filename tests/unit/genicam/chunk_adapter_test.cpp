#include "tests/unit/genicam/adapter_support.h"

#include <GenApi/ChunkAdapterGEV.h>
#include <gtest/gtest.h>
#include <optional>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Bytes;
using koro::test::ChunkPortElement;
using koro::test::HeapBlock;
using koro::test::Listener;
using koro::test::ListenToAll;
using koro::test::ModeOf;
using koro::test::PortElement;
using koro::test::PortRegister;
using koro::test::Refusal;
using koro::test::SmallMap;

Bytes Chunk(uint32_t id, const Bytes& data)
{
    return Bytes(data).Big(id, 4).Big(data.Size(), 4);
}

Bytes Number(uint32_t id, uint32_t value)
{
    return Chunk(id, Bytes().Little(value, 4));
}

// A and B on ports of their own, with a feature above A.
const std::string elements = ChunkPortElement("One", "1") + PortRegister("A", "One") + ChunkPortElement("Two", "2") +
                             PortRegister("B", "Two") +
                             "<Integer Name=\"AboveA\"><pValue>A</pValue></Integer>"
                             "<Integer Name=\"Lone\"><Value>1</Value></Integer>";

class ChunkAdapter : public testing::Test
{
protected:
    ChunkAdapter() : map(elements), adapter(map.map) {}

    // Attaches a buffer that lives as long as the test.
    AttachStatistics_t Attach(const Bytes& bytes)
    {
        buffers.push_back(std::make_unique<HeapBlock>(bytes));
        AttachStatistics_t statistics = {-1, -1, -1};
        adapter.AttachBuffer(buffers.back()->Data(), buffers.back()->Size(), &statistics);
        return statistics;
    }

    std::vector<std::unique_ptr<HeapBlock>> buffers;
    SmallMap map;
    CChunkAdapterGEV adapter;
};

TEST(ChunkAdapterLife, PortsAreNotConnectedThenNotAvailableThenThere)
{
    const SmallMap map(elements);
    EXPECT_EQ(ModeOf(map, "One"), NI);
    EXPECT_EQ(ModeOf(map, "A"), NI);
    const HeapBlock buffer(Number(1, 5));
    {
        CChunkAdapterGEV adapter(map.map);
        EXPECT_EQ(ModeOf(map, "One"), NA);
        EXPECT_EQ(ModeOf(map, "A"), NA);
        adapter.AttachBuffer(buffer.Data(), buffer.Size());
        EXPECT_EQ(ModeOf(map, "One"), RW);
        EXPECT_EQ(ModeOf(map, "A"), RW);
        EXPECT_EQ(ModeOf(map, "Two"), NA) << "the buffer lacks its chunk";
        adapter.DetachBuffer();
        EXPECT_EQ(ModeOf(map, "One"), NA);
        EXPECT_EQ(ModeOf(map, "AboveA"), NA);
        adapter.AttachBuffer(buffer.Data(), buffer.Size());
    }
    EXPECT_EQ(ModeOf(map, "One"), NA) << "the end of an adapter leaves its ports not available";
    EXPECT_EQ(ModeOf(map, "A"), NA);
    EXPECT_THROW(map.Integer("A")->GetValue(), AccessException);
}

TEST(ChunkAdapterLife, AttachesItsMapLater)
{
    const SmallMap map(elements);
    CChunkAdapterGEV adapter;
    const HeapBlock buffer(Number(1, 5));
    AttachStatistics_t statistics = {-1, -1, -1};
    adapter.AttachBuffer(buffer.Data(), buffer.Size(), &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 0);
    EXPECT_EQ(statistics.NumChunks, 1) << "chunks count without a map, too";
    EXPECT_EQ(statistics.NumAttachedChunks, 0);
    EXPECT_THROW(adapter.AttachBuffer(buffer.Data(), buffer.Size() - 1), RuntimeException);
    adapter.UpdateBuffer(buffer.Data());
    adapter.DetachBuffer();
    adapter.ClearCaches();
    adapter.DetachNodeMap();

    adapter.AttachNodeMap(map.map);
    EXPECT_EQ(ModeOf(map, "A"), NA);
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
    adapter.DetachNodeMap();
    EXPECT_EQ(ModeOf(map, "A"), NA);
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(ModeOf(map, "A"), NA) << "the map is not the adapter's any more";
}

TEST(ChunkAdapterLife, ChangesFromOneMapToAnother)
{
    const SmallMap first(elements);
    const SmallMap second(elements);
    CChunkAdapterGEV adapter(first.map);
    const HeapBlock buffer(Number(1, 5));
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    adapter.AttachNodeMap(second.map);
    EXPECT_EQ(ModeOf(first, "A"), NA);
    EXPECT_EQ(ModeOf(second, "A"), NA);
    adapter.UpdateBuffer(buffer.Data());
    EXPECT_EQ(ModeOf(second, "A"), NA) << "the buffer belonged to the first map";
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(second.Integer("A")->GetValue(), 5);
    EXPECT_EQ(ModeOf(first, "A"), NA);
    adapter.AttachNodeMap(second.map);
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(second.Integer("A")->GetValue(), 5) << "the same map once more";
}

TEST(ChunkAdapterLife, OutlivesItsMap)
{
    std::optional<SmallMap> map(elements);
    CChunkAdapterGEV adapter(map->map);
    const HeapBlock buffer(Number(1, 5));
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    map.reset();
    adapter.UpdateBuffer(buffer.Data());
    adapter.DetachBuffer();
    adapter.ClearCaches();
    AttachStatistics_t statistics = {-1, -1, -1};
    adapter.AttachBuffer(buffer.Data(), buffer.Size(), &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 0);
    EXPECT_EQ(statistics.NumAttachedChunks, 0);
    map.emplace(elements);
    adapter.AttachNodeMap(map->map);
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(map->Integer("A")->GetValue(), 5);
    map.reset();
}

TEST(ChunkAdapterLife, SecondAdapterTakesThePortsAway)
{
    const SmallMap map(elements);
    const HeapBlock fives(Number(1, 5));
    const HeapBlock sixes(Number(1, 6));
    auto first = std::make_unique<CChunkAdapterGEV>(map.map);
    first->AttachBuffer(fives.Data(), fives.Size());
    CChunkAdapterGEV second(map.map);
    EXPECT_EQ(ModeOf(map, "A"), NA);
    second.AttachBuffer(sixes.Data(), sixes.Size());
    first->AttachBuffer(fives.Data(), fives.Size());
    EXPECT_EQ(map.Integer("A")->GetValue(), 6);
    first.reset();
    EXPECT_EQ(map.Integer("A")->GetValue(), 6) << "the end of the first is not the second's";
}

TEST(ChunkAdapterLife, PortThatTheApplicationConnectsIsItsOwn)
{
    SmallMap map(elements);
    map.port.bytes[0] = 9;
    {
        CChunkAdapterGEV adapter(map.map);
        ASSERT_TRUE(map.map->Connect(&map.port, "One"));
        EXPECT_EQ(map.Integer("A")->GetValue(), 9);
    }
    EXPECT_EQ(map.Integer("A")->GetValue(), 9);
    map.map->Connect(static_cast<IPort*>(nullptr), "One");
    EXPECT_EQ(ModeOf(map, "One"), NI);
}

TEST(ChunkAdapterLife, MapWithAPortThatRefusesIsNotAttached)
{
    const SmallMap good(elements);
    const SmallMap bad(
        elements + ChunkPortElement("Bus", "3") +
        "<ConfRom Name=\"Rom\"><Unit>0</Unit><Address>0</Address><Length>64</Length><pPort>Bus</pPort></ConfRom>");
    CChunkAdapterGEV adapter(good.map);
    const HeapBlock buffer(Number(1, 5));
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_THROW(adapter.AttachNodeMap(bad.map), RuntimeException);
    EXPECT_EQ(ModeOf(good, "A"), NA) << "the map of before went first";
    EXPECT_EQ(ModeOf(bad, "A"), NA);
    AttachStatistics_t statistics = {-1, -1, -1};
    adapter.AttachBuffer(buffer.Data(), buffer.Size(), &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 0);
    adapter.AttachNodeMap(good.map);
    adapter.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(good.Integer("A")->GetValue(), 5);
}

TEST(ChunkAdapterLife, MissingMapIsRefused)
{
    CChunkAdapterGEV adapter;
    EXPECT_THROW(adapter.AttachNodeMap(nullptr), InvalidArgumentException);
}

TEST_F(ChunkAdapter, CountsPortsChunksAndAttachments)
{
    const AttachStatistics_t all = Attach(Number(1, 5).Add(Number(3, 0)).Add(Number(2, 6)));
    EXPECT_EQ(all.NumChunkPorts, 2);
    EXPECT_EQ(all.NumChunks, 3);
    EXPECT_EQ(all.NumAttachedChunks, 2);
    const AttachStatistics_t none = Attach(Number(7, 5));
    EXPECT_EQ(none.NumChunkPorts, 2);
    EXPECT_EQ(none.NumChunks, 1);
    EXPECT_EQ(none.NumAttachedChunks, 0);
    EXPECT_EQ(ModeOf(map, "A"), NA);
    EXPECT_EQ(ModeOf(map, "B"), NA);
}

TEST_F(ChunkAdapter, PortWithoutItsChunkIsDetached)
{
    Attach(Number(1, 5).Add(Number(2, 6)));
    Attach(Number(2, 7));
    EXPECT_EQ(ModeOf(map, "A"), NA);
    EXPECT_EQ(map.Integer("B")->GetValue(), 7);
}

TEST_F(ChunkAdapter, OfTwoChunksWithOneIDTheFirstIsUsedAndBothCount)
{
    const AttachStatistics_t statistics = Attach(Number(1, 5).Add(Number(1, 6)).Add(Number(1, 7)));
    EXPECT_EQ(statistics.NumChunks, 3);
    EXPECT_EQ(statistics.NumAttachedChunks, 3);
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
}

TEST_F(ChunkAdapter, RefusedBufferLeavesWhatIsAttached)
{
    Attach(Number(1, 5));
    Listener listener;
    ListenToAll(map, listener);
    EXPECT_THROW(Attach(Number(1, 6).Add(Bytes{1})), RuntimeException);
    EXPECT_EQ(map.Integer("A")->GetValue(false, true), 5);
    EXPECT_EQ(listener.Take(), "");
    const HeapBlock moved(Number(1, 8));
    adapter.UpdateBuffer(moved.Data());
    EXPECT_EQ(map.Integer("A")->GetValue(), 8) << "the layout is that of the good buffer";
    adapter.DetachBuffer();
}

TEST_F(ChunkAdapter, ZeroLengthChunkHasNoBytes)
{
    Attach(Chunk(1, {}));
    EXPECT_EQ(ModeOf(map, "A"), RW);
    EXPECT_EQ(
        Refusal<RuntimeException>([&] { map.Integer("A")->GetValue(); }),
        "The access to 4 bytes at 0 is outside of the data, 0 bytes at 0.");
}

TEST_F(ChunkAdapter, LayoutMayChangeWithEachBuffer)
{
    for (uint32_t frame = 0; frame < 20; ++frame)
    {
        Bytes bytes = Chunk(99, Bytes().Fill(frame % 7, 0xee));
        if (frame % 2 == 0) bytes.Add(Number(1, frame));
        if (frame % 3 == 0) bytes.Add(Number(2, 100 + frame));
        Attach(bytes);
        EXPECT_EQ(ModeOf(map, "A"), frame % 2 == 0 ? RW : NA);
        EXPECT_EQ(ModeOf(map, "B"), frame % 3 == 0 ? RW : NA);
        if (frame % 2 == 0)
        {
            EXPECT_EQ(map.Integer("AboveA")->GetValue(), frame);
        }
        if (frame % 3 == 0)
        {
            EXPECT_EQ(map.Integer("B")->GetValue(), 100 + frame);
        }
    }
}

TEST_F(ChunkAdapter, UpdateMovesTheChunksWithoutLookingAtThem)
{
    Attach(Number(1, 5).Add(Number(2, 6)));
    const HeapBlock moved(Bytes().Little(50, 4).Fill(8, 0xff).Little(60, 4).Fill(8, 0xff));
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
    adapter.UpdateBuffer(moved.Data());
    EXPECT_EQ(map.Integer("A")->GetValue(), 50);
    EXPECT_EQ(map.Integer("AboveA")->GetValue(), 50);
    EXPECT_EQ(map.Integer("B")->GetValue(), 60);
    adapter.DetachBuffer();
}

TEST_F(ChunkAdapter, UpdateWithoutABufferDoesNothing)
{
    Listener listener;
    ListenToAll(map, listener);
    const HeapBlock buffer(Number(1, 5));
    adapter.UpdateBuffer(buffer.Data());
    adapter.UpdateBuffer(nullptr);
    EXPECT_EQ(ModeOf(map, "A"), NA);
    Attach(Number(1, 5));
    adapter.DetachBuffer();
    listener.Take();
    adapter.UpdateBuffer(buffer.Data());
    EXPECT_EQ(ModeOf(map, "A"), NA);
    EXPECT_EQ(listener.Take(), "");
}

TEST_F(ChunkAdapter, UpdateToNullIsRefused)
{
    Attach(Number(1, 5));
    EXPECT_THROW(adapter.UpdateBuffer(nullptr), InvalidArgumentException);
    EXPECT_EQ(map.Integer("A")->GetValue(false, true), 5);
}

TEST_F(ChunkAdapter, AttachUpdateAndDetachFireTheNodesOfAllChunkPorts)
{
    Listener listener;
    ListenToAll(map, listener);
    const std::string all = "A AboveA B One Two";
    Attach(Number(1, 5));
    EXPECT_EQ(listener.Take(), all);
    Attach(Number(9, 5));
    EXPECT_EQ(listener.Take(), all) << "none of the chunks is known";
    adapter.UpdateBuffer(buffers.back()->Data());
    EXPECT_EQ(listener.Take(), all);
    adapter.DetachBuffer();
    EXPECT_EQ(listener.Take(), all);
    adapter.DetachBuffer();
    EXPECT_EQ(listener.Take(), "") << "nothing was attached";
    Attach(Number(1, 5));
    listener.Take();
    adapter.DetachNodeMap();
    EXPECT_EQ(listener.Take(), all);
}

TEST_F(ChunkAdapter, NodeAboveSeveralPortsIsFiredOnce)
{
    const SmallMap both(
        elements + "<IntSwissKnife Name=\"Sum\"><pVariable Name=\"A\">A</pVariable><pVariable Name=\"B\">B</pVariable>"
                   "<Formula>A+B</Formula></IntSwissKnife>");
    Listener listener;
    ListenToAll(both, listener);
    CChunkAdapterGEV other(both.map);
    const HeapBlock buffer(Number(1, 5).Add(Number(2, 6)));
    other.AttachBuffer(buffer.Data(), buffer.Size());
    EXPECT_EQ(listener.Take(), "A AboveA B One Sum Two");
    EXPECT_EQ(both.Integer("Sum")->GetValue(), 11);
}

// All callbacks of the type "inside" come first.
struct Order
{
    void Inside(INode*) { text += 'i'; }
    void Outside(INode*) { text += 'o'; }
    std::string text;
};

TEST_F(ChunkAdapter, CallbacksInsideTheLockComeFirstAndSeeTheNewValues)
{
    Order order;
    int64_t seenA = 0;
    int64_t seenB = 0;
    const std::function<void(INode*)> lookAtBoth = [&](INode*) {
        if (!IsReadable(map.Node("B"))) return; // the end of the test
        seenA = map.Integer("A")->GetValue();
        seenB = map.Integer("B")->GetValue();
    };
    for (const char* const node : {"One", "A", "Two", "B"})
    {
        Register(map.Node(node), order, &Order::Outside, cbPostOutsideLock);
        Register(map.Node(node), order, &Order::Inside, cbPostInsideLock);
        Register(map.Node(node), lookAtBoth);
    }
    Attach(Number(1, 5).Add(Number(2, 6)));
    EXPECT_EQ(order.text, "iiiioooo");
    EXPECT_EQ(seenA, 5);
    EXPECT_EQ(seenB, 6) << "also for the callback of the first port";
    adapter.DetachNodeMap(); // while what the callbacks refer to is there
}

TEST_F(ChunkAdapter, CallbackMayDetachTheBuffer)
{
    int calls = 0;
    const std::function<void(INode*)> detach = [&](INode*) {
        if (++calls == 1) adapter.DetachBuffer();
    };
    Register(map.Node("A"), detach);
    Attach(Number(1, 5));
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(ModeOf(map, "A"), NA);
    adapter.DetachNodeMap();
}

TEST(ChunkAdapterLife, CallbackMayEndTheAdapter)
{
    const SmallMap map(elements);
    for (const ECallbackType type : {cbPostInsideLock, cbPostOutsideLock})
    {
        auto adapter = std::make_unique<CChunkAdapterGEV>(map.map);
        const std::function<void(INode*)> end = [&](INode*) { std::unique_ptr<CChunkAdapterGEV>().swap(adapter); };
        const intptr_t handle = Register(map.Node("A"), end, type);
        const HeapBlock buffer(Number(1, 5));
        adapter->AttachBuffer(buffer.Data(), buffer.Size());
        EXPECT_EQ(adapter, nullptr);
        EXPECT_EQ(ModeOf(map, "A"), NA);
        map.Node("A")->DeregisterCallback(handle);
    }
}

TEST_F(ChunkAdapter, CallbackThatThrowsLeavesTheBufferAttached)
{
    bool throws = true;
    const std::function<void(INode*)> fail = [&](INode*) {
        if (throws) throw std::string("of the application");
    };
    Register(map.Node("A"), fail);
    EXPECT_THROW(Attach(Number(1, 5)), std::string);
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
    EXPECT_TRUE(map.map->GetLock().TryLock()) << "the lock was given back";
    map.map->GetLock().Unlock();
    {
        CChunkAdapterGEV second(map.map);
        second.AttachNodeMap(map.map);
        const HeapBlock buffer(Number(1, 6));
        EXPECT_THROW(second.AttachBuffer(buffer.Data(), buffer.Size()), std::string);
    } // its end fires the callback again, and must not throw
    EXPECT_EQ(ModeOf(map, "A"), NA);
    throws = false;
    adapter.DetachNodeMap();
}

} // namespace

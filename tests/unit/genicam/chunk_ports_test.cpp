#include "tests/unit/genicam/adapter_support.h"

#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterGeneric.h>
#include <gtest/gtest.h>
#include <limits>
#include <string.h>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Bytes;
using koro::test::ChunkPortElement;
using koro::test::HeapBlock;
using koro::test::ModeOf;
using koro::test::PortElement;
using koro::test::PortRegister;
using koro::test::Refusal;
using koro::test::SmallMap;

Bytes Chunk(uint32_t id, const Bytes& data)
{
    return Bytes(data).Big(id, 4).Big(data.Size(), 4);
}

void Attach(CChunkAdapter& adapter, const HeapBlock& buffer, AttachStatistics_t* statistics = nullptr)
{
    adapter.AttachBuffer(buffer.Data(), buffer.Size(), statistics);
}

TEST(ChunkPorts, SeveralOfOneIDAreAllServed)
{
    const SmallMap map(
        ChunkPortElement("One", "8001") + PortRegister("A", "One") + ChunkPortElement("Same", "00008001") +
        PortRegister("B", "Same", "2", 2) + ChunkPortElement("Other", "8002") + PortRegister("C", "Other"));
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Chunk(0x8001, Bytes{1, 2, 3, 4}));
    AttachStatistics_t statistics = {};
    Attach(adapter, buffer, &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 3);
    EXPECT_EQ(statistics.NumChunks, 1);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x04030201);
    EXPECT_EQ(map.Integer("B")->GetValue(), 0x0403);
    EXPECT_EQ(ModeOf(map, "C"), NA);
}

TEST(ChunkPorts, IDsAreNumbers)
{
    const char* const good[] = {"abcd", "ABCD", "0000abcd", "0xABCD", "0aBcD", " abcd\n", "000000000000000000000abcd"};
    const char* const bad[] = {"1abcd", "abc", "10000abcd", "abcd0", "a bcd", "abcdg", "-abcd", "0x", ""};
    const HeapBlock buffer(Chunk(0xabcd, Bytes{1, 2, 3, 4}));
    for (const char* const id : good)
    {
        const SmallMap map(ChunkPortElement("One", id) + PortRegister("A", "One"));
        CChunkAdapterGEV adapter(map.map);
        Attach(adapter, buffer);
        EXPECT_EQ(ModeOf(map, "A"), RW) << id;
    }
    for (const char* const id : bad)
    {
        const SmallMap map(ChunkPortElement("One", id) + PortRegister("A", "One"));
        CChunkAdapterGEV adapter(map.map);
        AttachStatistics_t statistics = {};
        Attach(adapter, buffer, &statistics);
        EXPECT_EQ(ModeOf(map, "A"), NA) << id;
        EXPECT_EQ(statistics.NumChunkPorts, 1) << id;
        EXPECT_EQ(statistics.NumAttachedChunks, 0) << id;
    }
}

TEST(ChunkPorts, IDZeroIsAnID)
{
    const SmallMap map(
        ChunkPortElement("One", "00000000") + PortRegister("A", "One") + ChunkPortElement("None", "no id") +
        PortRegister("B", "None"));
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Chunk(0, Bytes{7, 0, 0, 0}));
    AttachStatistics_t statistics = {};
    Attach(adapter, buffer, &statistics);
    EXPECT_EQ(statistics.NumAttachedChunks, 1);
    EXPECT_EQ(map.Integer("A")->GetValue(), 7);
    EXPECT_EQ(ModeOf(map, "B"), NA);
}

TEST(ChunkPorts, IDOfAnotherNodeIsReadWhenABufferIsAttached)
{
    const SmallMap map(
        "<String Name=\"Text\"><Value>1</Value></String>" + PortElement("One", "<pChunkID>Text</pChunkID>") +
        PortRegister("A", "One") + ChunkPortElement("Fixed", "2") + PortRegister("B", "Fixed"));
    const CStringPtr text = map.Node("Text");
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Chunk(1, Bytes{1, 0, 0, 0}).Add(Chunk(2, Bytes{2, 0, 0, 0})));
    AttachStatistics_t statistics = {};
    Attach(adapter, buffer, &statistics);
    EXPECT_EQ(statistics.NumChunkPorts, 2);
    EXPECT_EQ(map.Integer("A")->GetValue(), 1);
    text->SetValue("0002");
    EXPECT_EQ(map.Integer("A")->GetValue(), 1);
    adapter.UpdateBuffer(buffer.Data());
    EXPECT_EQ(map.Integer("A")->GetValue(), 1) << "an update asks for no id";
    Attach(adapter, buffer, &statistics);
    EXPECT_EQ(map.Integer("A")->GetValue(), 2);
    EXPECT_EQ(statistics.NumAttachedChunks, 2);
    text->SetValue("nothing");
    Attach(adapter, buffer);
    EXPECT_EQ(ModeOf(map, "A"), NA);
    EXPECT_EQ(map.Integer("B")->GetValue(), 2);
}

TEST(ChunkPorts, IDThatCannotBeReadIsNone)
{
    SmallMap map(
        "<StringReg Name=\"Text\"><Address>0x100</Address><Length>8</Length><AccessMode>RO</AccessMode>"
        "<pPort>Device</pPort><Cachable>NoCache</Cachable></StringReg>" +
        PortElement("One", "<pChunkID>Text</pChunkID>") + PortRegister("A", "One"));
    map.port.mode = NA;
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Chunk(1, Bytes{1, 0, 0, 0}));
    Attach(adapter, buffer);
    EXPECT_EQ(ModeOf(map, "A"), NA);
    map.port.mode = RW;
    map.port.bytes[0x100] = '1';
    map.map->InvalidateNodes();
    Attach(adapter, buffer);
    EXPECT_EQ(map.Integer("A")->GetValue(), 1);

    map.port.onRead = [] { throw std::string("of the device"); };
    const HeapBlock next(Chunk(1, Bytes{2, 0, 0, 0}));
    EXPECT_THROW(Attach(adapter, next), std::string);
    EXPECT_EQ(map.Integer("A")->GetValue(false, true), 1) << "what was attached stays";
}

TEST(ChunkPorts, IDThatWasReadBeforeAFailureCountsForTheNextBuffer)
{
    const auto textAt = [](const std::string& name, const std::string& address) {
        return "<StringReg Name=\"" + name + "\"><Address>" + address +
               "</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>"
               "<Cachable>NoCache</Cachable></StringReg>";
    };
    SmallMap map(
        textAt("FirstText", "0x100") + textAt("SecondText", "0x200") +
        PortElement("One", "<pChunkID>FirstText</pChunkID>") + PortRegister("A", "One") +
        PortElement("Two", "<pChunkID>SecondText</pChunkID>") + PortRegister("B", "Two"));
    map.port.bytes[0x100] = '1';
    map.port.bytes[0x200] = '2';
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(
        Chunk(1, Bytes{1, 0, 0, 0}).Add(Chunk(2, Bytes{2, 0, 0, 0})).Add(Chunk(0x132, Bytes{3, 0, 0, 0})));
    Attach(adapter, buffer);
    EXPECT_EQ(map.Integer("A")->GetValue(), 1);

    map.port.bytes[0x101] = '3';
    map.port.bytes[0x102] = '2';
    int left = 1;
    map.port.onRead = [&left] {
        if (left-- == 0) throw std::string("of the device");
    };
    EXPECT_THROW(Attach(adapter, buffer), std::string);
    map.port.onRead = nullptr;
    Attach(adapter, buffer);
    EXPECT_EQ(map.Integer("A")->GetValue(), 3);
    EXPECT_EQ(map.Integer("B")->GetValue(), 2);
}

TEST(ChunkPorts, AccessOutsideOfTheDataIsRefused)
{
    const SmallMap map(
        ChunkPortElement("One", "1") + PortRegister("Last", "One", "4") + PortRegister("OneTooFar", "One", "5") +
        PortRegister("Behind", "One", "8") + PortRegister("Far", "One", "0x7ffffffffffffff0") +
        PortRegister("Negative", "One", "-1") + PortRegister("MostNegative", "One", "-9223372036854775808"));
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Bytes(Chunk(9, Bytes{9, 9, 9, 9})).Add(Chunk(1, Bytes{1, 2, 3, 4, 5, 6, 7, 8})));
    Attach(adapter, buffer);
    EXPECT_EQ(map.Integer("Last")->GetValue(), 0x08070605);
    for (const char* const node : {"OneTooFar", "Behind", "Far", "Negative", "MostNegative"})
    {
        EXPECT_THROW(map.Integer(node)->GetValue(), RuntimeException) << node;
        EXPECT_THROW(map.Integer(node)->SetValue(1), RuntimeException) << node;
    }
    EXPECT_EQ(
        Refusal<RuntimeException>([&] { map.Integer("OneTooFar")->GetValue(); }),
        "The access to 4 bytes at 5 is outside of the data, 8 bytes at 0.");
    try
    {
        map.Integer("Negative")->GetValue();
    }
    catch (const RuntimeException& exception)
    {
        const std::string text = exception.what();
        EXPECT_NE(text.find("in node 'One' while calling 'Negative.GetValue()'"), text.npos) << text;
    }
}

TEST(ChunkPorts, WritingChangesTheBuffer)
{
    const SmallMap map(ChunkPortElement("One", "1") + PortRegister("A", "One", "1", 2, "BigEndian"));
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Chunk(1, Bytes{0, 0, 0, 0}));
    Attach(adapter, buffer);
    map.Integer("A")->SetValue(0x1234);
    EXPECT_EQ(buffer.Data()[0], 0);
    EXPECT_EQ(buffer.Data()[1], 0x12);
    EXPECT_EQ(buffer.Data()[2], 0x34);
    EXPECT_EQ(buffer.Data()[3], 0);
}

TEST(ChunkPorts, TwoRegistersTellWhereTheDataLies)
{
    const SmallMap map(
        ChunkPortElement("One", "1") + PortRegister("Base", "One", "0x7fffffffffffffff", 8) +
        PortRegister("Length", "One", "0x7ffffffffffffff0", 8) + PortRegister("Part", "One", "0x7fffffffffffffff"));
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Chunk(9, Bytes{1}).Add(Chunk(1, Bytes{1, 2, 3})));
    Attach(adapter, buffer);
    EXPECT_EQ(map.Integer("Base")->GetValue(), reinterpret_cast<intptr_t>(buffer.Data() + 9));
    EXPECT_EQ(map.Integer("Length")->GetValue(), 3);
    EXPECT_THROW(map.Integer("Part")->GetValue(), RuntimeException);
    EXPECT_THROW(map.Integer("Base")->SetValue(0), RuntimeException) << "only to be read";
}

TEST(ChunkPorts, SwappingPortTurnsEachAccessAround)
{
    const SmallMap map(
        ChunkPortElement("One", "1", "<SwapEndianess>Yes</SwapEndianess>") + PortRegister("A", "One") +
        PortRegister("B", "One", "0", 2));
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Chunk(1, Bytes{1, 2, 3, 4}));
    Attach(adapter, buffer);
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x01020304);
    EXPECT_EQ(map.Integer("B")->GetValue(), 0x0102);
    map.Integer("A")->SetValue(0x0a0b0c0d);
    EXPECT_EQ(buffer.Data()[0], 0x0a);
    EXPECT_EQ(buffer.Data()[3], 0x0d);
}

const std::string copied = ChunkPortElement("Copied", "1", "<CacheChunkData>Yes</CacheChunkData>") +
                           PortRegister("A", "Copied") + ChunkPortElement("Plain", "1") + PortRegister("B", "Plain");

TEST(ChunkCopies, OutliveTheBufferWhereThePortAsksForThem)
{
    const SmallMap map(copied);
    CChunkAdapterGEV adapter(map.map);
    {
        const HeapBlock buffer(Chunk(1, Bytes{1, 2, 3, 4}));
        Attach(adapter, buffer);
        buffer.Data()[0] = 9;
        EXPECT_EQ(map.Integer("A")->GetValue(), 0x04030201) << "a copy";
        EXPECT_EQ(map.Integer("B")->GetValue(), 0x04030209) << "the buffer itself";
        map.Integer("A")->SetValue(5);
        EXPECT_EQ(buffer.Data()[0], 9) << "the buffer might be gone";
    }
    EXPECT_EQ(map.Integer("A")->GetValue(false, true), 5);
}

TEST(ChunkCopies, AreMadeUpToTheLimitOfTheAdapter)
{
    const struct
    {
        int64_t limit;
        int64_t value; // after the first byte of the buffer became 9
    } cases[] = {{-1, 1}, {4, 1}, {5, 1}, {3, 9}, {0, 9}};
    for (const auto& [limit, value] : cases)
    {
        const SmallMap map(copied);
        CChunkAdapterGEV adapter(map.map, limit);
        const HeapBlock buffer(Chunk(1, Bytes{1, 0, 0, 0}));
        Attach(adapter, buffer);
        buffer.Data()[0] = 9;
        EXPECT_EQ(map.Integer("A")->GetValue(), value) << "limit " << limit;
    }
}

TEST(ChunkCopies, AreMadeAnewByAttachAndUpdate)
{
    const SmallMap map(copied);
    CChunkAdapterGEV adapter(map.map);
    {
        const HeapBlock first(Chunk(1, Bytes{1, 0, 0, 0}));
        Attach(adapter, first);
        const HeapBlock second(Chunk(1, Bytes{2, 0, 0, 0}));
        adapter.UpdateBuffer(second.Data());
    }
    EXPECT_EQ(map.Integer("A")->GetValue(), 2);
    {
        const HeapBlock longer(Chunk(1, Bytes{3, 0, 0, 0, 0, 0, 0, 0}));
        Attach(adapter, longer);
    }
    EXPECT_EQ(map.Integer("A")->GetValue(), 3);
}

TEST(ChunkCopies, AreDroppedOnDemand)
{
    const SmallMap map(copied);
    CChunkAdapterGEV adapter(map.map);
    const HeapBlock buffer(Chunk(1, Bytes{1, 0, 0, 0}));
    Attach(adapter, buffer);
    EXPECT_EQ(map.Integer("A")->GetValue(), 1);
    buffer.Data()[0] = 9;
    adapter.ClearCaches();
    EXPECT_EQ(map.Integer("A")->GetValue(), 9) << "read from the buffer";
    adapter.UpdateBuffer(buffer.Data());
    buffer.Data()[0] = 10;
    EXPECT_EQ(map.Integer("A")->GetValue(), 9) << "a copy again";
    adapter.DetachBuffer();
    EXPECT_EQ(ModeOf(map, "A"), NA) << "a copy ends with its attachment";
}

TEST(ChunkCopies, TooMuchMemoryIsRefusedBeforeAnythingChanges)
{
    const SmallMap map(copied);
    CChunkAdapterGeneric adapter(map.map);
    const HeapBlock buffer(Bytes{1, 0, 0, 0});
    SingleChunkData_t good[] = {{1, 0, 4}};
    adapter.AttachBuffer(buffer.Data(), good, 1);
    SingleChunkData_t huge[] = {{1, 0, static_cast<size_t>(1) << 60}};
    EXPECT_EQ(
        Refusal<RuntimeException>([&] { adapter.AttachBuffer(buffer.Data(), huge, 1); }),
        "The copies of the chunks would take too much memory");
    EXPECT_EQ(map.Integer("A")->GetValue(false, true), 1);
    EXPECT_EQ(map.Integer("B")->GetValue(false, true), 1);
}

TEST(ChunkCopies, AreBoundedTogether)
{
    const SmallMap map(
        copied + ChunkPortElement("Other", "2", "<CacheChunkData>Yes</CacheChunkData>") + PortRegister("C", "Other"));
    CChunkAdapterGeneric adapter(map.map);
    const HeapBlock buffer(Bytes{1, 0, 0, 0});
    const size_t moreThanHalf = (128u << 20) + 1; // bytes; the bound is 256 MiB
    SingleChunkData_t two[] = {{1, 0, moreThanHalf}, {2, 0, moreThanHalf}};
    EXPECT_EQ(
        Refusal<RuntimeException>([&] { adapter.AttachBuffer(buffer.Data(), two, 2); }),
        "The copies of the chunks would take too much memory");
    EXPECT_EQ(ModeOf(map, "C"), NA);
}

IPort* PortOf(const SmallMap& map, const char* name)
{
    return dynamic_cast<IPort*>(map.Node(name));
}

TEST(ChunkPortAlone, ServesAPortNode)
{
    const SmallMap map(ChunkPortElement("One", "0ab1") + PortRegister("A", "One") + PortElement("NoChunk", ""));
    CChunkPort port;
    EXPECT_FALSE(port.AttachPort(nullptr));
    EXPECT_FALSE(port.AttachPort(PortOf(map, "NoChunk")));
    ASSERT_TRUE(port.AttachPort(PortOf(map, "One")));
    EXPECT_EQ(port.GetChunkIDLength(), 2);
    EXPECT_EQ(port.GetSwapEndianess(), No);
    const HeapBlock buffer(Bytes{9, 1, 2, 3, 4});
    port.AttachChunk(buffer.Data(), 1, 4, true);
    EXPECT_EQ(port.GetAccessMode(), RW);
    port.InvalidateNode();
    EXPECT_EQ(map.Integer("A")->GetValue(), 0x04030201);
    const HeapBlock moved(Bytes{9, 5, 0, 0, 0});
    port.UpdateBuffer(moved.Data());
    port.ClearCache();
    port.InvalidateNode();
    EXPECT_EQ(map.Integer("A")->GetValue(), 5);
    EXPECT_THROW(port.UpdateBuffer(nullptr), InvalidArgumentException);
    EXPECT_THROW(port.AttachChunk(nullptr, 0, 1, false), InvalidArgumentException);
    EXPECT_THROW(port.AttachChunk(buffer.Data(), -1, 1, false), InvalidArgumentException);
    EXPECT_THROW(port.AttachChunk(buffer.Data(), 0, -1, false), InvalidArgumentException);
    port.DetachChunk();
    port.InvalidateNode();
    EXPECT_EQ(ModeOf(map, "A"), NA);
    port.SetPortImpl(nullptr);
    EXPECT_EQ(ModeOf(map, "One"), NA);
}

TEST(ChunkPortAlone, ComparesIDsAsNumbers)
{
    const SmallMap map(ChunkPortElement("One", "000ab1"));
    CChunkPort port(PortOf(map, "One"));
    EXPECT_TRUE(port.CheckChunkID(0xab1));
    EXPECT_FALSE(port.CheckChunkID(0xab10));
    uint8_t exact[] = {0x00, 0x0a, 0xb1};
    uint8_t longer[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x0a, 0xb1};
    uint8_t other[] = {1, 0x0a, 0xb1};
    EXPECT_TRUE(port.CheckChunkID(exact, 3));
    EXPECT_TRUE(port.CheckChunkID(exact + 1, 2));
    EXPECT_TRUE(port.CheckChunkID(longer, 12));
    EXPECT_FALSE(port.CheckChunkID(other, 3));
    EXPECT_FALSE(port.CheckChunkID(exact, 2));
    EXPECT_FALSE(port.CheckChunkID(exact, 0));
    EXPECT_FALSE(port.CheckChunkID(exact, -1));
    EXPECT_FALSE(port.CheckChunkID(nullptr, 3));
    EXPECT_FALSE(CChunkPort().CheckChunkID(0)) << "without a node there is no id";
}

TEST(ChunkPortAlone, OutlivesItsMap)
{
    CChunkPort port;
    {
        const SmallMap map(ChunkPortElement("One", "1"));
        ASSERT_TRUE(port.AttachPort(PortOf(map, "One")));
    }
    port.InvalidateNode();
    uint8_t byte = 0;
    EXPECT_THROW(port.Read(&byte, 0, 1), RuntimeException);
    port.DetachPort();
}

} // namespace

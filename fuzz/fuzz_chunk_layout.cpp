// Buffers with chunks. The first byte selects the layout; the rest is the buffer, in a heap block of its size. The
// nodes are compared with a second parser of the buffer.
#include "fuzz/chunk_reading.h"
#include "fuzz/fuzz_target.h"

#include <GenApi/ChunkAdapterDcam.h>
#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterGenDC.h>
#include <GenApi/ChunkAdapterGeneric.h>
#include <GenApi/ChunkAdapterU3V.h>
#include <GenApi/NodeMapFactory.h>
#include <GenApi/NodeMapRef.h>
#include <GenICam.h>
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace
{

using namespace GENAPI_NAMESPACE;
using GENICAM_NAMESPACE::RuntimeException;
using namespace koro::fuzz;

enum Form
{
    gigEVision,
    usb3Vision,
    dcam,
    genDC,
    listed,
    formCount
};

// Not for GenDC, which is only compared with itself.
Reading Read(Form form, const Bytes& bytes)
{
    return form == dcam ? ReadDcam(bytes) : ReadTrailers(bytes, form == gigEVision);
}

// A valid buffer, which is attached before the one of the fuzzer.
Bytes Baseline(Form form)
{
    switch (form)
    {
    case gigEVision:
        return {7, 8, 9, 0, 0, 0, 1, 0, 0, 0, 3};
    case usb3Vision:
        return {7, 8, 9, 1, 0, 0, 0, 3, 0, 0, 0};
    case dcam:
        return {7,    8,    9,    0,    0,    0x34, 0x3b, 0x84, 0x1b, 0xd8, 0x11, 0x83, 0xb3, 0,
                0x10, 0x5a, 0x5b, 0xae, 0x55, 27,   0,    0,    0,    0xe4, 0xff, 0xff, 0xff};
    default:
        return {};
    }
}

struct Port
{
    const char* name;
    const char* id; // digits without leading zeros
    bool copied;
};
const Port ports[] = {
    {"One", "1", false},
    {"OneCopied", "1", true},
    {"Two", "2", false},
    {"Zero", "", false},
    {"Wide", "4e00343b841bd81183b300105a5bae55", false},
    {"Zeros", "343b841bd81183b300105a5bae55", true}};

INodeMap* MakeMap()
{
    std::string text = "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" "
                       "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
                       "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"p\" "
                       "VersionGuid=\"v\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">";
    for (const Port& port : ports)
    {
        text += std::string("<Port Name=\"") + port.name + "\"><ChunkID>00" + port.id + "</ChunkID>";
        if (port.copied) text += "<CacheChunkData>Yes</CacheChunkData>";
        text += std::string("</Port><IntReg Name=\"First") + port.name +
                "\"><Address>0</Address><Length>1</Length><AccessMode>RW</AccessMode><pPort>" + port.name +
                "</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
    }
    CNodeMapFactory factory((text + "</RegisterDescription>").c_str());
    return factory.CreateNodeMap();
}

IPort& PortOf(INodeMap& map, const Port& port)
{
    return *dynamic_cast<IPort*>(map.GetNode(port.name));
}

bool IsAttached(INodeMap& map, const Port& port)
{
    return PortOf(map, port).GetAccessMode() == RW;
}

std::uint64_t RegisterOf(INodeMap& map, const Port& port, std::int64_t address)
{
    std::uint64_t number = 0;
    PortOf(map, port).Read(&number, address, sizeof number);
    return number;
}

std::uint64_t LengthOf(INodeMap& map, const Port& port)
{
    return RegisterOf(map, port, INT64_MAX - 15);
}

Bytes DataOf(INodeMap& map, const Port& port)
{
    Bytes data(LengthOf(map, port));
    if (!data.empty()) PortOf(map, port).Read(data.data(), 0, static_cast<std::int64_t>(data.size()));
    return data;
}

// The lengths of the attached chunks, as a trace of the state.
std::vector<std::uint64_t> TraceOf(INodeMap& map)
{
    std::vector<std::uint64_t> trace;
    for (const Port& port : ports)
        trace.push_back(IsAttached(map, port) ? RegisterOf(map, port, INT64_MAX) + LengthOf(map, port) : 1);
    return trace;
}

bool Throws(const auto& call)
{
    try
    {
        call();
        return false;
    }
    catch (const RuntimeException& exception)
    {
        Require(exception.GetDescription()[0] != '\0', "a refusal says why");
        return true;
    }
}

void CheckPort(INodeMap& map, const Port& port, const std::vector<FoundChunk>& chunks, const std::uint8_t* base)
{
    const FoundChunk* first = nullptr;
    for (const FoundChunk& chunk : chunks)
    {
        if (chunk.id == port.id && (!first || chunk.offset < first->offset)) first = &chunk;
    }
    Require(IsAttached(map, port) == (first != nullptr), "a port is attached when its chunk is there");
    if (!first) return;
    Require(LengthOf(map, port) == first->length, "the length is that of the chunk");
    const Bytes data = DataOf(map, port);
    Require(
        data.empty() || std::memcmp(data.data(), base + first->offset, data.size()) == 0, "the data is the chunk's");
    std::uint8_t byte = 0;
    const std::int64_t end = static_cast<std::int64_t>(first->length);
    Require(Throws([&] { PortOf(map, port).Read(&byte, end, 1); }), "nothing is read behind the chunk");
    Require(Throws([&] { PortOf(map, port).Read(&byte, -1, 1); }), "nothing is read before the chunk");
    const CIntegerPtr node = map.GetNode((std::string("First") + port.name).c_str());
    if (!data.empty()) Require(node->GetValue() == data[0], "nodes see the chunk");
}

void CheckShown(INodeMap& map, CChunkAdapter& adapter, const Reading& expected, const Bytes& bytes, std::uint8_t* block)
{
    for (const Port& port : ports)
        CheckPort(map, port, expected.chunks, block);

    const std::unique_ptr<std::uint8_t[]> moved(new std::uint8_t[bytes.size()]);
    std::transform(
        bytes.begin(), bytes.end(), moved.get(), [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
    adapter.UpdateBuffer(moved.get());
    for (const Port& port : ports)
        CheckPort(map, port, expected.chunks, moved.get());
    adapter.DetachBuffer();
}

void CheckLayout(Form form, INodeMap& map, CChunkAdapter& adapter, const Bytes& bytes)
{
    Bytes baseline = Baseline(form);
    if (!baseline.empty()) adapter.AttachBuffer(baseline.data(), static_cast<std::int64_t>(baseline.size()));
    const std::vector<std::uint64_t> before = TraceOf(map);
    const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    const std::int64_t size = static_cast<std::int64_t>(bytes.size());
    AttachStatistics_t statistics = {-1, -1, -1};
    const bool good = adapter.CheckBufferLayout(block.get(), size);
    const bool refused = Throws([&] { adapter.AttachBuffer(block.get(), size, &statistics); });
    Require(good != refused, "both answers agree");
    if (refused) Require(TraceOf(map) == before, "a refused buffer leaves the ports");
    if (refused) Require(statistics.NumChunks == -1, "a refused buffer has no statistics");
    if (form == genDC)
    {
        for (const Port& port : ports)
        {
            if (IsAttached(map, port)) Require(DataOf(map, port).size() <= bytes.size(), "chunks lie in the buffer");
        }
    }
    else
    {
        const Reading expected = Read(form, bytes);
        Require(good == expected.good, "the second reading agrees");
        if (good) Require(statistics.NumChunks == static_cast<int>(expected.chunks.size()), "all chunks count");
        if (good) CheckShown(map, adapter, expected, bytes, block.get());
    }
    adapter.DetachBuffer();
    for (const Port& port : ports)
        Require(!IsAttached(map, port), "nothing is attached any more");
}

void CheckDcam(INodeMap& map, const Bytes& bytes)
{
    CChunkAdapterDcam adapter(&map);
    const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    const std::int64_t size = static_cast<std::int64_t>(bytes.size());
    const bool has = adapter.HasCRC(block.get(), size);
    const bool throws = Throws([&] { adapter.CheckCRC(block.get(), size); });
    Require(has != throws, "only a checksum that is there is checked");
    CheckLayout(dcam, map, adapter, bytes);
}

// The bytes become a list: id, offset and length. Nothing is read through the list, since its offsets are arbitrary.
void CheckListed(INodeMap& map, const Bytes& bytes)
{
    CChunkAdapterGeneric adapter(&map, 0);
    std::vector<SingleChunkData_t> list;
    bool good = true;
    for (std::size_t at = 0; at + 24 <= bytes.size(); at += 24)
    {
        SingleChunkData_t record;
        record.ChunkID = NumberAt(bytes, at, 8, false);
        record.ChunkOffset = static_cast<std::ptrdiff_t>(NumberAt(bytes, at + 8, 8, false));
        record.ChunkLength = NumberAt(bytes, at + 16, 8, false);
        good = good && record.ChunkOffset >= 0 &&
               record.ChunkLength <=
                   static_cast<std::uint64_t>(PTRDIFF_MAX) - static_cast<std::uint64_t>(record.ChunkOffset);
        list.push_back(record);
    }
    std::uint8_t block[8] = {};
    SingleChunkData_t baseline[] = {{1, 0, 3}, {2, 1, 4}};
    adapter.AttachBuffer(block, baseline, 2);
    const std::vector<std::uint64_t> before = TraceOf(map);
    AttachStatistics_t statistics = {};
    const bool refused =
        Throws([&] { adapter.AttachBuffer(block, list.data(), static_cast<std::int64_t>(list.size()), &statistics); });
    Require(good != refused, "offsets and lengths are within the address space");
    if (refused)
        Require(TraceOf(map) == before, "a refused list leaves the ports");
    else
        Require(statistics.NumChunks == static_cast<int>(list.size()), "all chunks count");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static INodeMap& map = *MakeMap(); // lives as long as the process
    if (size == 0) return 0;
    const Form form = static_cast<Form>(data[0] % formCount);
    const Bytes bytes(data + 1, data + size);
    std::unique_ptr<CChunkAdapter> adapter;
    switch (form)
    {
    case gigEVision:
        adapter = std::make_unique<CChunkAdapterGEV>(&map);
        break;
    case usb3Vision:
        adapter = std::make_unique<CChunkAdapterU3V>(&map);
        break;
    case genDC:
        adapter = std::make_unique<CChunkAdapterGenDC>(&map);
        break;
    case dcam:
        CheckDcam(map, bytes);
        return 0;
    default:
        CheckListed(map, bytes);
        return 0;
    }
    CheckLayout(form, map, *adapter, bytes);
    return 0;
}

// Measures the cost of a frame's chunks through the exports, beside the same loop without chunks and beside the adapter
// of the runtime. Buffers with the same layout take a shorter path; each row shows how often a buffer was attached.
#include "bench/camera_registers.h"
#include "bench/measure.h"
#include "bench/producer_access.h"
#include "bench/runtime_map.h"
#include "bench/served_description.h"

#include <GenApi/ChunkAdapterGEV.h>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace koro::bench;
using namespace GENAPI_NAMESPACE;

namespace
{

constexpr std::size_t numChunks = 10;
constexpr std::size_t numBuffers = 4;
constexpr std::size_t imageSize = 1 << 16;
constexpr std::uint32_t firstID = 0x101;

std::string NameOf(std::size_t chunk)
{
    return "Chunk" + std::to_string(chunk);
}

// Ten integers over chunks, and a port whose id comes from a register.
std::string Description()
{
    std::string text =
        "<RegisterDescription ModelName=\"Chunks\" VendorName=\"ZVR\" StandardNameSpace=\"None\" "
        "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" "
        "MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"p\" VersionGuid=\"v\" "
        "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\"><Port Name=\"Device\"/>"
        "<Port Name=\"Watched\"><pChunkID>WatchedID</pChunkID></Port><StringReg Name=\"WatchedID\"><Address>" +
        std::to_string(chunkIDRegister) +
        "</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
        "</StringReg>";
    for (std::size_t chunk = 0; chunk < numChunks; ++chunk)
    {
        char id[16];
        std::snprintf(id, sizeof id, "%zx", firstID + chunk);
        text += "<Port Name=\"Port" + NameOf(chunk) + "\"><ChunkID>" + id + "</ChunkID></Port><IntReg Name=\"" +
                NameOf(chunk) + "\"><Address>0</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Port" +
                NameOf(chunk) + "</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
    }
    return text + "</RegisterDescription>";
}

void AppendChunk(Memory& bytes, std::size_t id, std::size_t size)
{
    bytes.resize(bytes.size() + size, static_cast<std::uint8_t>(id));
    for (const std::size_t number : {id, size})
    {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(static_cast<std::uint8_t>(number >> shift));
    }
}

Memory FrameBytes()
{
    Memory bytes;
    AppendChunk(bytes, 1, imageSize);
    for (std::size_t chunk = 0; chunk < numChunks; ++chunk)
        AppendChunk(bytes, firstID + chunk, 8);
    return bytes;
}

// The variant with exports: a stream whose buffers all contain the same chunks.
class ExportedChunks
{
public:
    explicit ExportedChunks(Tree& tree) : memory(numBuffers, FrameBytes())
    {
        const KORO_DeviceHandle device = tree.OpenDevice(0);
        KORO_DataStreamDescriptorHandle descriptor = nullptr;
        Require(KORO_Device_GetDataStream(device, 0, &descriptor));
        Require(KORO_DataStreamDescriptor_OpenDataStream(descriptor, &stream));
        for (Memory& bytes : memory)
        {
            KORO_BufferHandle buffer = nullptr;
            Require(
                KORO_DataStream_AnnounceBuffer(stream, bytes.data(), bytes.size(), nullptr, nullptr, nullptr, &buffer));
            Require(KORO_DataStream_QueueBuffer(stream, buffer));
        }
        Require(KORO_DataStream_StartAcquisitionInfinite(stream, GenTL::ACQ_START_FLAGS_DEFAULT));
        map = NodeMapOf(device);
        for (std::size_t chunk = 0; chunk < numChunks; ++chunk)
            Require(KORO_Node_ToIntegerNode(Find(map, NameOf(chunk).c_str()), &nodes[chunk]));
    }

    KORO_BufferHandle Wait() const
    {
        KORO_BufferHandle buffer = nullptr;
        Require(KORO_DataStream_WaitForFinishedBuffer(stream, GenTL::GENTL_INFINITE, &buffer));
        return buffer;
    }
    void Queue(KORO_BufferHandle buffer) const { Require(KORO_DataStream_QueueBuffer(stream, buffer)); }
    void Update(KORO_BufferHandle buffer) const { Require(KORO_NodeMap_UpdateChunkNodes(map, buffer)); }
    void Read() const
    {
        for (std::size_t chunk = 0; chunk < numChunks; ++chunk)
        {
            std::int64_t value = 0;
            Require(KORO_IntegerNode_GetValue(nodes[chunk], KORO_NODE_CACHE_POLICY_USE_CACHE, &value));
            if (static_cast<std::uint8_t>(value) != static_cast<std::uint8_t>(firstID + chunk))
                throw std::runtime_error("a chunk has another value");
        }
    }

private:
    KORO_DataStreamHandle stream = nullptr;
    KORO_NodeMapHandle map = nullptr;
    std::vector<Memory> memory;
    std::array<KORO_IntegerNodeHandle, numChunks> nodes{};
};

// The variant with the runtime over the same bytes. Its port represents the camera's register of the chunk id.
class RuntimeChunks : public IPort
{
public:
    RuntimeChunks() : memory(numBuffers, FrameBytes())
    {
        const std::string xml = Description();
        CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
        map.reset(factory.CreateNodeMap());
        map->Connect(this);
        adapter = std::make_unique<CChunkAdapterGEV>(map.get(), -1);
        Attach();
        for (std::size_t chunk = 0; chunk < numChunks; ++chunk)
            nodes[chunk] = map->GetNode(NameOf(chunk).c_str());
    }

    void Attach()
    {
        Memory& bytes = Next();
        adapter->AttachBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
    }
    void Update() { adapter->UpdateBuffer(Next().data()); }
    void ReadAll() const
    {
        for (const CIntegerPtr& node : nodes)
            node->GetValue();
    }

    void Read(void* buffer, std::int64_t, std::int64_t length) override
    {
        std::memset(buffer, 0, static_cast<std::size_t>(length));
    }
    void Write(const void*, std::int64_t, std::int64_t) override {}
    EAccessMode GetAccessMode() const override { return RW; }

private:
    Memory& Next() { return memory[next++ % numBuffers]; }

    std::vector<Memory> memory;
    std::size_t next = 0;
    OwnedNodeMap map;
    std::unique_ptr<CChunkAdapterGEV> adapter;
    std::array<CIntegerPtr, numChunks> nodes;
};

using Step = std::function<void()>;

struct Row
{
    const char* name;
    bool layoutsChange;
    Step floor;
    Step exported;
};

std::uint64_t Attaches(const DirectPort& port)
{
    std::uint64_t count = 0;
    port.Read(attachesRegister, &count, sizeof count);
    return count;
}

// Both columns alternate, in processor time of the thread. The attachments are those of all frames of the export.
void Print(const Effort& effort, const DirectPort& port, const Row& row)
{
    const std::uint8_t change = row.layoutsChange ? 1 : 0;
    port.Write(layoutsChangeRegister, &change, 1);
    row.exported(); // the first buffer after a change of the layout
    const std::uint64_t before = Attaches(port);
    std::vector<double> floors;
    std::vector<double> exports;
    for (std::size_t round = 0; round < effort.rounds; ++round)
    {
        floors.push_back(ProcessorNanosecondsPerCall(effort.iterations, row.floor));
        exports.push_back(ProcessorNanosecondsPerCall(effort.iterations, row.exported));
    }
    const double floor = Median(floors);
    const double whole = Median(exports);
    std::printf(
        "%-44s %10.1f %10.1f %10.1f %9zu %9llu\n", row.name, floor, whole, whole - floor,
        effort.rounds * effort.iterations, static_cast<unsigned long long>(Attaches(port) - before));
}

} // namespace

int main(int argc, char** argv)
{
    Effort effort = EffortFromArguments(argc, argv);
    effort.iterations = (effort.iterations + 3) / 4;
    try
    {
        const ServedDescription served(Description());
        Tree tree;
        const ExportedChunks exported(tree);
        const DirectPort port;
        RuntimeChunks runtime;

        const KORO_BufferHandle any = exported.Wait();
        const Step plainFrame = [&] { exported.Queue(exported.Wait()); };
        const Step wholeFrame = [&] {
            const KORO_BufferHandle buffer = exported.Wait();
            exported.Update(buffer);
            exported.Read();
            exported.Queue(buffer);
        };
        const Row aboveTheRuntime[] = {
            {"update, equal layout", false, [&] { runtime.Update(); }, [&] { exported.Update(any); }},
            {"update, ten chunks read, equal layout", false,
             [&] {
                 runtime.Update();
                 runtime.ReadAll();
             },
             [&] {
                 exported.Update(any);
                 exported.Read();
             }},
            {"update, ten chunks read, changed layout", true,
             [&] {
                 runtime.Attach();
                 runtime.ReadAll();
             },
             [&] {
                 // The layout belongs to the frame, so each update needs a new frame.
                 exported.Update(exported.Wait());
                 exported.Read();
             }},
        };
        const Row aboveTheFrame[] = {
            {"frame, ten chunks read, equal layout", false, plainFrame, wholeFrame},
            {"frame, ten chunks read, changed layout", true, plainFrame, wholeFrame},
        };
        const char* const heading = "%-44s %10s %10s %10s %9s %9s\n";
        std::printf(heading, "ns per step", "runtime", "export", "above", "updates", "attaches");
        for (const Row& row : aboveTheRuntime)
            Print(effort, port, row);
        std::printf("\n");
        std::printf(heading, "ns per frame", "no chunks", "chunks", "above", "updates", "attaches");
        for (const Row& row : aboveTheFrame)
            Print(effort, port, row);
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "bench_chunks: %s\n", exception.what());
        return 1;
    }
    return 0;
}

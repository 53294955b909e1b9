// Buffers with chunks as an application uses them: announced, filled, passed to the node map, read, revoked. The first
// byte selects the transport layer. Then come frames, each with a byte of options, a length of two bytes, and its
// bytes. The answers of the exports are compared with a second parser of the buffers and with the buffers that should
// be attached.
#include "fuzz/camera_road.h"
#include "fuzz/chunk_reading.h"
#include "fuzz/fuzz_target.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace
{

using namespace koro::fuzz;

const char* const tlTypes[] = {"GEV", "U3V", "IIDC"};
constexpr std::size_t maxFrames = 6;

// Options of a frame.
constexpr std::size_t layoutMask = 3; // the layout id
constexpr std::size_t withoutLayout = 4;
constexpr std::size_t revokedAtOnce = 8;

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
    {"Wide", "4e00343b841bd81183b300105a5bae55", false}};

std::string IntegerOver(const Port& port, const char* prefix, int length)
{
    return std::string("<IntReg Name=\"") + prefix + port.name + "\"><Address>0</Address><Length>" +
           std::to_string(length) + "</Length><AccessMode>RW</AccessMode><pPort>" + port.name +
           "</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

std::string Nodes()
{
    std::string text;
    for (const Port& port : ports)
    {
        text += std::string("<Port Name=\"") + port.name + "\"><ChunkID>00" + port.id + "</ChunkID>" +
                (port.copied ? "<CacheChunkData>Yes</CacheChunkData>" : "") + "</Port>" +
                IntegerOver(port, "First", 1) + IntegerOver(port, "Four", 4);
    }
    return text;
}

struct AnnouncedBuffer
{
    Bytes bytes;                           // what was delivered
    std::unique_ptr<std::uint8_t[]> block; // of exactly its size
    KORO_BufferHandle handle = nullptr;
};

// One input on one camera, and the buffer that should be attached.
class Run
{
public:
    Run(scripted::Script& script, const RoadCamera& road, std::size_t transportLayer)
        : producer(script), camera(road), layer(transportLayer)
    {}
    ~Run()
    {
        while (!buffers.empty())
            Revoke(buffers.size() / 2); // in neither order
        CheckNodes();
    }

    void Frame(const Bytes& bytes, std::size_t options)
    {
        AnnouncedBuffer& buffer = Announce(bytes);
        Deliver(buffer, options);
        const Reading reading = layer == 2 ? ReadDcam(bytes) : ReadTrailers(bytes, layer == 0);
        KORO_Bool8 isSupported = 2;
        RequireSuccess(KORO_NodeMap_GetHasBufferSupportedChunks(camera.map, buffer.handle, &isSupported));
        Require(isSupported == (reading.good ? 1 : 0), "the second reading agrees");
        CheckNodes();

        const bool isTaken = Attach(buffer, reading, options);
        const KORO_ReturnCode code = KORO_NodeMap_UpdateChunkNodes(camera.map, buffer.handle);
        Require(
            code == (isTaken ? KORO_RETURN_CODE_SUCCESS : KORO_RETURN_CODE_ERROR), "a buffer is taken by the rules");
        CheckNodes();
        if (options & revokedAtOnce) Revoke(buffers.size() - 1);
    }

private:
    AnnouncedBuffer& Announce(const Bytes& bytes)
    {
        AnnouncedBuffer buffer{bytes, std::make_unique<std::uint8_t[]>(bytes.size())};
        RequireSuccess(KORO_DataStream_AnnounceBuffer(
            camera.stream, buffer.block.get(), bytes.size(), nullptr, nullptr, nullptr, &buffer.handle));
        buffers.push_back(std::move(buffer));
        return buffers.back();
    }

    void Deliver(const AnnouncedBuffer& buffer, std::size_t options) const
    {
        scripted::Frame frame;
        frame.bytes.assign(buffer.bytes.begin(), buffer.bytes.end());
        frame.info = {
            {GenTL::BUFFER_INFO_BASE, scripted::Pointer(buffer.block.get())},
            {GenTL::BUFFER_INFO_SIZE, scripted::Size(buffer.bytes.size())},
            {GenTL::BUFFER_INFO_TLTYPE, scripted::Text(tlTypes[layer])},
            {GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA, scripted::Bool8(true)},
            {GenTL::BUFFER_INFO_CHUNKLAYOUTID, options & withoutLayout
                                                   ? scripted::Failing(GenTL::GC_ERR_NOT_IMPLEMENTED)
                                                   : scripted::UInt64(options & layoutMask)}};
        RequireSuccess(KORO_DataStream_QueueBuffer(camera.stream, buffer.handle));
        Require(producer.Deliver(camera.id + "-stream0", frame), "the frame is delivered");
        KORO_BufferHandle finished = nullptr;
        RequireSuccess(KORO_DataStream_WaitForFinishedBuffer(camera.stream, 0, &finished));
        Require(finished == buffer.handle, "the buffer comes back");
    }

    // Whether the update accepts the buffer.
    bool Attach(const AnnouncedBuffer& buffer, const Reading& reading, std::size_t options)
    {
        const Bytes& bytes = buffer.bytes;
        if (layer == 2 && HasChecksum(bytes) && !IsChecksumRight(bytes)) return false;
        const std::optional<std::size_t> layout =
            options & withoutLayout ? std::nullopt : std::optional(options & layoutMask);
        if (attached && layout == attachedLayout && bytes.size() >= attachedSize)
        {
            attached = buffer.handle;
            shown = buffer.block.get();
            return true;
        }
        if (!reading.good) return false;
        attached = buffer.handle;
        shown = buffer.block.get();
        attachedLayout = layout.value_or(0);
        attachedSize = bytes.size();
        chunks = reading.chunks;
        return true;
    }

    void Revoke(std::size_t index)
    {
        RequireSuccess(KORO_DataStream_RevokeBuffer(camera.stream, buffers[index].handle));
        if (buffers[index].handle == attached) attached = nullptr;
        buffers.erase(buffers.begin() + static_cast<std::ptrdiff_t>(index));
        CheckNodes();
    }

    void CheckNodes() const
    {
        for (const Port& port : ports)
        {
            CheckNode(port, "First", 1);
            CheckNode(port, "Four", 4);
        }
    }
    void CheckNode(const Port& port, const char* prefix, std::size_t length) const
    {
        const FoundChunk* first = nullptr;
        for (const FoundChunk& chunk : chunks)
        {
            if (chunk.id == port.id && (!first || chunk.offset < first->offset)) first = &chunk;
        }
        const RoadNode& node = camera.Node(std::string(prefix) + port.name);
        KORO_NodeAccessStatus status = KORO_NODE_ACCESS_STATUS_UNDEFINED;
        RequireSuccess(KORO_Node_GetAccessStatus(node.node, &status));
        const bool isShown = attached && first;
        Require((status == KORO_NODE_ACCESS_STATUS_READ_WRITE) == isShown, "a node is there with its chunk");
        if (!isShown) return;
        std::int64_t value = 0;
        const KORO_ReturnCode code = KORO_IntegerNode_GetValue(node.integer, KORO_NODE_CACHE_POLICY_USE_CACHE, &value);
        if (first->length < length)
        {
            Require(code == KORO_RETURN_CODE_ERROR, "nothing is read behind the chunk");
            return;
        }
        Require(code == KORO_RETURN_CODE_SUCCESS, "a node over its chunk is read");
        const Bytes bytes(shown + first->offset, shown + first->offset + length);
        Require(static_cast<std::uint64_t>(value) == NumberAt(bytes, 0, length, false), "nodes see the chunk");
    }

    scripted::Script& producer;
    const RoadCamera& camera;
    const std::size_t layer;
    std::vector<AnnouncedBuffer> buffers;

    KORO_BufferHandle attached = nullptr;
    const std::uint8_t* shown = nullptr;
    std::size_t attachedLayout = 0;
    std::size_t attachedSize = 0;
    std::vector<FoundChunk> chunks;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const CameraRoad& road = *new CameraRoad({std::begin(tlTypes), std::end(tlTypes)}, Nodes());
    const std::size_t layer = CameraRoad::Number(data, size, 1) % std::size(tlTypes);
    Run run(road.Producer(), road.Cameras()[layer], layer);
    for (std::size_t frame = 0; frame < maxFrames && size > 0; ++frame)
    {
        const std::size_t options = CameraRoad::Number(data, size, 1);
        run.Frame(CameraRoad::Piece(data, size), options);
    }
    return 0;
}

// The chunks of buffers as nodes of a map.
//
// An adapter of GenApi presents the memory of one buffer as the chunk ports of the map. The offsets of the chunks are
// determined when a buffer is attached; for a buffer with the same layout only the address changes. The nodes read the
// memory itself, so the buffer gets a callback that detaches it from the map when it is revoked.

#include "base/exceptions.h"
#include "nodes/chunk_source.h"
#include "nodes/node_map.h"
#include "nodes/translate_genapi_exceptions.h"

#include <GenApi/ChunkAdapterDcam.h>
#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterU3V.h>
#include <optional>
#include <tuple>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

constexpr std::int64_t anySize = -1; // of a chunk of which the port requests a copy

std::unique_ptr<CChunkAdapter> MakeChunkAdapter(const std::string& tlType, INodeMap* nodeMap)
{
    if (tlType == "GEV") return std::make_unique<CChunkAdapterGEV>(nodeMap, anySize);
    if (tlType == "U3V") return std::make_unique<CChunkAdapterU3V>(nodeMap, anySize);
    if (tlType == "IIDC") return std::make_unique<CChunkAdapterDcam>(nodeMap, anySize);
    throw InternalErrorException("Chunk adapter for TLType " + tlType + " not supported!");
}

struct Memory
{
    std::uint8_t* base;
    std::size_t size; // size of the memory with the chunks, in bytes
};

// 0 for a producer that does not know.
std::size_t FilledSizeOf(const ChunkSource& buffer)
{
    try
    {
        return buffer.DeliveredDataSize();
    }
    catch (const Exception&)
    {
        return 0;
    }
}

// The chunks end where the frame ends. A buffer that is larger than the frame may still contain the last trailer of an
// older, larger frame at its end.
Memory MemoryOf(const ChunkSource& buffer)
{
    const std::size_t size = buffer.Size();
    const std::size_t filled = FilledSizeOf(buffer);
    const bool isPlausible = filled >= 1 && filled <= size;
    return {static_cast<std::uint8_t*>(buffer.BasePtr()), isPlausible ? filled : size};
}

std::int64_t Length(const Memory& memory)
{
    return static_cast<std::int64_t>(memory.size); // a size beyond all memory becomes negative, which is not a layout
}

// The adapter is checked first, which can save queries to the producer.
void CheckChecksum(CChunkAdapter& adapter, const ChunkSource& buffer, const Memory& memory)
{
    auto* const dcam = dynamic_cast<CChunkAdapterDcam*>(&adapter);
    if (!dcam || buffer.TLType() != "IIDC") return;
    if (dcam->HasCRC(memory.base, Length(memory)) && !dcam->CheckCRC(memory.base, Length(memory)))
    {
        throw InternalErrorException("CChunkAdapterDcam CRC check failed!");
    }
}

// Empty if the producer does not report it: each buffer then counts as a new layout.
std::optional<std::uint64_t> ChunkLayoutIdOf(const ChunkSource& buffer)
{
    try
    {
        return buffer.ChunkLayoutID();
    }
    catch (const InternalErrorException&)
    {
        return std::nullopt;
    }
}

} // namespace

bool NodeMap::HasBufferSupportedChunks(ChunkSource& buffer)
{
    return InBothLayers([&] {
        if (!buffer.HasChunks()) return false;
        const AutoLock lock(GenApiLock());
        CChunkAdapter& adapter = EnsureChunkAdapter(buffer);
        const Memory memory = MemoryOf(buffer);
        return adapter.CheckBufferLayout(memory.base, Length(memory));
    });
}

void NodeMap::UpdateChunkNodes(ChunkSource& buffer)
{
    InBothLayers([&] {
        if (!buffer.HasChunks()) return;
        const AutoLock lock(GenApiLock());
        CChunkAdapter& adapter = EnsureChunkAdapter(buffer);
        const Memory memory = MemoryOf(buffer);
        CheckChecksum(adapter, buffer, memory);
        ShowChunks(buffer, memory.base, memory.size);
        DetachAtRevocation(buffer);
    });
}

// The adapter for the first buffer stays, regardless of the types of later buffers.
CChunkAdapter& NodeMap::EnsureChunkAdapter(const ChunkSource& buffer)
{
    if (!chunkAdapter) chunkAdapter = MakeChunkAdapter(buffer.TLType(), nodeMapRef._Ptr);
    return *chunkAdapter;
}

// The attached buffer is recorded before the callbacks of nodes run, since they may update and revoke. A failure
// happens before them and leaves the previous buffer attached.
void NodeMap::ShowChunks(const ChunkSource& buffer, std::uint8_t* base, std::size_t size)
{
    const auto layoutId = ChunkLayoutIdOf(buffer);
    // In a smaller memory chunks of the same layout might exceed the end: the bytes must be checked.
    const bool hasSameLayout = hasAttachedBuffer && layoutId == attachedChunkLayoutId && size >= attachedSize;

    const auto former = std::tuple(attachedChunkLayoutId, attachedSize, hasAttachedBuffer);
    const GenTL::BUFFER_HANDLE formerHandle = attachedBufferHandle.exchange(buffer.Handle());
    try
    {
        if (hasSameLayout)
        {
            chunkAdapter->UpdateBuffer(base);
            return;
        }
        attachedChunkLayoutId = layoutId.value_or(0);
        attachedSize = size;
        hasAttachedBuffer = true;
        chunkAdapter->AttachBuffer(base, Length({base, size}), &attachStatistics);
    }
    catch (...)
    {
        std::tie(attachedChunkLayoutId, attachedSize, hasAttachedBuffer) = former;
        attachedBufferHandle = formerHandle;
        throw;
    }
}

void NodeMap::DetachAtRevocation(ChunkSource& buffer)
{
    try
    {
        if (!buffer.DetachAtRevocation(shared_from_this())) throw InternalErrorException("Pointer has expired!");
    }
    catch (...)
    {
        DetachRevoked(buffer.Handle());
        throw;
    }
}

// For a buffer that is not attached it does not wait for the lock, which others may hold for long.
void NodeMap::DetachRevoked(GenTL::BUFFER_HANDLE handle)
{
    if (handle != attachedBufferHandle) return;
    const AutoLock lock(nodeMapRef._Ptr->GetLock());
    if (handle != attachedBufferHandle) return;
    attachedBufferHandle = nullptr;
    hasAttachedBuffer = false;
    try
    {
        chunkAdapter->DetachBuffer();
    }
    catch (...)
    {
        // The ports are detached from the buffer; only a callback can have failed.
    }
}

} // namespace koro::internal

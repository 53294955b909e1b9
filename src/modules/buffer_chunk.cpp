#include "modules/buffer_chunk.h"

#include "base/expiring.h"
#include "modules/buffer.h"

namespace koro::internal
{

BufferChunk::BufferChunk(const GenTL::SINGLE_CHUNK_DATA& record, const std::weak_ptr<Buffer>& buffer)
    : parent(buffer), id(record.ChunkID), offset(record.ChunkOffset), length(record.ChunkLength)
{}

void* BufferChunk::BasePtr() const
{
    // Computed as a number: a producer's offset may lead anywhere, where no pointer may be computed.
    const auto base = reinterpret_cast<std::uintptr_t>(ParentBuffer()->BasePtr());
    return reinterpret_cast<void*>(base + static_cast<std::uintptr_t>(offset));
}

std::size_t BufferChunk::Size() const
{
    const auto buffer = ParentBuffer();
    return length;
}

std::shared_ptr<Buffer> BufferChunk::ParentBuffer() const
{
    return LockOrThrow(parent);
}

} // namespace koro::internal

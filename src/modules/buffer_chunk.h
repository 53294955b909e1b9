// BufferChunk: one block of data that a camera sent together with the image, as the producer reported it when the list
// of chunks was updated.
//
// Id, offset and length are copies: when the buffer has been filled again, they still describe the earlier frame. Owned
// by the list of its Buffer and by the handle table; holds the buffer weakly. Thread-safe, since it is constant.
#pragma once

#include "base/instance.h"
#include "gentl/api/gentl.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace koro::internal
{

class Buffer;

class BufferChunk final : public Instance
{
public:
    BufferChunk(const GenTL::SINGLE_CHUNK_DATA& record, const std::weak_ptr<Buffer>& buffer);

    std::uint64_t ID() const noexcept { return id; }

    // All throw InternalErrorException after the buffer has ended; BasePtr also throws the exceptions of the buffer's
    // base.
    void* BasePtr() const;    // relative to the buffer's current base; not checked against its size
    std::size_t Size() const; // bytes
    std::shared_ptr<Buffer> ParentBuffer() const;

private:
    const std::weak_ptr<Buffer> parent;
    const std::uint64_t id;
    const std::ptrdiff_t offset; // bytes from the buffer's base
    const std::size_t length;    // bytes
};

} // namespace koro::internal

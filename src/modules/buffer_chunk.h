// BufferChunk: one piece of data that a camera sent beside the image, as the producer told it at an update of its
// Buffer's list.
//
// Id, place and length are a copy: when the buffer holds another image they tell of the former one. Owned by the list
// of its Buffer and by the handle table; holds the buffer weakly. Any thread: constant.
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

    // All throw InternalErrorException once the buffer has gone; the first also whatever its base does.
    void* BasePtr() const;    // from the buffer's base of this moment; not compared with its size
    std::size_t Size() const; // bytes
    std::shared_ptr<Buffer> ParentBuffer() const;

private:
    const std::weak_ptr<Buffer> parent;
    const std::uint64_t id;
    const std::ptrdiff_t offset; // bytes from the buffer's base
    const std::size_t length;    // bytes
};

} // namespace koro::internal

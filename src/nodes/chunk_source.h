// ChunkSource: the information about a buffer that a node map needs to present its chunks as nodes. Buffers implement
// it, so node maps do not depend on streams and buffers.
//
// Each function queries the producer and throws InternalErrorException after the buffer was revoked.
#pragma once

#include "gentl/api/gentl.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace koro::internal
{

class NodeMap;

class ChunkSource
{
public:
    virtual GenTL::BUFFER_HANDLE Handle() const = 0;
    virtual std::string TLType() const = 0;
    virtual bool HasChunks() const = 0;
    virtual void* BasePtr() const = 0;
    virtual std::size_t Size() const = 0;              // bytes, as announced
    virtual std::size_t DeliveredDataSize() const = 0; // bytes
    virtual std::uint64_t ChunkLayoutID() const = 0;
    // The revocation calls `DetachRevoked` of the map, which is held weakly. Returns false when the buffer was revoked
    // before.
    virtual bool DetachAtRevocation(const std::shared_ptr<NodeMap>& nodeMap) = 0;

protected:
    ~ChunkSource() = default;
};

} // namespace koro::internal

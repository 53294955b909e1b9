// CChunkAdapter: presents the chunks of a buffer as the chunk ports of a node map. There is one derived class for each
// layout.
//
// All operations take the lock of the map; callbacks of the type "outside" are called after it was released. If a
// buffer is refused, the nodes do not change. The nodes read the buffer itself, so it must stay valid until the next
// attach or detach; only ports that request it get a copy. The adapter may outlive the map, which detaches it.
#pragma once

#include <GenApi/ChunkPort.h>
#include <GenApi/INodeMap.h>
#include <memory>
#include <vector>

namespace GENAPI_NAMESPACE
{

namespace runtime
{
class ChunkWalk;
}

struct AttachStatistics_t
{
    int NumChunkPorts;     // ports of the map with a chunk id
    int NumChunks;         // in the buffer, including those that no port uses
    int NumAttachedChunks; // a chunk counts once for each port that has its id
};

class GENAPI_DECL CChunkAdapter
{
public:
    virtual ~CChunkAdapter();
    // Whether the bytes are a complete chain of chunks. Changes nothing and throws nothing.
    virtual bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) = 0;
    // Throws RuntimeException for a broken chain; the previous attachment then stays. Ports whose chunk is missing
    // become not available. The nodes of all chunk ports are invalidated.
    virtual void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics = NULL) = 0;

    CChunkAdapter(const CChunkAdapter&) = delete;
    CChunkAdapter& operator=(const CChunkAdapter&) = delete;

    // Takes over all chunk ports of the map, even from another adapter.
    void AttachNodeMap(INodeMap* pNodeMap);
    void DetachNodeMap();
    void DetachBuffer();
    // Attaches a buffer of the same layout at another address; its bytes are not examined. Does nothing while no buffer
    // is attached.
    void UpdateBuffer(uint8_t* pBaseAddress);
    // Discards the copies of chunks.
    void ClearCaches();

protected:
    // `MaxChunkCacheSize`: the largest chunk, in bytes, that is copied for a port that requests a copy. 0: none, -1:
    // all.
    explicit CChunkAdapter(INodeMap* pNodeMap = NULL, int64_t MaxChunkCacheSize = -1);

    void AttachChunks(runtime::ChunkWalk& walk, uint8_t* pBuffer, AttachStatistics_t* pAttachStatistics);

    std::vector<CChunkPort*>* m_ppChunkPorts;
    int64_t m_MaxChunkCacheSize;

private:
    const std::unique_ptr<runtime::ChunkPorts> ports;
};

} // namespace GENAPI_NAMESPACE

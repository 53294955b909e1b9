// ChunkPorts: the chunk ports of one node map, to which an adapter shows the chunks of its buffers.
//
// Owned by the adapter. Each operation takes the lock of the map. A buffer with the same layout as the previous one
// needs no allocation, except for the list of callbacks and for a chunk id that comes from another node.
#pragma once

#include "adapters/chunk_walk.h"
#include "adapters/map_link.h"

#include <GenApi/ChunkAdapter.h>

namespace GENAPI_NAMESPACE::runtime
{

class ChunkPorts
{
public:
    ~ChunkPorts();

    // Detaches the previous map first; after a failure no map is attached.
    void AttachMap(INodeMap* pMap);
    void DetachMap();
    void Attach(ChunkWalk& walk, uint8_t* buffer, int64_t maxCopy, AttachStatistics_t* statistics);
    void Update(uint8_t* base);
    void Detach();
    void ClearCaches();

    std::vector<CChunkPort*> ports;

private:
    // The ports of one id, and the chunk that the current walk has found for them.
    struct Group
    {
        std::string_view id; // of the ports
        size_t first;        // in `sorted`
        size_t last;         // behind the last
        bool found;
        int64_t offset;
        int64_t length;
    };

    void RefreshIDs();
    void Sort();
    AttachStatistics_t Find(ChunkWalk& walk);
    void MakeRoom(int64_t maxCopy);
    void ShowFound(uint8_t* buffer, int64_t maxCopy);
    bool IsAttached() const;

    MapLink link;
    std::vector<std::unique_ptr<CChunkPort>> owned;
    std::vector<CChunkPort*> withNodeID; // ids that come from other nodes
    std::vector<CChunkPort*> sorted;     // by id; those without one first
    std::vector<Group> groups;           // likewise
    bool groupsFit = false;              // the ids that the ports have now
    std::vector<Node*> affected;         // the port nodes and all that depends on them
    bool bufferAttached = false;
};

} // namespace GENAPI_NAMESPACE::runtime

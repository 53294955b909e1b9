// NodeMap: one description as applications see it: its nodes, by index and by name, over one Port. Nodes of chunks and
// events read the buffer or the event that was last passed to the map: node_map_chunks.cpp, node_map_events.cpp.
//
// Owned by its module and the handle table; owns its nodes, which hold it weakly. Thread-safe. The first operation
// parses the description into a GenApi map; the first access to a node creates the table of all nodes. Both never
// change afterwards.
//
// The lock of the GenApi map is the only lock for all its nodes. It is recursive, and applications may hold it
// themselves.
#pragma once

#include "base/built_once.h"
#include "base/instance.h"
#include "base/once.h"
#include "gentl/api/gentl.h"
#include "nodes/genapi_port.h"
#include "nodes/node_map_description.h"

#include <GenApi/ChunkAdapter.h>
#include <GenApi/EventAdapter.h>
#include <GenApi/NodeMapRef.h>
#include <GenApi/Synch.h>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace koro::internal
{

class ChunkSource;
class EventSource;
class Node;
class Port;

class NodeMap final : public Instance, public std::enable_shared_from_this<NodeMap>
{
public:
    // Throws InternalErrorException for a null port. Create it only by std::make_shared, since its nodes refer to it.
    NodeMap(const std::shared_ptr<Port>& connectedPort, NodeMapDescription source);
    ~NodeMap() override;

    // In GenApi's order. The list lives as long as the map.
    const std::vector<std::shared_ptr<Node>>& Nodes();
    // Names are compared byte by byte. Throws NotFoundException.
    std::shared_ptr<Node> FindNode(const std::string& name);
    // Empty when there is no such node.
    std::shared_ptr<Node> TryFindNode(const std::string& name);
    bool HasNode(const std::string& name);

    // Both take the lock; callbacks of nodes run on this thread before they return.
    void InvalidateNodes();
    void PollNodes(std::int64_t elapsedTime_ms);

    // The transport layer of the first buffer determines the adapter that reads the chunks, for the life of the map; a
    // transport layer without an adapter throws InternalErrorException. A buffer without chunks returns false and
    // updates nothing.
    bool HasBufferSupportedChunks(ChunkSource& buffer);
    // Takes the lock; callbacks of nodes run before it returns. Afterwards the nodes of chunks read the memory of this
    // buffer itself, until the next update or until it is revoked. Throws for a wrong layout or checksum: the nodes
    // then keep reading the previous buffer.
    void UpdateChunkNodes(ChunkSource& buffer);
    // Detaches the nodes of chunks from a buffer that was revoked; does nothing for one that is not attached.
    // Thread-safe.
    void DetachRevoked(GenTL::BUFFER_HANDLE handle);
    // Whether the event belongs to the module that this map describes. The transport layer of the port determines the
    // adapter; one without an adapter throws InternalErrorException.
    bool HasEventSupportedData(const EventSource& event);
    // Takes the lock; callbacks of nodes run before it returns. The bytes of the event are copied. Throws
    // InvalidArgumentException for an event that belongs to other maps.
    void UpdateEventNodes(const EventSource& event);

    // Stores the values of the features in a text file and loads them; docs/feature-files.md describes the format. The
    // path is UTF-8. Storing clears the file first. Loading holds the lock and writes as many values as possible;
    // storing leaves locking to GenApi. InvalidArgumentException: the file cannot be opened. IOException: it cannot be
    // written completely. InternalErrorException: it is not a feature file, or some values could not be written to the
    // device or verified.
    void StoreToFile(const std::string& filePath);
    void LoadFromFile(const std::string& filePath);

    // Locks of an application, counted for each thread. Such a lock keeps the map alive. It is released when the same
    // thread ends the map, or at the thread's next unlock after another thread has ended it.
    void LockForApplication();
    bool TryLockForApplication();
    void UnlockForApplication();
    // For a handle that has ended: does nothing when the thread holds no lock of that map.
    static void UnlockEnded(const void* address) noexcept;
    void EndWaits() noexcept override;

    // Valid as long as the map. Exceptions of GenApi for a broken description leave it untranslated.
    GENAPI_NAMESPACE::CLock& GenApiLock();
    // Never null; valid as long as the map.
    GENAPI_NAMESPACE::INodeMap* GenApiNodeMap();

    const std::shared_ptr<internal::Port>& Port() const { return port; }
    // The statistics of the last full attachment; a buffer with an equal layout does not change them. The caller holds
    // the lock.
    const GENAPI_NAMESPACE::AttachStatistics_t& AttachStatistics() const { return attachStatistics; }

private:
    struct NodeTable
    {
        std::vector<std::shared_ptr<Node>> nodes;
        std::unordered_map<std::string, std::shared_ptr<Node>> byName; // the first node of each name
    };

    GENAPI_NAMESPACE::INodeMap& EnsureGenApiMap();
    void CreateGenApiMap();
    GENAPI_NAMESPACE::INodeMap* LoadDescription() const;
    const NodeTable& EnsureNodes();
    NodeTable BuildNodes();
    void EndAdapters();

    // Called while the lock is held.
    GENAPI_NAMESPACE::CChunkAdapter& EnsureChunkAdapter(const ChunkSource& buffer);
    void ShowChunks(const ChunkSource& buffer, std::uint8_t* base, std::size_t size);
    void DetachAtRevocation(ChunkSource& buffer);
    GENAPI_NAMESPACE::CEventAdapter& EnsureEventAdapter();
    bool IsOfThisMap(const EventSource& event) const;

    const std::shared_ptr<internal::Port> port;
    GenApiPort genApiPort;
    Once nodeMapOnce;

    // Set once, under nodeMapOnce.
    NodeMapDescription description; // its bytes are released when they have been parsed
    GENAPI_NAMESPACE::CNodeMapRefT<GENAPI_NAMESPACE::CGeneric_XMLLoaderParams> nodeMapRef{"Device"};

    // Not built by a Once: GenApi takes its lock while nodes are listed, and a thread that holds this lock may be
    // waiting here.
    BuiltOnce<NodeTable> nodeTable;

    // Guarded by the lock of the map.
    std::unique_ptr<GENAPI_NAMESPACE::CChunkAdapter> chunkAdapter;
    std::unique_ptr<GENAPI_NAMESPACE::CEventAdapter> eventAdapter;
    GENAPI_NAMESPACE::AttachStatistics_t attachStatistics{};
    std::uint64_t attachedChunkLayoutId = 0;
    std::size_t attachedSize = 0; // size of the memory with the attached layout, in bytes
    bool hasAttachedBuffer = false;
    // Also written under the lock, but a revocation compares it without the lock.
    std::atomic<GenTL::BUFFER_HANDLE> attachedBufferHandle{nullptr};
};

} // namespace koro::internal

// NodeMap: what an application sees of one description: its nodes, by list and by name, over one Port.
//
// Owned by its module and the handle table; owns its nodes, which hold it weakly. Any thread. Nothing is read or parsed
// before the first operation: then the description becomes a GenApi map, and with the first node that is asked for the
// table of all. Both never change afterwards.
//
// The lock of the GenApi map is the one lock of all its nodes. It is recursive, and applications may hold it
// themselves.
#pragma once

#include "base/built_once.h"
#include "base/instance.h"
#include "base/once.h"
#include "nodes/genapi_port.h"
#include "nodes/node_map_description.h"

#include <GenApi/NodeMapRef.h>
#include <GenApi/Synch.h>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace koro::internal
{

class Node;
class Port;

class NodeMap final : public Instance, public std::enable_shared_from_this<NodeMap>
{
public:
    // Throws InternalErrorException for a null port. To be made by std::make_shared only: its nodes refer to it.
    NodeMap(const std::shared_ptr<Port>& connectedPort, NodeMapDescription source);
    ~NodeMap() override;

    // In GenApi's order. The list lives as long as the map.
    const std::vector<std::shared_ptr<Node>>& Nodes();
    // Names are compared byte by byte. Throws NotFoundException.
    std::shared_ptr<Node> FindNode(const std::string& name);
    // Empty when there is no such node.
    std::shared_ptr<Node> TryFindNode(const std::string& name);
    bool HasNode(const std::string& name);

    // Both take the lock; callbacks of nodes run within, on this thread.
    void InvalidateNodes();
    void PollNodes(std::int64_t elapsedTime_ms);

    // The values of the features as a text file, told in docs/feature-files.md, and back. The path is UTF-8. Storing
    // empties the file first. Loading holds the lock and writes all that it can; storing leaves locking to GenApi.
    // InvalidArgumentException: the file cannot be opened. IOException: it cannot be written to its end.
    // InternalErrorException: it is no feature file, or not all of it could be written to the device or verified.
    void StoreToFile(const std::string& filePath);
    void LoadFromFile(const std::string& filePath);

    // Lives as long as the map. What GenApi throws when the description is no good leaves this one untranslated.
    GENAPI_NAMESPACE::CLock& GenApiLock();
    // Never null; lives as long as the map.
    GENAPI_NAMESPACE::INodeMap* GenApiNodeMap();

    const std::shared_ptr<internal::Port>& Port() const { return port; }

private:
    struct NodeTable
    {
        std::vector<std::shared_ptr<Node>> nodes;
        std::unordered_map<std::string, std::shared_ptr<Node>> byName; // the first of each name
    };

    GENAPI_NAMESPACE::INodeMap& EnsureGenApiMap();
    void CreateGenApiMap();
    GENAPI_NAMESPACE::INodeMap* LoadDescription() const;
    const NodeTable& EnsureNodes();
    NodeTable BuildNodes();

    const std::shared_ptr<internal::Port> port;
    GenApiPort genApiPort;
    Once nodeMapOnce;

    // Set once, under nodeMapOnce.
    NodeMapDescription description; // its bytes are dropped when they have been parsed
    GENAPI_NAMESPACE::CNodeMapRefT<GENAPI_NAMESPACE::CGeneric_XMLLoaderParams> nodeMapRef{"Device"};

    // Not under a Once: GenApi takes its lock while nodes are listed, and a thread that holds it may be waiting here.
    BuiltOnce<NodeTable> nodeTable;
};

} // namespace koro::internal

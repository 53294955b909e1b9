// Node: one feature of a node map: its names, access, relations to other nodes, and notification of its changes.
//
// Owned by its NodeMap, which it holds weakly: every operation keeps the map while it runs, and throws
// InternalErrorException with "Pointer has expired!" after the map has ended. Thread-safe. Getters take no lock of the
// library; numbers are those of GenApi unless stated otherwise. The typed nodes derive from it.
#pragma once

#include "base/built_once.h"
#include "base/expiring.h"
#include "base/instance.h"
#include "nodes/cache_policy.h"
#include "nodes/linked_nodes.h"
#include "nodes/node_map.h"
#include "nodes/translate_genapi_exceptions.h"

#include <GenApi/INode.h>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace koro::internal
{

// Not GenApi's numbers.
enum class NodeType : std::int32_t
{
    Integer,
    Boolean,
    Command,
    Float,
    String,
    Register,
    Category,
    Enumeration,
    EnumerationEntry,
    Other
};

class Node : public Instance, public std::enable_shared_from_this<Node>
{
public:
    using ChangedCallback = std::function<void(const std::shared_ptr<Node>&)>;
    using ChangedCallbackHandle = const void*;

    Node(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap);
    ~Node() override;

    std::string Name() const;
    std::string DisplayName() const;
    std::string ToolTip() const;
    std::string Description() const;
    GENAPI_NAMESPACE::ENameSpace Namespace() const;
    GENAPI_NAMESPACE::EVisibility Visibility() const;
    GENAPI_NAMESPACE::EAccessMode AccessStatus() const;
    GENAPI_NAMESPACE::ECachingMode CachingMode() const;
    bool IsCacheable() const;
    bool IsAccessStatusCacheable() const; // only when the description says so
    std::int64_t PollingTime() const;     // milliseconds; -1: not polled
    NodeType Type() const;
    bool IsFeature() const;
    bool IsDeprecated() const;
    bool IsStreamable() const;
    std::shared_ptr<NodeMap> ParentNodeMap() const;

    // The nodes that a change of this node invalidates, and those whose change invalidates it. Each list is built on
    // first use and never updated. The Find functions throw NotFoundException.
    NodeList InvalidatedNodes();
    std::shared_ptr<Node> FindInvalidatedNode(const std::string& name);
    NodeList InvalidatingNodes();
    std::shared_ptr<Node> FindInvalidatingNode(const std::string& name);
    // The nodes that this selector selects, and those that select it. Both lists are empty for a node that is not a
    // selector.
    NodeList SelectedNodes();
    std::shared_ptr<Node> FindSelectedNode(const std::string& name);
    NodeList SelectingNodes();
    std::shared_ptr<Node> FindSelectingNode(const std::string& name);

    // The callback runs on the thread that caused a change, while it holds the lock of the map; an empty one is not
    // called. It may use this map and this registry, and may unregister itself. A registered callback keeps the node
    // alive as long as its map exists.
    ChangedCallbackHandle RegisterChangedCallback(ChangedCallback callback);
    // An unknown handle is ignored. Afterwards the callback does not run any more.
    void UnregisterChangedCallback(ChangedCallbackHandle handle);

    // For the end of the map. Unregisters all callbacks; the map's lock is held.
    void EndChangedCallbacks();
    // Removes the callbacks of a node that no longer exists in GenApi.
    void ForgetChangedCallbacks();

protected:
    // The calls of GenApi: each keeps the map and translates exceptions. The first translates only GenApi's exceptions,
    // the second also standard exceptions, the third also holds the lock of the map.
    template <class Call>
    decltype(auto) Ask(Call&& call) const
    {
        const auto map = ParentNodeMap();
        return TranslateGenApiExceptions(std::forward<Call>(call));
    }
    template <class Call>
    auto AskInBothLayers(Call&& call) const
    {
        const auto map = ParentNodeMap();
        return InBothLayers(std::forward<Call>(call));
    }
    template <class Call>
    auto AskLocked(Call&& call) const
    {
        const auto map = ParentNodeMap();
        const GENAPI_NAMESPACE::AutoLock lock(map->GenApiLock());
        return TranslateGenApiExceptions(std::forward<Call>(call));
    }

private:
    class ChangedCallbackDelegate;
    using ChangedCallbacks = std::unordered_map<ChangedCallbackHandle, std::shared_ptr<ChangedCallbackDelegate>>;
    ChangedCallbacks TakeChangedCallbacks();
    enum class Link; // the four lists

    const LinkedNodes& Linked(Link link, NodeMap& nodeMap);
    NodeList AllLinked(Link link);
    std::shared_ptr<Node> FindLinked(Link link, const char* kind, const std::string& name);

    const std::weak_ptr<NodeMap> parentNodeMap;
    GENAPI_NAMESPACE::INode* const genApiNode; // belongs to the map

    BuiltOnce<LinkedNodes> invalidatedNodes;
    BuiltOnce<LinkedNodes> invalidatingNodes;
    BuiltOnce<LinkedNodes> selectedNodes;
    BuiltOnce<LinkedNodes> selectingNodes;

    std::mutex changedCallbacksMutex; // taken while the lock of the map is held, never the other way round
    ChangedCallbacks changedCallbacks;
};

} // namespace koro::internal

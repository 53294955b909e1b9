// FilledCaches: records which nodes may have cached values and which dependents lead to such nodes, so that discarding
// caches visits these nodes instead of all dependents.
//
// Owned by the node map, used while its lock is held. The links from a node to its dependents do not change; each link
// is open or closed. A node is entered when one of its caches gets a value. Two rules hold between calls: all links to
// an entered node are open, and the node from which an open link starts is entered too. So the open links lead from any
// node to every dependent with cached values. An entered node may have no cached value: it is then visited once in
// vain. A link is opened again only after a visit has closed it, so maintaining the links costs no more than the
// visits.
#pragma once

#include "xml/description.h"

#include <stdint.h>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

class FilledCaches
{
public:
    explicit FilledCaches(const NodeLists& dependents);
    FilledCaches(const FilledCaches&) = delete;
    FilledCaches& operator=(const FilledCaches&) = delete;

    // Enters a node that now has a cached value.
    void Add(NodeIndex node) noexcept
    {
        if (!nodes[node].entered) AddNew(node);
    }
    // Removes and returns the entered nodes among these and all their dependents; the result is valid until the next
    // call.
    const std::vector<NodeIndex>& Take(Span<NodeIndex> starts) noexcept;
    // The number of nodes that were entered and removed so far; for tests.
    uint64_t Visits() const { return visits; }

private:
    using Link = uint32_t; // position in dependents.nodes
    static constexpr Link none = UINT32_MAX;

    // The first link of each list; `next` has the others.
    struct NodeState
    {
        Link open = none;   // from the node
        Link closed = none; // to the node
        bool entered = false;
    };

    void AddNew(NodeIndex node) noexcept;
    void Enter(NodeIndex node) noexcept;
    void Leave(NodeIndex node) noexcept;
    void OpenLinksTo(NodeIndex node) noexcept;
    void CloseLinksFrom(NodeIndex node) noexcept;

    const NodeLists& dependents;
    std::vector<NodeState> nodes;
    std::vector<NodeIndex> sources; // of each link
    std::vector<Link> next;         // in the list that the link is in
    std::vector<NodeIndex> met;     // the nodes that the current call has met, each once; large enough for all
    uint64_t visits = 0;
};

} // namespace GENAPI_NAMESPACE::runtime

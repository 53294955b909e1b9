// FilledCaches: records which nodes may have cached values and which dependents lead to such nodes, so that discarding
// caches visits these nodes instead of all dependents.
//
// Owned by the node map, used while its lock is held. The links from a node to its dependents do not change; each link
// is open or closed. A node is entered when one of its caches gets a value. Two rules hold between calls: all links to
// an entered node are open, and the node from which an open link starts is entered too. So the open links lead from any
// node to every dependent with cached values. An entered node may have no cached value: it is then visited once in
// vain. A link is opened again only after a visit has closed it, so maintaining the links costs no more than the
// visits.
//
// Nodes may share the bytes of a register, which are cached for all of them together. An entered node is idle if it has
// nothing else in its caches and no open link starts from it; otherwise it is active. Discarding the bytes leaves an
// idle node without cached values, so only the active sharers must then be visited. Filling the bytes enters only the
// sharers that were removed since the bytes were last filled.
#pragma once

#include "xml/description.h"

#include <stdint.h>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

class FilledCaches
{
public:
    // The nodes that share bytes, ordered by state.
    class Sharers
    {
    public:
        bool IsEmpty() const { return nodes.empty(); }
        // Valid until the next change of FilledCaches.
        Span<NodeIndex> Active() const { return {nodes.data() + ends[idle], nodes.data() + nodes.size()}; }

    private:
        friend class FilledCaches;
        std::vector<NodeIndex> nodes;
        uint32_t ends[2] = {0, 0}; // of the removed nodes and of the idle ones
    };

    explicit FilledCaches(const NodeLists& dependents);
    FilledCaches(const FilledCaches&) = delete;
    FilledCaches& operator=(const FilledCaches&) = delete;

    // Enters a node that now has a cached value.
    void Add(NodeIndex node) noexcept
    {
        if (nodes[node].state != active) AddNew(node, active);
    }
    // Makes the node a sharer; it shares no other bytes. Unshare ends this.
    void Share(Sharers& sharers, NodeIndex node);
    void Unshare(NodeIndex node) noexcept;
    // Enters all sharers, whose bytes are now cached.
    void AddSharers(Sharers& sharers) noexcept;
    // Removes and returns the entered nodes among these and all their dependents; the result is valid until the next
    // call.
    const std::vector<NodeIndex>& Take(Span<NodeIndex> starts) noexcept;
    // The number of steps so far: nodes that were to be removed, and that became active, idle or removed; for tests.
    uint64_t Visits() const { return visits; }

private:
    using Link = uint32_t; // position in dependents.nodes
    static constexpr Link none = UINT32_MAX;
    using State = uint8_t;
    static constexpr State removed = 0, idle = 1, active = 2; // in the order of the sharers

    struct NodeState
    {
        // The first link of each list; `next` has the others.
        Link open = none;   // from the node
        Link closed = none; // to the node
        Sharers* sharers = nullptr;
        uint32_t seat = 0; // among the sharers
        State state = removed;
    };

    void AddNew(NodeIndex node, State state) noexcept;
    void Enter(NodeIndex node, State state) noexcept;
    void Leave(NodeIndex node) noexcept;
    void SetState(NodeIndex node, State state) noexcept;
    void Swap(NodeState& own, uint32_t seat) noexcept;
    void OpenLinksTo(NodeIndex node) noexcept;
    void CloseLinksFrom(NodeIndex node) noexcept;

    const NodeLists& dependents;
    std::vector<NodeState> nodes;
    std::vector<NodeIndex> sources; // of each link
    std::vector<Link> next;         // in the list that the link is in
    std::vector<NodeIndex> met;     // the nodes that the current call has met; large enough for all of them
    uint64_t visits = 0;
};

} // namespace GENAPI_NAMESPACE::runtime

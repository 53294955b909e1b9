#include "map/filled_caches.h"

#include <utility>

namespace GENAPI_NAMESPACE::runtime
{

FilledCaches::FilledCaches(const NodeLists& dependents)
    : dependents(dependents), nodes(dependents.firsts.size() - 1), sources(dependents.nodes.size()),
      next(dependents.nodes.size())
{
    met.reserve(nodes.size() + 1); // one may become idle and then active
    for (NodeIndex source = 0; source < nodes.size(); ++source)
    {
        for (Link link = dependents.firsts[source]; link < dependents.firsts[source + 1]; ++link)
        {
            sources[link] = source;
            next[link] = std::exchange(nodes[dependents.nodes[link]].closed, link);
        }
    }
}

void FilledCaches::Share(Sharers& sharers, NodeIndex node)
{
    sharers.nodes.push_back(node);
    NodeState& own = nodes[node];
    own.sharers = &sharers;
    own.seat = static_cast<uint32_t>(sharers.nodes.size() - 1);
    SetState(node, std::exchange(own.state, active));
}

void FilledCaches::Unshare(NodeIndex node) noexcept
{
    NodeState& own = nodes[node];
    const State state = own.state;
    SetState(node, active);
    Swap(own, static_cast<uint32_t>(own.sharers->nodes.size() - 1));
    own.sharers->nodes.pop_back();
    own.sharers = nullptr;
    own.state = state;
}

void FilledCaches::AddSharers(Sharers& sharers) noexcept
{
    while (sharers.ends[removed] > 0)
        AddNew(sharers.nodes.front(), idle);
}

void FilledCaches::AddNew(NodeIndex node, State state) noexcept
{
    met.clear();
    Enter(node, state);
    for (size_t i = 0; i < met.size(); ++i)
        OpenLinksTo(met[i]);
    visits += met.size();
}

const std::vector<NodeIndex>& FilledCaches::Take(Span<NodeIndex> starts) noexcept
{
    met.clear();
    for (const NodeIndex start : starts)
        Leave(start);
    for (size_t i = 0; i < met.size(); ++i)
        CloseLinksFrom(met[i]);
    visits += starts.size() + met.size();
    return met;
}

void FilledCaches::Enter(NodeIndex node, State state) noexcept
{
    if (nodes[node].state >= state) return;
    SetState(node, state);
    met.push_back(node);
}

void FilledCaches::Leave(NodeIndex node) noexcept
{
    if (nodes[node].state == removed) return;
    SetState(node, removed);
    met.push_back(node);
}

// A sharer moves to the next part until it is in the right one.
void FilledCaches::SetState(NodeIndex node, State state) noexcept
{
    NodeState& own = nodes[node];
    for (; own.sharers && own.state < state; ++own.state)
        Swap(own, --own.sharers->ends[own.state]);
    for (; own.sharers && own.state > state; --own.state)
        Swap(own, own.sharers->ends[own.state - 1]++);
    own.state = state;
}

// Exchanges the seats of two sharers.
void FilledCaches::Swap(NodeState& own, uint32_t seat) noexcept
{
    std::vector<NodeIndex>& sharers = own.sharers->nodes;
    nodes[sharers[seat]].seat = own.seat;
    std::swap(sharers[seat], sharers[own.seat]);
    own.seat = seat;
}

void FilledCaches::OpenLinksTo(NodeIndex node) noexcept
{
    for (Link link = std::exchange(nodes[node].closed, none); link != none;)
    {
        const NodeIndex source = sources[link];
        const Link following = std::exchange(next[link], nodes[source].open);
        nodes[source].open = link;
        Enter(source, active);
        link = following;
    }
}

void FilledCaches::CloseLinksFrom(NodeIndex node) noexcept
{
    for (Link link = std::exchange(nodes[node].open, none); link != none;)
    {
        const NodeIndex dependent = dependents.nodes[link];
        const Link following = std::exchange(next[link], nodes[dependent].closed);
        nodes[dependent].closed = link;
        Leave(dependent);
        link = following;
    }
}

} // namespace GENAPI_NAMESPACE::runtime

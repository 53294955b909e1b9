#include "map/filled_caches.h"

#include <utility>

namespace GENAPI_NAMESPACE::runtime
{

FilledCaches::FilledCaches(const NodeLists& dependents)
    : dependents(dependents), nodes(dependents.firsts.size() - 1), sources(dependents.nodes.size()),
      next(dependents.nodes.size())
{
    met.reserve(nodes.size());
    for (NodeIndex source = 0; source < nodes.size(); ++source)
    {
        for (Link link = dependents.firsts[source]; link < dependents.firsts[source + 1]; ++link)
        {
            sources[link] = source;
            next[link] = std::exchange(nodes[dependents.nodes[link]].closed, link);
        }
    }
}

void FilledCaches::AddNew(NodeIndex node) noexcept
{
    met.clear();
    Enter(node);
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
    visits += met.size();
    return met;
}

void FilledCaches::Enter(NodeIndex node) noexcept
{
    if (!std::exchange(nodes[node].entered, true)) met.push_back(node);
}

void FilledCaches::Leave(NodeIndex node) noexcept
{
    if (std::exchange(nodes[node].entered, false)) met.push_back(node);
}

void FilledCaches::OpenLinksTo(NodeIndex node) noexcept
{
    for (Link link = std::exchange(nodes[node].closed, none); link != none;)
    {
        const NodeIndex source = sources[link];
        const Link following = std::exchange(next[link], nodes[source].open);
        nodes[source].open = link;
        Enter(source);
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

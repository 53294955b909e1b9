#include "nodes/linked_nodes.h"

#include "nodes/node.h"

namespace koro::internal
{

std::vector<std::shared_ptr<Node>> LinkedNodes::All() const
{
    std::vector<std::shared_ptr<Node>> all;
    all.reserve(nodes.size());
    for (Node* const node : nodes)
        all.push_back(node->shared_from_this());
    return all;
}

std::shared_ptr<Node> LinkedNodes::TryFind(const std::string& name) const
{
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second->shared_from_this();
}

void LinkedNodes::Reserve(std::size_t count)
{
    nodes.reserve(count);
    byName.reserve(count);
}

void LinkedNodes::Add(const std::string& name, const std::shared_ptr<Node>& node)
{
    nodes.push_back(node.get());
    byName.emplace(name, node.get());
}

} // namespace koro::internal

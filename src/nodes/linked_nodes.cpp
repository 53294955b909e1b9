#include "nodes/linked_nodes.h"

#include "nodes/node.h"

namespace koro::internal
{

std::shared_ptr<Node> LinkedNodes::At(std::size_t index) const
{
    return nodes.at(index)->shared_from_this();
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

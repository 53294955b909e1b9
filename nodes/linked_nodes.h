// LinkedNodes: nodes of one map that another node of the map refers to, by index and by name.
//
// Plain pointers on purpose: nodes of one map refer to each other in circles, and the map owns them all. Whoever looks
// must hold the map. Constant after it was built.
#pragma once

#include <GenApi/Container.h>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace koro::internal
{

class Node;
class NodeMap;

class LinkedNodes
{
public:
    // In GenApi's order.
    std::vector<std::shared_ptr<Node>> All() const;
    // The first of that name; empty when there is none.
    std::shared_ptr<Node> TryFind(const std::string& name) const;

    void Reserve(std::size_t count);
    void Add(const std::string& name, const std::shared_ptr<Node>& node);

private:
    std::vector<Node*> nodes;
    std::unordered_map<std::string, Node*> byName;
};

// The nodes of these features. Throws NotFoundException for one that is not in the map.
LinkedNodes LinkedFeatures(const GENAPI_NAMESPACE::value_vector& features, NodeMap& nodeMap);

} // namespace koro::internal

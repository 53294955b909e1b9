// LinkedNodes: nodes of one map that another node of the map refers to, by index and by name.
//
// Uses plain pointers because nodes of one map refer to each other in circles and the map owns them all. A caller must
// hold the map. Constant after it was built.
#pragma once

#include <GenApi/Container.h>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace koro::internal
{

class Node;
class NodeMap;

class LinkedNodes
{
public:
    // In GenApi's order.
    std::size_t Size() const { return nodes.size(); }
    std::shared_ptr<Node> At(std::size_t index) const;
    // The first of that name; empty when there is none.
    std::shared_ptr<Node> TryFind(const std::string& name) const;

    void Reserve(std::size_t count);
    void Add(const std::string& name, const std::shared_ptr<Node>& node);

private:
    std::vector<Node*> nodes;
    std::unordered_map<std::string, Node*> byName;
};

// The nodes for a caller outside of the map, which is held meanwhile. Nothing is copied: access to one element costs
// the same for any length.
class NodeList
{
public:
    NodeList(std::shared_ptr<NodeMap> nodeMap, const LinkedNodes& list) : map(std::move(nodeMap)), nodes(&list) {}

    std::size_t size() const { return nodes->Size(); }
    std::shared_ptr<Node> operator[](std::size_t index) const { return nodes->At(index); }
    std::shared_ptr<Node> front() const { return nodes->At(0); }

private:
    std::shared_ptr<NodeMap> map;
    const LinkedNodes* nodes;
};

// The nodes of these features. Throws NotFoundException for a feature that is not in the map.
LinkedNodes LinkedFeatures(const GENAPI_NAMESPACE::value_vector& features, NodeMap& nodeMap);

} // namespace koro::internal

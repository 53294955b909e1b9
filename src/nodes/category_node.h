// CategoryNode: a feature that groups others.
//
// Created and owned by its NodeMap. Thread-safe.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>
#include <memory>
#include <vector>

namespace koro::internal
{

class CategoryNode final : public Node
{
public:
    CategoryNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), category(node)
    {}

    // In the order of the description; built on first use and never refreshed.
    NodeList SubNodes();

private:
    BuiltOnce<LinkedNodes> subNodes;
    const GENAPI_NAMESPACE::CCategoryPtr category;
};

} // namespace koro::internal

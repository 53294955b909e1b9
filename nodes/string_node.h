// StringNode: a feature with a text.
//
// Made and owned by its NodeMap. Any thread.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>

namespace koro::internal
{

class StringNode final : public Node
{
public:
    StringNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap) : Node(node, nodeMap), value(node)
    {}

private:
    const GENAPI_NAMESPACE::CStringPtr value;
};

} // namespace koro::internal

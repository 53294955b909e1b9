// IntegerNode: a feature with a whole number.
//
// Made and owned by its NodeMap. Any thread.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>

namespace koro::internal
{

class IntegerNode final : public Node
{
public:
    IntegerNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap) : Node(node, nodeMap), value(node)
    {}

private:
    const GENAPI_NAMESPACE::CIntegerPtr value;
};

} // namespace koro::internal

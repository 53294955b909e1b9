// FloatNode: a feature with a real number.
//
// Made and owned by its NodeMap. Any thread.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>

namespace koro::internal
{

class FloatNode final : public Node
{
public:
    FloatNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap) : Node(node, nodeMap), value(node)
    {}

private:
    const GENAPI_NAMESPACE::CFloatPtr value;
};

} // namespace koro::internal

// BooleanNode: a feature that is on or off.
//
// Made and owned by its NodeMap. Any thread.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>

namespace koro::internal
{

class BooleanNode final : public Node
{
public:
    BooleanNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap) : Node(node, nodeMap), value(node)
    {}

private:
    const GENAPI_NAMESPACE::CBooleanPtr value;
};

} // namespace koro::internal

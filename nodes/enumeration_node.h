// EnumerationNode: a feature with a choice.
//
// Made and owned by its NodeMap. Any thread.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>

namespace koro::internal
{

class EnumerationNode final : public Node
{
public:
    EnumerationNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), value(node)
    {}

private:
    const GENAPI_NAMESPACE::CEnumerationPtr value;
};

} // namespace koro::internal

// CommandNode: a feature that does something.
//
// Made and owned by its NodeMap. Any thread.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>

namespace koro::internal
{

class CommandNode final : public Node
{
public:
    CommandNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), command(node)
    {}

private:
    const GENAPI_NAMESPACE::CCommandPtr command;
};

} // namespace koro::internal

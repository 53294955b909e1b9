// Nodes at the C interface: entering them in the handle tables.
#pragma once

#include "capi/arguments.h"
#include "nodes/node.h"

#include <memory>

namespace koro::internal
{

// Each call returns the same handle, which ends with the node's map.
inline HandleOf<Node> EnterNode(const std::shared_ptr<Node>& node)
{
    return Table<Node>().Add(node, node->ParentNodeMap());
}

} // namespace koro::internal

// Nodes at the boundary: entering them, and texts that come in.
#pragma once

#include "capi/arguments.h"
#include "nodes/node.h"

#include <cstddef>
#include <memory>
#include <string>

namespace koro::internal
{

// The same handle each time; it ends with the node's map.
inline HandleOf<Node> EnterNode(const std::shared_ptr<Node>& node)
{
    return Table<Node>().Add(node, node->ParentNodeMap());
}

// `size` counts a terminating zero and is taken at its word; 0 is no text.
inline std::string TextArgument(const char* text, std::size_t size)
{
    return {text, size > 0 ? size - 1 : 0};
}

} // namespace koro::internal

// MakeNode: creates the runtime node for a record of the description.
#pragma once

#include "nodes/node.h"

namespace GENAPI_NAMESPACE::runtime
{

std::unique_ptr<Node> MakeNode(NodeMap& map, NodeIndex node);

} // namespace GENAPI_NAMESPACE::runtime

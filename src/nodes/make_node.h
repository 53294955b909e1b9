// MakeNode: wraps one GenApi node by the class of its principal interface.
#pragma once

#include <GenApi/INode.h>
#include <memory>

namespace koro::internal
{

class Node;
class NodeMap;

// A node without a typed class becomes a plain Node. Reads nothing from the device.
std::shared_ptr<Node> MakeNode(GENAPI_NAMESPACE::INode* genApiNode, const std::shared_ptr<NodeMap>& nodeMap);

} // namespace koro::internal

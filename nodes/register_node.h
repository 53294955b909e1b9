// RegisterNode: a feature with raw bytes.
//
// Made and owned by its NodeMap. Any thread.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>

namespace koro::internal
{

class RegisterNode final : public Node
{
public:
    RegisterNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), value(node)
    {}

private:
    const GENAPI_NAMESPACE::CRegisterPtr value;
};

} // namespace koro::internal

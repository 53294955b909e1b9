// EnumerationEntryNode: one entry of a choice.
//
// Made and owned by its NodeMap. Any thread.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>

namespace koro::internal
{

class EnumerationEntryNode final : public Node
{
public:
    EnumerationEntryNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), entry(node)
    {}

private:
    const GENAPI_NAMESPACE::CEnumEntryPtr entry;
};

} // namespace koro::internal

// BooleanNode: a feature that is on or off.
//
// Created and owned by its NodeMap. Thread-safe. Reads take no lock of the library; a write holds the lock of the map.
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

    bool Value(CachePolicy policy) const;
    void SetValue(bool newValue);

private:
    const GENAPI_NAMESPACE::CBooleanPtr value;
};

} // namespace koro::internal

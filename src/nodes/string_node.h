// StringNode: a feature with a text.
//
// Created and owned by its NodeMap. Thread-safe. Reads take no lock of the library; a write holds the lock of the map.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>
#include <cstdint>
#include <string>

namespace koro::internal
{

class StringNode final : public Node
{
public:
    StringNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap) : Node(node, nodeMap), value(node)
    {}

    std::int64_t MaximumLength() const; // bytes
    std::string Value(CachePolicy policy) const;
    void SetValue(const std::string& newValue);

private:
    const GENAPI_NAMESPACE::CStringPtr value;
};

} // namespace koro::internal

// EnumerationEntryNode: one entry of an enumeration.
//
// Created and owned by its NodeMap. Thread-safe.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>
#include <cstdint>
#include <string>

namespace koro::internal
{

class EnumerationEntryNode final : public Node
{
public:
    EnumerationEntryNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap)
        : Node(node, nodeMap), entry(node)
    {}

    bool IsSelfClearing() const;
    std::string SymbolicValue() const;
    std::int64_t Value() const;

private:
    const GENAPI_NAMESPACE::CEnumEntryPtr entry;
};

} // namespace koro::internal

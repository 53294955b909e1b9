// IntegerNode: a feature with an integer value.
//
// Created and owned by its NodeMap. Thread-safe. Reads take no lock of the library; a write holds the lock of the map.
#pragma once

#include "nodes/node.h"

#include <GenApi/Pointer.h>
#include <cstdint>
#include <string>
#include <vector>

namespace koro::internal
{

class IntegerNode final : public Node
{
public:
    IntegerNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap) : Node(node, nodeMap), value(node)
    {}

    std::int64_t Minimum() const;
    std::int64_t Maximum() const;
    std::int64_t Increment() const;
    GENAPI_NAMESPACE::EIncMode IncrementType() const;
    std::vector<std::int64_t> ValidValues() const; // within the limits
    GENAPI_NAMESPACE::ERepresentation Representation() const;
    std::string Unit() const;

    std::int64_t Value(CachePolicy policy) const;
    void SetValue(std::int64_t newValue);

private:
    const GENAPI_NAMESPACE::CIntegerPtr value;
};

} // namespace koro::internal

// FloatNode: a feature with a floating-point value.
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

class FloatNode final : public Node
{
public:
    FloatNode(GENAPI_NAMESPACE::INode* node, const std::weak_ptr<NodeMap>& nodeMap) : Node(node, nodeMap), value(node)
    {}

    double Minimum() const;
    double Maximum() const;
    bool HasConstantIncrement() const;
    double Increment() const;
    GENAPI_NAMESPACE::EIncMode IncrementType() const;
    std::vector<double> ValidValues() const; // within the limits
    GENAPI_NAMESPACE::ERepresentation Representation() const;
    std::string Unit() const;
    GENAPI_NAMESPACE::EDisplayNotation DisplayNotation() const;
    std::int64_t DisplayPrecision() const;

    double Value(CachePolicy policy) const;
    void SetValue(double newValue);

private:
    const GENAPI_NAMESPACE::CFloatPtr value;
};

} // namespace koro::internal

// Reads values of other nodes as the number type of the computation: int64_t or double.
#pragma once

#include "map/node_map.h"
#include "nodes/node.h"

#include <optional>
#include <type_traits>

namespace GENAPI_NAMESPACE::runtime
{

template <class Number>
constexpr bool isInteger = std::is_same_v<Number, int64_t>;

template <class Number>
Number NumberIn(const PropertyRecord& record)
{
    if constexpr (isInteger<Number>)
        return record.number;
    else
        return record.real;
}

template <class Number>
Number ReadFrom(Node& node, ReadOptions options)
{
    if constexpr (isInteger<Number>)
        return node.ReadInteger(options);
    else
        return node.ReadReal(options);
}

inline void WriteTo(Node& node, int64_t value, bool verify)
{
    node.WriteInteger(value, verify);
}

inline void WriteTo(Node& node, double value, bool verify)
{
    node.WriteReal(value, verify);
}

template <class Number>
Number MinOf(Node& node)
{
    const Descent descent(node);
    if constexpr (isInteger<Number>)
        return node.IntegerMin();
    else
        return node.RealMin();
}

template <class Number>
Number MaxOf(Node& node)
{
    const Descent descent(node);
    if constexpr (isInteger<Number>)
        return node.IntegerMax();
    else
        return node.RealMax();
}

template <class Number>
Number IncOf(Node& node)
{
    const Descent descent(node);
    if constexpr (isInteger<Number>)
        return node.IntegerInc();
    else
        return node.RealInc();
}

// A limit that the description gives as a number or as a node.
template <class Number>
std::optional<Number> WrittenLimit(const Node& node, Property number, Property link)
{
    const Description& source = node.Source();
    if (const PropertyRecord* const record = source.Find(node.Index(), number)) return NumberIn<Number>(*record);
    const PropertyRecord* const record = source.Find(node.Index(), link);
    if (!record) return std::nullopt;
    return ReadFrom<Number>(*node.Map().At(record->node), {});
}

} // namespace GENAPI_NAMESPACE::runtime

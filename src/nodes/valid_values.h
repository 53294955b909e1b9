// ToVector: converts a list of values of GenApi to a vector.
#pragma once

#include <GenApi/Autovector.h>
#include <cstddef>
#include <vector>

namespace koro::internal
{

template <class Value, class AutoVector>
std::vector<Value> ToVector(const AutoVector& list)
{
    std::vector<Value> values(list.size());
    for (std::size_t index = 0; index < values.size(); ++index)
        values[index] = list[index];
    return values;
}

} // namespace koro::internal

// Tables from the standard's numbers to its names, for messages.
#pragma once

#include "gentl/api/gentl.h"

#include <cstddef>
#include <cstdint>

namespace koro::internal
{

struct NamedNumber
{
    std::int32_t number;
    const char* name;
};

#define KORO_NAMED(identifier)                                                                                         \
    ::koro::internal::NamedNumber                                                                                      \
    {                                                                                                                  \
        ::GenTL::identifier, #identifier                                                                               \
    }

// Empty text for a number that the table lacks.
template <std::size_t size>
const char* NameOf(std::int32_t number, const NamedNumber (&table)[size])
{
    for (const auto& entry : table)
    {
        if (entry.number == number) return entry.name;
    }
    return "";
}

} // namespace koro::internal

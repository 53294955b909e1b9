// EventMessageSize: the size of an event's block as GenApi expects it.
#pragma once

#include "base/exceptions.h"

#include <cstddef>
#include <cstdint>
#include <limits>

namespace koro::internal
{

// Throws InternalErrorException for a block of 4 GiB and more.
inline std::uint32_t EventMessageSize(std::size_t size)
{
    if (size > std::numeric_limits<std::uint32_t>::max()) throw InternalErrorException("Event size is too large!");
    return static_cast<std::uint32_t>(size);
}

} // namespace koro::internal

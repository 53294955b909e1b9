// Names of the info commands of each command list, for messages.
#pragma once

#include <cstdint>

namespace koro::internal
{

// The standard's enumerator name of `command` in the list; empty for a number outside it.
// Specialised for the ten command lists of the standard that the library queries.
template <class CommandList>
const char* InfoCommandName(std::int32_t command);

} // namespace koro::internal

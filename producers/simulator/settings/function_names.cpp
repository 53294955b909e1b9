#include "producers/simulator/settings/function_names.h"

#include "gentl/api/function_names.h"

#include <algorithm>
#include <iterator>

namespace koro::simulator
{

bool IsGenTLFunction(std::string_view name) noexcept
{
    const auto isOneOf = [name](const auto& names) {
        return std::find(std::begin(names), std::end(names), name) != std::end(names);
    };
    return isOneOf(GenTL::mandatoryFunctions) || isOneOf(GenTL::laterFunctions);
}

} // namespace koro::simulator

#include "gentl/bounds.h"

#include "base/exceptions.h"

#include <string>

namespace koro::internal
{

void CheckClaim(const ClaimBound& bound, std::uint64_t claimed, const char* function)
{
    if (claimed <= bound.limit) return;
    throw InternalErrorException(
        std::string("[Function: ") + function + " | Error: " + std::to_string(claimed) + " " + bound.name +
        " exceed the bound of " + std::to_string(bound.limit) + "]");
}

} // namespace koro::internal

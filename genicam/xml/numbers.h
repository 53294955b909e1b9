// The formats of numbers in descriptions. Each function returns false for a text that is not a number; blanks around it
// are not allowed.
#pragma once

#include <Base/GCNamespace.h>
#include <stdint.h>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

// Decimal with an optional sign, or 0x and hex digits; within the signed 64 bits.
bool ParseNumber(std::string_view text, int64_t& number);
// Decimal with point and exponent, INF, -INF, NaN, or a number in hex.
bool ParseReal(std::string_view text, double& number);

} // namespace GENAPI_NAMESPACE::runtime

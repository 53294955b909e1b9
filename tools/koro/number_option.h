// Options that take a number. What is none, or out of range, is a wrong command line, and the message names the option.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace CLI
{
class Option;
}

namespace koro::tool
{

// Decimal, or hexadecimal after 0x; empty for all else, such as signs, blanks and what does not fit.
std::optional<uint64_t> ParseUnsigned(const std::string& text);

// A whole number in this range. For an option whose variable holds the largest one.
CLI::Option* TakesWholeNumber(CLI::Option* option, uint64_t least, uint64_t most);

// A finite number greater than 0.
CLI::Option* TakesPositiveNumber(CLI::Option* option);

} // namespace koro::tool

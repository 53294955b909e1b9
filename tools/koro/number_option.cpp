#include "tools/koro/number_option.h"

#include "tools/koro/report.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>

namespace koro::tool
{

namespace
{

// The command line's own reader takes signs, blanks and octal numbers, and numbers modulo 2^64.
CLI::Option* Takes(
    CLI::Option* option, const std::string& wanted, const std::string& help,
    const std::function<std::optional<std::string>(std::string)>& read)
{
    const auto check = [=](std::string& text) {
        const auto value = read(text);
        if (!value) return "\"" + PrintableStart(text) + "\" is no " + wanted;
        text = *value;
        return std::string();
    };
    return option->transform(CLI::Validator(check, help, ""));
}

} // namespace

std::optional<uint64_t> ParseUnsigned(const std::string& text)
{
    const bool isHexadecimal = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0;
    const char* const begin = text.data() + (isHexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    uint64_t number = 0;
    const auto result = std::from_chars(begin, end, number, isHexadecimal ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return number;
}

CLI::Option* TakesWholeNumber(CLI::Option* option, uint64_t least, uint64_t most)
{
    const std::string range = std::to_string(least) + " to " + std::to_string(most);
    return Takes(
        option, "whole number from " + range, range, [=](const std::string& text) -> std::optional<std::string> {
            const auto number = ParseUnsigned(text);
            if (!number || *number < least || *number > most) return std::nullopt;
            return std::to_string(*number);
        });
}

CLI::Option* TakesPositiveNumber(CLI::Option* option)
{
    return Takes(
        option, "number greater than 0", "greater than 0", [](const std::string& text) -> std::optional<std::string> {
            double number = 0;
            const char* const end = text.data() + text.size();
            const auto result = std::from_chars(text.data(), end, number);
            if (result.ec != std::errc() || result.ptr != end || !std::isfinite(number) || number <= 0)
                return std::nullopt;
            return text;
        });
}

} // namespace koro::tool

#include "nodes/texts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <inttypes.h>
#include <stdarg.h>
#include <stdio.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const char hexDigits[] = "0123456789abcdef";
const int64_t maxDigits = 100; // the largest number of digits of a precision

__attribute__((format(printf, 1, 2))) std::string Format(const char* format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    const int length = vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return std::string(text, std::min(sizeof text - 1, static_cast<size_t>(std::max(length, 0))));
}

// Groups of digits, each one byte, highest first, separated by `separator`; nothing else is accepted.
bool ReadGroups(std::string_view text, char separator, int groups, int base, int64_t& value)
{
    uint64_t result = 0;
    const char* position = text.data();
    const char* const end = text.data() + text.size();
    for (int group = 0; group < groups; ++group)
    {
        if (group > 0 && (position == end || *position++ != separator)) return false;
        uint8_t byte = 0;
        const std::from_chars_result read = std::from_chars(position, end, byte, base);
        if (read.ec != std::errc()) return false;
        position = read.ptr;
        result = result << 8 | byte;
    }
    value = static_cast<int64_t>(result);
    return position == end;
}

int HexDigit(char letter)
{
    if (letter >= '0' && letter <= '9') return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
    return -1;
}

std::chars_format FormatOf(EDisplayNotation notation)
{
    switch (notation)
    {
    case fnFixed:
        return std::chars_format::fixed;
    case fnScientific:
        return std::chars_format::scientific;
    default:
        return std::chars_format::general;
    }
}

// With a decimal point, regardless of the application's locale.
std::string Shown(double value, EDisplayNotation notation, int precision)
{
    char text[512]; // 309 digits before the point and maxDigits after it
    return std::string(text, std::to_chars(text, text + sizeof text, value, FormatOf(notation), precision).ptr);
}

// Half a unit of the last digit of the mantissa, without regard to the exponent.
double HalfUnit(std::string_view text)
{
    const std::string_view mantissa = text.substr(0, text.find_first_of("eE"));
    const size_t point = mantissa.find('.');
    const size_t places = point == std::string_view::npos ? 0 : mantissa.size() - point - 1;
    return 0.5 * std::pow(10.0, -static_cast<double>(places));
}

} // namespace

std::string IntegerText(int64_t value, ERepresentation representation)
{
    const uint64_t bits = static_cast<uint64_t>(value);
    const auto byte = [bits](unsigned number) { return static_cast<unsigned>(bits >> 8 * number & 0xff); };
    switch (representation)
    {
    case Boolean:
        return value ? "true" : "false";
    case HexNumber:
        return value == 0 ? "0" : Format("0x%" PRIx64, bits);
    case IPV4Address:
        return Format("%u.%u.%u.%u", byte(3), byte(2), byte(1), byte(0));
    case MACAddress:
        return Format("%02x:%02x:%02x:%02x:%02x:%02x", byte(5), byte(4), byte(3), byte(2), byte(1), byte(0));
    default:
        return std::to_string(value);
    }
}

bool ReadInteger(std::string_view text, ERepresentation representation, int64_t& value)
{
    if (representation == IPV4Address) return ReadGroups(text, '.', 4, 10, value);
    if (representation == MACAddress) return ReadGroups(text, ':', 6, 16, value);
    if (representation == Boolean)
    {
        value = text == "true";
        return value || text == "false";
    }
    const size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos) return false;
    text.remove_prefix(start);
    if (text[0] == '+' && text.substr(1, 1) != "-") text.remove_prefix(1);
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
    {
        uint64_t bits = 0;
        const bool good = std::from_chars(text.data() + 2, text.data() + text.size(), bits, 16).ec == std::errc();
        value = static_cast<int64_t>(bits);
        return good;
    }
    return std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
}

std::string RealText(double value, double min, double max, EDisplayNotation notation, int64_t precision)
{
    const int digits = static_cast<int>(std::clamp<int64_t>(precision, 0, maxDigits));
    std::string text = Shown(value, notation, digits);
    double shown = 0;
    if (!std::isfinite(value) || !ReadReal(text, shown)) return text;
    if (shown > max) return Shown(value - HalfUnit(text), notation, digits);
    if (shown < min) return Shown(value + HalfUnit(text), notation, digits);
    return text;
}

std::string PlainText(int64_t value)
{
    return std::to_string(value);
}

std::string PlainText(double value)
{
    return Shown(value, fnFixed, 6);
}

bool ReadReal(std::string_view text, double& value)
{
    const size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos) return false;
    text.remove_prefix(start);
    if (text[0] == '+' && text.substr(1, 1) != "-") text.remove_prefix(1);
    if (text.substr(0, 2) == "0x") text.remove_prefix(2); // not hexadecimal: the digits after it are used unchanged
    if (text.empty()) return false;
    const char first = text[text[0] == '-' && text.size() > 1 ? 1 : 0];
    const bool number = (first >= '0' && first <= '9') || first == '.';
    return number && std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
}

std::string HexText(const uint8_t* bytes, size_t length)
{
    std::string text = "0x";
    text.reserve(2 + 2 * length);
    for (size_t i = 0; i < length; ++i)
    {
        text += hexDigits[bytes[i] >> 4];
        text += hexDigits[bytes[i] & 15];
    }
    return text;
}

bool ReadHex(std::string_view text, std::string& bytes)
{
    if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") text.remove_prefix(2);
    if (text.size() % 2 != 0) return false;
    bytes.clear();
    for (size_t i = 0; i < text.size(); i += 2)
    {
        const int high = HexDigit(text[i]);
        const int low = HexDigit(text[i + 1]);
        if (high < 0 || low < 0) return false;
        bytes += static_cast<char>(high * 16 + low);
    }
    return true;
}

} // namespace GENAPI_NAMESPACE::runtime

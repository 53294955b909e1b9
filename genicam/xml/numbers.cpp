#include "xml/numbers.h"

#include <charconv>
#include <limits>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

template <class Number, class... Style>
bool ReadWhole(std::string_view text, Number& number, Style... style)
{
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number, style...);
    return result.ec == std::errc() && result.ptr == end;
}

bool IsHex(std::string_view text)
{
    return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

// from_chars accepts the minus sign, but not the plus sign.
std::string_view WithoutPlus(std::string_view text)
{
    const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return plus ? text.substr(1) : text;
}

} // namespace

bool ParseNumber(std::string_view text, int64_t& number)
{
    if (IsHex(text)) return text[2] != '-' && ReadWhole(text.substr(2), number, 16);
    return ReadWhole(WithoutPlus(text), number, 10);
}

bool ParseReal(std::string_view text, double& number)
{
    int64_t integer = 0;
    if (IsHex(text))
    {
        if (!ParseNumber(text, integer)) return false;
        number = static_cast<double>(integer);
        return true;
    }
    if (text == "INF" || text == "-INF")
    {
        const double infinity = std::numeric_limits<double>::infinity();
        number = text[0] == '-' ? -infinity : infinity;
        return true;
    }
    if (text == "NaN")
    {
        number = std::numeric_limits<double>::quiet_NaN();
        return true;
    }
    // The other spellings of infinity that from_chars accepts begin with a letter.
    if (text.find_first_not_of("+-.0123456789eE") != std::string_view::npos) return false;
    return ReadWhole(WithoutPlus(text), number);
}

} // namespace GENAPI_NAMESPACE::runtime

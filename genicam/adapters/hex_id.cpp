#include "adapters/hex_id.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const char* const blanks = " \t\r\n";

int DigitOf(char character)
{
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return -1;
}

std::string_view Digits(std::string_view text)
{
    const size_t first = text.find_first_not_of(blanks);
    if (first == text.npos) return {};
    text = text.substr(first, text.find_last_not_of(blanks) + 1 - first);
    if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") text.remove_prefix(2);
    return text;
}

} // namespace

std::string_view CanonicalId(const void* bigEndian, size_t size)
{
    std::string_view bytes(static_cast<const char*>(bigEndian), size);
    bytes.remove_prefix(std::min(bytes.find_first_not_of('\0'), size));
    return bytes;
}

NumberId::NumberId(uint64_t number)
{
    for (size_t i = sizeof bytes; i-- > 0; number >>= 8)
        bytes[i] = static_cast<uint8_t>(number);
}

HexId::HexId(const GENICAM_NAMESPACE::gcstring& text)
{
    const std::string_view digits = Digits({text.c_str(), text.size()});
    std::string all((digits.size() + 1) / 2, '\0');
    size_t half = digits.size() % 2; // of the byte that the digit is in; an odd number begins with a low half
    for (size_t i = 0; i < digits.size(); ++i, ++half)
    {
        const int digit = DigitOf(digits[i]);
        if (digit < 0) return;
        char& byte = all[half / 2];
        byte = static_cast<char>(byte << 4 | digit);
    }
    width = all.size();
    bytes = CanonicalId(all.data(), all.size());
}

} // namespace GENAPI_NAMESPACE::runtime

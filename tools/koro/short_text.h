// What is kept of a producer's texts that are shown and serve for nothing else.
#pragma once

#include <cstddef>
#include <string>

namespace koro::tool
{

// A text of more than 4 KiB becomes its beginning, which ends with a whole character, and a mark with the number of its
// bytes, short enough to be shown as it is.
inline std::string ShortText(std::string text)
{
    constexpr size_t longest = 4096;
    constexpr size_t kept = 160;
    if (text.size() <= longest) return text;
    size_t end = kept;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end) + "... (" + std::to_string(text.size()) + " bytes)";
}

} // namespace koro::tool

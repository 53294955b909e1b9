#include "tools/koro/report.h"

#include <algorithm>
#include <cstdio>

namespace koro::tool
{

std::string Printable(const std::string& text)
{
    std::string printable = text;
    std::replace_if(
        printable.begin(), printable.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; },
        '?');
    return printable;
}

std::string OrDash(const OptionalText& text)
{
    return text && !text->empty() ? Printable(*text) : "-";
}

void PrintRows(const Rows& rows, const std::string& indent)
{
    size_t width = 0;
    for (const auto& [label, value] : rows)
        width = std::max(width, label.size());
    for (const auto& [label, value] : rows)
    {
        std::printf("%s%-*s  %s\n", indent.c_str(), static_cast<int>(width), label.c_str(), value.c_str());
    }
}

} // namespace koro::tool

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

std::string PrintableStart(const std::string& text)
{
    constexpr size_t most = 200;
    if (text.size() <= most) return Printable(text);
    return Printable(text.substr(0, most)) + "... (" + std::to_string(text.size()) + " bytes)";
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

std::string CommaSeparated(const std::vector<std::string>& cells)
{
    std::string line;
    for (const std::string& cell : cells)
    {
        if (&cell != &cells.front()) line += ',';
        if (cell.find_first_of(",\"\r\n") == cell.npos)
        {
            line += cell;
            continue;
        }
        line += '"';
        for (const char c : cell)
            line += c == '"' ? std::string("\"\"") : std::string(1, c);
        line += '"';
    }
    return line;
}

} // namespace koro::tool

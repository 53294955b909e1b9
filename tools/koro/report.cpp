#include "tools/koro/report.h"

#include "tools/koro/standard_streams.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace koro::tool
{

namespace
{

bool IsContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// One character of a text: how many bytes it takes, and whether a terminal may get them.
struct Character
{
    size_t size;
    bool isShown;
};

// What is no UTF-8 is taken byte by byte: some terminals act on a single byte from 80 to 9F.
Character CharacterAt(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) return {1, first >= 0x20 && first != 0x7F};
    const size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < size) return {1, false};
    uint32_t code = first & (0x7Fu >> size);
    for (size_t i = 1; i < size; ++i)
    {
        if (!IsContinuation(text[i])) return {1, false};
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3Fu);
    }
    constexpr uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    if (code < smallest[size] || isSurrogate || code > 0x10FFFF) return {1, false};
    constexpr uint32_t replacement = 0xFFFD;            // stands for no UTF-8 where a text came through JSON
    return {size, code >= 0xA0 && code != replacement}; // C2 80 to C2 9F are controls too
}

// Of a text that is too long the beginning, which ends with a whole character, and a mark.
std::string Shown(const std::string& text, size_t most, bool keepsLines)
{
    std::string shown;
    shown.reserve(std::min(text.size(), most));
    const std::string_view whole = text;
    for (size_t at = 0; at < whole.size();)
    {
        const Character next = CharacterAt(whole.substr(at));
        if (at + next.size > most) return shown + "... (" + std::to_string(text.size()) + " bytes)";
        if (next.isShown || (keepsLines && whole[at] == '\n'))
            shown.append(whole, at, next.size);
        else
            shown += '?';
        at += next.size;
    }
    return shown;
}

} // namespace

std::string Printable(const std::string& text)
{
    return Shown(text, text.size(), false);
}

std::string PrintableStart(const std::string& text, size_t most)
{
    return Shown(text, most, false);
}

std::string PrintableLines(const std::string& text)
{
    constexpr size_t mostOfAMessage = 16384;
    return Shown(text, mostOfAMessage, true);
}

std::string PrintablePattern(const std::string& text)
{
    std::string pattern;
    bool wasShown = true;
    const std::string_view whole = text;
    for (size_t at = 0; at < whole.size();)
    {
        const Character next = CharacterAt(whole.substr(at));
        const bool isOfPatterns = std::string_view("*?[").find(whole[at]) != std::string_view::npos;
        if (next.isShown && isOfPatterns)
            pattern += std::string("[") + whole[at] + "]";
        else if (next.isShown)
            pattern.append(whole, at, next.size);
        else if (wasShown)
            pattern += '*';
        wasShown = next.isShown;
        at += next.size;
    }
    return pattern;
}

std::string OrDash(const OptionalText& text)
{
    return text && !text->empty() ? PrintableStart(*text) : "-";
}

std::string CountOf(uint64_t number, const std::string& thing)
{
    return std::to_string(number) + " " + thing + (number == 1 ? "" : "s");
}

std::string ThereAre(const std::vector<std::string>& names)
{
    if (names.empty()) return {};
    std::string text = names.size() == 1 ? "There is " : "There are ";
    for (const std::string& name : names)
        text += (&name == &names.front() ? "" : ", ") + PrintableStart(name);
    return text + ".";
}

void PrintRows(const Rows& rows, const std::string& indent)
{
    size_t width = 0;
    for (const auto& [label, value] : rows)
        width = std::max(width, label.size());
    for (const auto& [label, value] : rows)
    {
        PrintOut("%s%-*s  %s\n", indent.c_str(), static_cast<int>(width), label.c_str(), value.c_str());
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
            line.append(c == '"' ? 2 : 1, c);
        line += '"';
    }
    return line;
}

} // namespace koro::tool

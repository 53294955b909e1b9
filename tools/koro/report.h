// Report: what the commands share when they write for a person. Any thread.
#pragma once

#include "tools/koro/camera_tree.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace koro::tool
{

// Texts of cameras and producers end up on a terminal. Control characters become "?", those of 8 bits and bytes that
// are no UTF-8 included, and U+FFFD, which stands for such bytes.
std::string Printable(const std::string& text);
// The same of a text of any length: of a long one the first `most` bytes, and how many bytes there are.
std::string PrintableStart(const std::string& text, size_t most = 200);
// A whole message, in which line feeds are the tool's: they stay. At most 16 KiB are shown.
std::string PrintableLines(const std::string& text);

// A pattern that fits the text and that a terminal may get: "*" stands where Printable shows "?" for something else.
std::string PrintablePattern(const std::string& text);

// "-" for what the producer does not know or left empty.
std::string OrDash(const OptionalText& text);

// "1 buffer", "2 buffers".
std::string CountOf(uint64_t number, const std::string& thing);

// "There is Width.", "There are Width, Height."; empty for no names.
std::string ThereAre(const std::vector<std::string>& names);

using Rows = std::vector<std::pair<std::string, std::string>>;

// One row a line on standard output, the values aligned.
void PrintRows(const Rows& rows, const std::string& indent = "");

// One line of a table in a file: commas between the cells, quotation marks where a cell needs them.
std::string CommaSeparated(const std::vector<std::string>& cells);

} // namespace koro::tool

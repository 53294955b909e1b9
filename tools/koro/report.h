// Report: what the commands share when they write for a person. Any thread.
#pragma once

#include "tools/koro/camera_tree.h"

#include <string>
#include <utility>
#include <vector>

namespace koro::tool
{

// Texts of producers end up on a terminal: control characters become "?".
std::string Printable(const std::string& text);
// The same of a text of any length: of a long one the beginning, and how many bytes there are.
std::string PrintableStart(const std::string& text);

// "-" for what the producer does not know or left empty.
std::string OrDash(const OptionalText& text);

using Rows = std::vector<std::pair<std::string, std::string>>;

// One row a line on standard output, the values aligned.
void PrintRows(const Rows& rows, const std::string& indent = "");

// One line of a table in a file: commas between the cells, quotation marks where a cell needs them.
std::string CommaSeparated(const std::vector<std::string>& cells);

} // namespace koro::tool

// Values of features as texts: what `koro get` prints and `koro set` takes. Any thread.
#pragma once

#include <koro/koro.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

// Whether a node of that type has a value: all but categories, commands, entries and plain nodes.
bool HasValue(KORO_NodeType type);
// "Integer", "Enumeration", ...
const char* TypeName(KORO_NodeType type);

// The exact value, without its unit, as WriteValue takes it. Throws koro::Error when it cannot be read, ToolError for
// a node that has none.
std::string ReadValue(const Node& node, CachePolicy policy = CachePolicy::UseCache);
// The value for people: real numbers with six digits, strings in quotation marks, long values cut.
std::string ShowValue(const Node& node);

// Throws ToolError when `text` cannot be a value of the node, as far as that is known without asking for limits.
void CheckValue(const Node& node, const std::string& text);
// Throws as CheckValue, or koro::Error when the library refuses.
void WriteValue(const Node& node, const std::string& text);

// A whole number by its representation: decimal, 0x1F, 10.0.0.1 or 00:11:22:33:44:55.
std::string NumberText(int64_t number, KORO_NodeRepresentation representation);
// The shortest text that reads back as the same number.
std::string NumberText(double number);
// Decimal, hexadecimal after 0x, four numbers with dots, or six groups with colons. Throws std::invalid_argument.
int64_t ParseNumber(const std::string& text);
// Throws std::invalid_argument.
double ParseReal(const std::string& text);
// Bytes in hexadecimal after 0x, and back, with or without 0x. The latter throws std::invalid_argument.
std::string Hex(const std::vector<uint8_t>& bytes);
std::vector<uint8_t> ParseHex(const std::string& text);
// 1, true, on, yes or 0, false, off, no, in any case; empty for all else.
std::optional<bool> ParseBoolean(std::string text);

} // namespace koro::tool

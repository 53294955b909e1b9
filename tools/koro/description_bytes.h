// The description of a module as its port serves it. One thread at a time.
#pragma once

#include "tools/koro/tool_error.h"
#include <koro/koro.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace koro::tool
{

// The bytes that URL number `index` leads to, from the registers of the port or from a file. Throws koro::Error, or
// ToolError for an URL that leads elsewhere or claims more than the tool takes.
std::vector<uint8_t> DescriptionBytes(const Port& port, size_t index);

// The description in the archive when the bytes are one, else the bytes. Throws ToolError for a broken archive, and
// for one that expands beyond the limit.
std::string DescriptionText(const std::vector<uint8_t>& bytes);

// The failure for a module that has no description for the library, with the reason that another try meets. `owner` is
// as in "The remote device".
ToolError NoDescription(const std::string& owner, const Port& port);

} // namespace koro::tool

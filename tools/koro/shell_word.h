// A text as a shell takes it for one word. Pure function. Any thread.
#pragma once

#include <string>

namespace koro::tool
{

// In single quotes where it has characters that mean something to a shell.
std::string ShellWord(const std::string& word);

} // namespace koro::tool

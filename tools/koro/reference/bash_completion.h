// Completion of the tool's command lines in bash, made from their definitions.
#pragma once

#include <string>

namespace CLI
{
class App;
}

namespace koro::tool
{

// A script that bash reads: commands, options, the words of options that take one of a list, and else file names.
std::string BashCompletion(const CLI::App& tool);

} // namespace koro::tool

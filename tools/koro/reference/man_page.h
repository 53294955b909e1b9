// Manual pages of the tool, made from the definitions of its command line.
#pragma once

#include <string>

namespace CLI
{
class App;
}

namespace koro::tool
{

// The page of a command in the language of man(7). `command` is the tool itself or one of its commands; a command's own
// subcommands are sections of its page.
std::string ManPage(const CLI::App& command);

// The name of the page without section: "koro", "koro-grab".
std::string ManPageName(const CLI::App& command);

} // namespace koro::tool

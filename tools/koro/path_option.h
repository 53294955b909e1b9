// Paths on the command line: they become absolute before a producer is loaded, which may change the working directory.
#pragma once

namespace CLI
{
class Option;
}

namespace koro::tool
{

// Makes the option's values absolute when the command line is read; "-", which stands for a standard stream, stays.
CLI::Option* TakesPath(CLI::Option* option);

} // namespace koro::tool

// ModuleKind: which module of a camera's branch is meant. Any thread.
#pragma once

#include <optional>
#include <string>

namespace koro::tool
{

enum class ModuleKind
{
    Remote,
    Device,
    Stream,
    Interface,
    System,
};

// "remote device", "device", ...
const char* NameOf(ModuleKind module);
// By the word of the command line: remote, device, stream, interface, system. Empty for any other.
std::optional<ModuleKind> ModuleOfWord(const std::string& word);

} // namespace koro::tool

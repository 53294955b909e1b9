#include "tools/koro/module_kind.h"

namespace koro::tool
{

const char* NameOf(ModuleKind module)
{
    switch (module)
    {
    case ModuleKind::Device:
        return "device";
    case ModuleKind::Stream:
        return "stream";
    case ModuleKind::Interface:
        return "interface";
    case ModuleKind::System:
        return "system";
    default:
        return "remote device";
    }
}

std::optional<ModuleKind> ModuleOfWord(const std::string& word)
{
    if (word == "remote") return ModuleKind::Remote;
    for (const ModuleKind module : {ModuleKind::Device, ModuleKind::Stream, ModuleKind::Interface, ModuleKind::System})
    {
        if (word == NameOf(module)) return module;
    }
    return std::nullopt;
}

} // namespace koro::tool

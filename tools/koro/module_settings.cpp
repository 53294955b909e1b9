#include "tools/koro/module_settings.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace koro::tool
{

namespace
{

bool IsAboveCamera(const Assignment& assignment)
{
    return assignment.module == ModuleKind::System || assignment.module == ModuleKind::Interface;
}

} // namespace

ModuleSettings::ModuleSettings(
    const std::vector<std::string>& texts, ModuleKind ofOthers, std::function<bool(const Node&)> afterEach)
    : assignments(ParseAssignments(texts, ofOthers)), written(std::move(afterEach))
{}

bool ModuleSettings::NeedCamera() const
{
    return !std::all_of(assignments.begin(), assignments.end(), IsAboveCamera);
}

void ModuleSettings::ApplyTo(const System& system) const
{
    ApplyAll(system, ModuleKind::System);
}

void ModuleSettings::ApplyTo(const Interface& opened) const
{
    ApplyAll(opened, ModuleKind::Interface);
}

void ModuleSettings::ApplyTo(const Device& device, const std::function<const DataStream&()>& stream) const
{
    for (auto next = assignments.begin(); next != assignments.end();)
    {
        const ModuleKind kind = next->module;
        std::vector<Assignment> chosen;
        for (; next != assignments.end() && next->module == kind; ++next)
            chosen.push_back(*next);
        if (kind == ModuleKind::Device) Write(device, chosen, kind);
        if (kind == ModuleKind::Remote) Write(device.RemoteDevice(), chosen, kind);
        if (kind == ModuleKind::Stream) Write(stream(), chosen, kind);
    }
}

template <typename Module>
void ModuleSettings::ApplyAll(const Module& module, ModuleKind kind) const
{
    std::vector<Assignment> chosen;
    std::copy_if(assignments.begin(), assignments.end(), std::back_inserter(chosen), [kind](const Assignment& one) {
        return one.module == kind;
    });
    if (!chosen.empty()) Write(module, chosen, kind);
}

template <typename Module>
void ModuleSettings::Write(const Module& module, const std::vector<Assignment>& chosen, ModuleKind kind) const
{
    if (isEnded) return;
    Apply(FirstNodes(module, kind), module.Port(), chosen, NameOf(kind), [this](const Node& node) {
        isEnded = written && !written(node);
        return !isEnded;
    });
}

} // namespace koro::tool

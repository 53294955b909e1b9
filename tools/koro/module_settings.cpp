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
    : assignments(ParseAssignments(texts, ofOthers)), unnamed(ofOthers), written(std::move(afterEach))
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
    if (isEnded) return;
    Check(device, ModuleKind::Device);
    if (!Of(ModuleKind::Remote).empty()) Check(device.RemoteDevice(), ModuleKind::Remote);
    bool isStreamChecked = false;
    for (auto next = assignments.begin(); next != assignments.end() && !isEnded;)
    {
        const ModuleKind kind = next->module;
        std::vector<Assignment> chosen;
        for (; next != assignments.end() && next->module == kind; ++next)
            chosen.push_back(*next);
        if (kind == ModuleKind::Device) Write(device, chosen, kind);
        if (kind == ModuleKind::Remote) Write(device.RemoteDevice(), chosen, kind);
        if (kind == ModuleKind::Stream)
        {
            const DataStream& opened = stream();
            if (!std::exchange(isStreamChecked, true)) Check(opened, kind);
            Write(opened, chosen, kind);
        }
    }
}

std::vector<Assignment> ModuleSettings::Of(ModuleKind kind) const
{
    std::vector<Assignment> chosen;
    std::copy_if(assignments.begin(), assignments.end(), std::back_inserter(chosen), [kind](const Assignment& one) {
        return one.module == kind;
    });
    return chosen;
}

template <typename Module>
void ModuleSettings::ApplyAll(const Module& module, ModuleKind kind) const
{
    if (isEnded) return;
    Check(module, kind);
    Write(module, Of(kind), kind);
}

template <typename Module>
void ModuleSettings::Check(const Module& module, ModuleKind kind) const
{
    const std::vector<Assignment> chosen = Of(kind);
    if (!chosen.empty()) CheckAll(FirstNodes(module, kind), chosen, NameOf(kind), writtenBefore);
}

template <typename Module>
void ModuleSettings::Write(const Module& module, const std::vector<Assignment>& chosen, ModuleKind kind) const
{
    if (chosen.empty()) return;
    const std::string word = kind == ModuleKind::Remote ? "remote" : NameOf(kind);
    const std::string prefix = kind == unnamed ? "" : word + ":";
    Apply(FirstNodes(module, kind), module.Port(), chosen, prefix, writtenBefore, [this](const Node& node) {
        isEnded = written && !written(node);
        return !isEnded;
    });
}

} // namespace koro::tool

// ModuleSettings: what --set asks of the modules of one branch of the tree, from the system to the camera.
//
// A value. Each module gets its settings before the one below it is opened, since producers look at them then. One
// thread at a time.
#pragma once

#include "tools/koro/assignments.h"
#include "tools/koro/description_bytes.h"
#include "tools/koro/module_kind.h"
#include <koro/koro.hpp>

#include <functional>
#include <string>
#include <vector>

namespace koro::tool
{

class ModuleSettings
{
public:
    ModuleSettings() = default;
    // Texts as CheckAssignment takes them; those that name no module are for `ofOthers`. `written` is called after each
    // feature, and ends everything by returning false; it may be empty.
    ModuleSettings(
        const std::vector<std::string>& texts, ModuleKind ofOthers, std::function<bool(const Node&)> written = nullptr);

    bool IsEmpty() const { return assignments.empty(); }
    // Whether a module is among them that needs an open camera.
    bool NeedCamera() const;

    // Those of one module, in their order. Each throws koro::Error, or ToolError as CheckAll and Apply of assignments.h
    // do. All of a module are checked before its first is written, those of the device and the camera before any of
    // both.
    void ApplyTo(const System& system) const;
    void ApplyTo(const Interface& opened) const;
    // Those of the device, the camera and its stream, in their order across the three. `stream` is called before the
    // first of a stream, which it opens.
    void ApplyTo(const Device& device, const std::function<const DataStream&()>& stream) const;

private:
    template <typename Module>
    void ApplyAll(const Module& module, ModuleKind kind) const;
    std::vector<Assignment> Of(ModuleKind kind) const;
    template <typename Module>
    void Check(const Module& module, ModuleKind kind) const;
    template <typename Module>
    void Write(const Module& module, const std::vector<Assignment>& chosen, ModuleKind kind) const;

    std::vector<Assignment> assignments;
    ModuleKind unnamed = ModuleKind::Remote; // the module of those that name none
    std::function<bool(const Node&)> written;
    mutable bool isEnded = false;      // by that function
    mutable std::string writtenBefore; // the names, for messages
};

// The features of a module. Throws ToolError when its description cannot be fetched.
template <typename Module>
NodeMap FirstNodes(const Module& module, ModuleKind kind)
{
    const std::vector<NodeMap> maps = module.NodeMaps();
    if (!maps.empty()) return maps.front();
    throw NoDescription(std::string("The ") + NameOf(kind), module.Port());
}

} // namespace koro::tool

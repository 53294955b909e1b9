// Assignments: NAME=VALUE from the command line, written to features in their order. One thread at a time.
#pragma once

#include "tools/koro/module_kind.h"
#include <koro/koro.hpp>

#include <functional>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace koro::tool
{

struct Assignment
{
    ModuleKind module;
    std::string name;
    std::string value; // may be empty and may hold "="
};

// Defines --set, which takes one NAME=VALUE or MODULE:NAME=VALUE each time.
void DefineSettings(CLI::App& command, std::vector<std::string>& settings);
// Empty for a text of that form, else what is wrong with it; as CLI11 wants it.
std::string CheckAssignment(const std::string& text);

// Every text has been checked. `ofOthers` is the module of those that name none.
std::vector<Assignment> ParseAssignments(const std::vector<std::string>& texts, ModuleKind ofOthers);

// Looks up all names, and compares all values with the type of their feature. The first that fails throws ToolError.
// `owner` names the module in messages, `before` has what was written to other modules; it may be empty.
void CheckAll(
    const NodeMap& nodes, const std::vector<Assignment>& assignments, const std::string& owner,
    const std::string& before);

// Writes one after the other. The first that fails throws ToolError which names it, says why, and what was written
// before: that starts as `before`, to which each name is added with `prefix` in front. `written` is called after each,
// and ends the run by returning false. `port` is that of the module, where the description tells why a feature cannot
// be written.
void Apply(
    const NodeMap& nodes, const Port& port, const std::vector<Assignment>& assignments, const std::string& prefix,
    std::string& before, const std::function<bool(const Node&)>& written = nullptr);

} // namespace koro::tool

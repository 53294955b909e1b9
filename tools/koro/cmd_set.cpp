#include "tools/koro/assignments.h"
#include "tools/koro/commands.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

namespace koro::tool
{

namespace
{

struct SetCommand
{
    FeatureTarget target;
    std::vector<std::string> assignments;
};

int Set(SetCommand command)
{
    const Interrupt interrupt;
    CompleteTarget(command.target, command.assignments);
    RequireWords(command.assignments, 1, command.assignments.size(), "NAME=VALUE");
    for (const std::string& text : command.assignments)
    {
        const std::string fault = CheckAssignment(text);
        if (!fault.empty()) throw ToolError(fault + ".", {}, exitUsage);
    }
    command.target.settings = command.assignments;
    // What the camera has made of it, which need not be what was written.
    command.target.written = [&](const Node& node) {
        const auto value = IfKnown([&] { return ReadValue(node); });
        PrintOut("%s=%s\n", PrintableStart(node.Name()).c_str(), PrintableStart(value.value_or("-"), 4096).c_str());
        std::fflush(Output());
        return !interrupt.IsRequested();
    };
    const FeatureSession session(command.target, FeatureSession::Access::Write, FeatureSession::Wants::Port);
    return interrupt.IsRequested() ? exitInterrupted : exitSuccess;
}

} // namespace

Action DefineSet(CLI::App& command)
{
    const auto options = std::make_shared<SetCommand>();
    DefineAnyModule(command, options->target, false);
    command.add_option("assignments", options->assignments, "Written in this order; MODULE goes before --module")
        ->type_name("[MODULE:]NAME=VALUE ...");
    return [options] { return Set(*options); };
}

} // namespace koro::tool

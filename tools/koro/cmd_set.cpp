#include "tools/koro/assignments.h"
#include "tools/koro/commands.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/report.h"

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

int Set(const SetCommand& command)
{
    const Interrupt interrupt;
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    // What the camera has made of it, which need not be what was written.
    const auto print = [&](const Node& node) {
        const auto value = IfKnown([&] { return ReadValue(node); });
        std::printf("%s=%s\n", node.Name().c_str(), Printable(value.value_or("-")).c_str());
        std::fflush(stdout);
        return !interrupt.IsRequested();
    };
    Apply(session.Nodes(), session.Port(), ParseAssignments(command.assignments), NameOf(command.target.module), print);
    return interrupt.IsRequested() ? exitInterrupted : exitSuccess;
}

} // namespace

Action DefineSet(CLI::App& command)
{
    const auto options = std::make_shared<SetCommand>();
    DefineTarget(command, options->target, false);
    command.add_option("assignments", options->assignments, "NAME=VALUE, written in this order")
        ->required()
        ->type_name("NAME=VALUE ...")
        ->check(CLI::Validator(CheckAssignment, ""));
    return [options] { return Set(*options); };
}

} // namespace koro::tool

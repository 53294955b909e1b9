#include "tools/koro/access_reason.h"
#include "tools/koro/commands.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/number_option.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

namespace koro::tool
{

namespace
{

using Clock = std::chrono::steady_clock;

struct RunCommand
{
    FeatureTarget target;
    std::string name;
    uint64_t timeout_ms = 5000;
};

void Execute(const FeatureSession& session, const Node& node, const std::string& name)
{
    try
    {
        node.ToCommand().Execute();
    }
    catch (const Error& error)
    {
        const bool refused = error.Code() == KORO_RETURN_CODE_BAD_ACCESS;
        throw ToolError(
            name + " was not executed: " + error.what(),
            refused ? SentencesOf(WhyNotWritable(session.Nodes(), session.Port(), node)) : std::string());
    }
    // For whoever waits: a command may take long.
    PrintOut("%s is executed\n", name.c_str());
    std::fflush(Output());
}

// In short waits, so that an interrupt is seen. False when the command goes on after the time-out.
bool WaitUntilDone(const CommandNode& node, uint64_t timeout_ms, const Interrupt& interrupt)
{
    constexpr uint64_t oneWait_ms = 50;
    const Clock::time_point start = Clock::now();
    for (;;)
    {
        const auto gone = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
        const uint64_t gone_ms = static_cast<uint64_t>(gone);
        const uint64_t left_ms = gone_ms < timeout_ms ? timeout_ms - gone_ms : 0;
        try
        {
            node.WaitUntilDone(std::min(oneWait_ms, left_ms));
            return true;
        }
        catch (const Error& error)
        {
            if (error.Code() != KORO_RETURN_CODE_TIMEOUT) throw;
        }
        if (left_ms <= oneWait_ms || interrupt.IsRequested()) return false;
    }
}

int RunIt(RunCommand command)
{
    std::vector<std::string> words;
    if (!command.name.empty()) words.push_back(command.name);
    CompleteTarget(command.target, words);
    RequireWords(words, 1, 1, "name of a command");
    command.name = words.front();
    const Interrupt interrupt;
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const Node node = session.Feature(command.name);
    if (node.Type() != KORO_NODE_TYPE_COMMAND)
    {
        throw ToolError(
            command.name + " is no command, but of the type " + TypeName(node.Type()) + ".",
            "`koro set` changes values.");
    }
    Execute(session, node, command.name);
    const bool done = WaitUntilDone(node.ToCommand(), command.timeout_ms, interrupt);
    if (interrupt.IsRequested()) return exitInterrupted;
    if (!done)
    {
        throw ToolError(
            command.name + " is not done after " + std::to_string(command.timeout_ms) + " ms.",
            "It goes on in the camera; give it more time with --timeout.");
    }
    PrintOut("%s is done\n", command.name.c_str());
    return exitSuccess;
}

} // namespace

Action DefineRun(CLI::App& command)
{
    const auto options = std::make_shared<RunCommand>();
    DefineAnyModule(command, options->target, true);
    command.add_option("command", options->name, "Name of the command");
    TakesWholeNumber(
        command.add_option("--timeout", options->timeout_ms, "Milliseconds to wait for its end"), 0, 3600000)
        ->capture_default_str();
    return [options] { return RunIt(*options); };
}

} // namespace koro::tool

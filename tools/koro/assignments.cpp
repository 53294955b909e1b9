#include "tools/koro/assignments.h"

#include "tools/koro/access_reason.h"
#include "tools/koro/feature_range.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>

namespace koro::tool
{

namespace
{

std::string HintFor(const Error& error, const NodeMap& nodes, const Port& port, const Node& node)
{
    switch (error.Code())
    {
    case KORO_RETURN_CODE_OUT_OF_RANGE:
    case KORO_RETURN_CODE_INVALID_ARGUMENT:
        return RangeSentence(node);
    case KORO_RETURN_CODE_BAD_ACCESS:
        return SentencesOf(WhyNotWritable(nodes, port, node));
    default:
        return "The text in brackets is the producer's own.";
    }
}

std::string WrittenBefore(const std::string& before)
{
    return before.empty() ? "" : "\nWritten before it: " + before;
}

} // namespace

void DefineSettings(CLI::App& command, std::vector<std::string>& settings)
{
    command
        .add_option(
            "--set", settings,
            "Written first; may be given several times, in order. MODULE is system, interface, device, stream or "
            "remote")
        ->type_name("[MODULE:]NAME=VALUE")
        ->allow_extra_args(false)
        ->check(CLI::Validator(CheckAssignment, ""));
}

std::string CheckAssignment(const std::string& text)
{
    const size_t end = text.find('=');
    const size_t colon = text.substr(0, end).find(':');
    const bool hasModule = colon != text.npos;
    if (hasModule && !ModuleOfWord(text.substr(0, colon)))
        return "\"" + PrintableStart(text.substr(0, colon)) +
               "\" is no module: there are system, interface, device, stream and remote";
    if (end != text.npos && end > (hasModule ? colon + 1 : 0)) return {};
    return "\"" + PrintableStart(text) + "\" is not of the form NAME=VALUE or MODULE:NAME=VALUE";
}

std::vector<Assignment> ParseAssignments(const std::vector<std::string>& texts, ModuleKind ofOthers)
{
    std::vector<Assignment> assignments;
    for (const std::string& text : texts)
    {
        const size_t end = text.find('=');
        const std::string left = text.substr(0, end);
        const size_t colon = left.find(':');
        const auto module = colon == left.npos ? std::nullopt : ModuleOfWord(left.substr(0, colon));
        assignments.push_back(
            {module.value_or(ofOthers), module ? left.substr(colon + 1) : left, text.substr(end + 1)});
    }
    return assignments;
}

void CheckAll(
    const NodeMap& nodes, const std::vector<Assignment>& assignments, const std::string& owner,
    const std::string& before)
{
    try
    {
        for (const Assignment& assignment : assignments)
            CheckValue(FindFeature(nodes, assignment.name, owner), assignment.value);
    }
    catch (const ToolError& error)
    {
        throw ToolError(error.what() + WrittenBefore(before), error.Hint(), error.ExitCode());
    }
}

void Apply(
    const NodeMap& nodes, const Port& port, const std::vector<Assignment>& assignments, const std::string& prefix,
    std::string& before, const std::function<bool(const Node&)>& written)
{
    for (const Assignment& assignment : assignments)
    {
        NoteProgress();
        const Node node = nodes.Node(assignment.name);
        try
        {
            WriteValue(node, assignment.value);
        }
        catch (const Error& error)
        {
            throw ToolError(
                assignment.name + " was not set to " + PrintableStart(assignment.value) + ": " + error.what() +
                    WrittenBefore(before),
                HintFor(error, nodes, port, node));
        }
        before += (before.empty() ? "" : ", ") + prefix + assignment.name;
        if (written && !written(node)) return;
    }
}

} // namespace koro::tool

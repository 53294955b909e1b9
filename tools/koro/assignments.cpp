#include "tools/koro/assignments.h"

#include "tools/koro/access_reason.h"
#include "tools/koro/feature_range.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
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

} // namespace

void DefineSettings(CLI::App& command, std::vector<std::string>& settings)
{
    command.add_option("--set", settings, "NAME=VALUE, written first; may be given several times, in order")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false)
        ->check(CLI::Validator(CheckAssignment, ""));
}

std::string CheckAssignment(const std::string& text)
{
    const size_t end = text.find('=');
    if (end != text.npos && end > 0) return {};
    return "\"" + Printable(text) + "\" is not of the form NAME=VALUE";
}

std::vector<Assignment> ParseAssignments(const std::vector<std::string>& texts)
{
    std::vector<Assignment> assignments;
    for (const std::string& text : texts)
    {
        const size_t end = text.find('=');
        assignments.push_back({text.substr(0, end), text.substr(end + 1)});
    }
    return assignments;
}

void Apply(
    const NodeMap& nodes, const Port& port, const std::vector<Assignment>& assignments, const std::string& owner,
    const std::function<bool(const Node&)>& written)
{
    for (const Assignment& assignment : assignments)
    {
        CheckValue(FindFeature(nodes, assignment.name, owner), assignment.value);
    }
    std::string before;
    for (const Assignment& assignment : assignments)
    {
        const Node node = nodes.Node(assignment.name);
        try
        {
            WriteValue(node, assignment.value);
        }
        catch (const Error& error)
        {
            throw ToolError(
                assignment.name + " was not set to " + Printable(assignment.value) + ": " + error.what() +
                    (before.empty() ? "" : "\nWritten before it: " + before),
                HintFor(error, nodes, port, node));
        }
        before += (before.empty() ? "" : ", ") + assignment.name;
        if (written && !written(node)) return;
    }
}

} // namespace koro::tool

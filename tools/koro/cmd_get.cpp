#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_tree.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace koro::tool
{

namespace
{

using nlohmann::json;

struct GetCommand
{
    FeatureTarget target;
    std::vector<std::string> names;
    bool json = false;
};

std::string Read(const Node& node)
{
    try
    {
        return ReadValue(node);
    }
    catch (const Error& error)
    {
        throw ToolError(
            node.Name() + " cannot be read: " + error.what(), "`koro describe` tells more about a feature.");
    }
}

int PrintJSON(const std::vector<Node>& nodes)
{
    json all = json::array();
    bool whole = true;
    for (const Node& node : nodes)
    {
        all.push_back(BriefOf(node));
        whole = whole && all.back().contains("value");
    }
    PrintOut("%s\n", Dump(all, 2).c_str());
    return whole ? exitSuccess : exitFailure;
}

int Get(GetCommand command)
{
    CompleteTarget(command.target, command.names);
    RequireWords(command.names, 1, command.names.size(), "name of a feature");
    // As JSON the access is told too, and a camera that is open for reading shows nothing as writable.
    const FeatureSession session(
        command.target, command.json ? FeatureSession::Access::WriteOrRead : FeatureSession::Access::Read);
    std::vector<Node> nodes;
    for (const std::string& name : command.names)
        nodes.push_back(session.Feature(name));
    if (command.json) return PrintJSON(nodes);
    for (const Node& node : nodes)
    {
        NoteProgress();
        // Exact for a program; a terminal is spared what the text may do to it.
        const std::string value = OutputIsTerminal() ? Printable(Read(node)) : Read(node);
        if (nodes.size() > 1) PrintOut("%s=", node.Name().c_str());
        PrintOut("%s\n", value.c_str());
    }
    return exitSuccess;
}

} // namespace

Action DefineGet(CLI::App& command)
{
    const auto options = std::make_shared<GetCommand>();
    DefineAnyModule(command, options->target, true);
    command.add_option(
        "names", options->names, "Features; the value of one comes alone, those of several as NAME=VALUE");
    command.add_flag("--json", options->json, "Write JSON");
    return [options] { return Get(*options); };
}

} // namespace koro::tool

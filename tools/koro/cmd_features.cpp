#include "tools/koro/camera_tree_json.h"
#include "tools/koro/choice_option.h"
#include "tools/koro/commands.h"
#include "tools/koro/feature_range.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_tree.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace koro::tool
{

namespace
{

using nlohmann::json;

struct FeaturesCommand
{
    FeatureTarget target;
    KORO_NodeVisibility visibility = KORO_NODE_VISIBILITY_GURU;
    bool all = false;
    bool json = false;
};

// One line of the tree; a category has its name alone.
struct Line
{
    std::string name; // indented
    std::string access;
    std::string value;
    std::string range;
};

std::string ValueText(const json& feature)
{
    if (feature.at("type") == "Command") return "(command)";
    if (feature.contains("problem")) return "?";
    const std::string value = feature.value("text", "-");
    return feature.contains("unit") ? value + " " + PrintableStart(feature.at("unit").get<std::string>()) : value;
}

void AddLines(const json& features, size_t depth, std::vector<Line>& lines)
{
    for (const json& feature : features)
    {
        const std::string name = std::string(2 * depth, ' ') + PrintableStart(feature.at("name").get<std::string>());
        if (feature.contains("features"))
        {
            lines.push_back({name + (feature.contains("seen") ? "  (above)" : ""), "", "", ""});
            AddLines(feature.at("features"), depth + 1, lines);
            continue;
        }
        const std::string access = feature.at("access").get<std::string>();
        lines.push_back({name, access, ValueText(feature), access == "rw" ? RangeText(feature) : std::string()});
    }
}

void PrintLines(const std::vector<Line>& lines)
{
    constexpr size_t widestValue = 32;
    size_t names = 0;
    size_t values = 0;
    for (const Line& line : lines)
    {
        if (line.access.empty()) continue;
        names = std::max(names, line.name.size());
        if (line.value.size() <= widestValue) values = std::max(values, line.value.size());
    }
    for (const Line& line : lines)
    {
        if (line.access.empty())
        {
            PrintOut("%s\n", line.name.c_str());
            continue;
        }
        std::string text = line.name;
        text.resize(std::max(text.size(), names), ' ');
        text += "  " + line.access + "  " + line.value;
        if (!line.range.empty())
        {
            if (line.value.size() < values) text.append(values - line.value.size(), ' ');
            text += "  " + line.range;
        }
        PrintOut("%s\n", text.c_str());
    }
}

void PrintNodesInNoCategory(const NodeMap& nodes)
{
    const json others = NodesInNoCategory(nodes);
    Rows rows;
    for (const json& node : others)
        rows.emplace_back(PrintableStart(node.at("name").get<std::string>()), node.at("type").get<std::string>());
    PrintOut("(in no category)\n");
    PrintRows(rows, "  ");
}

int Features(FeaturesCommand command)
{
    const Interrupt interrupt;
    std::vector<std::string> words;
    CompleteTarget(command.target, words);
    RequireWords(words, 0, 0, "");
    // For control, since a camera that is open for reading shows nothing as writable.
    const FeatureSession session(command.target, FeatureSession::Access::WriteOrRead);
    if (session.WhyReadOnly())
    {
        std::fprintf(
            Errors(), "koro: The camera could be opened for reading only, so nothing is writable: %s\n",
            PrintableStart(*session.WhyReadOnly(), 4096).c_str());
    }
    const bool isTree = !command.all || session.Nodes().TryNode("Root");
    json features = json::array();
    if (isTree) features = FeatureTree(session.Nodes(), command.visibility, [&] { return interrupt.IsRequested(); });
    if (interrupt.IsRequested()) return exitInterrupted;
    if (command.json)
    {
        nlohmann::json whole = {{"module", NameOf(command.target.module)}, {"features", features}};
        if (command.all) whole["inNoCategory"] = NodesInNoCategory(session.Nodes());
        PrintOut("%s\n", Dump(whole, 2).c_str());
        return exitSuccess;
    }
    std::vector<Line> lines;
    AddLines(features, 0, lines);
    PrintLines(lines);
    if (command.all) PrintNodesInNoCategory(session.Nodes());
    return exitSuccess;
}

} // namespace

Action DefineFeatures(CLI::App& command)
{
    const auto options = std::make_shared<FeaturesCommand>();
    const std::map<std::string, KORO_NodeVisibility> levels = {
        {"beginner", KORO_NODE_VISIBILITY_BEGINNER},
        {"expert", KORO_NODE_VISIBILITY_EXPERT},
        {"guru", KORO_NODE_VISIBILITY_GURU},
        {"invisible", KORO_NODE_VISIBILITY_INVISIBLE}};
    DefineAnyModule(command, options->target, true);
    AddChoice(
        command, "--visibility", options->visibility, levels, "beginner, expert, guru (the default) or invisible",
        CLI::ignore_case);
    command.add_flag("--all", options->all, "Also name the nodes that are in no category");
    command.add_flag("--json", options->json, "Write JSON");
    return [options] { return Features(*options); };
}

} // namespace koro::tool

#include "tools/koro/access_reason.h"
#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/feature_range.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_tree.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace koro::tool
{

namespace
{

using nlohmann::json;

struct DescribeCommand
{
    FeatureTarget target;
    std::string name;
    bool json = false;
};

template <size_t size>
const char* WordFor(const std::array<const char*, size>& words, int32_t number)
{
    return number >= 0 && static_cast<size_t>(number) < size ? words[static_cast<size_t>(number)] : "undefined";
}

// Tool tips and descriptions are longer than names.
constexpr size_t mostOfAText = 4096;

constexpr std::array<const char*, 2> nameSpaces = {"custom", "standard"};
constexpr std::array<const char*, 3> cachingModes = {"no cache", "write through", "write around"};
constexpr std::array<const char*, 7> representations = {
    "linear", "logarithmic", "boolean", "pure number", "hexadecimal number", "IPv4 address", "MAC address"};

template <typename Read>
json NamesOf(const Read& read)
{
    json names = json::array();
    const auto nodes = IfKnown(read);
    for (const Node& node : nodes.value_or(std::vector<Node>()))
        names.push_back(node.Name());
    return names;
}

// The library lists the selectors of selectors alone; of any other node they are among those that invalidate it.
std::vector<Node> SelectorsOf(const Node& node)
{
    std::vector<Node> selectors;
    for (const Node& candidate : node.InvalidatingNodes())
    {
        const std::vector<Node> selected = candidate.SelectedNodes();
        if (std::find(selected.begin(), selected.end(), node) != selected.end()) selectors.push_back(candidate);
    }
    return selectors;
}

// Features with a value alone: of the other nodes there may be hundreds.
json FeaturesOf(const std::vector<Node>& nodes)
{
    json names = json::array();
    for (const Node& node : nodes)
    {
        if (node.IsFeature() && HasValue(node.Type())) names.push_back(node.Name());
    }
    return names;
}

std::vector<std::string> Reasons(const FeatureSession& session, const Node& node)
{
    const std::string otherwise =
        session.WhyReadOnly() ? "The camera could be opened for reading only: " + *session.WhyReadOnly() : std::string();
    return WhyNotWritable(session.Nodes(), session.Port(), node, otherwise);
}

json Describe(const FeatureSession& session, const Node& node)
{
    json feature = BriefOf(node);
    feature["nameSpace"] = WordFor(nameSpaces, node.Namespace());
    feature["toolTip"] = node.ToolTip();
    feature["description"] = node.Description();
    feature["streamable"] = node.IsStreamable();
    feature["deprecated"] = node.IsDeprecated();
    feature["caching"] = WordFor(cachingModes, node.CachingMode());
    const int64_t pollingTime_ms = node.PollingTime_ms();
    if (pollingTime_ms >= 0) feature["pollingTime_ms"] = pollingTime_ms;
    feature["selectedBy"] = NamesOf([&] { return SelectorsOf(node); });
    feature["selects"] = NamesOf([&] { return node.SelectedNodes(); });
    feature["invalidatedBy"] = NamesOf([&] { return node.InvalidatingNodes(); });
    feature["invalidates"] = FeaturesOf(node.InvalidatedNodes());
    if (node.Type() == KORO_NODE_TYPE_CATEGORY)
        feature["features"] = NamesOf([&] { return node.ToCategory().SubNodes(); });
    if (node.Type() == KORO_NODE_TYPE_COMMAND)
    {
        const auto done = IfKnown([&] { return node.ToCommand().IsDone(); });
        if (done) feature["done"] = *done;
    }
    feature["notWritable"] = Reasons(session, node);
    return feature;
}

std::string ListText(const json& names)
{
    std::string text;
    for (const json& name : names)
        text += (text.empty() ? "" : ", ") + PrintableStart(name.get<std::string>());
    return text;
}

// The codes of pixel formats are known by their hexadecimal digits.
std::string EntriesText(const json& entries, bool arePixelFormats)
{
    std::string text;
    for (const json& entry : entries)
    {
        const int64_t value = entry.at("value").get<int64_t>();
        char code[24];
        std::snprintf(code, sizeof code, "0x%08llX", static_cast<unsigned long long>(value));
        text += (text.empty() ? "" : ", ") + PrintableStart(entry.at("name").get<std::string>()) + " (" +
                (arePixelFormats ? code : std::to_string(value)) +
                (entry.at("available").get<bool>() ? ")" : ", not available)");
    }
    return text;
}

std::string AccessWords(const std::string& access)
{
    if (access == "rw") return "read and write";
    if (access == "r-") return "read only";
    return access == "-w" ? "write only" : "none";
}

void PrintText(const json& feature)
{
    Rows rows;
    const auto add = [&rows](const char* label, const std::string& text) {
        if (!text.empty()) rows.emplace_back(label, text);
    };
    const auto addText = [&](const char* label, const char* key) {
        if (feature.contains(key)) add(label, PrintableStart(feature.at(key).get<std::string>(), mostOfAText));
    };
    addText("name", "name");
    addText("display name", "displayName");
    addText("tool tip", "toolTip");
    addText("description", "description");
    addText("type", "type");
    addText("name space", "nameSpace");
    addText("visibility", "visibility");
    add("access", AccessWords(feature.at("access").get<std::string>()));
    add("value", feature.value("text", std::string()));
    addText("not readable", "problem");
    addText("unit", "unit");
    if (feature.contains("entries"))
        add("entries",
            EntriesText(feature.at("entries"), feature.at("name").get<std::string>().rfind("PixelFormat", 0) == 0));
    else
        add("range", RangeText(feature));
    if (feature.contains("maximumLength")) add("longest text", feature.at("maximumLength").dump() + " bytes");
    if (feature.contains("address")) add("address", feature.at("address").dump());
    if (feature.contains("representation"))
        add("representation", WordFor(representations, feature.at("representation").get<int32_t>()));
    if (feature.contains("done")) add("done", feature.at("done").get<bool>() ? "yes" : "no");
    if (feature.contains("features")) add("features", ListText(feature.at("features")));
    addText("caching", "caching");
    if (feature.contains("pollingTime_ms")) add("polled after", feature.at("pollingTime_ms").dump() + " ms");
    add("stored in settings", feature.at("streamable").get<bool>() ? "yes" : "no");
    if (feature.at("deprecated").get<bool>()) add("deprecated", "yes");
    add("selected by", ListText(feature.at("selectedBy")));
    add("selects", ListText(feature.at("selects")));
    add("invalidated by", ListText(feature.at("invalidatedBy")));
    add("invalidates", ListText(feature.at("invalidates")));
    for (const json& reason : feature.at("notWritable"))
        add("not writable", PrintableStart(reason.get<std::string>(), mostOfAText));
    PrintRows(rows);
}

int DescribeIt(DescribeCommand command)
{
    std::vector<std::string> words;
    if (!command.name.empty()) words.push_back(command.name);
    CompleteTarget(command.target, words);
    RequireWords(words, 1, 1, "name of a feature");
    command.name = words.front();
    const FeatureSession session(command.target, FeatureSession::Access::WriteOrRead);
    const json feature = Describe(session, session.Feature(command.name));
    if (command.json)
        PrintOut("%s\n", Dump(feature, 2).c_str());
    else
        PrintText(feature);
    return exitSuccess;
}

} // namespace

Action DefineDescribe(CLI::App& command)
{
    const auto options = std::make_shared<DescribeCommand>();
    DefineAnyModule(command, options->target, true);
    command.add_option("feature", options->name, "Name of the feature");
    command.add_flag("--json", options->json, "Write JSON");
    return [options] { return DescribeIt(*options); };
}

} // namespace koro::tool

#include "tools/koro/feature_tree.h"

#include "tools/koro/feature_range.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/tool_error.h"

#include <nlohmann/json.hpp>
#include <set>

namespace koro::tool
{

namespace
{

using nlohmann::json;

// Deeper than any camera; a description may nest as it likes.
constexpr int maxDepth = 64;

void AddValue(json& feature, const Node& node)
{
    try
    {
        feature["value"] = ValueAsJSON(node);
        feature["text"] = ShowValue(node);
    }
    catch (const Error& error)
    {
        feature["problem"] = error.what();
    }
}

class TreeReader
{
public:
    TreeReader(KORO_NodeVisibility most, const std::function<bool()>& ended) : visibility(most), isEnded(ended) {}

    json Below(const CategoryNode& category, int depth)
    {
        json features = json::array();
        for (const Node& node : category.SubNodes())
        {
            if (isEnded()) break;
            NoteProgress();
            const bool isCategory = node.Type() == KORO_NODE_TYPE_CATEGORY;
            const auto status = IfKnown([&] { return node.AccessStatus(); });
            if (node.Visibility() > visibility || status == KORO_NODE_ACCESS_STATUS_NOT_IMPLEMENTED) continue;
            json feature = BriefOf(node);
            if (isCategory)
            {
                const bool isNew = seen.insert(node.Get()).second && depth < maxDepth;
                feature["features"] = isNew ? Below(node.ToCategory(), depth + 1) : json::array();
                if (!isNew) feature["seen"] = true;
                if (isNew && feature.at("features").empty()) continue;
            }
            features.push_back(std::move(feature));
        }
        return features;
    }

private:
    const KORO_NodeVisibility visibility;
    const std::function<bool()>& isEnded;
    std::set<KORO_NodeHandle> seen;
};

void AddNamesBelow(const CategoryNode& category, int depth, std::set<std::string>& names)
{
    for (const Node& node : category.SubNodes())
    {
        const bool isNew = names.insert(node.Name()).second;
        if (isNew && depth < maxDepth && node.Type() == KORO_NODE_TYPE_CATEGORY)
            AddNamesBelow(node.ToCategory(), depth + 1, names);
    }
}

} // namespace

std::string AccessText(KORO_NodeAccessStatus status)
{
    switch (status)
    {
    case KORO_NODE_ACCESS_STATUS_READ_WRITE:
        return "rw";
    case KORO_NODE_ACCESS_STATUS_READ_ONLY:
        return "r-";
    case KORO_NODE_ACCESS_STATUS_WRITE_ONLY:
        return "-w";
    default:
        return "--";
    }
}

const char* VisibilityName(KORO_NodeVisibility visibility)
{
    switch (visibility)
    {
    case KORO_NODE_VISIBILITY_BEGINNER:
        return "Beginner";
    case KORO_NODE_VISIBILITY_EXPERT:
        return "Expert";
    case KORO_NODE_VISIBILITY_GURU:
        return "Guru";
    case KORO_NODE_VISIBILITY_INVISIBLE:
        return "Invisible";
    default:
        return "Undefined";
    }
}

json ValueAsJSON(const Node& node)
{
    switch (node.Type())
    {
    case KORO_NODE_TYPE_INTEGER:
        return node.ToInteger().Value();
    case KORO_NODE_TYPE_FLOAT:
        return node.ToFloat().Value();
    case KORO_NODE_TYPE_BOOLEAN:
        return node.ToBoolean().Value();
    default:
        return ReadValue(node);
    }
}

json BriefOf(const Node& node)
{
    const KORO_NodeType type = node.Type();
    const auto status = IfKnown([&] { return node.AccessStatus(); });
    json feature = {
        {"name", node.Name()},
        {"displayName", node.DisplayName()},
        {"type", TypeName(type)},
        {"visibility", VisibilityName(node.Visibility())},
        {"access", AccessText(status.value_or(KORO_NODE_ACCESS_STATUS_UNDEFINED))},
    };
    if (!HasValue(type)) return feature;
    AddRange(feature, node);
    const bool readable = status == KORO_NODE_ACCESS_STATUS_READ_ONLY || status == KORO_NODE_ACCESS_STATUS_READ_WRITE;
    if (readable) AddValue(feature, node);
    return feature;
}

json NodesInNoCategory(const NodeMap& nodes)
{
    std::set<std::string> names = {"Root"};
    const Node root = nodes.TryNode("Root");
    if (root && root.Type() == KORO_NODE_TYPE_CATEGORY) AddNamesBelow(root.ToCategory(), 0, names);
    json others = json::array();
    for (const Node& node : nodes.Nodes())
    {
        std::string name = node.Name();
        if (names.count(name) == 0) others.push_back({{"name", std::move(name)}, {"type", TypeName(node.Type())}});
    }
    return others;
}

json FeatureTree(const NodeMap& nodes, KORO_NodeVisibility visibility, const std::function<bool()>& isEnded)
{
    const Node root = nodes.TryNode("Root");
    if (!root || root.Type() != KORO_NODE_TYPE_CATEGORY)
    {
        throw ToolError(
            "The description has no category \"Root\", so it has no features.",
            "`koro xml` shows it; `koro get` reads single nodes by name.");
    }
    return TreeReader(visibility, isEnded).Below(root.ToCategory(), 0);
}

} // namespace koro::tool

#include "tools/koro/writable_features.h"
#include "tools/koro/producer_watch.h"

#include "tools/koro/dependency_order.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace koro::tool
{

namespace
{

constexpr size_t maxRecords = size_t{1} << 20;
constexpr size_t maxSelectorDepth = 16;

using Names = std::vector<std::string>;

bool IsReadWrite(const Node& node)
{
    return IfKnown([&] { return node.AccessStatus(); }) == KORO_NODE_ACCESS_STATUS_READ_WRITE;
}

// As files have it: whole numbers decimal, yes and no as 1 and 0.
std::string StoredValue(const Node& node)
{
    switch (node.Type())
    {
    case KORO_NODE_TYPE_INTEGER:
        return std::to_string(node.ToInteger().Value());
    case KORO_NODE_TYPE_BOOLEAN:
        return node.ToBoolean().Value() ? "1" : "0";
    default:
        return ReadValue(node);
    }
}

// The values that a selector can take now.
Names ChoicesOf(const Node& selector)
{
    Names choices;
    if (selector.Type() == KORO_NODE_TYPE_ENUMERATION)
    {
        for (const EnumerationEntryNode& entry : selector.ToEnumeration().Entries())
        {
            if (entry.Node().IsAvailable()) choices.push_back(entry.SymbolicValue());
        }
    }
    if (selector.Type() == KORO_NODE_TYPE_BOOLEAN) choices = {"0", "1"};
    if (selector.Type() != KORO_NODE_TYPE_INTEGER) return choices;
    const IntegerNode number = selector.ToInteger();
    const int64_t last = number.Maximum();
    const int64_t step = std::max<int64_t>(IfKnown([&] { return number.Increment(); }).value_or(1), 1);
    for (int64_t value = number.Minimum(); value <= last; value += step)
    {
        choices.push_back(std::to_string(value));
        if (choices.size() > maxRecords)
            throw ToolError(PrintableStart(selector.Name()) + " selects among too many values.");
        const uint64_t left = static_cast<uint64_t>(last) - static_cast<uint64_t>(value);
        if (left < static_cast<uint64_t>(step)) break; // the next one might be no number any more
    }
    return choices;
}

// The nodes of a map by their names, and what selects each.
class Selection
{
public:
    explicit Selection(const std::vector<Node>& all)
    {
        for (const Node& node : all)
        {
            const std::string name = node.Name();
            for (const Node& selected : node.SelectedNodes())
            {
                selectors[selected.Name()].push_back(name);
                selecting.insert(name);
            }
        }
    }

    bool IsSelector(const std::string& name) const { return selecting.count(name) > 0; }
    // The outermost first.
    Names SelectorsOf(const std::string& name) const
    {
        Names found;
        std::set<std::string> visited = {name};
        AddSelectorsOf(name, visited, found);
        if (found.size() > maxSelectorDepth) throw ToolError(PrintableStart(name) + " has too many selectors.");
        return found;
    }

private:
    void AddSelectorsOf(const std::string& name, std::set<std::string>& visited, Names& found) const
    {
        const auto known = selectors.find(name);
        if (known == selectors.end() || visited.size() > 2 * maxSelectorDepth) return;
        for (const std::string& selector : known->second)
        {
            if (!visited.insert(selector).second) continue;
            AddSelectorsOf(selector, visited, found);
            found.push_back(selector);
        }
    }

    std::unordered_map<std::string, Names> selectors;
    std::set<std::string> selecting;
};

// One feature under each combination of its selectors.
class Walk
{
public:
    Walk(const NodeMap& map, const Node& walked, const Names& outermostFirst, std::vector<FeatureRecord>& filled)
        : nodes(map), feature(walked), selectors(outermostFirst), records(filled)
    {
        record.name = feature.Name();
    }

    void Run() { From(0); }

private:
    void From(size_t level)
    {
        if (level == selectors.size()) return Store();
        const Node selector = nodes.Node(selectors[level]);
        const auto before = IfKnown([&] { return StoredValue(selector); });
        if (!before) return;
        if (!IsReadWrite(selector)) return With(level, *before);
        for (const std::string& choice : ChoicesOf(selector))
        {
            if (Choose(selector, choice)) With(level, choice);
        }
        // Before the outer one moves: the camera may keep an inner choice for each outer one.
        Choose(selector, *before);
    }

    void With(size_t level, const std::string& choice)
    {
        record.selectors.emplace_back(selectors[level], choice);
        From(level + 1);
        record.selectors.pop_back();
    }

    bool Choose(const Node& selector, const std::string& choice) const
    {
        return IfKnown([&] { return WriteValue(selector, choice), true; }).value_or(false);
    }

    void Store()
    {
        NoteProgress();
        if (!IsReadWrite(feature)) return;
        const auto value = IfKnown([&] { return StoredValue(feature); });
        if (!value) return;
        if (records.size() == maxRecords) throw ToolError("The camera has more than a million values.");
        records.push_back(record);
        records.back().value = *value;
    }

    const NodeMap& nodes;
    const Node feature;
    const Names& selectors;
    std::vector<FeatureRecord>& records;
    FeatureRecord record;
};

// All nodes, each behind what it depends on.
std::vector<Node> InOrder(const std::vector<Node>& all)
{
    std::unordered_map<KORO_NodeHandle, size_t> index;
    for (const Node& node : all)
        index.emplace(node.Get(), index.size());
    std::vector<std::vector<size_t>> dependencies(all.size());
    for (size_t i = 0; i < all.size(); ++i)
    {
        for (const Node& node : all[i].InvalidatingNodes())
        {
            const auto found = index.find(node.Get());
            if (found != index.end()) dependencies[i].push_back(found->second);
        }
    }
    std::vector<Node> ordered;
    for (const size_t i : DependenciesFirst(dependencies))
        ordered.push_back(all[i]);
    return ordered;
}

} // namespace

std::vector<FeatureRecord> WritableFeatures(const NodeMap& nodes)
{
    const std::vector<Node> all = nodes.Nodes();
    const Selection selection(all);
    std::vector<FeatureRecord> records;
    std::vector<Node> selectors;
    for (const Node& node : InOrder(all))
    {
        const std::string name = node.Name();
        if (!node.IsFeature() || !HasValue(node.Type()) || name == "TLParamsLocked") continue;
        if (selection.IsSelector(name))
            selectors.push_back(node);
        else
            Walk(nodes, node, selection.SelectorsOf(name), records).Run();
    }
    // Where they stand now. Their order is that of the dependencies: an outer one comes before those that it selects.
    for (const Node& selector : selectors)
        Walk(nodes, selector, {}, records).Run();
    return records;
}

} // namespace koro::tool

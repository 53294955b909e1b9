#include "tools/koro/settings_plan.h"

#include "tools/koro/access_reason.h"
#include "tools/koro/feature_range.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <functional>
#include <set>
#include <stdexcept>
#include <unordered_map>
#include <utility>

namespace koro::tool
{

namespace
{

// The selectors of one record at a time; those of the record before are set back, and the last ones at the end.
class Selectors
{
public:
    explicit Selectors(const NodeMap& map) : nodes(map) {}
    Selectors(const Selectors&) = delete;
    Selectors& operator=(const Selectors&) = delete;
    ~Selectors() { SetBack(); }

    void Set(const FeatureRecord& record)
    {
        if (record.selectors == current) return;
        SetBack();
        try
        {
            for (const auto& [name, value] : record.selectors)
                SetOne(name, value);
        }
        catch (...)
        {
            const auto failure = std::current_exception();
            SetBack();
            std::rethrow_exception(failure);
        }
        current = record.selectors;
    }

    // Of the present ones; empty if the camera has all.
    const std::string& Missing() const { return missing; }

private:
    void SetOne(const std::string& name, const std::string& value)
    {
        const Node selector = nodes.TryNode(name);
        if (!selector)
        {
            missing = name;
            return;
        }
        CheckValue(selector, value);
        const std::string now = ReadValue(selector);
        if (now == value) return;
        before.emplace_back(name, now);
        WriteValue(selector, value);
    }

    void SetBack()
    {
        for (auto changed = before.rbegin(); changed != before.rend(); ++changed)
        {
            try
            {
                WriteValue(nodes.Node(changed->first), changed->second);
            }
            catch (const std::runtime_error&)
            {
                // The camera may have gone.
            }
        }
        before.clear();
        current.clear();
        missing.clear();
    }

    const NodeMap nodes;
    std::vector<std::pair<std::string, std::string>> current;
    std::vector<std::pair<std::string, std::string>> before;
    std::string missing;
};

// What the limits of the moment say of the value; empty for nothing.
std::string OutsideOfLimits(const Node& node, const std::string& value)
{
    switch (node.Type())
    {
    case KORO_NODE_TYPE_INTEGER: {
        const IntegerNode number = node.ToInteger();
        const int64_t wished = ParseNumber(value);
        const int64_t low = number.Minimum();
        const int64_t high = number.Maximum();
        if (wished < low || wished > high) return RangeSentence(node);
        const int64_t step = IfKnown([&] { return number.Increment(); }).value_or(1);
        const uint64_t above = static_cast<uint64_t>(wished) - static_cast<uint64_t>(low);
        return step > 1 && above % static_cast<uint64_t>(step) != 0 ? RangeSentence(node) : std::string();
    }
    case KORO_NODE_TYPE_FLOAT: {
        const FloatNode number = node.ToFloat();
        const double wished = ParseReal(value);
        return wished < number.Minimum() || wished > number.Maximum() ? RangeSentence(node) : std::string();
    }
    case KORO_NODE_TYPE_ENUMERATION: {
        const EnumerationEntryNode entry = node.ToEnumeration().TryEntry(value);
        return entry && entry.Node().IsAvailable() ? std::string() : RangeSentence(node);
    }
    default:
        return {};
    }
}

// Of bytes in hexadecimal, which need no 0x in front.
std::string Digits(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text.rfind("0x", 0) == 0 ? text.substr(2) : text;
}

// Files write values in forms of their own: numbers by the camera's description, real ones with few digits, yes as 1.
bool IsSame(const Node& node, const std::string& left, const std::string& right)
{
    if (left == right) return true;
    switch (node.Type())
    {
    case KORO_NODE_TYPE_INTEGER:
        return ParseNumber(left) == ParseNumber(right);
    case KORO_NODE_TYPE_FLOAT:
        return detail::IsSameReal(ParseReal(left), ParseReal(right));
    case KORO_NODE_TYPE_BOOLEAN:
        return ParseBoolean(left) == ParseBoolean(right);
    case KORO_NODE_TYPE_REGISTER:
        return Digits(left) == Digits(right);
    default:
        return false;
    }
}

PlannedRecord Look(const NodeMap& nodes, const Port& port, const FeatureRecord& record)
{
    PlannedRecord plan;
    plan.record = &record;
    const Node node = nodes.TryNode(record.name);
    if (!node)
    {
        plan.problem = "the camera has no such feature";
        return plan;
    }
    CheckValue(node, record.value);
    plan.before = IfKnown([&] { return ReadValue(node); }).value_or("");
    plan.isSame = !plan.before.empty() && IsSame(node, plan.before, record.value);
    if (!plan.isSame && !node.IsWritable())
        plan.problem = "it cannot be written: " + SentencesOf(WhyNotWritable(nodes, port, node));
    else
        plan.problem = OutsideOfLimits(node, record.value); // the library writes, and then refuses to read it
    plan.isOfTheMoment = !plan.problem.empty();
    return plan;
}

// One record, unless the camera has its value. What cannot be read back is not written a second time.
PlannedRecord Write(const NodeMap& nodes, const Port& port, const FeatureRecord& record, const PlannedRecord* earlier)
{
    PlannedRecord plan = Look(nodes, port, record);
    const Node node = nodes.TryNode(record.name);
    if (plan.isSame || !node) return plan;
    const bool wasTaken = earlier && earlier->isSame;
    if (wasTaken && plan.before.empty())
    {
        plan.problem.clear();
        plan.isSame = true;
        return plan;
    }
    plan.problem.clear();
    WriteValue(node, record.value);
    const auto now = IfKnown([&] { return ReadValue(node, CachePolicy::IgnoreCache); });
    plan.isSame = plan.isWritten = !now || IsSame(node, *now, record.value);
    if (!plan.isSame) plan.problem = "the camera has made " + *now + " of it";
    return plan;
}

std::vector<PlannedRecord> ForEach(
    const NodeMap& nodes, const std::vector<FeatureRecord>& records,
    const std::function<PlannedRecord(const FeatureRecord&)>& treat)
{
    Selectors selectors(nodes);
    std::vector<PlannedRecord> plans;
    for (const FeatureRecord& record : records)
    {
        NoteProgress();
        try
        {
            if (const auto command = CommandIn(nodes, record))
                throw ToolError(*command + " is a command, which load does not execute");
            selectors.Set(record);
            plans.push_back(treat(record));
            plans.back().missingSelector = selectors.Missing();
        }
        catch (const std::exception& error)
        {
            PlannedRecord& failed = plans.emplace_back();
            failed.record = &record;
            failed.problem = error.what();
        }
    }
    return plans;
}

// A line that was taken may change what an earlier one has written.
void NoteLaterChanges(
    const NodeMap& nodes, const Port& port, const std::vector<FeatureRecord>& records,
    const std::vector<bool>& isSuperseded, std::vector<PlannedRecord>& plans)
{
    const auto now = ForEach(nodes, records, [&](const FeatureRecord& record) { return Look(nodes, port, record); });
    for (size_t i = 0; i < plans.size(); ++i)
    {
        // Without one of its selectors a value lands where others land too.
        if (isSuperseded[i] || !now[i].missingSelector.empty() || !plans[i].problem.empty()) continue;
        if (now[i].isSame || now[i].before.empty()) continue;
        plans[i].problem = "another line of the file has made " + now[i].before + " of it";
        plans[i].isSame = false;
    }
}

// Of lines for one value the last one counts.
std::vector<bool> Superseded(const std::vector<FeatureRecord>& records)
{
    std::vector<bool> superseded(records.size(), false);
    std::unordered_map<std::string, size_t> last;
    for (size_t i = 0; i < records.size(); ++i)
    {
        const auto [known, isFirst] = last.try_emplace(records[i].Title(), i);
        if (!isFirst) superseded[std::exchange(known->second, i)] = true;
    }
    return superseded;
}

std::vector<bool> Failed(const std::vector<PlannedRecord>& plans)
{
    std::vector<bool> failed;
    for (const PlannedRecord& plan : plans)
        failed.push_back(!plan.problem.empty());
    return failed;
}

// The nodes from which a node's value, limits and access come, at any distance.
std::set<std::string> SourcesOf(const Node& node)
{
    constexpr size_t maxSources = 4096;
    std::set<std::string> sources;
    std::vector<Node> waiting = {node};
    while (!waiting.empty() && sources.size() < maxSources)
    {
        const Node next = waiting.back();
        waiting.pop_back();
        for (const Node& source : next.InvalidatingNodes())
        {
            if (sources.insert(source.Name()).second) waiting.push_back(source);
        }
    }
    return sources;
}

// Which record of a file, once it is written, may remove the problem of another one.
class Conditions
{
public:
    Conditions(const NodeMap& map, const Port& port) : nodes(map), links(DescriptionLinksOf(port)) {}

    void Add(std::vector<PlannedRecord>& plans)
    {
        for (const PlannedRecord& plan : plans)
        {
            if (plan.problem.empty() && !plan.isSame) AddChange(plan.record->name);
        }
        // A change that becomes possible may make another one possible; few follow each other.
        constexpr int maxRounds = 8;
        int round = 0;
        while (round < maxRounds && AddOnce(plans))
            ++round;
    }

private:
    // The feature, and the nodes that it writes to.
    void AddChange(const std::string& feature)
    {
        std::vector<std::string> targets = {feature};
        for (size_t i = 0; i < targets.size() && changed.emplace(targets[i], feature).second; ++i)
        {
            if (const NodeLinks* const found = links.Of(targets[i]))
                targets.insert(targets.end(), found->values.begin(), found->values.end());
        }
    }

    bool AddOnce(std::vector<PlannedRecord>& plans)
    {
        bool hasAdded = false;
        for (PlannedRecord& plan : plans)
        {
            if (!plan.isOfTheMoment || !plan.condition.empty()) continue;
            plan.condition = ConditionOf(plan.record->name);
            if (plan.condition.empty()) continue;
            AddChange(plan.record->name);
            hasAdded = true;
        }
        return hasAdded;
    }

    std::string ConditionOf(const std::string& name) const
    {
        if (!ReadOnlySentence(links, name).empty()) return {};
        for (const std::string& source : SourcesOf(nodes.Node(name)))
        {
            const auto found = changed.find(source);
            if (found != changed.end() && found->second != name) return found->second;
        }
        return {};
    }

    const NodeMap& nodes;
    const DescriptionLinks links;
    std::unordered_map<std::string, std::string> changed; // the feature by the node
};

} // namespace

std::optional<std::string> CommandIn(const NodeMap& nodes, const FeatureRecord& record)
{
    const auto isCommand = [&](const std::string& name) {
        const Node node = nodes.TryNode(name);
        return node && node.Type() == KORO_NODE_TYPE_COMMAND;
    };
    for (const auto& [selector, value] : record.selectors)
    {
        if (isCommand(selector)) return selector;
    }
    return isCommand(record.name) ? std::optional(record.name) : std::nullopt;
}

std::vector<PlannedRecord> PlanSettings(
    const NodeMap& nodes, const Port& port, const std::vector<FeatureRecord>& records)
{
    auto plans = ForEach(nodes, records, [&](const FeatureRecord& record) { return Look(nodes, port, record); });
    const auto isOfTheMoment = [](const PlannedRecord& plan) { return plan.isOfTheMoment; };
    if (std::any_of(plans.begin(), plans.end(), isOfTheMoment)) Conditions(nodes, port).Add(plans);
    return plans;
}

std::vector<PlannedRecord> WriteSettings(
    const NodeMap& nodes, const Port& port, const std::vector<FeatureRecord>& records)
{
    // A few are enough for any camera that comes to rest.
    constexpr int maxRounds = 20;
    const std::vector<bool> isSuperseded = Superseded(records);
    std::vector<PlannedRecord> plans;
    std::vector<bool> failedBefore;
    for (int round = 0; round < maxRounds; ++round)
    {
        const auto earlier = std::exchange(plans, {});
        plans = ForEach(nodes, records, [&](const FeatureRecord& record) {
            const auto index = static_cast<size_t>(&record - records.data());
            if (!earlier.empty() && isSuperseded[index])
            {
                PlannedRecord kept = earlier[index];
                kept.isWritten = false;
                return kept;
            }
            return Write(nodes, port, record, earlier.empty() ? nullptr : &earlier[index]);
        });
        const bool hasChanged =
            std::any_of(plans.begin(), plans.end(), [](const PlannedRecord& plan) { return plan.isWritten; });
        if (!hasChanged) break;
        NoteLaterChanges(nodes, port, records, isSuperseded, plans);
        const std::vector<bool> failed = Failed(plans);
        const bool isDone = std::find(failed.begin(), failed.end(), true) == failed.end();
        if (isDone || failed == failedBefore) break;
        failedBefore = failed;
    }
    return plans;
}

} // namespace koro::tool

#include "tools/koro/access_reason.h"

#include "tools/koro/description_bytes.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"

#include <algorithm>
#include <optional>

namespace koro::tool
{

namespace
{

// Chains of nodes are followed this far, and no more than that many features are named behind a lock.
constexpr size_t maxVisited = 256;
constexpr size_t maxNamed = 4;

std::optional<int64_t> NumberOf(const Node& node)
{
    return IfKnown([&]() -> int64_t {
        switch (node.Type())
        {
        case KORO_NODE_TYPE_BOOLEAN:
            return node.ToBoolean().Value() ? 1 : 0;
        case KORO_NODE_TYPE_ENUMERATION:
            return node.ToEnumeration().CurrentEntry().Value();
        case KORO_NODE_TYPE_FLOAT:
            return node.ToFloat().Value() != 0 ? 1 : 0;
        default:
            return node.ToInteger().Value();
        }
    });
}

bool IsWritable(KORO_NodeAccessStatus status)
{
    return status == KORO_NODE_ACCESS_STATUS_WRITE_ONLY || status == KORO_NODE_ACCESS_STATUS_READ_WRITE;
}

bool IsThere(KORO_NodeAccessStatus status)
{
    return status == KORO_NODE_ACCESS_STATUS_READ_ONLY || IsWritable(status);
}

KORO_NodeAccessStatus StatusOf(const Node& node)
{
    return IfKnown([&] { return node.AccessStatus(); }).value_or(KORO_NODE_ACCESS_STATUS_UNDEFINED);
}

std::string SentenceFor(const std::string& name, const NodeLinks& links)
{
    if (links.imposedMode == "RO" || links.accessMode == "RO") return name + " is read-only by the description.";
    if (links.element == "IntSwissKnife" || links.element == "SwissKnife")
        return name + " is calculated from other nodes and cannot be written.";
    return {};
}

std::string SentenceBehind(const DescriptionLinks& description, const std::string& name, std::set<std::string>& visited)
{
    const NodeLinks* const links = description.Of(name);
    if (!links || visited.size() >= maxVisited || !visited.insert(name).second) return {};
    std::string sentence = SentenceFor(name, *links);
    for (const std::string& value : links->values)
    {
        if (sentence.empty()) sentence = SentenceBehind(description, value, visited);
    }
    return sentence;
}

} // namespace

std::vector<std::string> AccessReason::WhyNotWritable(const Node& node, const std::string& otherwise) const
{
    std::vector<std::string> reasons = Reasons(node, otherwise);
    // When it is available again it can still not be written.
    if (!reasons.empty() && node.Type() != KORO_NODE_TYPE_CATEGORY && !IsThere(node.AccessStatus()))
    {
        const std::string sentence = ReadOnlySentence(description, node.Name());
        if (!sentence.empty()) reasons.push_back(sentence);
    }
    return reasons;
}

std::vector<std::string> AccessReason::Reasons(const Node& node, const std::string& otherwise) const
{
    const KORO_NodeAccessStatus status = node.AccessStatus();
    if (IsWritable(status) && node.Type() != KORO_NODE_TYPE_CATEGORY) return {};

    const std::string name = node.Name();
    if (node.Type() == KORO_NODE_TYPE_CATEGORY) return {name + " is a category, which only lists features."};
    std::vector<std::string> reasons;
    Names visited;
    Explain(name, visited, reasons);
    if (!reasons.empty()) return reasons;
    if (status == KORO_NODE_ACCESS_STATUS_NOT_IMPLEMENTED) return {"The camera does not have it."};
    if (!otherwise.empty()) return {otherwise};
    switch (status)
    {
    case KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE:
        return {"It is not available at this time; the description does not tell why."};
    case KORO_NODE_ACCESS_STATUS_READ_ONLY:
        return {"It can only be read; the description does not tell why."};
    default:
        return {"Its access cannot be told."};
    }
}

void AccessReason::Explain(const std::string& name, Names& visited, std::vector<std::string>& reasons) const
{
    const NodeLinks* const links = description.Of(name);
    if (!links || visited.size() >= maxVisited || !visited.insert(name).second) return;
    const Node node = map.TryNode(name);
    const KORO_NodeAccessStatus status = node ? StatusOf(node) : KORO_NODE_ACCESS_STATUS_READ_WRITE;
    if (IsWritable(status)) return;

    ExplainBy(links->implementedBy, false, name, " is not implemented, as ", reasons);
    ExplainBy(links->availableBy, false, name, " is not available, as ", reasons);
    ExplainBy(links->lockedBy, true, name, " is locked, as ", reasons);
    if (!reasons.empty()) return;
    const std::string readOnly = IsThere(status) ? SentenceFor(name, *links) : std::string();
    if (!readOnly.empty()) reasons.push_back(readOnly);
    for (const std::string& value : links->values)
    {
        // A node that is there is not why another one is missing.
        const Node source = IsThere(status) ? Node() : map.TryNode(value);
        if (reasons.empty() && !(source && IsThere(StatusOf(source)))) Explain(value, visited, reasons);
    }
}

// One sentence for each decider that blocks: one that is set, or one that is not.
void AccessReason::ExplainBy(
    const std::vector<std::string>& deciders, bool blocksWhenSet, const std::string& subject, const std::string& effect,
    std::vector<std::string>& reasons) const
{
    for (const std::string& decider : deciders)
    {
        const Node node = map.TryNode(decider);
        if (!node) continue;
        const std::optional<int64_t> number = NumberOf(node);
        if (number && (*number != 0) != blocksWhenSet) continue;
        reasons.push_back(
            subject + effect + decider + (number ? " is " + ValueOf(decider) : " cannot be read") +
            Behind(decider, subject) + ".");
    }
}

// The features with a value that stand for the decider or feed it: they are what a person can change.
std::string AccessReason::Behind(const std::string& decider, const std::string& subject) const
{
    std::vector<std::string> waiting{decider};
    Names visited{decider};
    Names named;
    std::string text;
    for (size_t next = 0; next < waiting.size() && named.size() < maxNamed; ++next)
    {
        const std::string name = waiting[next];
        std::vector<std::string> near = description.ShownBy(name);
        near.push_back(name);
        for (const std::string& candidate : near)
        {
            const Node node = candidate == decider || candidate == subject ? Node() : map.TryNode(candidate);
            if (!node || !node.IsFeature() || !HasValue(node.Type()) || named.size() >= maxNamed) continue;
            if (named.insert(candidate).second) text += ", " + candidate + " is " + ValueOf(candidate);
        }
        const NodeLinks* const links = description.Of(name);
        if (!links) continue;
        for (const auto* list : {&links->values, &links->inputs})
        {
            for (const std::string& input : *list)
            {
                if (visited.size() < maxVisited && visited.insert(input).second) waiting.push_back(input);
            }
        }
    }
    return text.empty() ? text : " (" + text.substr(2) + ")";
}

std::vector<std::string> WhyNotWritable(
    const NodeMap& nodes, const Port& port, const Node& node, const std::string& otherwise)
{
    return AccessReason(nodes, DescriptionLinksOf(port)).WhyNotWritable(node, otherwise);
}

DescriptionLinks DescriptionLinksOf(const Port& port)
{
    std::string xml;
    try
    {
        xml = DescriptionText(DescriptionBytes(port, 0));
    }
    catch (const std::exception&)
    { // the reasons then say that the description does not tell
    }
    return DescriptionLinks(xml);
}

std::string ReadOnlySentence(const DescriptionLinks& description, const std::string& name)
{
    std::set<std::string> visited;
    return SentenceBehind(description, name, visited);
}

std::string SentencesOf(const std::vector<std::string>& reasons)
{
    std::string text;
    for (const std::string& reason : reasons)
        text += (text.empty() ? "" : " ") + reason;
    return text;
}

std::string AccessReason::ValueOf(const std::string& name) const
{
    return IfKnown([&] { return ShowValue(map.Node(name)); }).value_or("unknown");
}

} // namespace koro::tool

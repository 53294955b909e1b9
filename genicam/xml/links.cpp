#include "xml/links.h"

#include "xml/edges.h"
#include "xml/selection.h"

#include <Base/GCException.h>
#include <GenApi/Types.h>
#include <algorithm>
#include <bitset>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

using P = Property;

const size_t fewProperties = 16;

bool IsNumberKind(Element element)
{
    return IsIntegerKind(element) || IsFloatKind(element) || element == Element::Enumeration ||
           element == Element::Boolean;
}

// The kind of node to which a link must lead; null when any node is allowed.
const char* UnusableTarget(Element owner, Property link, Element target)
{
    switch (link)
    {
    case P::pIsImplemented:
    case P::pIsAvailable:
    case P::pIsLocked:
    case P::pBlockPolling:
        if (IsNumberKind(target) && !IsFloatKind(target)) return nullptr;
        return "an integer, an enumeration or a boolean";
    case P::pAddress:
    case P::pIndex:
    case P::pOffset:
    case P::pLength:
    case P::pCommandValue:
        return IsNumberKind(target) ? nullptr : "a number, an enumeration or a boolean";
    case P::pValue:
        if (owner == Element::String) return IsStringKind(target) ? nullptr : "a string";
        [[fallthrough]];
    case P::pValueCopy:
    case P::pValueIndexed:
    case P::pValueDefault:
    case P::pMin:
    case P::pMax:
    case P::pInc:
    case P::pVariable:
        if (!IsNumberKind(target)) return "a number, an enumeration or a boolean";
        return IsFloatKind(owner) && target == Element::Boolean ? "a number or an enumeration" : nullptr;
    case P::pChunkID:
        return IsStringKind(target) ? nullptr : "a string";
    case P::p1212Parser:
        return target == Element::ConfRom ? nullptr : "a configuration ROM";
    default:
        return nullptr;
    }
}

// Resolves the links of one description.
class Resolver
{
public:
    Resolver(Description& resolved, const SourceTexts& texts) : description(resolved), sources(texts) {}

    void Run()
    {
        for (NodeIndex node = 0; node < Count(); ++node)
            CheckNode(node);
        RefuseCircles("read cycle detected", IsReadLink);
        RefuseCircles("pSelected cycle detected", [](Property link) { return link == P::pSelected; });
        GatherEdges(description.parents, Count(), [this](const auto& add) { ForEachParent(add); });
        FillSelection(description, sources);
        GatherEdges(description.dependents, Count(), [this](const auto& add) { ForEachDependent(add); });
        GatherEdges(description.invalidated, Count(), [this](const auto& add) { ForEachInvalidated(add); });
        MarkFeatures();
        for (NodeIndex node = 0; node < Count(); ++node)
            SetEssentialsApart(node);
    }

private:
    NodeIndex Count() const { return static_cast<NodeIndex>(description.nodes.size()); }
    Element ElementOf(NodeIndex node) const { return description.nodes[node].element; }
    std::string Place(NodeIndex node) const { return PlaceOf(description, node, sources); }

    void CheckNode(NodeIndex node) const;
    void CheckBits(NodeIndex node) const;
    void CheckBoolean(NodeIndex node) const;
    int64_t Number(NodeIndex node, Property property, int64_t absent) const
    {
        const PropertyRecord* const record = description.Find(node, property);
        return record ? record->number : absent;
    }

    template <class Follow>
    void RefuseCircles(const char* what, const Follow& follow) const;

    template <class Add>
    void ForEachParent(const Add& add) const;
    template <class Add>
    void ForEachDependent(const Add& add) const;
    template <class Add>
    void ForEachInvalidated(const Add& add) const;
    void MarkFeatures();
    void SetEssentialsApart(NodeIndex node);

    Description& description;
    const SourceTexts& sources;
};

void Resolver::CheckNode(NodeIndex node) const
{
    if (ElementOf(node) == Element::None)
    {
        throw RUNTIME_EXCEPTION("Error in XML stream : dangling node reference %s", Place(node).c_str());
    }
    ForEachLink(description, node, [&](NodeIndex target, Property link) {
        if (ElementOf(target) == Element::None)
        {
            throw RUNTIME_EXCEPTION(
                "Error in XML stream : dangling node reference in %s : %s names '%.500s'", Place(node).c_str(),
                runtime::NameOf(link), std::string(description.NameOf(target)).c_str());
        }
        const char* const wanted = UnusableTarget(ElementOf(node), link, ElementOf(target));
        if (wanted)
        {
            throw RUNTIME_EXCEPTION(
                "%s : %s needs %s, '%.500s' is none", Place(node).c_str(), runtime::NameOf(link), wanted,
                std::string(description.NameOf(target)).c_str());
        }
    });
    if (ElementOf(node) == Element::MaskedIntReg) CheckBits(node);
    if (ElementOf(node) == Element::Boolean) CheckBoolean(node);
}

void Resolver::CheckBits(NodeIndex node) const
{
    const int64_t bit = Number(node, P::Bit, 0);
    const int64_t lsb = Number(node, P::LSB, bit);
    const int64_t msb = Number(node, P::MSB, bit);
    const bool big = Number(node, P::Endianess, BigEndian) == BigEndian;
    if (big ? lsb < msb : msb < lsb)
    {
        throw RUNTIME_EXCEPTION("%s : LSB and MSB stand the wrong way round for its byte order", Place(node).c_str());
    }
    const PropertyRecord* const length = description.Find(node, P::Length);
    const bool outside = length && length->number < 8 && std::max(lsb, msb) >= 8 * std::max<int64_t>(length->number, 0);
    if (std::min(lsb, msb) < 0 || std::max(lsb, msb) > 63 || outside)
    {
        throw RUNTIME_EXCEPTION("%s : a bit lies outside the register", Place(node).c_str());
    }
}

void Resolver::CheckBoolean(NodeIndex node) const
{
    if (Number(node, P::OnValue, 1) == Number(node, P::OffValue, 0))
    {
        throw RUNTIME_EXCEPTION("Boolean %s has identical on and off value", Place(node).c_str());
    }
}

// Follows the links with an explicit stack, since a description may contain chains of any length.
template <class Follow>
void Resolver::RefuseCircles(const char* what, const Follow& follow) const
{
    enum class State : uint8_t
    {
        Unknown,
        OnPath,
        Done
    };
    struct Step
    {
        NodeIndex node;
        uint32_t next;
    };
    std::vector<State> states(Count(), State::Unknown);
    std::vector<Step> path;
    for (NodeIndex start = 0; start < Count(); ++start)
    {
        if (states[start] != State::Unknown) continue;
        path.push_back({start, 0});
        states[start] = State::OnPath;
        while (!path.empty())
        {
            Step& step = path.back();
            const Span<PropertyRecord> records = description.PropertiesOf(step.node);
            if (step.next == records.size())
            {
                states[step.node] = State::Done;
                path.pop_back();
                continue;
            }
            const PropertyRecord& record = records[step.next++];
            if (!IsLink(record.property) || !follow(record.property) || states[record.node] == State::Done) continue;
            if (states[record.node] == State::OnPath)
            {
                std::string circle;
                const auto from = std::find_if(
                    path.begin(), path.end(), [&](const Step& passed) { return passed.node == record.node; });
                for (auto passed = from; passed != path.end() && circle.size() < 1000; ++passed)
                {
                    circle += std::string(description.NameOf(passed->node)) + " -> ";
                }
                circle += description.NameOf(record.node);
                throw RUNTIME_EXCEPTION(
                    "ERROR : %s : %.1000s (%.800s)", what, circle.c_str(), Place(record.node).c_str());
            }
            states[record.node] = State::OnPath;
            path.push_back({record.node, 0});
        }
    }
}

template <class Add>
void Resolver::ForEachParent(const Add& add) const
{
    for (NodeIndex node = 0; node < Count(); ++node)
    {
        ForEachLink(description, node, [&](NodeIndex target, Property link) {
            if (IsReadLink(link) || link == P::pEntry) add(target, node);
        });
    }
}

template <class Add>
void Resolver::ForEachDependent(const Add& add) const
{
    for (NodeIndex node = 0; node < Count(); ++node)
    {
        ForEachLink(description, node, [&](NodeIndex target, Property link) {
            if (IsReadLink(link) || link == P::pEntry || link == P::pInvalidator) add(target, node);
        });
        for (const NodeIndex selector : description.selecting.Of(node))
            add(selector, node);
    }
}

template <class Add>
void Resolver::ForEachInvalidated(const Add& add) const
{
    for (NodeIndex node = 0; node < Count(); ++node)
    {
        ForEachLink(description, node, [&](NodeIndex target, Property link) {
            if (link == P::pInvalidator) add(target, node);
        });
    }
}

void Resolver::MarkFeatures()
{
    const NodeIndex root = description.FindNode("Root");
    if (root == noNode || ElementOf(root) != Element::Category) return;
    std::vector<NodeIndex> stack(1, root);
    description.nodes[root].feature = true;
    while (!stack.empty())
    {
        const NodeIndex category = stack.back();
        stack.pop_back();
        ForEachLink(description, category, [&](NodeIndex target, Property link) {
            NodeRecord& record = description.nodes[target];
            if (link != P::pFeature || record.feature) return;
            record.feature = true;
            if (record.element == Element::Category) stack.push_back(target);
        });
    }
}

// Otherwise each use of a selector of thousands of features would search all of them.
void Resolver::SetEssentialsApart(NodeIndex node)
{
    const Span<PropertyRecord> all = description.PropertiesOf(node);
    if (all.size() <= fewProperties) return;
    std::bitset<static_cast<size_t>(P::Count)> met;
    std::vector<PropertyRecord> essentials;
    for (const PropertyRecord& record : all)
    {
        const size_t property = static_cast<size_t>(record.property);
        if (!met.test(property) || IsWalkedInUse(record.property)) essentials.push_back(record);
        met.set(property);
    }
    if (2 * essentials.size() > all.size()) return;
    NodeRecord& record = description.nodes[node];
    record.firstEssential = static_cast<uint32_t>(description.properties.size());
    record.essentialCount = static_cast<uint32_t>(essentials.size());
    description.properties.insert(description.properties.end(), essentials.begin(), essentials.end());
}

} // namespace

bool IsReadLink(Property property)
{
    switch (property)
    {
    case P::pAlias:
    case P::pCastAlias:
    case P::pEntry:
    case P::pInvalidator:
    case P::pSelected:
        return false;
    default:
        return IsLink(property);
    }
}

bool IsWriteLink(Property property)
{
    return property == P::pConvertTo || property == P::pConvertFrom || IsValueLink(property);
}

bool IsWalkedInUse(Property property)
{
    switch (property)
    {
    case P::Address:
    case P::Offset:
    case P::pAddress:
    case P::pError:
    case P::pIndex:
    case P::pLength:
    case P::pOffset:
        return true;
    default:
        return IsWriteLink(property);
    }
}

bool IsValueLink(Property property)
{
    return property == P::pValue || property == P::pValueCopy || property == P::pValueIndexed ||
           property == P::pValueDefault;
}

void ResolveLinks(Description& description, const SourceTexts& sources)
{
    Resolver(description, sources).Run();
}

std::string PlaceOf(const Description& description, NodeIndex node, const SourceTexts& sources)
{
    const NodeRecord& record = description.nodes[node];
    std::string place = "Node '" + std::string(description.NameOf(node).substr(0, 500)) + "'";
    const std::string_view xml = record.source < sources.size() ? sources[record.source] : std::string_view();
    if (!xml.empty())
    {
        const std::string_view before = xml.substr(0, record.sourceOffset);
        place += " at line " + std::to_string(1 + std::count(before.begin(), before.end(), '\n'));
    }
    if (record.source > 0) place += " of injected description " + std::to_string(record.source);
    return place;
}

} // namespace GENAPI_NAMESPACE::runtime

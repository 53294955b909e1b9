#include "xml/merge.h"

#include "xml/parser.h"

#include <Base/GCException.h>
#include <algorithm>
#include <bit>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// The two descriptions that are merged.
enum Side
{
    Base,
    Injected,
    SideCount
};

bool IsJoinedList(Property property)
{
    return property == Property::pInvalidator || property == Property::pSelected || property == Property::pFeature;
}

class Merger
{
public:
    Merger(const Description& base, const Description& injected, uint8_t source, const SourceTexts& texts)
        : from{&base, &injected}, sourceNumber(source), sources(texts), result(std::make_shared<Description>())
    {}

    std::shared_ptr<Description> Run()
    {
        GatherNames();
        for (const Pair& pair : pairs)
            Choose(pair);
        for (const Pair& pair : pairs)
            Settle(pair);
        result->device = from[Base]->device;
        result->texts = from[Base]->texts + from[Injected]->texts;
        std::vector<std::vector<PropertyRecord>> properties;
        for (const Pair& pair : pairs)
            properties.push_back(PropertiesOf(pair));
        EmitNodes(properties);
        EmitProperties(properties);
        return result;
    }

private:
    // The nodes of one name; noNode if a side does not define or mention it.
    struct Pair
    {
        std::string_view name;
        NodeIndex nodes[SideCount] = {noNode, noNode};
        NodeIndex mentions[SideCount] = {noNode, noNode};
    };

    const NodeRecord& Record(Side side, NodeIndex node) const { return from[side]->nodes[node]; }
    void GatherNames();
    void Choose(const Pair& pair);
    void Settle(const Pair& pair);
    NodeIndex OwnerOf(Side side, NodeIndex node) const;
    bool IsKept(Side side, const Pair& pair) const;
    bool Stays(const Pair& pair) const { return IsKept(Base, pair) || IsKept(Injected, pair); }
    Side WinnerOf(const Pair& pair) const { return IsKept(Base, pair) ? Base : Injected; }
    bool IsSame(NodeIndex base, NodeIndex injected) const;
    bool IsSameProperty(Element element, const PropertyRecord& base, const PropertyRecord& injected) const;
    [[noreturn]] void RefuseConflict(const Pair& pair) const;

    std::vector<PropertyRecord> PropertiesOf(const Pair& pair) const;
    PropertyRecord Moved(Side side, Element element, PropertyRecord record) const;
    TextPlace Moved(Side side, TextPlace text) const;
    void EmitNodes(const std::vector<std::vector<PropertyRecord>>& properties);
    void EmitProperties(const std::vector<std::vector<PropertyRecord>>& properties);

    const Description* const from[SideCount];
    const uint8_t sourceNumber;
    const SourceTexts& sources;
    std::shared_ptr<Description> result;

    std::vector<Pair> pairs;                  // in the order of first mention
    std::vector<NodeIndex> pairOf[SideCount]; // the pair of each node
    std::vector<bool> kept[SideCount];        // decided for nodes that no other node has created
    std::vector<NodeIndex> emitted;           // the node of each pair in the result, or noNode
    std::vector<NodeIndex> makers;            // the pair that created each node of the result, or noNode
};

void Merger::GatherNames()
{
    const size_t textSize = from[Base]->texts.size() + from[Injected]->texts.size();
    if (textSize > maxDescriptionSize) throw RUNTIME_EXCEPTION("The texts of the merged descriptions are too long");
    NameTable names;
    for (const Side side : {Base, Injected})
    {
        const Description& description = *from[side];
        kept[side].assign(description.nodes.size(), false);
        for (NodeIndex node = 0; node < description.nodes.size(); ++node)
        {
            const std::string_view name = description.NameOf(node);
            const auto nameOf = [this](NodeIndex pair) { return pairs[pair].name; };
            const uint32_t known = side == Base ? 0 : names.Find(name, nameOf);
            const NodeIndex pair = known ? known - 1 : static_cast<NodeIndex>(pairs.size());
            if (!known)
            {
                if (!names.Add(name, pair))
                    throw RUNTIME_EXCEPTION("Too many names of the merged descriptions are alike to this runtime");
                pairs.emplace_back();
                pairs.back().name = name;
            }
            pairs[pair].mentions[side] = node;
            if (description.nodes[node].element != Element::None) pairs[pair].nodes[side] = node;
            pairOf[side].push_back(pair);
        }
    }
    if (pairs.size() > maxNodes)
        throw RUNTIME_EXCEPTION("The merged descriptions have more nodes than this runtime takes");
}

// The node whose element created this one, followed to its origin.
NodeIndex Merger::OwnerOf(Side side, NodeIndex node) const
{
    while (Record(side, node).madeBy != noNode)
        node = Record(side, node).madeBy;
    return node;
}

// Decides between nodes that have elements; the nodes that an element creates go with it.
void Merger::Choose(const Pair& pair)
{
    const auto decides = [&](Side side) {
        return pair.nodes[side] != noNode && Record(side, pair.nodes[side]).madeBy == noNode;
    };
    if (decides(Base)) kept[Base][pair.nodes[Base]] = true;
    if (decides(Injected)) kept[Injected][pair.nodes[Injected]] = true;
    if (!decides(Base) || !decides(Injected)) return;
    const NodeRecord& base = Record(Base, pair.nodes[Base]);
    const NodeRecord& injected = Record(Injected, pair.nodes[Injected]);
    if (base.mergePriority != injected.mergePriority)
    {
        const Side loser = base.mergePriority < injected.mergePriority ? Base : Injected;
        kept[loser][pair.nodes[loser]] = false;
        return;
    }
    const bool joined = base.element == Element::Category && injected.element == Element::Category;
    if (!joined && !IsSame(pair.nodes[Base], pair.nodes[Injected])) RefuseConflict(pair);
    kept[Injected][pair.nodes[Injected]] = false;
}

// A node that another one creates may have the same name as a node that stays too.
void Merger::Settle(const Pair& pair)
{
    if (IsKept(Base, pair) && IsKept(Injected, pair)) RefuseConflict(pair);
}

void Merger::RefuseConflict(const Pair& pair) const
{
    throw RUNTIME_EXCEPTION(
        "%s : it differs from the one of the description that it is injected into, whose merge priority is the same",
        PlaceOf(*from[Injected], pair.nodes[Injected], {sources[sourceNumber]}).c_str());
}

bool Merger::IsSame(NodeIndex base, NodeIndex injected) const
{
    const NodeRecord& one = Record(Base, base);
    const NodeRecord& other = Record(Injected, injected);
    if (one.element != other.element || one.standard != other.standard || one.propertyCount != other.propertyCount)
    {
        return false;
    }
    const Span<PropertyRecord> others = from[Injected]->PropertiesOf(injected);
    size_t position = 0;
    for (const PropertyRecord& record : from[Base]->PropertiesOf(base))
    {
        const PropertyRecord& match = others[position++];
        if (!IsSameProperty(one.element, record, match)) return false;
        const bool brought = IsLink(record.property) && Record(Base, record.node).madeBy == base;
        const bool comparable = brought && Record(Injected, match.node).madeBy == injected;
        if (brought && (!comparable || !IsSame(record.node, match.node))) return false;
    }
    return true;
}

bool Merger::IsSameProperty(Element element, const PropertyRecord& base, const PropertyRecord& injected) const
{
    if (base.property != injected.property) return false;
    switch (FormOf(element, base.property))
    {
    case Form::Link:
        return from[Base]->NameOf(base.node) == from[Injected]->NameOf(injected.node);
    case Form::Real:
        return std::bit_cast<int64_t>(base.real) == std::bit_cast<int64_t>(injected.real);
    case Form::Text:
    case Form::FilledText:
        return from[Base]->Text(base.text) == from[Injected]->Text(injected.text);
    default:
        return base.number == injected.number;
    }
}

bool Merger::IsKept(Side side, const Pair& pair) const
{
    return pair.nodes[side] != noNode && kept[side][OwnerOf(side, pair.nodes[side])];
}

// The properties of the node that stays, followed by the other's lists; links are numbers of pairs. Empty when no node
// stays.
std::vector<PropertyRecord> Merger::PropertiesOf(const Pair& pair) const
{
    std::vector<PropertyRecord> properties;
    if (!Stays(pair)) return properties;
    const Side winner = WinnerOf(pair);
    const Element element = Record(winner, pair.nodes[winner]).element;
    for (const PropertyRecord& record : from[winner]->PropertiesOf(pair.nodes[winner]))
        properties.push_back(Moved(winner, element, record));

    const Side loser = winner == Base ? Injected : Base;
    if (pair.nodes[loser] == noNode) return properties;
    std::vector<std::pair<Property, NodeIndex>> there;
    for (const PropertyRecord& record : properties)
    {
        if (IsJoinedList(record.property)) there.emplace_back(record.property, record.node);
    }
    std::sort(there.begin(), there.end());
    for (const PropertyRecord& record : from[loser]->PropertiesOf(pair.nodes[loser]))
    {
        if (!IsJoinedList(record.property) || !Takes(element, record.property)) continue;
        const PropertyRecord moved = Moved(loser, element, record);
        const std::pair<Property, NodeIndex> link(moved.property, moved.node);
        if (!std::binary_search(there.begin(), there.end(), link)) properties.push_back(moved);
    }
    return properties;
}

PropertyRecord Merger::Moved(Side side, Element element, PropertyRecord record) const
{
    const Form form = FormOf(element, record.property);
    if (form == Form::Link) record.node = pairOf[side][record.node];
    if (form == Form::Text || form == Form::FilledText) record.text = Moved(side, record.text);
    return record;
}

TextPlace Merger::Moved(Side side, TextPlace text) const
{
    if (side == Injected) text.offset += static_cast<uint32_t>(from[Base]->texts.size());
    return text;
}

// Emits the nodes that stay and those that they name.
void Merger::EmitNodes(const std::vector<std::vector<PropertyRecord>>& properties)
{
    std::vector<bool> named(pairs.size(), false);
    for (const std::vector<PropertyRecord>& list : properties)
    {
        for (const PropertyRecord& record : list)
        {
            if (IsLink(record.property)) named[record.node] = true;
        }
    }
    for (NodeIndex number = 0; number < pairs.size(); ++number)
    {
        const Pair& pair = pairs[number];
        emitted.push_back(noNode);
        if (!Stays(pair) && !named[number]) continue;
        const Side side = Stays(pair) ? WinnerOf(pair) : pair.mentions[Base] != noNode ? Base : Injected;
        NodeRecord record = Record(side, pair.mentions[side]);
        record.name = Moved(side, record.name);
        if (side == Injected) record.source = sourceNumber;
        if (!Stays(pair)) record.element = Element::None;
        emitted.back() = static_cast<NodeIndex>(result->nodes.size());
        result->names.Add(pair.name, emitted.back());
        result->nodes.push_back(record);
        makers.push_back(record.madeBy == noNode ? noNode : pairOf[side][record.madeBy]);
    }
}

void Merger::EmitProperties(const std::vector<std::vector<PropertyRecord>>& properties)
{
    for (NodeIndex pair = 0; pair < pairs.size(); ++pair)
    {
        if (emitted[pair] == noNode) continue;
        if (properties[pair].size() > maxProperties - result->properties.size())
        {
            throw RUNTIME_EXCEPTION("The merged descriptions have more properties than this runtime takes");
        }
        NodeRecord& record = result->nodes[emitted[pair]];
        const NodeIndex maker = makers[emitted[pair]];
        record.madeBy = maker == noNode ? noNode : emitted[maker];
        record.firstProperty = static_cast<uint32_t>(result->properties.size());
        record.propertyCount = static_cast<uint32_t>(properties[pair].size());
        record.essentialCount = 0; // not known yet
        for (PropertyRecord property : properties[pair])
        {
            if (IsLink(property.property)) property.node = emitted[property.node];
            result->properties.push_back(property);
        }
    }
}

} // namespace

std::shared_ptr<Description> Merge(
    const Description& base, const Description& injected, uint8_t source, const SourceTexts& sources)
{
    return Merger(base, injected, source, sources).Run();
}

} // namespace GENAPI_NAMESPACE::runtime

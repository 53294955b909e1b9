#include "xml/selection.h"

#include "xml/edges.h"

#include <Base/GCException.h>
#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// Fills the selection lists of one description.
class Selection
{
public:
    Selection(Description& filled, const SourceTexts& texts);
    void Fill();

private:
    struct Selector
    {
        NodeIndex node;
        std::vector<NodeIndex> direct;  // by pSelected
        std::vector<NodeIndex> further; // nodes that read these
    };

    NodeIndex Count() const { return static_cast<NodeIndex>(description.nodes.size()); }
    void Follow(NodeIndex node);
    void AppendReadersOf(NodeIndex node, std::vector<NodeIndex>& list);
    void AppendValueDependents(NodeIndex node, std::vector<NodeIndex>& list);

    Description& description;
    const SourceTexts& sources;
    std::vector<NodeIndex> converters; // the converter to which a formula belongs, else noNode
    std::vector<bool> listed;          // by the current selector
    std::vector<Selector> selectors;
    size_t steps = 0;
};

Selection::Selection(Description& filled, const SourceTexts& texts)
    : description(filled), sources(texts), converters(filled.nodes.size(), noNode), listed(filled.nodes.size(), false)
{
    for (NodeIndex node = 0; node < Count(); ++node)
    {
        ForEachLink(description, node, [&](NodeIndex target, Property link) {
            if (link == Property::pConvertTo || link == Property::pConvertFrom) converters[target] = node;
        });
    }
}

void Selection::Fill()
{
    for (NodeIndex node = 0; node < Count(); ++node)
        Follow(node);

    NodeLists& selected = description.selected;
    selected.firsts.assign(Count() + 1, 0);
    for (const Selector& selector : selectors)
    {
        selected.nodes.insert(selected.nodes.end(), selector.direct.begin(), selector.direct.end());
        selected.nodes.insert(selected.nodes.end(), selector.further.begin(), selector.further.end());
        selected.firsts[selector.node + 1] = static_cast<uint32_t>(selector.direct.size() + selector.further.size());
    }
    for (NodeIndex node = 0; node < Count(); ++node)
        selected.firsts[node + 1] += selected.firsts[node];

    const auto addDirect = [this](const auto& add) {
        for (const Selector& selector : selectors)
        {
            for (const NodeIndex target : selector.direct)
                add(target, selector.node);
        }
    };
    GatherEdges(description.namedBy, Count(), addDirect);
    GatherEdges(description.selecting, Count(), [&](const auto& add) {
        addDirect(add);
        for (const Selector& selector : selectors)
        {
            for (const NodeIndex target : selector.further)
                add(target, selector.node);
        }
    });
}

// Collects the nodes that this node selects, if it is a selector.
void Selection::Follow(NodeIndex node)
{
    Selector selector;
    selector.node = node;
    ForEachLink(description, node, [&](NodeIndex target, Property link) {
        if (link != Property::pSelected || listed[target]) return;
        listed[target] = true;
        selector.direct.push_back(target);
    });
    if (selector.direct.empty()) return;
    for (const NodeIndex target : selector.direct)
        AppendValueDependents(target, selector.further);
    for (const NodeIndex target : selector.direct)
        listed[target] = false;
    for (const NodeIndex target : selector.further)
        listed[target] = false;
    selectors.push_back(std::move(selector));
}

// The parents except categories, in the order of the nodes; a converter comes together with its formulas.
void Selection::AppendReadersOf(NodeIndex node, std::vector<NodeIndex>& list)
{
    const size_t first = list.size();
    const auto append = [&](NodeIndex reader) {
        if (listed[reader]) return;
        listed[reader] = true;
        list.push_back(reader);
    };
    const Span<NodeIndex> parents = description.parents.Of(node);
    steps += parents.size();
    if (steps > maxSelectionSteps)
    {
        throw RUNTIME_EXCEPTION(
            "%s : more nodes are selected than this runtime follows", PlaceOf(description, node, sources).c_str());
    }
    for (const NodeIndex parent : parents)
    {
        if (description.nodes[parent].element == Element::Category) continue;
        append(parent);
        if (converters[parent] != noNode) append(converters[parent]);
    }
    std::sort(list.begin() + static_cast<ptrdiff_t>(first), list.end());
}

// The nodes that read this node, directly or indirectly, except categories, are selected with it: the nearest first.
void Selection::AppendValueDependents(NodeIndex node, std::vector<NodeIndex>& list)
{
    const size_t first = list.size();
    AppendReadersOf(node, list);
    for (size_t i = first; i < list.size(); ++i)
        AppendReadersOf(list[i], list);
}

} // namespace

void FillSelection(Description& description, const SourceTexts& sources)
{
    Selection(description, sources).Fill();
}

} // namespace GENAPI_NAMESPACE::runtime

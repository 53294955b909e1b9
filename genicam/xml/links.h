// Links between the nodes of a description: the kind of link of each property, the reverse links, and the checks on
// them.
#pragma once

#include "xml/description.h"

namespace GENAPI_NAMESPACE::runtime
{

// Whether the link is read to determine value, range or access of the node (GenApi's reading children).
bool IsReadLink(Property property);
// Whether the link is written when the node is written.
bool IsWriteLink(Property property);
// Whether the link leads to the value itself: copies and indexed values, but not the index.
bool IsValueLink(Property property);

// Whether using a node iterates over all links of this property; each is among its essential properties.
bool IsWalkedInUse(Property property);

// Calls `act` with each linked node and its property, in the order of the file.
template <class Act>
void ForEachLink(const Description& description, NodeIndex node, const Act& act)
{
    for (const PropertyRecord& record : description.PropertiesOf(node))
    {
        if (IsLink(record.property)) act(record.node, record.property);
    }
}

// The XML texts that nodes come from, by the number in their record. An empty text is not available any more: messages
// then contain no line.
typedef std::vector<std::string_view> SourceTexts;

// Checks names, types and circles, then fills the reverse lists, marks the features and stores the essential properties
// separately. Throws RuntimeException.
void ResolveLinks(Description& description, const SourceTexts& sources);

// "Node 'Gain' at line 12", with the number of an injected description.
std::string PlaceOf(const Description& description, NodeIndex node, const SourceTexts& sources);

} // namespace GENAPI_NAMESPACE::runtime

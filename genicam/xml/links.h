// Links between the nodes of a description: which property is which kind of link, their reverse, and the checks over
// them.
#pragma once

#include "xml/description.h"

namespace GENAPI_NAMESPACE::runtime
{

// Is read to know value, range or access of the node (GenApi's reading children).
bool IsReadLink(Property property);
// Is written when the node is written.
bool IsWriteLink(Property property);
// The value itself lies behind it: copies and indexed values, not the index.
bool IsValueLink(Property property);

// Calls `act` with each linked node and its property, in the order of the file.
template <class Act>
void ForEachLink(const Description& description, NodeIndex node, const Act& act)
{
    for (const PropertyRecord& record : description.PropertiesOf(node))
    {
        if (IsLink(record.property)) act(record.node, record.property);
    }
}

// Checks names, types and circles, then fills the reverse lists and marks the features. `lineOf` tells the line of a
// node. Throws RuntimeException.
void ResolveLinks(Description& description, std::string_view xml);

// "node 'Gain', line 12"
std::string PlaceOf(const Description& description, NodeIndex node, std::string_view xml);

} // namespace GENAPI_NAMESPACE::runtime

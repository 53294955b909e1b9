// NodeDraft: one node element while it is read, with the properties read so far.
#pragma once

#include "xml/description.h"

namespace GENAPI_NAMESPACE::runtime
{

inline PropertyRecord NumberRecord(Property property, int64_t number)
{
    PropertyRecord record;
    record.property = property;
    record.number = number;
    return record;
}

inline PropertyRecord LinkRecord(Property property, NodeIndex node)
{
    PropertyRecord record = NumberRecord(property, 0);
    record.node = node;
    return record;
}

inline PropertyRecord TextRecord(Property property, TextPlace place)
{
    PropertyRecord record = NumberRecord(property, 0);
    record.text = place;
    return record;
}

struct NodeDraft
{
    Element element = Element::None;
    NodeIndex node = noNode; // none for a StructReg
    TextPlace name = {0, 0}; // as written in the file
    std::vector<PropertyRecord> properties;

    void Start(Element startedElement, NodeIndex startedNode, TextPlace startedName);
    bool Has(Property wanted) const;
    // The property that is missing or excluded by another one; empty when there is no fault.
    std::string Fault() const;
};

} // namespace GENAPI_NAMESPACE::runtime

#include "xml/node_draft.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

std::string Missing(const char* what)
{
    return std::string("expected element not encountered: '") + what + "'";
}

} // namespace

void NodeDraft::Start(Element startedElement, NodeIndex startedNode, TextPlace startedName)
{
    element = startedElement;
    node = startedNode;
    name = startedName;
    properties.clear();
}

bool NodeDraft::Has(Property wanted) const
{
    return std::any_of(properties.begin(), properties.end(), [wanted](const PropertyRecord& record) {
        return record.property == wanted;
    });
}

std::string NodeDraft::Fault() const
{
    for (const Choice& choice : ChoicesOf(element))
    {
        int found = 0;
        for (const Property candidate : choice.properties)
            found += candidate != Property::None && Has(candidate);
        if (found > 1)
            return std::string("unexpected element encountered beside '") + NameOf(choice.properties[0]) + "'";
        if (found == 0 && choice.required) return Missing(NameOf(choice.properties[0]));
    }
    const bool hasAddress = Has(Property::Address) || Has(Property::pAddress) || Has(Property::pIndex);
    if (Takes(element, Property::Address) && !hasAddress) return Missing("Address");
    if (element == Element::Enumeration && !Has(Property::pEntry)) return Missing("EnumEntry");

    const bool indexed = Takes(element, Property::ValueIndexed) && Has(Property::pIndex);
    if (!indexed) return "";
    if (!Has(Property::ValueIndexed) && !Has(Property::pValueIndexed)) return Missing("ValueIndexed");
    if (!Has(Property::ValueDefault) && !Has(Property::pValueDefault)) return Missing("ValueDefault");
    return "";
}

} // namespace GENAPI_NAMESPACE::runtime

// UseNode: everything that can be asked of a node, for descriptions that mean harm. What the runtime throws is what it
// may throw; anything else passes.
#pragma once

#include <GenApi/NodeMapFactory.h>
#include <GenICam.h>

namespace koro::test
{

// True when nothing was thrown.
template <class Act>
bool Survives(const Act& act)
{
    try
    {
        act();
        return true;
    }
    catch (const GENICAM_NAMESPACE::GenericException&)
    {
        return false;
    }
}

template <class Number>
void UseNumber(Number& number)
{
    Survives([&] { number.GetMin(); });
    Survives([&] { number.GetMax(); });
    Survives([&] { number.GetIncMode(); });
    Survives([&] { number.GetInc(); });
    Survives([&] { number.GetListOfValidValues(true); });
    Survives([&] { number.GetUnit(); });
    Survives([&] { number.GetRepresentation(); });
    Survives([&] { number.GetValue(true, true); });
    Survives([&] { number.SetValue(number.GetValue()); });
    Survives([&] { number.SetValue(1, false); });
}

inline void UseValue(GENAPI_NAMESPACE::INode* node)
{
    using namespace GENAPI_NAMESPACE;
    if (const CIntegerPtr integer = node) UseNumber(*integer);
    if (const CFloatPtr real = node)
    {
        UseNumber(*real);
        Survives([&] { real->GetDisplayNotation(); });
        Survives([&] { real->GetDisplayPrecision(); });
    }
    if (const CStringPtr text = node)
    {
        Survives([&] { text->GetMaxLength(); });
        Survives([&] { text->SetValue(text->GetValue()); });
    }
    if (const CBooleanPtr boolean = node) Survives([&] { boolean->SetValue(!boolean->GetValue()); });
    if (const CCommandPtr command = node)
    {
        Survives([&] { command->Execute(); });
        Survives([&] { command->IsDone(); });
    }
    if (const CRegisterPtr place = node)
    {
        uint8_t bytes[16] = {};
        Survives([&] { place->GetAddress(); });
        Survives([&] { place->Get(bytes, sizeof bytes); });
        Survives([&] { place->Set(bytes, place->GetLength() < 16 ? place->GetLength() : 16); });
    }
    if (const CEnumerationPtr enumeration = node)
    {
        Survives([&] {
            StringList_t names;
            enumeration->GetSymbolics(names);
            for (const GENICAM_NAMESPACE::gcstring& name : names)
                enumeration->GetEntryByName(name);
        });
        Survives([&] { enumeration->SetIntValue(enumeration->GetIntValue(true)); });
        Survives([&] { enumeration->GetCurrentEntry(); });
    }
    if (const CCategoryPtr category = node)
    {
        FeatureList_t features;
        category->GetFeatures(features);
    }
    if (const CValuePtr value = node)
    {
        Survives([&] { value->ToString(true, true); });
        Survives([&] { value->FromString(value->ToString(), false); });
    }
}

inline void UseNode(GENAPI_NAMESPACE::INode* node)
{
    using namespace GENAPI_NAMESPACE;
    Survives([&] { node->GetAccessMode(); });
    Survives([&] { node->GetVisibility(); });
    Survives([&] { node->GetCachingMode(); });
    Survives([&] { node->IsAccessModeCacheable(); });
    node->GetName(true);
    node->GetDisplayName();
    node->GetToolTip();
    node->GetDescription();
    node->GetPollingTime();
    node->GetEventID();
    node->GetDocuURL();
    node->GetAlias();
    node->GetCastAlias();
    for (int type = ctParentNodes; type <= ctValueChangingChildren; ++type)
    {
        NodeList_t list;
        Survives([&] { node->GetChildren(list, static_cast<ELinkType>(type)); });
    }
    GENICAM_NAMESPACE::gcstring_vector names;
    node->GetPropertyNames(names);
    for (const GENICAM_NAMESPACE::gcstring& name : names)
    {
        GENICAM_NAMESPACE::gcstring value;
        GENICAM_NAMESPACE::gcstring attribute;
        node->GetProperty(name, value, attribute);
    }
    if (ISelector* const selector = dynamic_cast<ISelector*>(node))
    {
        FeatureList_t features;
        Survives([&] { selector->GetSelectedFeatures(features); });
        Survives([&] { selector->GetSelectingFeatures(features); });
    }
    UseValue(node);
    Survives([&] { node->InvalidateNode(); });
}

} // namespace koro::test

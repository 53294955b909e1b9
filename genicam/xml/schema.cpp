// The children that each element may have.
#include "xml/elements.h"

#include <bitset>
#include <initializer_list>
#include <stddef.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const size_t numElements = static_cast<size_t>(Element::Count);
const size_t numProperties = static_cast<size_t>(Property::Count);

typedef std::bitset<numProperties> Properties;
using P = Property;

Properties Set(std::initializer_list<Property> list)
{
    Properties set;
    for (const Property property : list)
        set.set(static_cast<size_t>(property));
    return set;
}

// The children of each element, according to the schemas.
struct Schema
{
    Schema();
    Properties children[numElements];
    Properties& operator[](Element element) { return children[static_cast<size_t>(element)]; }
};

Schema::Schema()
{
    const Properties common = Set(
        {P::ToolTip, P::Description, P::DisplayName, P::Visibility, P::DocuURL, P::IsDeprecated, P::EventID,
         P::pIsImplemented, P::pIsAvailable, P::pIsLocked, P::pBlockPolling, P::ImposedAccessMode, P::pError, P::pAlias,
         P::pCastAlias, P::pInvalidator});
    const Properties value = common | Set({P::Streamable});
    const Properties address = Set({P::Address, P::pAddress, P::pIndex});
    const Properties registers =
        value | address | Set({P::Length, P::pLength, P::AccessMode, P::pPort, P::Cachable, P::PollingTime});
    const Properties shown = Set({P::Unit, P::Representation});
    const Properties display = shown | Set({P::DisplayNotation, P::DisplayPrecision});
    const Properties limits = Set({P::Min, P::pMin, P::Max, P::pMax, P::Inc, P::pInc});
    const Properties indexed = Set({P::pIndex, P::ValueIndexed, P::pValueIndexed, P::ValueDefault, P::pValueDefault});
    const Properties single = Set({P::Value, P::pValue});
    const Properties formula = Set({P::pVariable, P::Constant, P::Expression});
    const Properties bits = Set({P::Bit, P::LSB, P::MSB, P::Sign});

    Schema& of = *this;
    of[Element::Node] = common;
    of[Element::Category] = common | Set({P::pFeature});
    of[Element::Port] = common | Set({P::ChunkID, P::pChunkID, P::SwapEndianess, P::CacheChunkData});
    of[Element::Integer] =
        value | single | indexed | limits | shown | Set({P::pValueCopy, P::ValidValueSet, P::pSelected});
    of[Element::IntReg] = registers | shown | Set({P::Sign, P::Endianess, P::pSelected});
    of[Element::MaskedIntReg] = registers | shown | bits | Set({P::Endianess, P::pSelected});
    of[Element::MaskedIntReg].reset(static_cast<size_t>(P::pLength));
    of[Element::StructReg] = registers | Set({P::Endianess});
    of[Element::StructEntry] = value | shown | bits | Set({P::AccessMode, P::Cachable, P::PollingTime, P::pSelected});
    of[Element::Boolean] = value | single | Set({P::OnValue, P::OffValue, P::pSelected});
    of[Element::Command] = common | single | Set({P::CommandValue, P::pCommandValue, P::PollingTime});
    of[Element::Enumeration] = value | single | Set({P::pSelected, P::PollingTime});
    of[Element::EnumEntry] = common | Set({P::Value, P::NumericValue, P::Symbolic, P::IsSelfClearing});
    of[Element::Float] = value | single | indexed | limits | display;
    of[Element::FloatReg] = registers | display | Set({P::Endianess});
    of[Element::String] = value | single;
    of[Element::StringReg] = registers;
    of[Element::Register] = registers;
    of[Element::IntSwissKnife] = value | formula | shown | Set({P::Formula});
    of[Element::SwissKnife] = value | formula | display | Set({P::Formula});
    of[Element::IntConverter] = value | formula | shown | Set({P::FormulaTo, P::FormulaFrom, P::pValue, P::Slope});
    of[Element::Converter] =
        value | formula | display | Set({P::FormulaTo, P::FormulaFrom, P::pValue, P::Slope, P::IsLinear});
    of[Element::ConfRom] = common | address | Set({P::Unit, P::Length, P::pPort});
    of[Element::TextDesc] = of[Element::IntKey] = Set({P::p1212Parser, P::Key});
    of[Element::AdvFeatureLock] = registers | Set({P::FeatureID, P::Timeout});
    of[Element::SmartFeature] = address | Set({P::FeatureID, P::pPort, P::pIsImplemented, P::pIsAvailable});
}

const Properties& SchemaOf(Element element)
{
    static Schema schema;
    return schema[element];
}

const Choice nothing[] = {{{P::None}, false}};

#define LENGTH_CHOICE                                                                                                  \
    {                                                                                                                  \
        {P::Length, P::pLength}, true                                                                                  \
    }
#define REGISTER_CHOICES                                                                                               \
    LENGTH_CHOICE, {{P::AccessMode}, true},                                                                            \
    {                                                                                                                  \
        {P::pPort}, true                                                                                               \
    }
#define LIMIT_CHOICES                                                                                                  \
    {{P::Min, P::pMin}, false}, {{P::Max, P::pMax}, false},                                                            \
    {                                                                                                                  \
        {P::Inc, P::pInc}, false                                                                                       \
    }

const Choice integerChoices[] = {
    {{P::Value, P::pValue, P::pIndex}, true}, {{P::ValueDefault, P::pValueDefault}, false}, LIMIT_CHOICES};
const Choice registerChoices[] = {REGISTER_CHOICES};
const Choice orderedRegisterChoices[] = {REGISTER_CHOICES, {{P::Endianess}, true}};
const Choice maskedChoices[] = {
    REGISTER_CHOICES, {{P::Endianess}, true}, {{P::Bit, P::LSB}, true}, {{P::MSB, P::Bit}, true}};
const Choice structEntryChoices[] = {{{P::Bit, P::LSB}, true}, {{P::MSB, P::Bit}, true}};
const Choice singleChoices[] = {{{P::Value, P::pValue}, true}};
const Choice commandChoices[] = {{{P::Value, P::pValue}, true}, {{P::CommandValue, P::pCommandValue}, true}};
const Choice enumerationChoices[] = {{{P::Value, P::pValue}, true}};
const Choice entryChoices[] = {{{P::Value}, true}};
const Choice knifeChoices[] = {{{P::Formula}, true}};
const Choice converterChoices[] = {{{P::FormulaTo}, true}, {{P::FormulaFrom}, true}, {{P::pValue}, true}};
const Choice portChoices[] = {{{P::ChunkID, P::pChunkID}, false}};
const Choice keyChoices[] = {{{P::p1212Parser}, true}, {{P::Key}, true}};
const Choice smartFeatureChoices[] = {{{P::FeatureID}, true}, {{P::pPort}, true}};

template <size_t N>
ChoiceList List(const Choice (&choices)[N])
{
    return {choices, choices + N};
}

} // namespace

bool Takes(Element element, Property property)
{
    return SchemaOf(element).test(static_cast<size_t>(property));
}

bool Repeats(Element element, Property property)
{
    switch (property)
    {
    case P::pInvalidator:
    case P::pError:
    case P::pFeature:
    case P::pSelected:
    case P::pVariable:
    case P::Constant:
    case P::Expression:
    case P::pValueCopy:
    case P::ValueIndexed:
    case P::pValueIndexed:
    case P::Address:
    case P::pAddress:
        return true;
    case P::pIndex:
        return element != Element::Integer && element != Element::Float;
    default:
        return element == Element::ConfRom && (property == P::Unit || property == P::Length || property == P::pPort);
    }
}

ChoiceList ChoicesOf(Element element)
{
    switch (element)
    {
    case Element::Integer:
    case Element::Float:
        return List(integerChoices);
    case Element::IntReg:
    case Element::FloatReg:
    case Element::StructReg:
        return List(orderedRegisterChoices);
    case Element::MaskedIntReg:
        return List(maskedChoices);
    case Element::StructEntry:
        return List(structEntryChoices);
    case Element::StringReg:
    case Element::Register:
    case Element::AdvFeatureLock:
        return List(registerChoices);
    case Element::Boolean:
    case Element::String:
        return List(singleChoices);
    case Element::Command:
        return List(commandChoices);
    case Element::Enumeration:
        return List(enumerationChoices);
    case Element::EnumEntry:
        return List(entryChoices);
    case Element::SwissKnife:
    case Element::IntSwissKnife:
        return List(knifeChoices);
    case Element::Converter:
    case Element::IntConverter:
        return List(converterChoices);
    case Element::Port:
        return List(portChoices);
    case Element::TextDesc:
    case Element::IntKey:
        return List(keyChoices);
    case Element::SmartFeature:
        return List(smartFeatureChoices);
    default:
        return List(nothing);
    }
}

} // namespace GENAPI_NAMESPACE::runtime

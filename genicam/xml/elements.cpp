#include "xml/elements.h"

#include <GenApi/Types.h>
#include <algorithm>
#include <array>
#include <bitset>
#include <initializer_list>
#include <iterator>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const size_t elementCount = static_cast<size_t>(Element::Count);
const size_t propertyCount = static_cast<size_t>(Property::Count);

const char* const elementNames[elementCount] = {
    "",         "Node",        "Category",       "Integer",      "IntReg",        "MaskedIntReg", "Boolean",
    "Command",  "Enumeration", "EnumEntry",      "Float",        "FloatReg",      "String",       "StringReg",
    "Register", "Converter",   "IntConverter",   "SwissKnife",   "IntSwissKnife", "Port",         "ConfRom",
    "TextDesc", "IntKey",      "AdvFeatureLock", "SmartFeature", "StructReg",     "StructEntry"};

// In the order of Property; the empty ones have no element of their own.
const char* const propertyNames[propertyCount] = {
    "",
    "pAddress",
    "pAlias",
    "pBlockPolling",
    "pCastAlias",
    "pChunkID",
    "pCommandValue",
    "pError",
    "pFeature",
    "pInc",
    "pIndex",
    "pInvalidator",
    "pIsAvailable",
    "pIsImplemented",
    "pIsLocked",
    "pLength",
    "pMax",
    "pMin",
    "",
    "pPort",
    "pSelected",
    "pValue",
    "pValueCopy",
    "pValueDefault",
    "pValueIndexed",
    "pVariable",
    "p1212Parser",
    "",
    "",
    "",
    "",
    "",
    "AccessMode",
    "Address",
    "Bit",
    "Cachable",
    "CacheChunkData",
    "ChunkID",
    "CommandValue",
    "Constant",
    "Description",
    "DisplayName",
    "DisplayNotation",
    "DisplayPrecision",
    "DocuURL",
    "Endianess",
    "EventID",
    "Expression",
    "FeatureID",
    "Formula",
    "FormulaFrom",
    "FormulaTo",
    "ImposedAccessMode",
    "Inc",
    "IsDeprecated",
    "IsLinear",
    "IsSelfClearing",
    "Key",
    "LSB",
    "Length",
    "MSB",
    "Max",
    "Min",
    "NumericValue",
    "OffValue",
    "OnValue",
    "PollingTime",
    "Representation",
    "Sign",
    "Slope",
    "Streamable",
    "SwapEndianess",
    "Symbolic",
    "Timeout",
    "ToolTip",
    "Unit",
    "ValidValueSet",
    "Value",
    "ValueDefault",
    "ValueIndexed",
    "Visibility",
    "",
    "",
    "",
    ""};

// Names to numbers, by open addressing; filled once.
template <size_t Slots>
class NameIndex
{
public:
    NameIndex(const char* const* names, size_t count)
    {
        for (size_t number = 1; number < count; ++number)
        {
            const std::string_view name = names[number];
            if (name.empty()) continue;
            size_t slot = Hash(name);
            while (!slots[slot].name.empty())
                slot = (slot + 1) % Slots;
            slots[slot] = {name, static_cast<uint8_t>(number)};
        }
    }

    uint8_t Find(std::string_view name) const
    {
        for (size_t slot = Hash(name); !slots[slot].name.empty(); slot = (slot + 1) % Slots)
        {
            if (slots[slot].name == name) return slots[slot].number;
        }
        return 0;
    }

private:
    struct Slot
    {
        std::string_view name;
        uint8_t number = 0;
    };

    static size_t Hash(std::string_view name)
    {
        size_t hash = 2166136261u;
        for (const char letter : name)
            hash = (hash ^ static_cast<unsigned char>(letter)) * 16777619u;
        return hash % Slots;
    }

    std::array<Slot, Slots> slots;
};

typedef std::bitset<propertyCount> Properties;
using P = Property;

Properties Set(std::initializer_list<Property> list)
{
    Properties set;
    for (const Property property : list)
        set.set(static_cast<size_t>(property));
    return set;
}

// The children of each element, as the schemas tell them.
struct Schema
{
    Schema();
    Properties children[elementCount];
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
    REGISTER_CHOICES, {{P::Endianess}, true}, {{P::Bit, P::LSB}, true}, {{P::Bit, P::MSB}, true}};
const Choice structEntryChoices[] = {{{P::Bit, P::LSB}, true}, {{P::Bit, P::MSB}, true}};
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

const std::string_view accessWords[] = {"", "", "WO", "RO", "RW"};
const std::string_view visibilityWords[] = {"Beginner", "Expert", "Guru", "Invisible"};
const std::string_view cachingWords[] = {"NoCache", "WriteThrough", "WriteAround"};
const std::string_view representationWords[] = {"Linear",    "Logarithmic", "Boolean",   "PureNumber",
                                                "HexNumber", "IPV4Address", "MACAddress"};
const std::string_view signWords[] = {"Signed", "Unsigned"};
const std::string_view endianWords[] = {"BigEndian", "LittleEndian"};
const std::string_view slopeWords[] = {"Increasing", "Decreasing", "Varying", "Automatic"};
const std::string_view notationWords[] = {"Automatic", "Fixed", "Scientific"};
const std::string_view yesNoWords[] = {"No", "Yes"};

struct Words
{
    const std::string_view* first;
    const std::string_view* last;
};

Words WordsOf(Property property)
{
    const auto list = [](const auto& words) { return Words{std::begin(words), std::end(words)}; };
    switch (property)
    {
    case P::AccessMode:
    case P::ImposedAccessMode:
        return list(accessWords);
    case P::Cachable:
        return list(cachingWords);
    case P::DisplayNotation:
        return list(notationWords);
    case P::Endianess:
        return list(endianWords);
    case P::Representation:
        return list(representationWords);
    case P::Sign:
        return list(signWords);
    case P::Slope:
        return list(slopeWords);
    case P::Visibility:
        return list(visibilityWords);
    default:
        return list(yesNoWords);
    }
}

} // namespace

Element FindElement(std::string_view name)
{
    static const NameIndex<64> index(elementNames, elementCount);
    return static_cast<Element>(index.Find(name));
}

Property FindProperty(std::string_view name)
{
    static const NameIndex<256> index(propertyNames, propertyCount);
    return static_cast<Property>(index.Find(name));
}

const char* NameOf(Element element)
{
    return elementNames[static_cast<size_t>(element)];
}

const char* NameOf(Property property)
{
    return propertyNames[static_cast<size_t>(property)];
}

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

Form FormOf(Element element, Property property)
{
    if (IsLink(property)) return Form::Link;
    const bool real = IsFloatKind(element);
    switch (property)
    {
    case P::ToolTip:
    case P::Description:
    case P::DisplayName:
        return Form::FilledText;
    case P::Min:
    case P::Max:
    case P::Inc:
    case P::ValueIndexed:
    case P::ValueDefault:
    case P::Constant:
        return real ? Form::Real : Form::Number;
    case P::NumericValue:
        return Form::Real;
    case P::Value:
        if (element == Element::Boolean) return Form::Boolean;
        if (element == Element::String) return Form::Text;
        return real ? Form::Real : Form::Number;
    case P::FeatureID:
        return element == Element::SmartFeature ? Form::Text : Form::Number;
    case P::Unit:
        return element == Element::ConfRom ? Form::Number : Form::Text;
    case P::Address:
    case P::Bit:
    case P::CommandValue:
    case P::DisplayPrecision:
    case P::Key:
    case P::LSB:
    case P::Length:
    case P::MSB:
    case P::OffValue:
    case P::OnValue:
    case P::PollingTime:
    case P::Timeout:
        return Form::Number;
    case P::AccessMode:
    case P::Cachable:
    case P::CacheChunkData:
    case P::DisplayNotation:
    case P::Endianess:
    case P::ImposedAccessMode:
    case P::IsDeprecated:
    case P::IsLinear:
    case P::IsSelfClearing:
    case P::Representation:
    case P::Sign:
    case P::Slope:
    case P::Streamable:
    case P::SwapEndianess:
    case P::Visibility:
        return Form::Word;
    default:
        return Form::Text;
    }
}

int WordNumber(Element element, Property property, std::string_view word)
{
    const Words words = WordsOf(property);
    const std::string_view* const found = std::find(words.first, words.last, word);
    if (found == words.last || word.empty()) return -1;
    const int number = static_cast<int>(found - words.first);
    const bool integerOnly = number == GENAPI_NAMESPACE::Boolean || number > PureNumber;
    return property == P::Representation && IsFloatKind(element) && integerOnly ? -1 : number;
}

std::string_view WordOf(Property property, int number)
{
    return WordsOf(property).first[number];
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

bool IsRegister(Element element)
{
    switch (element)
    {
    case Element::IntReg:
    case Element::MaskedIntReg:
    case Element::FloatReg:
    case Element::StringReg:
    case Element::Register:
    case Element::AdvFeatureLock:
    case Element::SmartFeature:
        return true;
    default:
        return false;
    }
}

bool IsIntegerKind(Element element)
{
    switch (element)
    {
    case Element::Integer:
    case Element::IntReg:
    case Element::MaskedIntReg:
    case Element::IntSwissKnife:
    case Element::IntConverter:
    case Element::IntKey:
    case Element::AdvFeatureLock:
    case Element::SmartFeature:
        return true;
    default:
        return false;
    }
}

bool IsFloatKind(Element element)
{
    return element == Element::Float || element == Element::FloatReg || element == Element::SwissKnife ||
           element == Element::Converter;
}

bool IsStringKind(Element element)
{
    return element == Element::String || element == Element::StringReg || element == Element::TextDesc;
}

} // namespace GENAPI_NAMESPACE::runtime

#include "xml/elements.h"

#include <array>
#include <stddef.h>

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

// In the order of Property; the empty names have no element.
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

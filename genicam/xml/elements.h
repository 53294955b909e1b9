// Elements and properties of a camera description: their names, the formats of their texts, and the children of each
// element.
#pragma once

#include <Base/GCNamespace.h>
#include <stdint.h>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

// The elements of nodes. StructReg never becomes a node: its entries become masked registers.
enum class Element : uint8_t
{
    None,
    Node,
    Category,
    Integer,
    IntReg,
    MaskedIntReg,
    Boolean,
    Command,
    Enumeration,
    EnumEntry,
    Float,
    FloatReg,
    String,
    StringReg,
    Register,
    Converter,
    IntConverter,
    SwissKnife,
    IntSwissKnife,
    Port,
    ConfRom,
    TextDesc,
    IntKey,
    AdvFeatureLock,
    SmartFeature,
    StructReg,
    StructEntry,
    Count
};

// The properties of a node. The links come first; those after pEntry have no element: the parser creates them for
// entries, constants, expressions and the two formulas of a converter.
enum class Property : uint8_t
{
    None,
    pAddress,
    pAlias,
    pBlockPolling,
    pCastAlias,
    pChunkID,
    pCommandValue,
    pError,
    pFeature,
    pInc,
    pIndex,
    pInvalidator,
    pIsAvailable,
    pIsImplemented,
    pIsLocked,
    pLength,
    pMax,
    pMin,
    pOffset,
    pPort,
    pSelected,
    pValue,
    pValueCopy,
    pValueDefault,
    pValueIndexed,
    pVariable,
    p1212Parser,
    pEntry,
    pConstant,
    pExpression,
    pConvertTo,
    pConvertFrom,
    LastLink = pConvertFrom,

    AccessMode,
    Address,
    Bit,
    Cachable,
    CacheChunkData,
    ChunkID,
    CommandValue,
    Constant,
    Description,
    DisplayName,
    DisplayNotation,
    DisplayPrecision,
    DocuURL,
    Endianess,
    EventID,
    Expression,
    FeatureID,
    Formula,
    FormulaFrom,
    FormulaTo,
    ImposedAccessMode,
    Inc,
    IsDeprecated,
    IsLinear,
    IsSelfClearing,
    Key,
    LSB,
    Length,
    MSB,
    Max,
    Min,
    NumericValue,
    OffValue,
    OnValue,
    PollingTime,
    Representation,
    Sign,
    Slope,
    Streamable,
    SwapEndianess,
    Symbolic,
    Timeout,
    ToolTip,
    Unit,
    ValidValueSet,
    Value,
    ValueDefault,
    ValueIndexed,
    Visibility,

    // Attributes of the property before them, and the name of an entry as written in the file.
    VariableName,
    Index,
    Offset,
    EntryName,
    Count
};

// How the text of a property becomes its value.
enum class Form : uint8_t
{
    Link,
    Text,
    FilledText,
    Number,
    Real,
    Boolean,
    Word
};

// Returns None when no element of the language has this name.
Element FindElement(std::string_view name);
Property FindProperty(std::string_view name);
const char* NameOf(Element element);
const char* NameOf(Property property);

inline bool IsLink(Property property)
{
    return property != Property::None && property <= Property::LastLink;
}

bool Takes(Element element, Property property);
// Whether the property may occur several times in one element.
bool Repeats(Element element, Property property);
Form FormOf(Element element, Property property);
// The number of the enumerator for a word; -1: not a word of this property.
int WordNumber(Element element, Property property, std::string_view word);
// The reverse.
std::string_view WordOf(Property property, int number);

// Exactly one property of each group must exist (`required`), or at most one.
struct Choice
{
    static const int size = 4;
    Property properties[size];
    bool required;
};
struct ChoiceList
{
    const Choice* first;
    const Choice* last;
    const Choice* begin() const { return first; }
    const Choice* end() const { return last; }
};
ChoiceList ChoicesOf(Element element);

bool IsRegister(Element element);
bool IsIntegerKind(Element element);
bool IsFloatKind(Element element);
bool IsStringKind(Element element);

} // namespace GENAPI_NAMESPACE::runtime

#include <GenApi/EnumClasses.h>
#include <algorithm>
#include <iterator>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

template <class E>
struct Word
{
    E value;
    const char* text;
};

const Word<EAccessMode> accessModes[] = {
    {NI, "NI"},
    {NA, "NA"},
    {WO, "WO"},
    {RO, "RO"},
    {RW, "RW"},
    {_UndefinedAccesMode, "_UndefinedAccessMode"},
    {_CycleDetectAccesMode, "_CycleDetectAccessMode"}};
const Word<EVisibility> visibilities[] = {
    {Beginner, "Beginner"},
    {Expert, "Expert"},
    {Guru, "Guru"},
    {Invisible, "Invisible"},
    {_UndefinedVisibility, "_UndefinedVisibility"}};
const Word<ECachingMode> cachingModes[] = {
    {NoCache, "NoCache"},
    {WriteThrough, "WriteThrough"},
    {WriteAround, "WriteAround"},
    {_UndefinedCachingMode, "_UndefinedCachingMode"}};
const Word<ERepresentation> representations[] = {
    {Linear, "Linear"},         {Logarithmic, "Logarithmic"},
    {Boolean, "Boolean"},       {PureNumber, "PureNumber"},
    {HexNumber, "HexNumber"},   {IPV4Address, "IPV4Address"},
    {MACAddress, "MACAddress"}, {_UndefinedRepresentation, "_UndefinedRepresentation"}};
const Word<EEndianess> endianesses[] = {
    {BigEndian, "BigEndian"}, {LittleEndian, "LittleEndian"}, {_UndefinedEndian, "_UndefinedEndian"}};
const Word<ENameSpace> nameSpaces[] = {
    {Custom, "Custom"}, {Standard, "Standard"}, {_UndefinedNameSpace, "_UndefinedNameSpace"}};
const Word<EYesNo> yesNos[] = {{No, "No"}, {Yes, "Yes"}, {_UndefinedYesNo, "_UndefinedYesNo"}};
const Word<EStandardNameSpace> standardNameSpaces[] = {
    {None, "None"}, {GEV, "GEV"}, {IIDC, "IIDC"},
    {CL, "CL"},     {USB, "USB"}, {_UndefinedStandardNameSpace, "_UndefinedStandardNameSpace"}};
const Word<ESlope> slopes[] = {
    {Increasing, "Increasing"},
    {Decreasing, "Decreasing"},
    {Varying, "Varying"},
    {Automatic, "Automatic"},
    {_UndefinedESlope, "_UndefinedESlope"}};
const Word<EDisplayNotation> notations[] = {
    {fnAutomatic, "Automatic"},
    {fnFixed, "Fixed"},
    {fnScientific, "Scientific"},
    {_UndefinedEDisplayNotation, "_UndefinedEDisplayNotation"}};
const Word<EInputDirection> directions[] = {{idFrom, "From"}, {idTo, "To"}, {idNone, "None"}};
const Word<EGenApiSchemaVersion> schemaVersions[] = {{v1_0, "v1_0"}, {v1_1, "v1_1"}, {_Undefined, "_Undefined"}};

template <class E, size_t N>
bool Read(const Word<E> (&words)[N], const gcstring& text, E* value)
{
    const auto found =
        std::find_if(std::begin(words), std::end(words), [&](const Word<E>& word) { return text == word.text; });
    if (!value || found == std::end(words)) return false;
    *value = found->value;
    return true;
}

// An undefined number is written as the undefined enumerator, which follows the defined ones.
template <class E, size_t N>
const char* Write(const Word<E> (&words)[N], E value, E undefined)
{
    const auto find = [&](E wanted) {
        return std::find_if(
            std::begin(words), std::end(words), [&](const Word<E>& word) { return word.value == wanted; });
    };
    const auto found = find(value);
    return found == std::end(words) ? find(undefined)->text : found->text;
}

} // namespace

#define GENAPI_DEFINE_ENUM_CLASS(E, words, undefined)                                                                  \
    bool E##Class::FromString(const gcstring& text, E* value)                                                          \
    {                                                                                                                  \
        return Read(words, text, value);                                                                               \
    }                                                                                                                  \
    void E##Class::ToString(gcstring& text, E* value)                                                                  \
    {                                                                                                                  \
        text = Write(words, value ? *value : undefined, undefined);                                                    \
    }                                                                                                                  \
    gcstring E##Class::ToString(E value)                                                                               \
    {                                                                                                                  \
        return Write(words, value, undefined);                                                                         \
    }

GENAPI_DEFINE_ENUM_CLASS(EAccessMode, accessModes, _UndefinedAccesMode)
GENAPI_DEFINE_ENUM_CLASS(EVisibility, visibilities, _UndefinedVisibility)
GENAPI_DEFINE_ENUM_CLASS(ECachingMode, cachingModes, _UndefinedCachingMode)
GENAPI_DEFINE_ENUM_CLASS(ERepresentation, representations, _UndefinedRepresentation)
GENAPI_DEFINE_ENUM_CLASS(EEndianess, endianesses, _UndefinedEndian)
GENAPI_DEFINE_ENUM_CLASS(ENameSpace, nameSpaces, _UndefinedNameSpace)
GENAPI_DEFINE_ENUM_CLASS(EYesNo, yesNos, _UndefinedYesNo)
GENAPI_DEFINE_ENUM_CLASS(EStandardNameSpace, standardNameSpaces, _UndefinedStandardNameSpace)
GENAPI_DEFINE_ENUM_CLASS(ESlope, slopes, _UndefinedESlope)
GENAPI_DEFINE_ENUM_CLASS(EDisplayNotation, notations, _UndefinedEDisplayNotation)
GENAPI_DEFINE_ENUM_CLASS(EInputDirection, directions, idNone)
GENAPI_DEFINE_ENUM_CLASS(EGenApiSchemaVersion, schemaVersions, _Undefined)

} // namespace GENAPI_NAMESPACE

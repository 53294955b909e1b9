// The enumerations, lists and handles as types: what code that is compiled against the interface relies on.
#include "tests/unit/genicam/interface_proof.h"

#include <Base/GCError.h>
#include <GenApi/EnumClasses.h>
#include <GenApi/GenApiVersion.h>
#include <GenICam.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENAPI_NAMESPACE;
using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

// The type has its name, the tag with the underscore and its number.
#define ENUMERATOR(type, name, number)                                                                                 \
    static_assert(is_same<type, enum _##type>, #type);                                                                 \
    static_assert(is_same<decltype(name), type>, #name);                                                               \
    static_assert(static_cast<long long>(name) == (number), #name)

ENUMERATOR(EAccessMode, NI, 0);
ENUMERATOR(EAccessMode, NA, 1);
ENUMERATOR(EAccessMode, WO, 2);
ENUMERATOR(EAccessMode, RO, 3);
ENUMERATOR(EAccessMode, RW, 4);
ENUMERATOR(EAccessMode, _UndefinedAccesMode, 5);
ENUMERATOR(EAccessMode, _CycleDetectAccesMode, 6);
ENUMERATOR(EVisibility, Beginner, 0);
ENUMERATOR(EVisibility, Expert, 1);
ENUMERATOR(EVisibility, Guru, 2);
ENUMERATOR(EVisibility, Invisible, 3);
ENUMERATOR(EVisibility, _UndefinedVisibility, 99);
ENUMERATOR(ECachingMode, NoCache, 0);
ENUMERATOR(ECachingMode, WriteThrough, 1);
ENUMERATOR(ECachingMode, WriteAround, 2);
ENUMERATOR(ECachingMode, _UndefinedCachingMode, 3);
ENUMERATOR(ERepresentation, Linear, 0);
ENUMERATOR(ERepresentation, Logarithmic, 1);
ENUMERATOR(ERepresentation, Boolean, 2);
ENUMERATOR(ERepresentation, PureNumber, 3);
ENUMERATOR(ERepresentation, HexNumber, 4);
ENUMERATOR(ERepresentation, IPV4Address, 5);
ENUMERATOR(ERepresentation, MACAddress, 6);
ENUMERATOR(ERepresentation, _UndefinedRepresentation, 7);
ENUMERATOR(ERepresentation, _UndefindedRepresentation, 7);
ENUMERATOR(ESign, Signed, 0);
ENUMERATOR(ESign, Unsigned, 1);
ENUMERATOR(ESign, _UndefinedSign, 2);
ENUMERATOR(EEndianess, BigEndian, 0);
ENUMERATOR(EEndianess, LittleEndian, 1);
ENUMERATOR(EEndianess, _UndefinedEndian, 2);
ENUMERATOR(ENameSpace, Custom, 0);
ENUMERATOR(ENameSpace, Standard, 1);
ENUMERATOR(ENameSpace, _UndefinedNameSpace, 2);
ENUMERATOR(EStandardNameSpace, None, 0);
ENUMERATOR(EStandardNameSpace, GEV, 1);
ENUMERATOR(EStandardNameSpace, IIDC, 2);
ENUMERATOR(EStandardNameSpace, CL, 3);
ENUMERATOR(EStandardNameSpace, USB, 4);
ENUMERATOR(EStandardNameSpace, _UndefinedStandardNameSpace, 5);
ENUMERATOR(EYesNo, No, 0);
ENUMERATOR(EYesNo, Yes, 1);
ENUMERATOR(EYesNo, _UndefinedYesNo, 2);
ENUMERATOR(ESlope, Increasing, 0);
ENUMERATOR(ESlope, Decreasing, 1);
ENUMERATOR(ESlope, Varying, 2);
ENUMERATOR(ESlope, Automatic, 3);
ENUMERATOR(ESlope, _UndefinedESlope, 4);
ENUMERATOR(EXMLValidation, xvDefault, 0);
ENUMERATOR(EXMLValidation, xvLoad, 1);
ENUMERATOR(EXMLValidation, xvCycles, 2);
ENUMERATOR(EXMLValidation, xvSFNC, 4);
ENUMERATOR(EXMLValidation, xvAll, 0xffffffff);
ENUMERATOR(EXMLValidation, _UndefinedEXMLValidation, 0x8000000);
ENUMERATOR(EDisplayNotation, fnAutomatic, 0);
ENUMERATOR(EDisplayNotation, fnFixed, 1);
ENUMERATOR(EDisplayNotation, fnScientific, 2);
ENUMERATOR(EDisplayNotation, _UndefinedEDisplayNotation, 3);
ENUMERATOR(EInterfaceType, intfIValue, 0);
ENUMERATOR(EInterfaceType, intfIBase, 1);
ENUMERATOR(EInterfaceType, intfIInteger, 2);
ENUMERATOR(EInterfaceType, intfIBoolean, 3);
ENUMERATOR(EInterfaceType, intfICommand, 4);
ENUMERATOR(EInterfaceType, intfIFloat, 5);
ENUMERATOR(EInterfaceType, intfIString, 6);
ENUMERATOR(EInterfaceType, intfIRegister, 7);
ENUMERATOR(EInterfaceType, intfICategory, 8);
ENUMERATOR(EInterfaceType, intfIEnumeration, 9);
ENUMERATOR(EInterfaceType, intfIEnumEntry, 10);
ENUMERATOR(EInterfaceType, intfIPort, 11);
ENUMERATOR(ELinkType, ctParentNodes, 0);
ENUMERATOR(ELinkType, ctReadingChildren, 1);
ENUMERATOR(ELinkType, ctWritingChildren, 2);
ENUMERATOR(ELinkType, ctInvalidatingChildren, 3);
ENUMERATOR(ELinkType, ctDependingNodes, 4);
ENUMERATOR(ELinkType, ctTerminalNodes, 5);
ENUMERATOR(ELinkType, ctValueChangingChildren, 6);
ENUMERATOR(EIncMode, noIncrement, 0);
ENUMERATOR(EIncMode, fixedIncrement, 1);
ENUMERATOR(EIncMode, listIncrement, 2);
ENUMERATOR(EInputDirection, idFrom, 0);
ENUMERATOR(EInputDirection, idTo, 1);
ENUMERATOR(EInputDirection, idNone, 2);
ENUMERATOR(EGenApiSchemaVersion, v1_0, 1);
ENUMERATOR(EGenApiSchemaVersion, v1_1, 2);
ENUMERATOR(EGenApiSchemaVersion, _Undefined, -1);
ENUMERATOR(ECallbackSuppressMode, csmOff, 0);
ENUMERATOR(ECallbackSuppressMode, csmActive, 1);
ENUMERATOR(ECallbackSuppressMode, csmOnce, 2);
ENUMERATOR(ECallbackType, cbPostInsideLock, 1);
ENUMERATOR(ECallbackType, cbPostOutsideLock, 2);
ENUMERATOR(ECacheUsage_t, CacheUsage_Automatic, 0);
ENUMERATOR(ECacheUsage_t, CacheUsage_ForceWrite, 1);
ENUMERATOR(ECacheUsage_t, CacheUsage_ForceRead, 2);
ENUMERATOR(ECacheUsage_t, CacheUsage_Ignore, 3);
ENUMERATOR(EContentType_t, ContentType_Xml, 0);
ENUMERATOR(EContentType_t, ContentType_ZippedXml, 1);

static_assert(is_same<NodeList_t, node_vector>);
static_assert(is_same<FeatureList_t, value_vector>);
static_assert(is_same<StringList_t, gcstring_vector>);
static_assert(is_same<CallbackHandleType, intptr_t>);
static_assert(is_same<UserData_t, void*>);
static_assert(is_same<::GenICam_streamsize, int64_t>);
static_assert(is_same<::float32_t, float>);
static_assert(is_same<::float64_t, double>);
static_assert(is_same<decltype(Version_t::Major), uint16_t>);
static_assert(is_same<decltype(Version_t::Minor), uint16_t>);
static_assert(is_same<decltype(Version_t::SubMinor), uint16_t>);

static_assert(GENICAM_VERSION_MAJOR == 3 && GENICAM_VERSION_MINOR == 4);
static_assert(GENICAM_VERSION_SUBMINOR == 0 && GENICAM_VERSION_BUILD == 0);
static_assert(GENAPI_VERSION_MAJOR == 3 && GENAPI_VERSION_MINOR == 4);
static_assert(GENAPI_VERSION_SUBMINOR == 0 && GENAPI_VERSION_BUILD == 0);
static_assert(GCSTRING_NPOS == size_t(-1));
static_assert(GC_INT64_MAX == INT64_MAX && GC_INT64_MIN == INT64_MIN && GC_UINT64_MAX == UINT64_MAX);
static_assert(GC_INT32_MAX == INT32_MAX && GC_INT32_MIN == INT32_MIN && GC_UINT32_MAX == UINT32_MAX);
static_assert(GC_INT8_MAX == INT8_MAX && GC_INT8_MIN == INT8_MIN && GC_UINT8_MAX == UINT8_MAX);
static_assert(GENICAM_NAMESPACE::GC_ERR_SUCCESS == 0 && GENICAM_NAMESPACE::GC_ERR_AMBIGUOUS == -1023);
static_assert(GENICAM_NAMESPACE::GC_ERR_TIMEOUT == -1011 && GENICAM_NAMESPACE::GC_ERR_CUSTOM_ID == -10000);

// Inheritance: virtual where one object has several of the interfaces.
template <class Base, class Derived>
constexpr bool isVirtualBase = std::is_base_of_v<Base, Derived> && !CanCastDown<Base, Derived>::value;

static_assert(isVirtualBase<IBase, INode>);
static_assert(isVirtualBase<IBase, IValue>);
static_assert(isVirtualBase<IValue, IInteger>);
static_assert(isVirtualBase<IValue, IFloat>);
static_assert(isVirtualBase<IValue, IBoolean>);
static_assert(isVirtualBase<IValue, ICommand>);
static_assert(isVirtualBase<IValue, IString>);
static_assert(isVirtualBase<IValue, IRegister>);
static_assert(isVirtualBase<IValue, IEnumeration>);
static_assert(isVirtualBase<IValue, IEnumEntry>);
static_assert(isVirtualBase<IValue, ICategory>);
static_assert(isVirtualBase<IBase, ISelector>);
static_assert(isVirtualBase<IBase, IPort>);
static_assert(isVirtualBase<IPort, IPortStacked>);
static_assert(isVirtualBase<IPort, IPortConstruct>);
static_assert(isVirtualBase<IPort, IChunkPort>);
static_assert(isVirtualBase<IPort, IPortReplay>);
static_assert(std::is_base_of_v<IPortReplay, IPortRecorder> && !isVirtualBase<IPortReplay, IPortRecorder>);
static_assert(std::has_virtual_destructor_v<IBase>);
static_assert(!std::has_virtual_destructor_v<INodeMap> && !std::is_base_of_v<IBase, INodeMap>);
static_assert(!std::has_virtual_destructor_v<IDestroy> && !std::is_base_of_v<IBase, IDestroy>);
static_assert(!std::is_base_of_v<IBase, IDeviceInfo> && !std::is_base_of_v<IBase, IUserData>);
static_assert(!std::is_base_of_v<IBase, IPortWriteList> && !std::is_base_of_v<IBase, IPortStackedConstruct>);

template <class Class, class E>
bool HasText(E value, const std::string& text)
{
    gcstring byPointer;
    Class::ToString(byPointer, &value);
    E back = static_cast<E>(value == 0 ? 1 : 0);
    return Class::ToString(value) == text.c_str() && byPointer == text.c_str() &&
           Class::FromString(text.c_str(), &back) && back == value && !Class::FromString(text.c_str(), nullptr);
}

TEST(EnumClasses, EachEnumeratorHasTheTextOfDescriptions)
{
    EXPECT_TRUE((HasText<EAccessModeClass>(NI, "NI") && HasText<EAccessModeClass>(NA, "NA")));
    EXPECT_TRUE((HasText<EAccessModeClass>(WO, "WO") && HasText<EAccessModeClass>(RO, "RO")));
    EXPECT_TRUE((HasText<EAccessModeClass>(RW, "RW")));
    EXPECT_TRUE((HasText<EVisibilityClass>(Beginner, "Beginner") && HasText<EVisibilityClass>(Expert, "Expert")));
    EXPECT_TRUE((HasText<EVisibilityClass>(Guru, "Guru") && HasText<EVisibilityClass>(Invisible, "Invisible")));
    EXPECT_TRUE((HasText<ECachingModeClass>(NoCache, "NoCache")));
    EXPECT_TRUE((HasText<ECachingModeClass>(WriteThrough, "WriteThrough")));
    EXPECT_TRUE((HasText<ECachingModeClass>(WriteAround, "WriteAround")));
    EXPECT_TRUE((HasText<ERepresentationClass>(Linear, "Linear")));
    EXPECT_TRUE((HasText<ERepresentationClass>(Logarithmic, "Logarithmic")));
    EXPECT_TRUE((HasText<ERepresentationClass>(Boolean, "Boolean")));
    EXPECT_TRUE((HasText<ERepresentationClass>(PureNumber, "PureNumber")));
    EXPECT_TRUE((HasText<ERepresentationClass>(HexNumber, "HexNumber")));
    EXPECT_TRUE((HasText<ERepresentationClass>(IPV4Address, "IPV4Address")));
    EXPECT_TRUE((HasText<ERepresentationClass>(MACAddress, "MACAddress")));
    EXPECT_TRUE((HasText<EEndianessClass>(BigEndian, "BigEndian")));
    EXPECT_TRUE((HasText<EEndianessClass>(LittleEndian, "LittleEndian")));
    EXPECT_TRUE((HasText<ENameSpaceClass>(Custom, "Custom") && HasText<ENameSpaceClass>(Standard, "Standard")));
    EXPECT_TRUE((HasText<EYesNoClass>(No, "No") && HasText<EYesNoClass>(Yes, "Yes")));
    EXPECT_TRUE((HasText<EStandardNameSpaceClass>(None, "None") && HasText<EStandardNameSpaceClass>(GEV, "GEV")));
    EXPECT_TRUE((HasText<EStandardNameSpaceClass>(IIDC, "IIDC") && HasText<EStandardNameSpaceClass>(CL, "CL")));
    EXPECT_TRUE((HasText<EStandardNameSpaceClass>(USB, "USB")));
    EXPECT_TRUE((HasText<ESlopeClass>(Increasing, "Increasing") && HasText<ESlopeClass>(Decreasing, "Decreasing")));
    EXPECT_TRUE((HasText<ESlopeClass>(Varying, "Varying") && HasText<ESlopeClass>(Automatic, "Automatic")));
    EXPECT_TRUE((HasText<EDisplayNotationClass>(fnAutomatic, "Automatic")));
    EXPECT_TRUE((HasText<EDisplayNotationClass>(fnFixed, "Fixed")));
    EXPECT_TRUE((HasText<EDisplayNotationClass>(fnScientific, "Scientific")));
    EXPECT_TRUE((HasText<EInputDirectionClass>(idFrom, "From") && HasText<EInputDirectionClass>(idTo, "To")));
    EXPECT_TRUE((HasText<EInputDirectionClass>(idNone, "None")));
    EXPECT_TRUE((HasText<EGenApiSchemaVersionClass>(v1_0, "v1_0")));
    EXPECT_TRUE((HasText<EGenApiSchemaVersionClass>(v1_1, "v1_1")));
}

TEST(EnumClasses, UnknownTextsLeaveTheValueAlone)
{
    EAccessMode mode = RO;
    EXPECT_FALSE(EAccessModeClass::FromString("ro", &mode));
    EXPECT_FALSE(EAccessModeClass::FromString("", &mode));
    EXPECT_FALSE(EAccessModeClass::FromString(gcstring("RO\0x", 4), &mode));
    EXPECT_EQ(mode, RO);
}

TEST(EnumClasses, UndefinedNumbersGiveTheUndefinedText)
{
    EXPECT_STREQ(EAccessModeClass::ToString(static_cast<EAccessMode>(7)).c_str(), "_UndefinedAccessMode");
    EXPECT_STREQ(EAccessModeClass::ToString(_UndefinedAccesMode).c_str(), "_UndefinedAccessMode");
    EXPECT_STREQ(EAccessModeClass::ToString(_CycleDetectAccesMode).c_str(), "_CycleDetectAccessMode");
    EXPECT_STREQ(EVisibilityClass::ToString(static_cast<EVisibility>(50)).c_str(), "_UndefinedVisibility");
    EXPECT_STREQ(ECachingModeClass::ToString(_UndefinedCachingMode).c_str(), "_UndefinedCachingMode");
    EXPECT_STREQ(ERepresentationClass::ToString(_UndefinedRepresentation).c_str(), "_UndefinedRepresentation");
    EXPECT_STREQ(EEndianessClass::ToString(_UndefinedEndian).c_str(), "_UndefinedEndian");
    EXPECT_STREQ(ENameSpaceClass::ToString(_UndefinedNameSpace).c_str(), "_UndefinedNameSpace");
    EXPECT_STREQ(EYesNoClass::ToString(_UndefinedYesNo).c_str(), "_UndefinedYesNo");
    EXPECT_STREQ(ESlopeClass::ToString(_UndefinedESlope).c_str(), "_UndefinedESlope");
}

TEST(Version, LiteralsSayTheNumbers)
{
    EXPECT_STREQ(
        GENICAM_VERSION_MAJOR_STR "." GENICAM_VERSION_MINOR_STR "." GENICAM_VERSION_SUBMINOR_STR
                                  "." GENICAM_VERSION_BUILD_STR,
        "3.4.0.0");
    EXPECT_STREQ(
        GENAPI_VERSION_MAJOR_STR "." GENAPI_VERSION_MINOR_STR "." GENAPI_VERSION_SUBMINOR_STR
                                 "." GENAPI_VERSION_BUILD_STR,
        "3.4.0.0");
}

TEST(FreeFunctions, AccessModesAnswerTheFourQuestions)
{
    const EAccessMode modes[] = {NI, NA, WO, RO, RW};
    const bool answers[][4] = {// implemented, available, writable, readable
                               {false, false, false, false},
                               {true, false, false, false},
                               {true, true, true, false},
                               {true, true, false, true},
                               {true, true, true, true}};
    for (size_t i = 0; i < 5; ++i)
    {
        struct Base : IBase
        {
            explicit Base(EAccessMode its) : mode(its) {}
            EAccessMode GetAccessMode() const override { return mode; }
            EAccessMode mode;
        } base(modes[i]);
        const CBasePtr pointer(&base);
        EXPECT_EQ(IsImplemented(modes[i]), answers[i][0]) << i;
        EXPECT_EQ(IsAvailable(modes[i]), answers[i][1]) << i;
        EXPECT_EQ(IsWritable(modes[i]), answers[i][2]) << i;
        EXPECT_EQ(IsReadable(modes[i]), answers[i][3]) << i;
        EXPECT_EQ(IsImplemented(&base) && IsImplemented(base) && IsImplemented(pointer), answers[i][0]) << i;
        EXPECT_EQ(IsAvailable(&base) && IsAvailable(base) && IsAvailable(pointer), answers[i][1]) << i;
        EXPECT_EQ(IsWritable(&base) && IsWritable(base) && IsWritable(pointer), answers[i][2]) << i;
        EXPECT_EQ(IsReadable(&base) && IsReadable(base) && IsReadable(pointer), answers[i][3]) << i;
    }
    const IBase* const nothing = nullptr;
    EXPECT_FALSE(IsImplemented(nothing) || IsAvailable(nothing) || IsWritable(nothing) || IsReadable(nothing));
    const CIntegerPtr empty;
    EXPECT_FALSE(IsImplemented(empty) || IsAvailable(empty) || IsWritable(empty) || IsReadable(empty));
}

TEST(FreeFunctions, AccessModesCombineToWhatBothAllow)
{
    const EAccessMode modes[] = {NI, NA, WO, RO, RW};
    const EAccessMode expected[5][5] = {
        {NI, NI, NI, NI, NI}, {NI, NA, NA, NA, NA}, {NI, NA, WO, NA, WO}, {NI, NA, NA, RO, RO}, {NI, NA, WO, RO, RW}};
    for (size_t i = 0; i < 5; ++i)
    {
        for (size_t j = 0; j < 5; ++j)
            EXPECT_EQ(Combine(modes[i], modes[j]), expected[i][j]) << i << ' ' << j;
    }
}

TEST(FreeFunctions, VisibilitiesAndCachingModesCombineToTheStricter)
{
    const EVisibility visibilities[] = {Beginner, Expert, Guru, Invisible};
    for (size_t i = 0; i < 4; ++i)
    {
        for (size_t j = 0; j < 4; ++j)
        {
            EXPECT_EQ(Combine(visibilities[i], visibilities[j]), visibilities[i > j ? i : j]);
            EXPECT_EQ(IsVisible(visibilities[i], visibilities[j]), i <= j);
        }
    }
    const ECachingMode modes[] = {NoCache, WriteThrough, WriteAround};
    const ECachingMode expected[3][3] = {
        {NoCache, NoCache, NoCache}, {NoCache, WriteThrough, WriteAround}, {NoCache, WriteAround, WriteAround}};
    for (size_t i = 0; i < 3; ++i)
    {
        for (size_t j = 0; j < 3; ++j)
            EXPECT_EQ(Combine(modes[i], modes[j]), expected[i][j]);
    }
    EXPECT_FALSE(IsCacheable(NoCache));
    EXPECT_TRUE(IsCacheable(WriteThrough) && IsCacheable(WriteAround));
}

TEST(Autovectors, CopiesShareTheirElements)
{
    int64_autovector_t numbers(2);
    const int64_autovector_t copy(numbers);
    numbers[1] = 7;
    EXPECT_EQ(copy[1], 7);
    EXPECT_EQ(copy[0], 0);
    EXPECT_EQ(copy.size(), 2u);
    int64_autovector_t other;
    EXPECT_EQ(other.size(), 0u);
    other = numbers;
    other[0] = 3;
    EXPECT_EQ(numbers[0], 3);
    double_autovector_t reals(1);
    const double_autovector_t same(reals);
    reals[0] = 0.5;
    EXPECT_EQ(same[0], 0.5);
}

static_assert(
    !std::is_convertible_v<size_t, int64_autovector_t> && !std::is_convertible_v<size_t, double_autovector_t>);
static_assert(std::has_virtual_destructor_v<int64_autovector_t> && std::has_virtual_destructor_v<double_autovector_t>);
static_assert(is_same<decltype(std::declval<int64_autovector_t&>()[size_t()]), int64_t&>);
static_assert(is_same<decltype(std::declval<const int64_autovector_t&>()[size_t()]), const int64_t&>);
static_assert(is_same<decltype(std::declval<double_autovector_t&>()[size_t()]), double&>);
static_assert(is_same<decltype(std::declval<const double_autovector_t&>()[size_t()]), const double&>);

} // namespace

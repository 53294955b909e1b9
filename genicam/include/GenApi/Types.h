// Types.h: the enumerations of GenApi and the names of its lists and handles.
#pragma once

#include <Base/GCStringVector.h>
#include <Base/GCTypes.h>
#include <GenApi/Container.h>

typedef int64_t GenICam_streamsize;

namespace GENAPI_NAMESPACE
{

typedef enum _EAccessMode
{
    NI,
    NA,
    WO,
    RO,
    RW,
    _UndefinedAccesMode, // the spelling of GenApi
    _CycleDetectAccesMode
} EAccessMode;

typedef enum _EVisibility
{
    Beginner,
    Expert,
    Guru,
    Invisible,
    _UndefinedVisibility = 99
} EVisibility;

typedef enum _ECachingMode
{
    NoCache,
    WriteThrough,
    WriteAround,
    _UndefinedCachingMode
} ECachingMode;

typedef enum _ERepresentation
{
    Linear,
    Logarithmic,
    Boolean,
    PureNumber,
    HexNumber,
    IPV4Address,
    MACAddress,
    _UndefinedRepresentation
} ERepresentation;
#ifndef NO_UNDEFINEDED_REPRESENTATION
#define _UndefindedRepresentation _UndefinedRepresentation
#endif

typedef enum _ESign
{
    Signed,
    Unsigned,
    _UndefinedSign
} ESign;

typedef enum _EEndianess
{
    BigEndian,
    LittleEndian,
    _UndefinedEndian
} EEndianess;

typedef enum _ENameSpace
{
    Custom,
    Standard,
    _UndefinedNameSpace
} ENameSpace;

typedef enum _EStandardNameSpace
{
    None,
    GEV,
    IIDC,
    CL,
    USB,
    _UndefinedStandardNameSpace
} EStandardNameSpace;

typedef enum _EYesNo
{
    No,
    Yes,
    _UndefinedYesNo
} EYesNo;

typedef enum _ESlope
{
    Increasing,
    Decreasing,
    Varying,
    Automatic,
    _UndefinedESlope
} ESlope;

typedef enum _EXMLValidation
{
    xvDefault = 0,
    xvLoad = 1,
    xvCycles = 2,
    xvSFNC = 4,
    xvAll = 0xffffffff,
    _UndefinedEXMLValidation = 0x8000000
} EXMLValidation;

typedef enum _EDisplayNotation
{
    fnAutomatic,
    fnFixed,
    fnScientific,
    _UndefinedEDisplayNotation
} EDisplayNotation;

typedef enum _EInterfaceType
{
    intfIValue,
    intfIBase,
    intfIInteger,
    intfIBoolean,
    intfICommand,
    intfIFloat,
    intfIString,
    intfIRegister,
    intfICategory,
    intfIEnumeration,
    intfIEnumEntry,
    intfIPort
} EInterfaceType;

typedef enum _ELinkType
{
    ctParentNodes,
    ctReadingChildren,
    ctWritingChildren,
    ctInvalidatingChildren,
    ctDependingNodes,
    ctTerminalNodes,
    ctValueChangingChildren
} ELinkType;

typedef enum _EIncMode
{
    noIncrement,
    fixedIncrement,
    listIncrement
} EIncMode;

typedef enum _EInputDirection
{
    idFrom,
    idTo,
    idNone
} EInputDirection;

typedef enum _EGenApiSchemaVersion
{
    v1_0 = 1,
    v1_1 = 2,
    _Undefined = -1
} EGenApiSchemaVersion;

typedef enum _ECallbackSuppressMode
{
    csmOff,
    csmActive,
    csmOnce
} ECallbackSuppressMode;

typedef node_vector NodeList_t;
typedef value_vector FeatureList_t;
typedef GENICAM_NAMESPACE::gcstring_vector StringList_t;
typedef intptr_t CallbackHandleType;
typedef void* UserData_t;

} // namespace GENAPI_NAMESPACE

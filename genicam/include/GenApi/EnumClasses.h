// EnumClasses.h: converts the enumerations to and from the texts in descriptions.
#pragma once

#include <Base/GCString.h>
#include <GenApi/Types.h>

namespace GENAPI_NAMESPACE
{

// Returns false for an unknown text or a null pointer; an undefined number results in the text of the undefined
// enumerator.
#define GENAPI_DECLARE_ENUM_CLASS(E)                                                                                   \
    class GENAPI_DECL E##Class                                                                                         \
    {                                                                                                                  \
    public:                                                                                                            \
        static bool FromString(const GENICAM_NAMESPACE::gcstring& text, E* value);                                     \
        static void ToString(GENICAM_NAMESPACE::gcstring& text, E* value);                                             \
        static GENICAM_NAMESPACE::gcstring ToString(E value);                                                          \
    }

GENAPI_DECLARE_ENUM_CLASS(EAccessMode);
GENAPI_DECLARE_ENUM_CLASS(EVisibility);
GENAPI_DECLARE_ENUM_CLASS(ECachingMode);
GENAPI_DECLARE_ENUM_CLASS(ERepresentation);
GENAPI_DECLARE_ENUM_CLASS(EEndianess);
GENAPI_DECLARE_ENUM_CLASS(ENameSpace);
GENAPI_DECLARE_ENUM_CLASS(EYesNo);
GENAPI_DECLARE_ENUM_CLASS(EStandardNameSpace);
GENAPI_DECLARE_ENUM_CLASS(ESlope);
GENAPI_DECLARE_ENUM_CLASS(EDisplayNotation);
GENAPI_DECLARE_ENUM_CLASS(EInputDirection);
GENAPI_DECLARE_ENUM_CLASS(EGenApiSchemaVersion);

#undef GENAPI_DECLARE_ENUM_CLASS

} // namespace GENAPI_NAMESPACE

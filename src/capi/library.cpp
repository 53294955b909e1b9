#include "capi/arguments.h"
#include <koro/library.h>

#include <cstdint>
#include <string>

using namespace koro::internal;

namespace
{

// Available only in an initialised library, unlike the functions about its state.
KORO_ReturnCode GetVersionNumber(std::uint32_t number, const NamedArgument<std::uint32_t*>& output)
{
    return ExecuteAndMapExceptions([&] { return CopyScalarOut(number, output.value, output.name); });
}

} // namespace

KORO_ReturnCode KORO_Library_Initialize()
{
    return ExecuteAndMapExceptions(
        [] {
            InitializeLibrary();
            return success;
        },
        InitializationCheck::Skipped);
}

KORO_ReturnCode KORO_Library_Close()
{
    return ExecuteAndMapExceptions(
        [] {
            CloseLibrary();
            return success;
        },
        InitializationCheck::Skipped);
}

KORO_ReturnCode KORO_Library_IsInitialized(KORO_Bool8* isInitialized)
{
    return ExecuteAndMapExceptions(
        [&] { return CopyScalarOut<KORO_Bool8>(IsLibraryInitialized(), isInitialized, "isInitialized"); },
        InitializationCheck::Skipped);
}

KORO_ReturnCode KORO_Library_GetVersionMajor(uint32_t* libraryVersionMajor)
{
    return GetVersionNumber(KORO_VERSION_MAJOR, KORO_ARG(libraryVersionMajor));
}

KORO_ReturnCode KORO_Library_GetVersionMinor(uint32_t* libraryVersionMinor)
{
    return GetVersionNumber(KORO_VERSION_MINOR, KORO_ARG(libraryVersionMinor));
}

KORO_ReturnCode KORO_Library_GetVersionSubminor(uint32_t* libraryVersionSubminor)
{
    return GetVersionNumber(KORO_VERSION_PATCH, KORO_ARG(libraryVersionSubminor));
}

KORO_ReturnCode KORO_Library_GetLastError(
    KORO_ReturnCode* lastErrorCode, char* lastErrorDescription, size_t* lastErrorDescriptionSize)
{
    return ExecuteAndMapExceptions(
        [&] {
            if (!lastErrorCode) return InvalidPointer(KORO_ARG(lastErrorCode));
            *lastErrorCode = LastErrorCode();
            const std::string text = LastErrorText(); // a copy: a failure below replaces the record
            return CopyStringOut(text, lastErrorDescription, lastErrorDescriptionSize, "lastErrorDescription");
        },
        InitializationCheck::Skipped);
}

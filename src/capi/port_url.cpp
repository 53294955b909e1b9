#include "gentl/port_url.h"

#include "capi/arguments.h"
#include "gentl/port.h"
#include <koro/port_url.h>

using namespace koro::internal;

KORO_ReturnCode KORO_PortURL_GetInfo(
    KORO_PortURLHandle portUrlHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(portUrlHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_PortURL_GetURL(KORO_PortURLHandle portUrlHandle, char* url, size_t* urlSize)
{
    return GetString(KORO_ARG(portUrlHandle), KORO_ARG(url), urlSize, &PortURL::URL);
}

KORO_ReturnCode KORO_PortURL_GetScheme(KORO_PortURLHandle portUrlHandle, int32_t* scheme)
{
    return GetScalar(KORO_ARG(portUrlHandle), KORO_ARG(scheme), &PortURL::Scheme);
}

KORO_ReturnCode KORO_PortURL_GetFileName(KORO_PortURLHandle portUrlHandle, char* fileName, size_t* fileNameSize)
{
    return GetString(KORO_ARG(portUrlHandle), KORO_ARG(fileName), fileNameSize, &PortURL::FileName);
}

KORO_ReturnCode KORO_PortURL_GetFileRegisterAddress(KORO_PortURLHandle portUrlHandle, uint64_t* fileRegisterAddress)
{
    return GetScalar(KORO_ARG(portUrlHandle), KORO_ARG(fileRegisterAddress), &PortURL::FileRegisterAddress);
}

KORO_ReturnCode KORO_PortURL_GetFileSize(KORO_PortURLHandle portUrlHandle, uint64_t* fileSize)
{
    return GetScalar(KORO_ARG(portUrlHandle), KORO_ARG(fileSize), &PortURL::FileSize);
}

KORO_ReturnCode KORO_PortURL_GetFileSHA1Hash(
    KORO_PortURLHandle portUrlHandle, uint8_t* fileSha1Hash, size_t* fileSha1HashSize)
{
    return GetBytes(KORO_ARG(portUrlHandle), KORO_ARG(fileSha1Hash), fileSha1HashSize, &PortURL::FileSHA1Hash);
}

KORO_ReturnCode KORO_PortURL_GetFileVersionMajor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionMajor)
{
    return GetScalar(KORO_ARG(portUrlHandle), KORO_ARG(fileVersionMajor), &PortURL::FileVersionMajor);
}

KORO_ReturnCode KORO_PortURL_GetFileVersionMinor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionMinor)
{
    return GetScalar(KORO_ARG(portUrlHandle), KORO_ARG(fileVersionMinor), &PortURL::FileVersionMinor);
}

KORO_ReturnCode KORO_PortURL_GetFileVersionSubminor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionSubminor)
{
    return GetScalar(KORO_ARG(portUrlHandle), KORO_ARG(fileVersionSubminor), &PortURL::FileVersionSubminor);
}

KORO_ReturnCode KORO_PortURL_GetFileSchemaVersionMajor(
    KORO_PortURLHandle portUrlHandle, int32_t* fileSchemaVersionMajor)
{
    return GetScalar(KORO_ARG(portUrlHandle), KORO_ARG(fileSchemaVersionMajor), &PortURL::FileSchemaVersionMajor);
}

KORO_ReturnCode KORO_PortURL_GetFileSchemaVersionMinor(
    KORO_PortURLHandle portUrlHandle, int32_t* fileSchemaVersionMinor)
{
    return GetScalar(KORO_ARG(portUrlHandle), KORO_ARG(fileSchemaVersionMinor), &PortURL::FileSchemaVersionMinor);
}

KORO_ReturnCode KORO_PortURL_GetParentPort(KORO_PortURLHandle portUrlHandle, KORO_PortHandle* portHandle)
{
    return GetParent(KORO_ARG(portUrlHandle), KORO_ARG(portHandle), &PortURL::ParentPort);
}

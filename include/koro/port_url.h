/*
 * A URL of a port: the location of a description of the module's registers. The handle comes from KORO_Port_GetURL and
 * ends with the port. Each query calls the producer and fails with KORO_RETURN_CODE_ERROR if the information does not
 * apply to the URL; the error text contains the producer's code. Any thread may call these functions.
 */
#ifndef KORO_PORT_URL_H
#define KORO_PORT_URL_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Returns any information about the URL as raw bytes.
 * @param[in]  infoCommand    KORO_URL_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_PortURL_GetInfo(
    KORO_PortURLHandle portUrlHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Returns the URL. */
KORO_API KORO_ReturnCode KORO_PortURL_GetURL(KORO_PortURLHandle portUrlHandle, char* url, size_t* urlSize);

/**
 * Returns the scheme of the URL.
 * @param[out] scheme KORO_URL_SCHEME_...
 */
KORO_API KORO_ReturnCode KORO_PortURL_GetScheme(KORO_PortURLHandle portUrlHandle, int32_t* scheme);

/** Returns the name of the description file. */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileName(KORO_PortURLHandle portUrlHandle, char* fileName, size_t* fileNameSize);

/**
 * Returns the address of the file in the registers of the port.
 * @param[out] fileRegisterAddress address
 */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileRegisterAddress(KORO_PortURLHandle portUrlHandle, uint64_t* fileRegisterAddress);

/**
 * Returns the size of the file in the registers of the port.
 * @param[out] fileSize bytes
 */
KORO_API KORO_ReturnCode KORO_PortURL_GetFileSize(KORO_PortURLHandle portUrlHandle, uint64_t* fileSize);

/**
 * Returns the SHA-1 hash of the file as the producer reports it. The library does not check the file against it.
 * @param[out] fileSha1Hash, fileSha1HashSize 20 bytes
 */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileSHA1Hash(KORO_PortURLHandle portUrlHandle, uint8_t* fileSha1Hash, size_t* fileSha1HashSize);

/** Returns the major number of the file's version. */
KORO_API KORO_ReturnCode KORO_PortURL_GetFileVersionMajor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionMajor);

/** Returns the minor number of the file's version. */
KORO_API KORO_ReturnCode KORO_PortURL_GetFileVersionMinor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionMinor);

/** Returns the subminor number of the file's version. */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileVersionSubminor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionSubminor);

/** Returns the major number of the schema's version. */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileSchemaVersionMajor(KORO_PortURLHandle portUrlHandle, int32_t* fileSchemaVersionMajor);

/** Returns the minor number of the schema's version. */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileSchemaVersionMinor(KORO_PortURLHandle portUrlHandle, int32_t* fileSchemaVersionMinor);

/**
 * Returns the port of the URL.
 * @param[out] portHandle the same handle that KORO_Module_GetPort returned
 */
KORO_API KORO_ReturnCode KORO_PortURL_GetParentPort(KORO_PortURLHandle portUrlHandle, KORO_PortHandle* portHandle);

#ifdef __cplusplus
}
#endif

#endif

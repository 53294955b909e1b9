/*
 * A URL of a port: where a description of the module's registers lies. The handle comes from KORO_Port_GetURL and
 * ends with the port. Every query asks the producer anew, and fails with KORO_RETURN_CODE_ERROR where it does not
 * apply; the text tells the producer's code. Any thread.
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
 * Gives any information of the URL as raw bytes.
 * @param[in]  infoCommand    KORO_URL_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_PortURL_GetInfo(
    KORO_PortURLHandle portUrlHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Gives the URL itself. */
KORO_API KORO_ReturnCode KORO_PortURL_GetURL(KORO_PortURLHandle portUrlHandle, char* url, size_t* urlSize);

/**
 * Gives the kind of the URL.
 * @param[out] scheme KORO_URL_SCHEME_...
 */
KORO_API KORO_ReturnCode KORO_PortURL_GetScheme(KORO_PortURLHandle portUrlHandle, int32_t* scheme);

/** Gives the name of the description file. */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileName(KORO_PortURLHandle portUrlHandle, char* fileName, size_t* fileNameSize);

/**
 * Gives the place of the file in the registers of the port.
 * @param[out] fileRegisterAddress address
 */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileRegisterAddress(KORO_PortURLHandle portUrlHandle, uint64_t* fileRegisterAddress);

/**
 * Gives the size of the file in the registers of the port.
 * @param[out] fileSize bytes
 */
KORO_API KORO_ReturnCode KORO_PortURL_GetFileSize(KORO_PortURLHandle portUrlHandle, uint64_t* fileSize);

/**
 * Gives the SHA-1 hash of the file as the producer states it. The library does not compare it.
 * @param[out] fileSha1Hash, fileSha1HashSize 20 bytes
 */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileSHA1Hash(KORO_PortURLHandle portUrlHandle, uint8_t* fileSha1Hash, size_t* fileSha1HashSize);

/** Gives the first number of the file's version. */
KORO_API KORO_ReturnCode KORO_PortURL_GetFileVersionMajor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionMajor);

/** Gives the second number of the file's version. */
KORO_API KORO_ReturnCode KORO_PortURL_GetFileVersionMinor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionMinor);

/** Gives the third number of the file's version. */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileVersionSubminor(KORO_PortURLHandle portUrlHandle, int32_t* fileVersionSubminor);

/** Gives the first number of the schema's version. */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileSchemaVersionMajor(KORO_PortURLHandle portUrlHandle, int32_t* fileSchemaVersionMajor);

/** Gives the second number of the schema's version. */
KORO_API KORO_ReturnCode
KORO_PortURL_GetFileSchemaVersionMinor(KORO_PortURLHandle portUrlHandle, int32_t* fileSchemaVersionMinor);

/**
 * Gives the port of the URL.
 * @param[out] portHandle the handle from KORO_Module_GetPort: nothing new to destruct
 */
KORO_API KORO_ReturnCode KORO_PortURL_GetParentPort(KORO_PortURLHandle portUrlHandle, KORO_PortHandle* portHandle);

#ifdef __cplusplus
}
#endif

#endif

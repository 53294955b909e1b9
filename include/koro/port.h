/*
 * The port of a module: access to its registers. The handle comes from KORO_Module_GetPort and ends with the module.
 * Each query calls the producer. Any thread may call these functions; only the producer serialises transfers of several
 * threads.
 */
#ifndef KORO_PORT_H
#define KORO_PORT_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Returns any information about the port as raw bytes.
 * @param[in]  infoCommand    KORO_PORT_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Port_GetInfo(
    KORO_PortHandle portHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Returns the id of the port's module. */
KORO_API KORO_ReturnCode KORO_Port_GetID(KORO_PortHandle portHandle, char* id, size_t* idSize);

/** Returns the name of the port in the module's description. */
KORO_API KORO_ReturnCode KORO_Port_GetName(KORO_PortHandle portHandle, char* name, size_t* nameSize);

/** Returns the vendor of the module. */
KORO_API KORO_ReturnCode KORO_Port_GetVendorName(KORO_PortHandle portHandle, char* vendorName, size_t* vendorNameSize);

/** Returns the model name of the module. */
KORO_API KORO_ReturnCode KORO_Port_GetModelName(KORO_PortHandle portHandle, char* modelName, size_t* modelNameSize);

/** Returns the version of the port. */
KORO_API KORO_ReturnCode KORO_Port_GetVersion(KORO_PortHandle portHandle, char* version, size_t* versionSize);

/** Returns the transport layer type of the port, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode KORO_Port_GetTLType(KORO_PortHandle portHandle, char* tlType, size_t* tlTypeSize);

/** Returns the type of the module: "TLSystem", "TLInterface", "TLDevice", "TLDataStream", "TLBuffer" or "Device". */
KORO_API KORO_ReturnCode KORO_Port_GetModuleName(KORO_PortHandle portHandle, char* moduleName, size_t* moduleNameSize);

/**
 * Reports whether the byte order of the port's registers is known.
 * @param[out] dataEndianness 1 if it is known, for both little and big endian; 0 if the port reports neither
 */
KORO_API KORO_ReturnCode KORO_Port_GetDataEndianness(KORO_PortHandle portHandle, int32_t* dataEndianness);

/** Reports whether the port can be read. */
KORO_API KORO_ReturnCode KORO_Port_GetIsReadable(KORO_PortHandle portHandle, KORO_Bool8* isReadable);

/** Reports whether the port can be written. */
KORO_API KORO_ReturnCode KORO_Port_GetIsWritable(KORO_PortHandle portHandle, KORO_Bool8* isWritable);

/** Reports whether the port is available now. */
KORO_API KORO_ReturnCode KORO_Port_GetIsAvailable(KORO_PortHandle portHandle, KORO_Bool8* isAvailable);

/** Reports whether the module has a port. */
KORO_API KORO_ReturnCode KORO_Port_GetIsImplemented(KORO_PortHandle portHandle, KORO_Bool8* isImplemented);

/**
 * Reads consecutive bytes from the registers in one transfer.
 * @param[in] address         address of the first byte
 * @param[in] bytesToRead     receives the bytes; bytes that the producer does not write are not changed
 * @param[in] bytesToReadSize number of bytes; 0 also calls the producer
 * @return KORO_RETURN_CODE_INVALID_ADDRESS when there is no register at the address; KORO_RETURN_CODE_BAD_ACCESS when
 *         it cannot be read; KORO_RETURN_CODE_IO_ERROR when the connection failed
 */
KORO_API KORO_ReturnCode
KORO_Port_Read(KORO_PortHandle portHandle, uint64_t address, uint8_t* bytesToRead, size_t bytesToReadSize);

/**
 * Writes consecutive bytes to the registers in one transfer.
 * @param[in] address          address of the first byte
 * @param[in] bytesToWrite     the bytes
 * @param[in] bytesToWriteSize number of bytes; 0 also calls the producer
 * @return as for KORO_Port_Read; KORO_RETURN_CODE_OUT_OF_RANGE when the value is refused
 */
KORO_API KORO_ReturnCode
KORO_Port_Write(KORO_PortHandle portHandle, uint64_t address, const uint8_t* bytesToWrite, size_t bytesToWriteSize);

/** Returns the number of URLs of the port. The list is read from the producer once for each port. */
KORO_API KORO_ReturnCode KORO_Port_GetNumURLs(KORO_PortHandle portHandle, size_t* numUrls);

/**
 * Returns one URL of the port. Each call returns the same handle.
 * @param[in]  index         0 to the number of URLs minus 1
 * @param[out] portUrlHandle ends with the port; do not destruct it
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_Port_GetURL(KORO_PortHandle portHandle, size_t index, KORO_PortURLHandle* portUrlHandle);

#ifdef __cplusplus
}
#endif

#endif

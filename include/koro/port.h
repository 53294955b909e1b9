/*
 * The registers of a module. The handle comes from KORO_Module_GetPort and ends with the module. Every query asks
 * the producer anew. Any thread; transfers of several threads are ordered by the producer alone.
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
 * Gives any information of the port as raw bytes.
 * @param[in]  infoCommand    KORO_PORT_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Port_GetInfo(
    KORO_PortHandle portHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Gives the id of the port's module. */
KORO_API KORO_ReturnCode KORO_Port_GetID(KORO_PortHandle portHandle, char* id, size_t* idSize);

/** Gives the name of the port in the module's description. */
KORO_API KORO_ReturnCode KORO_Port_GetName(KORO_PortHandle portHandle, char* name, size_t* nameSize);

/** Gives the vendor of the module. */
KORO_API KORO_ReturnCode KORO_Port_GetVendorName(KORO_PortHandle portHandle, char* vendorName, size_t* vendorNameSize);

/** Gives the model name of the module. */
KORO_API KORO_ReturnCode KORO_Port_GetModelName(KORO_PortHandle portHandle, char* modelName, size_t* modelNameSize);

/** Gives the version of the port. */
KORO_API KORO_ReturnCode KORO_Port_GetVersion(KORO_PortHandle portHandle, char* version, size_t* versionSize);

/** Gives the transport layer type of the port, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode KORO_Port_GetTLType(KORO_PortHandle portHandle, char* tlType, size_t* tlTypeSize);

/** Gives the kind of the module: "TLSystem", "TLInterface", "TLDevice", "TLDataStream", "TLBuffer" or "Device". */
KORO_API KORO_ReturnCode KORO_Port_GetModuleName(KORO_PortHandle portHandle, char* moduleName, size_t* moduleNameSize);

/**
 * Tells whether the byte order of the port's registers is known.
 * @param[out] dataEndianness 1 for little and for big endian alike, 0 when the port says neither
 */
KORO_API KORO_ReturnCode KORO_Port_GetDataEndianness(KORO_PortHandle portHandle, int32_t* dataEndianness);

/** Tells whether the port can be read. */
KORO_API KORO_ReturnCode KORO_Port_GetIsReadable(KORO_PortHandle portHandle, KORO_Bool8* isReadable);

/** Tells whether the port can be written. */
KORO_API KORO_ReturnCode KORO_Port_GetIsWritable(KORO_PortHandle portHandle, KORO_Bool8* isWritable);

/** Tells whether the port is available at this time. */
KORO_API KORO_ReturnCode KORO_Port_GetIsAvailable(KORO_PortHandle portHandle, KORO_Bool8* isAvailable);

/** Tells whether the module has a port. */
KORO_API KORO_ReturnCode KORO_Port_GetIsImplemented(KORO_PortHandle portHandle, KORO_Bool8* isImplemented);

/**
 * Reads from the registers, in one transfer.
 * @param[in] address         first register
 * @param[in] bytesToRead     receives the bytes; whatever the producer does not write stays as it was
 * @param[in] bytesToReadSize number of bytes; 0 still asks the producer
 * @return KORO_RETURN_CODE_INVALID_ADDRESS where no register is; KORO_RETURN_CODE_BAD_ACCESS when it cannot be
 *         read; KORO_RETURN_CODE_IO_ERROR when the connection failed
 */
KORO_API KORO_ReturnCode
KORO_Port_Read(KORO_PortHandle portHandle, uint64_t address, uint8_t* bytesToRead, size_t bytesToReadSize);

/**
 * Writes to the registers, in one transfer.
 * @param[in] address          first register
 * @param[in] bytesToWrite     the bytes
 * @param[in] bytesToWriteSize number of bytes; 0 still asks the producer
 * @return as for KORO_Port_Read; KORO_RETURN_CODE_OUT_OF_RANGE when the value is refused
 */
KORO_API KORO_ReturnCode
KORO_Port_Write(KORO_PortHandle portHandle, uint64_t address, const uint8_t* bytesToWrite, size_t bytesToWriteSize);

/** Gives the number of URLs of the port. Read from the producer once in the life of the port. */
KORO_API KORO_ReturnCode KORO_Port_GetNumURLs(KORO_PortHandle portHandle, size_t* numUrls);

/**
 * Gives one URL of the port. The same handle each time.
 * @param[in]  index         0 to the number of URLs less 1
 * @param[out] portUrlHandle ends with the port; there is nothing to destruct
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_Port_GetURL(KORO_PortHandle portHandle, size_t index, KORO_PortURLHandle* portUrlHandle);

#ifdef __cplusplus
}
#endif

#endif

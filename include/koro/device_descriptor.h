/*
 * A device that an interface lists, whether opened or not. Its information comes through the interface.
 *
 * The handle comes from KORO_Interface_GetDevice or a found callback. It ends when an update loses the device, or
 * with the interface. Every query but the key asks the producer anew. Any thread.
 *
 * The strings of this family, but for the key, are written by the producer straight into the caller's buffer. Their
 * sizes follow GenTL's rules: a null buffer asks for the size, terminating zero counted; the producer tests the
 * capacity. A buffer that is too small is therefore the producer's failure, KORO_RETURN_CODE_ERROR, and not
 * KORO_RETURN_CODE_BUFFER_TOO_SMALL.
 */
#ifndef KORO_DEVICE_DESCRIPTOR_H
#define KORO_DEVICE_DESCRIPTOR_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Gives the descriptor as its base kind. The same handle each time.
 * @param[out] moduleDescriptorHandle ends with the interface; it outlasts the loss of the device
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_ToModuleDescriptor(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle);

/** Gives the key: the interface's key, "|", the id. No producer call. */
KORO_API KORO_ReturnCode
KORO_DeviceDescriptor_GetKey(KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* key, size_t* keySize);

/**
 * Gives any information of the device as raw bytes.
 * @param[in]  infoCommand    KORO_DEVICE_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetInfo(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/** Gives the name to show to a person. */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetDisplayName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* displayName, size_t* displayNameSize);

/** Gives the vendor of the device. */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetVendorName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* vendorName, size_t* vendorNameSize);

/** Gives the model name of the device. */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetModelName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* modelName, size_t* modelNameSize);

/** Gives the version of the device. */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetVersion(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* version, size_t* versionSize);

/** Gives the transport layer type of the device, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode
KORO_DeviceDescriptor_GetTLType(KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* tlType, size_t* tlTypeSize);

/**
 * Gives the name that its user gave the device.
 * @return KORO_RETURN_CODE_ERROR when the producer says that there is none; the text tells its code
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetUserDefinedName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* userDefinedName, size_t* userDefinedNameSize);

/**
 * Gives the serial number.
 * @return KORO_RETURN_CODE_ERROR when the producer says that there is none; the text tells its code
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetSerialNumber(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* serialNumber, size_t* serialNumberSize);

/**
 * Tells whether and by whom the device is open.
 * @param[out] accessStatus KORO_DEVICE_ACCESS_STATUS_...
 */
KORO_API KORO_ReturnCode
KORO_DeviceDescriptor_GetAccessStatus(KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t* accessStatus);

/**
 * Gives the frequency of the device's time stamp counter.
 * @param[out] timestampTickFrequency ticks per second
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetTimestampTickFrequency(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t* timestampTickFrequency);

/**
 * Tells whether the device can be opened with an access type.
 * @param[in]  accessType            KORO_DEVICE_ACCESS_READONLY, ..._CONTROL or ..._EXCLUSIVE; for any other number
 *                                   the answer is 0, without a query
 * @param[out] isAccessTypeAvailable 1 if it can be opened so
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetIsOpenable(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint32_t accessType, KORO_Bool8* isAccessTypeAvailable);

/**
 * Answers as KORO_DeviceDescriptor_GetIsOpenable does for KORO_DEVICE_ACCESS_READONLY, so a device that can only be
 * read counts as openable. For a strict answer ask with KORO_DEVICE_ACCESS_EXCLUSIVE there.
 * @param[out] isAccessTypeAvailable 1 if it can be opened for reading
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetIsOpenableExclusive(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_Bool8* isAccessTypeAvailable);

/**
 * Gives the interface of the descriptor.
 * @param[out] interfaceHandle the handle from the opening: nothing new to destruct
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetParentInterface(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_InterfaceHandle* interfaceHandle);

/**
 * Opens the device and fetches its remote device.
 * @param[in]  accessType   KORO_DEVICE_ACCESS_READONLY, ..._CONTROL or ..._EXCLUSIVE; passed to the producer
 *                          unchanged
 * @param[out] deviceHandle a new handle; end it with KORO_Device_Destruct
 * @return KORO_RETURN_CODE_BAD_ACCESS when the device is open elsewhere or the access is denied
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_OpenDevice(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint32_t accessType, KORO_DeviceHandle* deviceHandle);

#ifdef __cplusplus
}
#endif

#endif

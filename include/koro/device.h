/*
 * An opened device: the transport layer's side of a camera. It leads to the data streams and to the remote device,
 * which has the features of the camera itself.
 *
 * The handle ends with KORO_Device_Destruct, or with its interface. It stays valid when the device is lost; calls then
 * fail with the producer's error. Each query except key and id calls the producer. Any thread may call these functions.
 */
#ifndef KORO_DEVICE_H
#define KORO_DEVICE_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Ends the handle, its RemoteDevice, Module and EventSupportingModule handles, and all handles below it. The device is
 * closed when no call uses it any more. Waits that are running on it and on its streams return
 * KORO_RETURN_CODE_ABORTED. If another thread is inside a call below the device, streams that no call uses are closed
 * first, and this may wait as KORO_DataStream_Destruct does. The function waits for nothing else.
 *
 * While a call is running on the device itself, which includes the library's own work after a reconnection, its streams
 * stay open too, and the producer may write into queued buffers. Destruct the streams first, or keep the memory.
 */
KORO_API KORO_ReturnCode KORO_Device_Destruct(KORO_DeviceHandle deviceHandle);

/** Returns the key: the interface's key, "|" and the id. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_Device_GetKey(KORO_DeviceHandle deviceHandle, char* key, size_t* keySize);

/** Returns the device's id. */
KORO_API KORO_ReturnCode KORO_Device_GetID(KORO_DeviceHandle deviceHandle, char* id, size_t* idSize);

/**
 * Returns any information about the device as raw bytes.
 * @param[in]  infoCommand    KORO_DEVICE_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Device_GetInfo(
    KORO_DeviceHandle deviceHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Returns the display name, a text for people. */
KORO_API KORO_ReturnCode
KORO_Device_GetDisplayName(KORO_DeviceHandle deviceHandle, char* displayName, size_t* displayNameSize);

/** Returns the vendor of the device. */
KORO_API KORO_ReturnCode
KORO_Device_GetVendorName(KORO_DeviceHandle deviceHandle, char* vendorName, size_t* vendorNameSize);

/** Returns the model name of the device. */
KORO_API KORO_ReturnCode
KORO_Device_GetModelName(KORO_DeviceHandle deviceHandle, char* modelName, size_t* modelNameSize);

/** Returns the version of the device. */
KORO_API KORO_ReturnCode KORO_Device_GetVersion(KORO_DeviceHandle deviceHandle, char* version, size_t* versionSize);

/** Returns the transport layer type of the device, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode KORO_Device_GetTLType(KORO_DeviceHandle deviceHandle, char* tlType, size_t* tlTypeSize);

/**
 * Returns the user-defined name of the device.
 * @return KORO_RETURN_CODE_ERROR when the producer reports that there is none; the error text contains the producer's
 *         code
 */
KORO_API KORO_ReturnCode
KORO_Device_GetUserDefinedName(KORO_DeviceHandle deviceHandle, char* userDefinedName, size_t* userDefinedNameSize);

/**
 * Returns the serial number.
 * @return KORO_RETURN_CODE_ERROR when the producer reports that there is none; the error text contains the producer's
 *         code
 */
KORO_API KORO_ReturnCode
KORO_Device_GetSerialNumber(KORO_DeviceHandle deviceHandle, char* serialNumber, size_t* serialNumberSize);

/**
 * Reports how the device is opened.
 * @param[out] accessStatus KORO_DEVICE_ACCESS_STATUS_...
 */
KORO_API KORO_ReturnCode KORO_Device_GetAccessStatus(KORO_DeviceHandle deviceHandle, int32_t* accessStatus);

/**
 * Returns the frequency of the device's timestamp counter.
 * @param[out] timestampTickFrequency ticks per second
 */
KORO_API KORO_ReturnCode
KORO_Device_GetTimestampTickFrequency(KORO_DeviceHandle deviceHandle, uint64_t* timestampTickFrequency);

/** Returns the number of data streams. The list is read from the producer once for each opened device. */
KORO_API KORO_ReturnCode KORO_Device_GetNumDataStreams(KORO_DeviceHandle deviceHandle, size_t* numDataStreams);

/**
 * Returns one data stream, not yet opened. Each call returns the same handle.
 * For an invalid device handle the error text is "interfaceHandle is invalid!", with this name of the parameter.
 * @param[in]  index                      0 to the number of data streams minus 1
 * @param[out] dataStreamDescriptorHandle ends with the device; do not destruct it
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_Device_GetDataStream(
    KORO_DeviceHandle deviceHandle, size_t index, KORO_DataStreamDescriptorHandle* dataStreamDescriptorHandle);

/**
 * Returns the remote device: the camera that this device represents. Each call returns the same handle.
 * @param[out] remoteDeviceHandle ends with the device; do not destruct it
 */
KORO_API KORO_ReturnCode
KORO_Device_GetRemoteDevice(KORO_DeviceHandle deviceHandle, KORO_RemoteDeviceHandle* remoteDeviceHandle);

/**
 * Returns the interface of the device.
 * @param[out] interfaceHandle the existing handle from its opening; do not destruct it separately
 */
KORO_API KORO_ReturnCode
KORO_Device_GetParentInterface(KORO_DeviceHandle deviceHandle, KORO_InterfaceHandle* interfaceHandle);

/**
 * Returns the device as a Module, which has a port and features. Each call returns the same handle.
 * @param[out] moduleHandle ends with the device's handle
 */
KORO_API KORO_ReturnCode KORO_Device_ToModule(KORO_DeviceHandle deviceHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Returns the device as an EventSupportingModule, which registers events. Each call returns the same handle.
 * @param[out] eventSupportingModuleHandle ends with the device's handle
 */
KORO_API KORO_ReturnCode KORO_Device_ToEventSupportingModule(
    KORO_DeviceHandle deviceHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif

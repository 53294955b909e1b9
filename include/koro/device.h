/*
 * An opened device, seen from this side of the line: the transport layer's view of a camera, its streams, and the
 * way to the camera's own features, the remote device.
 *
 * The handle ends with KORO_Device_Destruct, or with its interface. It stays valid when the device is lost; its
 * calls then fail at the producer. Every query but key and id asks the producer anew. Any thread.
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
 * Ends the handle, with its RemoteDevice, Module and EventSupportingModule handles, and all handles below it. The
 * device is closed when its last use ends. Waits on it and on its streams that are inside return
 * KORO_RETURN_CODE_ABORTED. Where another call is inside below it, its idle streams end first, which may wait as
 * KORO_DataStream_Destruct does. Nothing else is waited for.
 */
KORO_API KORO_ReturnCode KORO_Device_Destruct(KORO_DeviceHandle deviceHandle);

/** Gives the key: the interface's key, "|", the id. No producer call. */
KORO_API KORO_ReturnCode KORO_Device_GetKey(KORO_DeviceHandle deviceHandle, char* key, size_t* keySize);

/** Gives the device's id. */
KORO_API KORO_ReturnCode KORO_Device_GetID(KORO_DeviceHandle deviceHandle, char* id, size_t* idSize);

/**
 * Gives any information of the device as raw bytes.
 * @param[in]  infoCommand    KORO_DEVICE_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Device_GetInfo(
    KORO_DeviceHandle deviceHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Gives the name to show to a person. */
KORO_API KORO_ReturnCode
KORO_Device_GetDisplayName(KORO_DeviceHandle deviceHandle, char* displayName, size_t* displayNameSize);

/** Gives the vendor of the device. */
KORO_API KORO_ReturnCode
KORO_Device_GetVendorName(KORO_DeviceHandle deviceHandle, char* vendorName, size_t* vendorNameSize);

/** Gives the model name of the device. */
KORO_API KORO_ReturnCode
KORO_Device_GetModelName(KORO_DeviceHandle deviceHandle, char* modelName, size_t* modelNameSize);

/** Gives the version of the device. */
KORO_API KORO_ReturnCode KORO_Device_GetVersion(KORO_DeviceHandle deviceHandle, char* version, size_t* versionSize);

/** Gives the transport layer type of the device, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode KORO_Device_GetTLType(KORO_DeviceHandle deviceHandle, char* tlType, size_t* tlTypeSize);

/**
 * Gives the name that its user gave the device.
 * @return KORO_RETURN_CODE_ERROR when the producer says that there is none; the text tells its code
 */
KORO_API KORO_ReturnCode
KORO_Device_GetUserDefinedName(KORO_DeviceHandle deviceHandle, char* userDefinedName, size_t* userDefinedNameSize);

/**
 * Gives the serial number.
 * @return KORO_RETURN_CODE_ERROR when the producer says that there is none; the text tells its code
 */
KORO_API KORO_ReturnCode
KORO_Device_GetSerialNumber(KORO_DeviceHandle deviceHandle, char* serialNumber, size_t* serialNumberSize);

/**
 * Tells how the device is open.
 * @param[out] accessStatus KORO_DEVICE_ACCESS_STATUS_...
 */
KORO_API KORO_ReturnCode KORO_Device_GetAccessStatus(KORO_DeviceHandle deviceHandle, int32_t* accessStatus);

/**
 * Gives the frequency of the device's time stamp counter.
 * @param[out] timestampTickFrequency ticks per second
 */
KORO_API KORO_ReturnCode
KORO_Device_GetTimestampTickFrequency(KORO_DeviceHandle deviceHandle, uint64_t* timestampTickFrequency);

/** Gives the number of data streams. Read from the producer once in the life of the device. */
KORO_API KORO_ReturnCode KORO_Device_GetNumDataStreams(KORO_DeviceHandle deviceHandle, size_t* numDataStreams);

/**
 * Gives one data stream, not yet opened. The same handle each time.
 * A dead device handle is reported as "interfaceHandle is invalid!".
 * @param[in]  index                      0 to the number of data streams less 1
 * @param[out] dataStreamDescriptorHandle ends with the device; there is nothing to destruct
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_Device_GetDataStream(
    KORO_DeviceHandle deviceHandle, size_t index, KORO_DataStreamDescriptorHandle* dataStreamDescriptorHandle);

/**
 * Gives the camera behind the device. The same handle each time.
 * @param[out] remoteDeviceHandle ends with the device; there is nothing to destruct
 */
KORO_API KORO_ReturnCode
KORO_Device_GetRemoteDevice(KORO_DeviceHandle deviceHandle, KORO_RemoteDeviceHandle* remoteDeviceHandle);

/**
 * Gives the interface of the device.
 * @param[out] interfaceHandle the handle from the opening: nothing new to destruct
 */
KORO_API KORO_ReturnCode
KORO_Device_GetParentInterface(KORO_DeviceHandle deviceHandle, KORO_InterfaceHandle* interfaceHandle);

/**
 * Gives the device as a module, for its port. The same handle each time.
 * @param[out] moduleHandle ends with the device's handle
 */
KORO_API KORO_ReturnCode KORO_Device_ToModule(KORO_DeviceHandle deviceHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Gives the device as a module with events. The same handle each time.
 * @param[out] eventSupportingModuleHandle ends with the device's handle
 */
KORO_API KORO_ReturnCode KORO_Device_ToEventSupportingModule(
    KORO_DeviceHandle deviceHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif

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
 * Opens the device and fetches its remote device and the descriptions of both, which may take long. Where these have
 * the nodes for it, it finds out how long a command to a GigE Vision camera may be: it writes the camera's register
 * GevGVCPCMDLengthTest with growing lengths and sets GevGVCPCMDLength of the transport layer to what passed. A length
 * that does not pass is no failure. A transport layer that cannot be set back to what passed is one, and so is a device
 * without a remote device: it is closed again.
 * @param[in]  accessType   KORO_DEVICE_ACCESS_READONLY, ..._CONTROL or ..._EXCLUSIVE; passed to the producer
 *                          unchanged
 * @param[out] deviceHandle a new handle; end it with KORO_Device_Destruct
 * @return KORO_RETURN_CODE_BAD_ACCESS when the device is open elsewhere or the access is denied
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_OpenDevice(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint32_t accessType, KORO_DeviceHandle* deviceHandle);

/*
 * Monitoring: the library asks for chosen information, the roles, at an interval and reports what changed. A role is an
 * information command. Monitored from the start are KORO_DEVICE_INFO_ACCESS_STATUS, ..._USER_DEFINED_NAME and
 * ..._TIMESTAMP_FREQUENCY. Nothing is asked, and no thread runs, before a callback is registered.
 */

/**
 * Adds a role. One that is monitored already keeps its last value; a new one is reported as changed as soon as it has a
 * value.
 * Waits while the roles are read, so as long as the producer takes to answer.
 * @param[in] role KORO_DEVICE_INFO_... or a number of the producer's own; one that the producer does not answer is
 *                 never reported
 */
KORO_API KORO_ReturnCode
KORO_DeviceDescriptor_AddInformationRoleToMonitoring(KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role);

/**
 * Takes a role out, with its last value. One that is not monitored is ignored.
 * Waits while the roles are read.
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_RemoveInformationRoleFromMonitoring(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role);

/**
 * Tells whether a role is among those that are read. Waits while they are.
 * @param[out] isInformationRoleMonitored 1 if it is
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_IsInformationRoleMonitored(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role, KORO_Bool8* isInformationRoleMonitored);

/**
 * Gives the pause between two readings.
 * @param[out] monitoringUpdateInterval_ms milliseconds; 1000 unless set
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetMonitoringUpdateInterval(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t* monitoringUpdateInterval_ms);

/**
 * Sets the pause between two readings. It counts at once, for the present pause too.
 * @param[in] monitoringUpdateInterval_ms milliseconds; 0 reads without a pause and keeps a processor busy
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_SetMonitoringUpdateInterval(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t monitoringUpdateInterval_ms);

/**
 * Calls the application when monitored information has changed, on a thread of this descriptor that the first
 * registration starts and the last unregistration ends. The first report after it holds all roles that have a value. A
 * role that cannot be read is not reported, so this does not tell that a device has gone.
 * The callback must not throw, must not register or unregister callbacks of this descriptor, and cannot end the
 * interface, what is above it, or the library.
 * A registration keeps the descriptor monitored, also when its device is lost and its handle has ended, until the
 * interface is ended.
 * @param[in]  callback        called as callback(roles, numRoles, callbackContext)
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends there or with the library
 * @return KORO_RETURN_CODE_ERROR when no thread could be started, or inside a callback of this descriptor
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_RegisterInformationChangedCallback(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_DeviceDescriptorInformationChangedCallback callback,
    void* callbackContext, KORO_DeviceDescriptorInformationChangedCallbackHandle* callbackHandle);

/**
 * Ends the calls of a callback. Waits for a call that is under way on the thread; when it was the last callback, waits
 * for the thread's end, which takes at most 50 ms and what a reading takes.
 * @param[in] deviceDescriptorHandle not looked at, since the descriptor's handle may have ended before
 * @param[in] callbackHandle         from the registration
 * @return KORO_RETURN_CODE_INVALID_HANDLE for an unknown callback handle;
 *         KORO_RETURN_CODE_ERROR inside a callback of the same descriptor: the registration stands
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_UnregisterInformationChangedCallback(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle,
    KORO_DeviceDescriptorInformationChangedCallbackHandle callbackHandle);

#ifdef __cplusplus
}
#endif

#endif

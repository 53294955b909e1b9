/*
 * A device in the list of an interface, opened or not. Its information is queried through the interface.
 *
 * The handle comes from KORO_Interface_GetDevice or a found callback. It ends when an update no longer finds the
 * device, or with the interface. Each query except the key calls the producer. Any thread may call these functions.
 *
 * The producer writes the texts of these functions, except the key, directly into the caller's buffer. Their sizes
 * follow the rules of GenTL: a null buffer queries the size, which includes the terminating zero, and the producer
 * checks the capacity. A buffer that is too small is therefore a failure of the producer: KORO_RETURN_CODE_ERROR
 * instead of KORO_RETURN_CODE_BUFFER_TOO_SMALL.
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
 * Returns the descriptor as a ModuleDescriptor, its base type. Each call returns the same handle.
 * @param[out] moduleDescriptorHandle ends with the interface; stays valid when the device is lost
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_ToModuleDescriptor(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_ModuleDescriptorHandle* moduleDescriptorHandle);

/** Returns the key: the interface's key, "|" and the id. Does not call the producer. */
KORO_API KORO_ReturnCode
KORO_DeviceDescriptor_GetKey(KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* key, size_t* keySize);

/**
 * Returns any information about the device as raw bytes.
 * @param[in]  infoCommand    KORO_DEVICE_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetInfo(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/** Returns the display name, a text for people. */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetDisplayName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* displayName, size_t* displayNameSize);

/** Returns the vendor of the device. */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetVendorName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* vendorName, size_t* vendorNameSize);

/** Returns the model name of the device. */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetModelName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* modelName, size_t* modelNameSize);

/** Returns the version of the device. */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetVersion(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* version, size_t* versionSize);

/** Returns the transport layer type of the device, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode
KORO_DeviceDescriptor_GetTLType(KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* tlType, size_t* tlTypeSize);

/**
 * Returns the user-defined name of the device.
 * @return KORO_RETURN_CODE_ERROR when the producer reports that there is none; the error text contains the producer's
 *         code
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetUserDefinedName(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* userDefinedName, size_t* userDefinedNameSize);

/**
 * Returns the serial number.
 * @return KORO_RETURN_CODE_ERROR when the producer reports that there is none; the error text contains the producer's
 *         code
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetSerialNumber(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, char* serialNumber, size_t* serialNumberSize);

/**
 * Reports whether the device can be opened, or by whom it is open.
 * @param[out] accessStatus KORO_DEVICE_ACCESS_STATUS_...
 */
KORO_API KORO_ReturnCode
KORO_DeviceDescriptor_GetAccessStatus(KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t* accessStatus);

/**
 * Returns the frequency of the device's timestamp counter.
 * @param[out] timestampTickFrequency ticks per second
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetTimestampTickFrequency(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t* timestampTickFrequency);

/**
 * Reports whether the device can be opened with an access type.
 * @param[in]  accessType            KORO_DEVICE_ACCESS_READONLY, ..._CONTROL or ..._EXCLUSIVE; any other number results
 *                                   in 0 without a query
 * @param[out] isAccessTypeAvailable 1 if the device can be opened with it
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetIsOpenable(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint32_t accessType, KORO_Bool8* isAccessTypeAvailable);

/**
 * Returns the same as KORO_DeviceDescriptor_GetIsOpenable for KORO_DEVICE_ACCESS_READONLY, so a device that can only be
 * read counts as openable. To test for exclusive access, call that function with KORO_DEVICE_ACCESS_EXCLUSIVE.
 * @param[out] isAccessTypeAvailable 1 if it can be opened for reading
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetIsOpenableExclusive(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_Bool8* isAccessTypeAvailable);

/**
 * Returns the interface of the descriptor.
 * @param[out] interfaceHandle the existing handle from its opening; do not destruct it separately
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetParentInterface(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_InterfaceHandle* interfaceHandle);

/**
 * Opens the device, fetches its remote device, and reads the descriptions of both, which may take long. For a GigE
 * Vision camera whose descriptions contain the nodes for it, the function also determines how long a control command
 * may be: it writes the camera's register GevGVCPCMDLengthTest with growing lengths and sets GevGVCPCMDLength of the
 * transport layer to the largest length that succeeded. A length that does not succeed is not a failure. The call
 * fails, and the device is closed again, if the transport layer cannot be set back to that length or if the device has
 * no remote device.
 * @param[in]  accessType   KORO_DEVICE_ACCESS_READONLY, ..._CONTROL or ..._EXCLUSIVE; passed to the producer
 *                          unchanged
 * @param[out] deviceHandle a new handle; end it with KORO_Device_Destruct
 * @return KORO_RETURN_CODE_BAD_ACCESS when the device is open elsewhere or the access is denied
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_OpenDevice(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint32_t accessType, KORO_DeviceHandle* deviceHandle);

/*
 * Monitoring: the library queries selected information about the device at an interval and reports what has changed.
 * Each kind of information is a role, identified by its information command. From the start the roles are
 * KORO_DEVICE_INFO_ACCESS_STATUS, ..._USER_DEFINED_NAME and ..._TIMESTAMP_FREQUENCY. Queries and their thread start
 * only when a callback is registered.
 */

/**
 * Adds a role. A role that is monitored already keeps its last value. A new role is reported as changed as soon as it
 * has a value.
 * Waits while another thread reads the roles, which takes as long as the producer needs to answer.
 * @param[in] role KORO_DEVICE_INFO_... or a producer-specific number; a role that the producer does not answer is never
 *                 reported
 */
KORO_API KORO_ReturnCode
KORO_DeviceDescriptor_AddInformationRoleToMonitoring(KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role);

/**
 * Removes a role and its last value. A role that is not monitored is ignored.
 * Waits while another thread reads the roles.
 * @param[in] role the role that was added
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_RemoveInformationRoleFromMonitoring(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role);

/**
 * Reports whether a role is monitored. Waits while another thread reads the roles.
 * @param[in]  role                       any role
 * @param[out] isInformationRoleMonitored 1 if it is
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_IsInformationRoleMonitored(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, int32_t role, KORO_Bool8* isInformationRoleMonitored);

/**
 * Returns the pause between two readings of the roles.
 * @param[out] monitoringUpdateInterval_ms milliseconds; 1000 unless set
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_GetMonitoringUpdateInterval(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t* monitoringUpdateInterval_ms);

/**
 * Sets the pause between two readings of the roles. The new value takes effect at once, also for the current pause.
 * @param[in] monitoringUpdateInterval_ms milliseconds; 0 reads without a pause and keeps one processor core busy
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_SetMonitoringUpdateInterval(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, uint64_t monitoringUpdateInterval_ms);

/**
 * Registers a callback for changed information. It runs on a thread of this descriptor, which the first registration
 * starts and the last unregistration ends. The first call after the registration lists all roles that have a value. A
 * role that cannot be read is not reported, so the callback does not show that a device was lost.
 * The callback must not throw and must not register or unregister callbacks of this descriptor. It cannot end the
 * interface, its parents or the library.
 * A registration keeps the descriptor monitored until the interface ends, even when the device is lost and the
 * descriptor's handle has ended.
 * @param[in]  callback        called as callback(roles, numRoles, callbackContext)
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the unregistration or with the library
 * @return KORO_RETURN_CODE_ERROR when the thread could not be started, or inside a callback of this descriptor
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_RegisterInformationChangedCallback(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle, KORO_DeviceDescriptorInformationChangedCallback callback,
    void* callbackContext, KORO_DeviceDescriptorInformationChangedCallbackHandle* callbackHandle);

/**
 * Unregisters a callback and waits while the thread is inside it. If it was the last callback, the function also waits
 * for the end of the thread, at most 50 ms plus the time of one reading.
 * @param[in] deviceDescriptorHandle ignored, since the descriptor's handle may have ended already
 * @param[in] callbackHandle         the handle that the registration returned
 * @return KORO_RETURN_CODE_INVALID_HANDLE for an unknown callback handle; KORO_RETURN_CODE_ERROR inside a callback of
 *         the same descriptor; the registration stays
 */
KORO_API KORO_ReturnCode KORO_DeviceDescriptor_UnregisterInformationChangedCallback(
    KORO_DeviceDescriptorHandle deviceDescriptorHandle,
    KORO_DeviceDescriptorInformationChangedCallbackHandle callbackHandle);

#ifdef __cplusplus
}
#endif

#endif

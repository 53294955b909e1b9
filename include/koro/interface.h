/*
 * An opened interface, which lists the devices behind it.
 *
 * The handle ends with KORO_Interface_Destruct, or with its system. Every query but key and id asks the producer
 * anew. Found and lost reports come out of KORO_Interface_UpdateDevices alone. Any thread.
 *
 * Three more reports are the producer's own: that the list has changed, that a device of the list was disconnected, and
 * that it was reconnected. They come on a thread of the library, one after the other for the whole system, and change
 * no list. Their callbacks must not throw; they may call most functions, KORO_Interface_UpdateDevices among them, but
 * must not register or unregister a callback of their own kind at this interface, nor open or destruct an interface of
 * the system, nor end the system or what is above it: trying gives KORO_RETURN_CODE_ERROR. A callback that blocks holds
 * up the reports of all interfaces of the system. A producer without the event for these reports never calls them.
 */
#ifndef KORO_INTERFACE_H
#define KORO_INTERFACE_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Ends the handle, with its Module and EventSupportingModule handles, and all handles below it. The interface is
 * closed when its last use ends. Waits inside return KORO_RETURN_CODE_ABORTED; callbacks of changed information and of
 * the producer's own reports are waited for, and there is none after it. Where another call is inside below it, its
 * idle streams end first, which may wait as KORO_DataStream_Destruct does. Nothing else is waited for.
 * @return KORO_RETURN_CODE_ERROR inside a callback that it would wait for: nothing ends then
 */
KORO_API KORO_ReturnCode KORO_Interface_Destruct(KORO_InterfaceHandle interfaceHandle);

/** Gives the key: the system's key, "|", the id. No producer call. */
KORO_API KORO_ReturnCode KORO_Interface_GetKey(KORO_InterfaceHandle interfaceHandle, char* key, size_t* keySize);

/** Gives the interface's id. */
KORO_API KORO_ReturnCode KORO_Interface_GetID(KORO_InterfaceHandle interfaceHandle, char* id, size_t* idSize);

/**
 * Gives any information of the interface as raw bytes.
 * @param[in]  infoCommand    KORO_INTERFACE_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Interface_GetInfo(
    KORO_InterfaceHandle interfaceHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Gives the name to show to a person. */
KORO_API KORO_ReturnCode
KORO_Interface_GetDisplayName(KORO_InterfaceHandle interfaceHandle, char* displayName, size_t* displayNameSize);

/** Gives the transport layer type of the interface, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode
KORO_Interface_GetTLType(KORO_InterfaceHandle interfaceHandle, char* tlType, size_t* tlTypeSize);

/**
 * Lets the producer search for devices, takes over the new list, then calls the lost and the found callbacks on
 * this thread.
 * Inside such a callback the update returns before its own reports are delivered: they follow those that are under way,
 * and for one device the report that it was found comes before its loss. A callback that updates at each report, where
 * each search finds something, gets KORO_RETURN_CODE_ERROR in the end. An update that finds something waits for the
 * reports of another thread's.
 * When a callback has ended the interface, or what is above it, no further found or lost callback of the interface is
 * called, and the update succeeds. A program that registers callbacks for the producer's own reports, or for changed
 * information, must not end an interface or what is above it in a found or lost callback, nor start or close the
 * library there while another thread may close it: that waits for a callback that may wait for this one.
 * The first update always reads the list. A device that stayed keeps its descriptor and handle.
 * @param[in] timeout_ms milliseconds for the producer's search; KORO_INFINITE waits without end
 */
KORO_API KORO_ReturnCode KORO_Interface_UpdateDevices(KORO_InterfaceHandle interfaceHandle, uint64_t timeout_ms);

/** Gives the number of devices at the last update, 0 before it. Does not update. */
KORO_API KORO_ReturnCode KORO_Interface_GetNumDevices(KORO_InterfaceHandle interfaceHandle, size_t* numDevices);

/**
 * Gives one device of the list, not yet opened. The same handle each time.
 * @param[in]  index                  0 to the number of devices less 1
 * @param[out] deviceDescriptorHandle ends when an update loses the device, or with the interface; there is nothing
 *                                    to destruct
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_Interface_GetDevice(
    KORO_InterfaceHandle interfaceHandle, size_t index, KORO_DeviceDescriptorHandle* deviceDescriptorHandle);

/**
 * Calls the application for each device that an update finds, on the thread that runs KORO_Interface_UpdateDevices.
 * The callback must not throw, and must not register or unregister a found callback of this interface. The handle
 * that it gets ends when the device is lost.
 * @param[in]  callback        called as callback(deviceDescriptorHandle, callbackContext)
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceFoundCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceFoundCallback callback, void* callbackContext,
    KORO_DeviceFoundCallbackHandle* callbackHandle);

/**
 * Ends the calls of a found callback. An unknown callback handle is ignored.
 * Waits for a call that is under way on another thread.
 * @param[in] callbackHandle from the registration
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceFoundCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceFoundCallbackHandle callbackHandle);

/**
 * Calls the application for each device that is gone at an update, on the thread that runs
 * KORO_Interface_UpdateDevices, before any found callback.
 * The callback must not throw, must not register or unregister a lost callback of this interface, and cannot rely
 * on the handle of the lost device's descriptor being valid.
 * KORO_Interface_GetDevice fails in it with KORO_RETURN_CODE_ERROR for a device that has no handle yet.
 * @param[in]  callback        called as callback(deviceId, deviceIdSize, callbackContext)
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceLostCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceLostCallback callback, void* callbackContext,
    KORO_DeviceLostCallbackHandle* callbackHandle);

/**
 * Ends the calls of a lost callback. An unknown callback handle is ignored.
 * Waits for a call that is under way on another thread.
 * @param[in] callbackHandle from the registration
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceLostCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceLostCallbackHandle callbackHandle);

/**
 * Calls the application when the producer says that the list of devices has changed. KORO_Interface_UpdateDevices then
 * tells how.
 * @param[in]  callback        called as callback(callbackContext)
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceListChangedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceListChangedCallback callback, void* callbackContext,
    KORO_DeviceListChangedCallbackHandle* callbackHandle);

/**
 * Ends the calls of a list changed callback. An unknown callback handle is ignored.
 * Waits for a call that is under way on another thread.
 * @param[in] callbackHandle from the registration
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceListChangedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceListChangedCallbackHandle callbackHandle);

/**
 * Calls the application when the producer says that a device of the list went. The device stays in the list, and its
 * open objects stay open, until the application acts.
 * @param[in]  callback        called as callback(deviceDescriptorHandle, callbackContext)
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceDisconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceDisconnectedCallback callback, void* callbackContext,
    KORO_DeviceDisconnectedCallbackHandle* callbackHandle);

/**
 * Ends the calls of a disconnected callback. An unknown callback handle is ignored.
 * Waits for a call that is under way on another thread.
 * @param[in] callbackHandle from the registration
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceDisconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceDisconnectedCallbackHandle callbackHandle);

/**
 * Calls the application when the producer says that a device of the list came back. If the device is open, the nodes of
 * its remote device have been invalidated by then; until then the library holds it open, so a device that comes back is
 * best closed and opened anew in this callback or after it. A device that an update has lost meanwhile is not reported:
 * the next update finds it.
 * @param[in]  callback        called as callback(deviceDescriptorHandle, information, callbackContext)
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceReconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceReconnectedCallback callback, void* callbackContext,
    KORO_DeviceReconnectedCallbackHandle* callbackHandle);

/**
 * Ends the calls of a reconnected callback. An unknown callback handle is ignored.
 * Waits for a call that is under way on another thread.
 * @param[in] callbackHandle from the registration
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceReconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceReconnectedCallbackHandle callbackHandle);

/**
 * Gives the system of the interface.
 * @param[out] systemHandle the handle from the opening: nothing new to destruct
 */
KORO_API KORO_ReturnCode
KORO_Interface_GetParentSystem(KORO_InterfaceHandle interfaceHandle, KORO_SystemHandle* systemHandle);

/**
 * Gives the interface as a module, for its port. The same handle each time.
 * @param[out] moduleHandle ends with the interface's handle
 */
KORO_API KORO_ReturnCode KORO_Interface_ToModule(KORO_InterfaceHandle interfaceHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Gives the interface as a module with events. The same handle each time.
 * @param[out] eventSupportingModuleHandle ends with the interface's handle
 */
KORO_API KORO_ReturnCode KORO_Interface_ToEventSupportingModule(
    KORO_InterfaceHandle interfaceHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif

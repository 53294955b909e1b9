/*
 * An opened interface, for example a network card or a frame grabber. It lists the devices that are connected to it.
 *
 * The handle ends with KORO_Interface_Destruct, or with its system. Each query except key and id calls the producer.
 * Found and lost callbacks are called only by KORO_Interface_UpdateDevices. Any thread may call these functions.
 *
 * The producer can send three unsolicited notifications: the list of devices has changed, a device of the list was
 * disconnected, a device of the list is connected again. Their callbacks run on a thread of the library, one after the
 * other for the whole system; the notifications do not change the list. The callbacks must not throw. They may call
 * most functions, including KORO_Interface_UpdateDevices. Three kinds of calls return KORO_RETURN_CODE_ERROR inside
 * them: registering or unregistering a callback of the same kind at this interface, opening or destructing an interface
 * of the system, and ending the system or one of its parents. A callback that blocks delays the notifications of all
 * interfaces of the system. If the producer does not have the event for these notifications, the callbacks are never
 * called.
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
 * Ends the handle, its Module and EventSupportingModule handles, and all handles below it. The interface is closed when
 * no call uses it any more. Waits that are running below it return KORO_RETURN_CODE_ABORTED. The function waits for
 * running callbacks of changed device information and of notifications from the producer; no such callback runs after
 * it. If another thread is inside a call below the interface, streams that no call uses are closed first, and this may
 * wait as KORO_DataStream_Destruct does. The function waits for nothing else.
 * @return KORO_RETURN_CODE_ERROR inside a callback that it would wait for; nothing ends then
 */
KORO_API KORO_ReturnCode KORO_Interface_Destruct(KORO_InterfaceHandle interfaceHandle);

/** Returns the key: the system's key, "|" and the id. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_Interface_GetKey(KORO_InterfaceHandle interfaceHandle, char* key, size_t* keySize);

/** Returns the interface's id. */
KORO_API KORO_ReturnCode KORO_Interface_GetID(KORO_InterfaceHandle interfaceHandle, char* id, size_t* idSize);

/**
 * Returns any information about the interface as raw bytes.
 * @param[in]  infoCommand    KORO_INTERFACE_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Interface_GetInfo(
    KORO_InterfaceHandle interfaceHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/** Returns the display name, a text for people. */
KORO_API KORO_ReturnCode
KORO_Interface_GetDisplayName(KORO_InterfaceHandle interfaceHandle, char* displayName, size_t* displayNameSize);

/** Returns the transport layer type of the interface, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode
KORO_Interface_GetTLType(KORO_InterfaceHandle interfaceHandle, char* tlType, size_t* tlTypeSize);

/**
 * Lets the producer search for devices and takes over the new list, then calls the lost callbacks and the found
 * callbacks on the calling thread. The first update always reads the list. A device that stays in the list keeps its
 * descriptor and its handle.
 * A callback may call this function again. That inner update returns before its own callbacks are called: they follow
 * the callbacks that are already due, and for each device found comes before lost. A callback that starts an update at
 * each call, where each search finds something, gets KORO_RETURN_CODE_ERROR in the end. An update that has something to
 * report waits until the callbacks of an update on another thread have returned.
 * When a callback ends the interface or one of its parents, no further found or lost callback of the interface is
 * called, and the update succeeds. There is a restriction for programs that register callbacks for notifications from
 * the producer or for changed device information. In their found and lost callbacks they must not end an interface or
 * one of its parents, and must not initialise or close the library while another thread may close it: these calls wait
 * for a callback that may itself wait for the found or lost callback.
 * @param[in] timeout_ms milliseconds for the search of the producer; KORO_INFINITE for no limit
 */
KORO_API KORO_ReturnCode KORO_Interface_UpdateDevices(KORO_InterfaceHandle interfaceHandle, uint64_t timeout_ms);

/** Returns the number of devices at the last update; 0 before the first update. Does not update the list. */
KORO_API KORO_ReturnCode KORO_Interface_GetNumDevices(KORO_InterfaceHandle interfaceHandle, size_t* numDevices);

/**
 * Returns one device of the list, not yet opened. Each call returns the same handle.
 * @param[in]  index                  0 to the number of devices minus 1
 * @param[out] deviceDescriptorHandle ends when an update loses the device, or with the interface; do not destruct it
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list
 */
KORO_API KORO_ReturnCode KORO_Interface_GetDevice(
    KORO_InterfaceHandle interfaceHandle, size_t index, KORO_DeviceDescriptorHandle* deviceDescriptorHandle);

/**
 * Registers a callback for each device that an update finds. It runs on the thread that runs
 * KORO_Interface_UpdateDevices. The callback must not throw, and must not register or unregister a found callback of
 * this interface. The handle that it receives ends when the device is lost.
 * @param[in]  callback        called as callback(deviceDescriptorHandle, callbackContext)
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceFoundCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceFoundCallback callback, void* callbackContext,
    KORO_DeviceFoundCallbackHandle* callbackHandle);

/**
 * Unregisters a found callback. An unknown callback handle is ignored.
 * Waits while another thread is inside the callback.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceFoundCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceFoundCallbackHandle callbackHandle);

/**
 * Registers a callback for each device that an update no longer finds. It runs on the thread that runs
 * KORO_Interface_UpdateDevices, before any found callback.
 * The callback must not throw, must not register or unregister a lost callback of this interface. The handle of the
 * lost device's descriptor may have ended already.
 * In this callback KORO_Interface_GetDevice fails with KORO_RETURN_CODE_ERROR for a device that has no handle yet.
 * @param[in]  callback        called as callback(deviceId, deviceIdSize, callbackContext)
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceLostCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceLostCallback callback, void* callbackContext,
    KORO_DeviceLostCallbackHandle* callbackHandle);

/**
 * Unregisters a lost callback. An unknown callback handle is ignored.
 * Waits while another thread is inside the callback.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceLostCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceLostCallbackHandle callbackHandle);

/**
 * Registers a callback for the notification that the list of devices has changed. Call KORO_Interface_UpdateDevices to
 * read the new list.
 * @param[in]  callback        called as callback(callbackContext)
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceListChangedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceListChangedCallback callback, void* callbackContext,
    KORO_DeviceListChangedCallbackHandle* callbackHandle);

/**
 * Unregisters a list changed callback. An unknown callback handle is ignored.
 * Waits while another thread is inside the callback.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceListChangedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceListChangedCallbackHandle callbackHandle);

/**
 * Registers a callback for the notification that a device of the list was disconnected. The device stays in the list,
 * and its open objects stay open, until the application acts.
 * @param[in]  callback        called as callback(deviceDescriptorHandle, callbackContext)
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceDisconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceDisconnectedCallback callback, void* callbackContext,
    KORO_DeviceDisconnectedCallbackHandle* callbackHandle);

/**
 * Unregisters a disconnected callback. An unknown callback handle is ignored.
 * Waits while another thread is inside the callback.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceDisconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceDisconnectedCallbackHandle callbackHandle);

/**
 * Registers a callback for the notification that a device of the list is connected again. If the device is open, the
 * library first invalidates the nodes of its remote device, and holds the device open while it does so. Therefore close
 * the device and open it again in this callback or later. If an update has removed the device from the list meanwhile,
 * the callback is not called: the next update finds the device.
 * @param[in]  callback        called as callback(deviceDescriptorHandle, information, callbackContext)
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the interface
 */
KORO_API KORO_ReturnCode KORO_Interface_RegisterDeviceReconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceReconnectedCallback callback, void* callbackContext,
    KORO_DeviceReconnectedCallbackHandle* callbackHandle);

/**
 * Unregisters a reconnected callback. An unknown callback handle is ignored.
 * Waits while another thread is inside the callback.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_Interface_UnregisterDeviceReconnectedCallback(
    KORO_InterfaceHandle interfaceHandle, KORO_DeviceReconnectedCallbackHandle callbackHandle);

/**
 * Returns the system of the interface.
 * @param[out] systemHandle the existing handle from its opening; do not destruct it separately
 */
KORO_API KORO_ReturnCode
KORO_Interface_GetParentSystem(KORO_InterfaceHandle interfaceHandle, KORO_SystemHandle* systemHandle);

/**
 * Returns the interface as a Module, which has a port and features. Each call returns the same handle.
 * @param[out] moduleHandle ends with the interface's handle
 */
KORO_API KORO_ReturnCode KORO_Interface_ToModule(KORO_InterfaceHandle interfaceHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Returns the interface as an EventSupportingModule, which registers events. Each call returns the same handle.
 * @param[out] eventSupportingModuleHandle ends with the interface's handle
 */
KORO_API KORO_ReturnCode KORO_Interface_ToEventSupportingModule(
    KORO_InterfaceHandle interfaceHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif

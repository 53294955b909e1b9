/*
 * The remote device: the camera itself, as opposed to the device of the transport layer. The handle comes from
 * KORO_Device_GetRemoteDevice and ends with KORO_Device_Destruct. Any thread may call these functions.
 */
#ifndef KORO_REMOTE_DEVICE_H
#define KORO_REMOTE_DEVICE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Returns the device of the transport layer that represents this camera.
 * @param[out] deviceHandle the existing handle from its opening; do not destruct it separately
 * @return KORO_RETURN_CODE_ERROR with the text "Local device has expired!" when the device has ended during the call
 */
KORO_API KORO_ReturnCode
KORO_RemoteDevice_GetLocalDevice(KORO_RemoteDeviceHandle remoteDeviceHandle, KORO_DeviceHandle* deviceHandle);

/**
 * Returns the camera as a Module, which has a port and features. Each call returns the same handle.
 * @param[out] moduleHandle ends with the device's handle
 * @return KORO_RETURN_CODE_ERROR with the text "Local device has expired!" when the device has ended during the call
 */
KORO_API KORO_ReturnCode
KORO_RemoteDevice_ToModule(KORO_RemoteDeviceHandle remoteDeviceHandle, KORO_ModuleHandle* moduleHandle);

#ifdef __cplusplus
}
#endif

#endif

/*
 * The camera itself, on the far side of an opened device. The handle comes from KORO_Device_GetRemoteDevice and
 * ends with KORO_Device_Destruct. Any thread.
 */
#ifndef KORO_REMOTE_DEVICE_H
#define KORO_REMOTE_DEVICE_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Gives the device that leads to this camera.
 * @param[out] deviceHandle the handle from the opening: nothing new to destruct
 * @return KORO_RETURN_CODE_ERROR, "Local device has expired!", when the device has gone meanwhile
 */
KORO_API KORO_ReturnCode
KORO_RemoteDevice_GetLocalDevice(KORO_RemoteDeviceHandle remoteDeviceHandle, KORO_DeviceHandle* deviceHandle);

/**
 * Gives the camera as a module, for its port. The same handle each time.
 * @param[out] moduleHandle ends with the device's handle
 * @return KORO_RETURN_CODE_ERROR, "Local device has expired!", when the device has gone meanwhile
 */
KORO_API KORO_ReturnCode
KORO_RemoteDevice_ToModule(KORO_RemoteDeviceHandle remoteDeviceHandle, KORO_ModuleHandle* moduleHandle);

#ifdef __cplusplus
}
#endif

#endif

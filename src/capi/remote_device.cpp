#include "modules/remote_device.h"

#include "capi/arguments.h"
#include "modules/device.h"
#include "modules/interface.h"
#include <koro/remote_device.h>

#include <memory>

using namespace koro::internal;

namespace
{

// Both parents must exist.
std::shared_ptr<Device> LocalDeviceWithParent(const RemoteDevice& remoteDevice)
{
    auto device = remoteDevice.LocalDevice();
    device->ParentInterface();
    return device;
}

} // namespace

KORO_ReturnCode KORO_RemoteDevice_GetLocalDevice(
    KORO_RemoteDeviceHandle remoteDeviceHandle, KORO_DeviceHandle* deviceHandle)
{
    return GetParent(KORO_ARG(remoteDeviceHandle), KORO_ARG(deviceHandle), &RemoteDevice::LocalDevice);
}

KORO_ReturnCode KORO_RemoteDevice_ToModule(KORO_RemoteDeviceHandle remoteDeviceHandle, KORO_ModuleHandle* moduleHandle)
{
    return CastTo(KORO_ARG(remoteDeviceHandle), KORO_ARG(moduleHandle), LocalDeviceWithParent);
}

#include "modules/remote_device.h"

#include "base/expiring.h"
#include "modules/device.h"

namespace koro::internal
{

RemoteDevice::RemoteDevice(
    GenTL::PORT_HANDLE handle, const std::weak_ptr<Device>& device, const std::shared_ptr<const GenTLProxy>& proxy)
    : Module(handle, proxy), localDevice(device)
{}

std::shared_ptr<Device> RemoteDevice::LocalDevice() const
{
    return LockOrThrow(localDevice, "Local device has expired!");
}

std::shared_ptr<Module> RemoteDevice::ParentModule() const
{
    return LocalDevice();
}

} // namespace koro::internal

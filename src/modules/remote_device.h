// RemoteDevice: the camera's side of an opened device, through the port that the device provides.
//
// Owned by its Device, which it holds weakly. Its port belongs to the device and is never closed separately.
#pragma once

#include "modules/module.h"

#include <memory>

namespace koro::internal
{

class Device;

class RemoteDevice final : public Module
{
public:
    RemoteDevice(
        GenTL::PORT_HANDLE handle, const std::weak_ptr<Device>& device, const std::shared_ptr<const GenTLProxy>& proxy);

    // Both throw InternalErrorException with "Local device has expired!" after the device has ended.
    std::shared_ptr<Device> LocalDevice() const;
    std::shared_ptr<Module> ParentModule() const override;

private:
    const std::weak_ptr<Device> localDevice;
};

} // namespace koro::internal

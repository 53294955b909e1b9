#include "modules/device_descriptor.h"

#include "base/expiring.h"
#include "modules/device.h"
#include "modules/gvcp_command_length.h"
#include "modules/interface.h"

namespace koro::internal
{

using namespace GenTL;

DeviceDescriptor::DeviceDescriptor(
    std::string deviceID, const std::shared_ptr<Interface>& interface, const std::shared_ptr<const GenTLProxy>& proxy)
    : DeviceInformation(GenTLCaller(proxy)), parent(interface), key(ModuleKey(interface->Key(), deviceID)),
      id(std::move(deviceID)),
      monitor(*this, {DEVICE_INFO_ACCESS_STATUS, DEVICE_INFO_USER_DEFINED_NAME, DEVICE_INFO_TIMESTAMP_FREQUENCY})
{}

std::string DeviceDescriptor::ID() const
{
    const auto interface = ParentInterface();
    return id;
}

void DeviceDescriptor::RawStringInfo(std::int32_t command, char* buffer, std::size_t* size) const
{
    WithStandardExceptionsAsInternalErrors([&] {
        INFO_DATATYPE dataType = INFO_DATATYPE_STRING;
        if (QueryInfo(command, &dataType, buffer, size) != GC_ERR_SUCCESS) ThrowInfoError("RawStringInfo", command);
    });
}

bool DeviceDescriptor::IsOpenable(std::uint32_t accessType) const
{
    switch (accessType)
    {
    case DEVICE_ACCESS_READONLY: {
        const auto status = AccessStatus();
        return status == DEVICE_ACCESS_STATUS_READWRITE || status == DEVICE_ACCESS_STATUS_READONLY;
    }
    case DEVICE_ACCESS_CONTROL:
    case DEVICE_ACCESS_EXCLUSIVE:
        return AccessStatus() == DEVICE_ACCESS_STATUS_READWRITE;
    default:
        return false;
    }
}

bool DeviceDescriptor::IsOpenableExclusive() const
{
    return IsOpenable(DEVICE_ACCESS_READONLY);
}

std::shared_ptr<Interface> DeviceDescriptor::ParentInterface() const
{
    return LockOrThrow(parent);
}

std::shared_ptr<Device> DeviceDescriptor::OpenDevice(std::uint32_t accessType)
{
    return WithStandardExceptionsAsInternalErrors([&] {
        const auto interface = ParentInterface();
        DEV_HANDLE handle = GENTL_INVALID_HANDLE;
        gentl.Call<&GenTLProxy::IFOpenDevice>(
            interface->Handle(), id.c_str(), static_cast<DEVICE_ACCESS_FLAGS>(accessType), &handle);
        auto device = MakeOwnerOf<&GenTLProxy::DevClose>(
            handle, gentl, [&] { return std::make_shared<Device>(handle, id, interface, gentl.Proxy()); });
        {
            const std::lock_guard lock(openedDeviceMutex);
            openedDevice = device;
        }
        TestGVCPCommandLength(*device);
        return device;
    });
}

std::shared_ptr<Device> DeviceDescriptor::OpenedDevice()
{
    const std::lock_guard lock(openedDeviceMutex);
    return openedDevice.lock();
}

GC_ERROR DeviceDescriptor::QueryInfo(
    std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto interface = ParentInterface();
    return gentl.Result<&GenTLProxy::IFGetDeviceInfo>(interface->Handle(), id.c_str(), command, dataType, buffer, size);
}

DeviceDescriptorInformationChangedCallback::DeviceDescriptorInformationChangedCallback(
    std::shared_ptr<DeviceDescriptor> monitoredDescriptor,
    DeviceDescriptor::InformationMonitor::ChangedCallback callback)
    : descriptor(std::move(monitoredDescriptor))
{
    descriptor->ParentInterface()->AddMonitored(descriptor);
    handle = descriptor->Monitor().RegisterChangedCallback(std::move(callback));
}

DeviceDescriptorInformationChangedCallback::~DeviceDescriptorInformationChangedCallback()
{
    Unregister();
}

void DeviceDescriptorInformationChangedCallback::Unregister()
{
    descriptor->Monitor().RefuseInCallback();
    const std::lock_guard lock(endMutex);
    if (!handle) return;
    descriptor->Monitor().UnregisterChangedCallback(handle);
    handle = nullptr;
}

} // namespace koro::internal

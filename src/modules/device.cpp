#include "modules/device.h"

#include "base/expiring.h"
#include "modules/interface.h"
#include "modules/remote_device.h"

namespace koro::internal
{

using namespace GenTL;

Device::Device(
    DEV_HANDLE handle, std::string deviceID, const std::weak_ptr<Interface>& interface,
    const std::shared_ptr<const GenTLProxy>& proxy)
    : DeviceInformation(GenTLCaller(proxy)), TGenTLChildManager(GenTLCaller(proxy)),
      EventSupportingModule(handle, proxy), parent(interface), key(ModuleKey(LockOrThrow(interface)->Key(), deviceID)),
      id(std::move(deviceID))
{}

Device::~Device()
{
    gentl.CallIgnoringFailures<&GenTLProxy::DevClose>(Handle());
}

std::string Device::ID() const
{
    const auto interface = ParentInterface();
    return id;
}

std::string Device::DisplayName() const
{
    return StringInfo(DEVICE_INFO_DISPLAYNAME);
}

std::string Device::VendorName() const
{
    return StringInfo(DEVICE_INFO_VENDOR);
}

std::string Device::ModelName() const
{
    return StringInfo(DEVICE_INFO_MODEL);
}

std::string Device::Version() const
{
    return StringInfo(DEVICE_INFO_VERSION);
}

std::string Device::TLType() const
{
    return StringInfo(DEVICE_INFO_TLTYPE);
}

std::string Device::UserDefinedName() const
{
    return StringInfo(DEVICE_INFO_USER_DEFINED_NAME);
}

std::string Device::SerialNumber() const
{
    return StringInfo(DEVICE_INFO_SERIAL_NUMBER);
}

std::shared_ptr<const Device::ChildList> Device::DataStreams()
{
    UpdateChildren(0);
    return Children();
}

std::shared_ptr<RemoteDevice> Device::GetRemoteDevice()
{
    const auto interface = ParentInterface();
    remoteDeviceOnce.Run([this] {
        PORT_HANDLE portHandle = GENTL_INVALID_HANDLE;
        gentl.Call<&GenTLProxy::DevGetPort>(Handle(), &portHandle);
        remoteDevice = std::make_shared<RemoteDevice>(portHandle, SharedOwner(), gentl.Proxy());
    });
    return remoteDevice;
}

std::shared_ptr<Interface> Device::ParentInterface() const
{
    return LockOrThrow(parent);
}

std::shared_ptr<Module> Device::ParentModule() const
{
    return ParentInterface();
}

GC_ERROR Device::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto interface = ParentInterface();
    return gentl.Result<&GenTLProxy::DevGetInfo>(Handle(), command, dataType, buffer, size);
}

// The standard has no refresh for the streams of a device.
GC_ERROR Device::ProducerUpdateChildren(bool8_t* changed, std::uint64_t)
{
    *changed = 0;
    return GC_ERR_SUCCESS;
}

GC_ERROR Device::ProducerNumChildren(std::uint32_t* count)
{
    return gentl.Result<&GenTLProxy::DevGetNumDataStreams>(Handle(), count);
}

GC_ERROR Device::ProducerChildID(std::uint32_t index, std::string* childID)
{
    return QueryTextID(
        [&](char* text, std::size_t* size) {
            return gentl.Result<&GenTLProxy::DevGetDataStreamID>(Handle(), index, text, size);
        },
        ChildIDFunctionName(), childID);
}

std::shared_ptr<const void> Device::HoldParent() const
{
    return ParentInterface();
}

std::shared_ptr<Device> Device::SharedOwner()
{
    return std::static_pointer_cast<Device>(shared_from_this());
}

} // namespace koro::internal

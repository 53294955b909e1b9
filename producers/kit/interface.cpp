#include "producers/kit/interface.h"

#include "producers/kit/device.h"
#include "producers/kit/system.h"

namespace koro::kit
{
namespace
{

void RequireAccess(DEVICE_ACCESS_FLAGS access)
{
    switch (access)
    {
    case DEVICE_ACCESS_READONLY:
    case DEVICE_ACCESS_CONTROL:
    case DEVICE_ACCESS_EXCLUSIVE:
        return;
    case DEVICE_ACCESS_NONE:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "opening without access is not offered");
    default:
        throw Failure(GC_ERR_INVALID_PARAMETER, "unknown access flag");
    }
}

} // namespace

InfoValue InterfaceFacts::Info(INTERFACE_INFO_CMD command) const
{
    switch (command)
    {
    case INTERFACE_INFO_ID:
        return InfoValue::Text(id);
    case INTERFACE_INFO_DISPLAYNAME:
        return InfoValue::Text(displayName);
    case INTERFACE_INFO_TLTYPE:
        return InfoValue::Text(tlType);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown interface information");
    }
}

std::shared_ptr<Device> Interface::OpenDevice(const std::string& name, DEVICE_ACCESS_FLAGS access)
{
    const std::string id = DeviceIdOf(name);
    RequireAccess(access);
    return open.Open(id, [&] {
        auto device = MakeDevice(id, access);
        device->Connect();
        return device;
    });
}

std::shared_ptr<Device> Interface::FindOpen(const std::string& id) const
{
    return open.Find(id);
}

void Interface::Forget(const Device& device)
{
    open.Forget(device);
}

void Interface::OnClose()
{
    open.CloseAll();
    parent->Forget(*this);
}

} // namespace koro::kit

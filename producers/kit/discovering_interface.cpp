#include "producers/kit/discovering_interface.h"

namespace koro::kit
{
namespace
{

bool AnswersTo(const DeviceFacts& device, const std::string& name)
{
    return device.id == name || device.serialNumber == name || (device.userName && device.userName() == name);
}

} // namespace

std::shared_ptr<const DeviceFacts> DiscoveringInterface::FindDevice(const std::string& name) const
{
    for (std::size_t index = 0; const auto device = listed.Find(index); ++index)
        if (AnswersTo(*device, name)) return device;
    for (const auto& device : PresentDevices(0))
        if (AnswersTo(*device, name)) return device;
    throw Failure(GC_ERR_INVALID_ID, "there is no device '" + name + "'");
}

InfoValue DiscoveringInterface::DeviceInfoOf(const std::string& name, DEVICE_INFO_CMD command) const
{
    const auto found = FindDevice(name);
    const auto device = FindOpen(found->id);
    return found->Info(device ? device->AccessStatus() : StatusOf(*found), command);
}

} // namespace koro::kit

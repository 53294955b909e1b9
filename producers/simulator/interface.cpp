#include "producers/simulator/interface.h"

#include "producers/simulator/device.h"
#include "producers/simulator/producer_facts.h"
#include "producers/simulator/system.h"

#include <algorithm>
#include <utility>

namespace koro::simulator
{
namespace
{

DEVICE_ACCESS_FLAGS RequireAccess(DEVICE_ACCESS_FLAGS access)
{
    switch (access)
    {
    case DEVICE_ACCESS_READONLY:
    case DEVICE_ACCESS_CONTROL:
    case DEVICE_ACCESS_EXCLUSIVE:
        return access;
    case DEVICE_ACCESS_NONE:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "opening without access is not offered");
    default:
        throw Failure(GC_ERR_INVALID_PARAMETER, "unknown access flag");
    }
}

} // namespace

InfoValue InterfaceModel::Info(INTERFACE_INFO_CMD command) const
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

Interface::Interface(std::shared_ptr<System> parentSystem, std::shared_ptr<const InterfaceModel> openedModel)
    : parent(std::move(parentSystem)), model(std::move(openedModel)),
      port(
          {model->id, vendorName, modelName, model->tlType, "TLInterface", "InterfacePort", producerVersion},
          &interfaceDescription)
{}

bool Interface::UpdateDevices()
{
    std::vector<std::shared_ptr<Camera>> found;
    for (const auto& camera : model->cameras)
    {
        if (camera->OnListUpdate())
            found.push_back(camera);
        else if (const auto device = devices.Find(camera->Id()))
            device->OnCameraLost();
    }
    const std::lock_guard lock(mutex);
    const bool changed = found != listed;
    listed = std::move(found);
    return changed;
}

std::size_t Interface::NumDevices() const
{
    const std::lock_guard lock(mutex);
    return listed.size();
}

std::string Interface::DeviceIdAt(std::uint32_t index) const
{
    const std::lock_guard lock(mutex);
    if (index >= listed.size())
        throw Failure(GC_ERR_INVALID_INDEX, "the list has " + std::to_string(listed.size()) + " devices");
    return listed[index]->Id();
}

bool Interface::IsListed(const Camera& camera) const
{
    const std::lock_guard lock(mutex);
    return std::any_of(listed.begin(), listed.end(), [&](const auto& entry) { return entry.get() == &camera; });
}

std::shared_ptr<Camera> Interface::FindCamera(const std::string& name) const
{
    for (const auto& camera : model->cameras)
        if (camera->AnswersTo(name) && (camera->IsPresent() || IsListed(*camera) || devices.Find(camera->Id())))
            return camera;
    throw Failure(GC_ERR_INVALID_ID, "there is no device '" + name + "'");
}

InfoValue Interface::DeviceInfoOf(const std::string& name, DEVICE_INFO_CMD command) const
{
    const auto camera = FindCamera(name);
    const auto device = devices.Find(camera->Id());
    const DEVICE_ACCESS_STATUS whenClosed =
        camera->IsPresent() ? DEVICE_ACCESS_STATUS_READWRITE : DEVICE_ACCESS_STATUS_NOACCESS;
    return DeviceInfo(*camera, device ? device->AccessStatus() : whenClosed, command);
}

std::shared_ptr<Device> Interface::OpenDevice(const std::string& name, DEVICE_ACCESS_FLAGS access)
{
    const auto camera = FindCamera(name);
    RequireAccess(access);
    return devices.Open(camera->Id(), [&] {
        if (!camera->IsPresent()) throw Failure(GC_ERR_IO, "the camera is gone");
        return std::make_shared<Device>(std::static_pointer_cast<Interface>(shared_from_this()), camera, access);
    });
}

void Interface::OnClose()
{
    devices.CloseAll();
    parent->Forget(*this);
}

} // namespace koro::simulator

#include "producers/simulator/face/interface.h"

#include "producers/simulator/camera/descriptions.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/face/device.h"
#include "producers/simulator/face/library.h"
#include "producers/simulator/face/system.h"

#include <algorithm>
#include <interface_register_names.h>
#include <utility>

namespace koro::simulator
{
namespace
{

PortFacts FactsOf(const InterfaceModel& model)
{
    return {model.id, vendorName, modelName, model.tlType, "TLInterface", "InterfacePort", producerVersion};
}

} // namespace

Interface::Interface(std::shared_ptr<System> parentSystem, std::shared_ptr<const InterfaceModel> openedModel)
    : kit::Interface(parentSystem, openedModel), system(std::move(parentSystem)), model(std::move(openedModel)),
      port(FactsOf(*model), MakeRegisters())
{}

PortRegisters Interface::MakeRegisters()
{
    auto map = std::make_shared<RegisterMap>();
    AddCommonRegisters(*map, FactsOf(*model), interfaceDescription);
    map->AddText(registers::interface::InterfaceDisplayName, model->displayName);
    map->AddInteger(registers::interface::InterfaceTypeReg, TransportTypeNumber(model->tlType));
    map->AddInteger(registers::interface::InterfaceTLVersionMajor, system->TheLibrary().Facts().claimed.major);
    map->AddInteger(registers::interface::InterfaceTLVersionMinor, system->TheLibrary().Facts().claimed.minor);
    map->AddInteger(registers::interface::InterfaceIsGigEVision, model->tlType == "GEV" ? 1 : 0);
    map->AddAction(registers::interface::DeviceUpdateListReg, [this] { UpdateDevices(updateTimeout_ms); });
    map->AddInteger(
        registers::interface::DeviceUpdateTimeoutReg, [this] { return updateTimeout_ms; },
        [this](std::uint64_t value) { updateTimeout_ms = value; });
    map->AddInteger(registers::interface::GevInterfaceMACAddress, model->network.mac);
    map->AddInteger(registers::interface::GevInterfaceGateway, model->network.gateway);
    map->AddInteger(registers::interface::GevInterfaceSubnetIPAddress, model->network.ip);
    map->AddInteger(registers::interface::GevInterfaceSubnetMask, model->network.mask);
    AddDeviceRegisters(*map);
    AddEventRegisters(*map, model->tlType);
    return {map, {LocalURL(interfaceDescription)}};
}

void Interface::AddDeviceRegisters(RegisterMap& map)
{
    const auto maximum = [this]() -> std::uint64_t { return std::max<std::size_t>(NumDevices(), 1) - 1; };
    map.AddInteger(
        registers::interface::DeviceSelectorReg, [this] { return deviceSelector; },
        [this, maximum](std::uint64_t value) {
            if (value > maximum()) RefuseValue("the list has fewer devices");
            deviceSelector = value;
        });
    map.AddInteger(registers::interface::DeviceSelectorMax, maximum);
    map.AddInteger(registers::interface::DeviceCount, [this] { return NumDevices(); });
    map.AddInteger(registers::interface::DeviceAccessStatusReg, [this] {
        return static_cast<std::uint64_t>(AccessStatusOf(*SelectedCamera()));
    });
    map.AddInteger(registers::interface::DeviceTLVersionMajor, system->TheLibrary().Facts().claimed.major);
    map.AddInteger(registers::interface::DeviceTLVersionMinor, system->TheLibrary().Facts().claimed.minor);
    map.AddInteger(registers::interface::GevDeviceMACAddress, [this] { return SelectedCamera()->Network().mac; });
    map.AddInteger(registers::interface::GevDeviceIPAddress, [this] { return SelectedCamera()->Network().ip; });
    map.AddInteger(registers::interface::GevDeviceSubnetMask, [this] { return SelectedCamera()->Network().mask; });
    map.AddText(registers::interface::DeviceID, [this] { return SelectedCamera()->Id(); });
    map.AddText(registers::interface::DeviceVendorName, [this] { return SelectedCamera()->Settings().vendor; });
    map.AddText(registers::interface::DeviceModelName, [this] { return SelectedCamera()->Settings().model; });
    map.AddText(registers::interface::DeviceSerialNumber, [this] { return SelectedCamera()->Settings().serial; });
    map.AddText(registers::interface::DeviceUserID, [this] { return SelectedCamera()->UserName(); });
}

std::shared_ptr<Camera> Interface::SelectedCamera() const
{
    auto camera = listed.Find(deviceSelector);
    if (!camera) throw Failure(GC_ERR_NOT_AVAILABLE, "the selected device is not listed");
    return camera;
}

DEVICE_ACCESS_STATUS Interface::AccessStatusOf(const Camera& camera) const
{
    if (const auto device = FindOpenDevice(camera.Id())) return device->AccessStatus();
    if (!camera.IsPresent()) return DEVICE_ACCESS_STATUS_NOACCESS;
    const auto& memory = camera.Features().Memory();
    return memory ? memory->Status() : DEVICE_ACCESS_STATUS_READWRITE;
}

bool Interface::UpdateDevices(std::uint64_t)
{
    const bool staysListed = system->TheLibrary().Connection().staysListed;
    std::vector<std::shared_ptr<Camera>> found;
    for (const auto& camera : model->cameras)
    {
        switch (camera->OnListUpdate())
        {
        case Camera::Finding::Here:
            found.push_back(camera);
            break;
        case Camera::Finding::Unplugged:
            if (staysListed) found.push_back(camera);
            system->Plugs().OnMissed(*camera);
            break;
        case Camera::Finding::Gone:
            if (const auto device = FindOpenDevice(camera->Id())) device->OnCameraLost();
            break;
        }
    }
    // A camera that has come back under another id is another device to those who read the list.
    return listed.Replace(std::move(found));
}

std::shared_ptr<Camera> Interface::FindCamera(const std::string& name) const
{
    for (const auto& camera : model->cameras)
        if (camera->AnswersTo(name) && (camera->IsPresent() || listed.Has(*camera) || FindOpenDevice(camera->Id())))
            return camera;
    throw Failure(GC_ERR_INVALID_ID, "there is no device '" + name + "'");
}

InfoValue Interface::DeviceInfoOf(const std::string& name, DEVICE_INFO_CMD command) const
{
    const auto camera = FindCamera(name);
    return FactsOf(*camera, camera->Id()).Info(AccessStatusOf(*camera), command);
}

std::shared_ptr<kit::Device> Interface::MakeDevice(const std::string& id, DEVICE_ACCESS_FLAGS access)
{
    const auto found = std::find_if(
        model->cameras.begin(), model->cameras.end(), [&](const auto& camera) { return camera->Id() == id; });
    if (found == model->cameras.end() || !(*found)->IsPresent()) throw Failure(GC_ERR_IO, "the camera is gone");
    return std::make_shared<Device>(std::static_pointer_cast<Interface>(shared_from_this()), *found, access);
}

std::shared_ptr<Device> Interface::FindOpenDevice(const std::string& id) const
{
    return std::static_pointer_cast<Device>(FindOpen(id));
}

void Interface::OnUnplugged(const Camera& camera, bool mayResume)
{
    const auto device = FindOpenDevice(camera.Id());
    if (!device) return;
    device->OnInterruption();
    if (!mayResume) device->OnCameraLost();
}

void Interface::OnReplugged(const Camera& camera)
{
    if (const auto device = FindOpenDevice(camera.Id())) device->OnRestoration();
}

} // namespace koro::simulator

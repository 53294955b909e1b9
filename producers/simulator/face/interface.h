// Interface: an open interface with the cameras on it; InterfaceModel: what of it outlives the opening.
#pragma once

#include "producers/kit/found_list.h"
#include "producers/kit/interface.h"
#include "producers/simulator/camera/camera.h"
#include "producers/simulator/kit.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace koro::simulator
{

class Device;
class System;

// Constant once the library is initialised but for the cameras' presence.
struct InterfaceModel : InterfaceFacts
{
    NetworkAddress network;
    std::vector<std::shared_ptr<Camera>> cameras;
};

class Interface final : public kit::Interface
{
public:
    Interface(std::shared_ptr<System> parentSystem, std::shared_ptr<const InterfaceModel> openedModel);

    System& TheSystem() const noexcept { return *system; }
    Port& ModulePort() override { return port; }

    bool UpdateDevices(std::uint64_t timeout_ms) override;
    std::size_t NumDevices() const override { return listed.Size(); }
    std::string DeviceIdAt(std::uint32_t index) const override { return listed.At(index)->Id(); }
    InfoValue DeviceInfoOf(const std::string& name, DEVICE_INFO_CMD command) const override;
    // Null when it is not open.
    std::shared_ptr<Device> FindOpenDevice(const std::string& id) const;
    // The camera's cable, when the camera is open.
    void OnUnplugged(const Camera& camera, bool mayResume);
    void OnReplugged(const Camera& camera);

private:
    std::string DeviceIdOf(const std::string& name) const override { return FindCamera(name)->Id(); }
    std::shared_ptr<kit::Device> MakeDevice(const std::string& id, DEVICE_ACCESS_FLAGS access) override;

    PortRegisters MakeRegisters();
    void AddDeviceRegisters(RegisterMap& map);
    // The camera that the selector of the description shows; GC_ERR_NOT_AVAILABLE when it is off the list.
    std::shared_ptr<Camera> SelectedCamera() const;
    DEVICE_ACCESS_STATUS AccessStatusOf(const Camera& camera) const;
    // Those present, and those that the list still shows.
    std::shared_ptr<Camera> FindCamera(const std::string& name) const;

    const std::shared_ptr<System> system;
    const std::shared_ptr<const InterfaceModel> model;
    Port port;
    FoundList<Camera> listed{"devices"};

    // Of the description; guarded by the lock of the registers.
    std::uint64_t deviceSelector = 0;
    std::uint64_t updateTimeout_ms = 1000;
};

} // namespace koro::simulator

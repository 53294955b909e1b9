// Interface: an open interface with the cameras on it; InterfaceModel: what of it outlives the opening.
#pragma once

#include "producers/kit/child_list.h"
#include "producers/simulator/camera/camera.h"
#include "producers/simulator/face/module.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace koro::simulator
{

class Device;
class System;

// Constant once the library is initialised but for the cameras' presence.
struct InterfaceModel
{
    std::string id;
    std::string displayName;
    std::string tlType;
    NetworkAddress network;
    std::vector<std::shared_ptr<Camera>> cameras;

    // IFGetInfo and TLGetInterfaceInfo.
    InfoValue Info(INTERFACE_INFO_CMD command) const;
};

class Interface final : public Module
{
public:
    Interface(std::shared_ptr<System> parentSystem, std::shared_ptr<const InterfaceModel> openedModel);

    const std::string& Id() const noexcept { return model->id; }
    const InterfaceModel& Model() const noexcept { return *model; }
    const std::shared_ptr<System>& Parent() const noexcept { return parent; }
    Port& ModulePort() override { return port; }

    // Whether the list differs from the one before.
    bool UpdateDevices();
    std::size_t NumDevices() const;
    std::string DeviceIdAt(std::uint32_t index) const;
    InfoValue DeviceInfoOf(const std::string& name, DEVICE_INFO_CMD command) const;
    std::shared_ptr<Device> OpenDevice(const std::string& name, DEVICE_ACCESS_FLAGS access);
    void Forget(const Device& device) { devices.Forget(device); }
    // Null when it is not open.
    std::shared_ptr<Device> FindOpenDevice(const std::string& id) const;
    // The camera's cable, when the camera is open.
    void OnUnplugged(const Camera& camera, bool mayResume);
    void OnReplugged(const Camera& camera);

private:
    void OnClose() override;

    PortRegisters MakeRegisters();
    void AddDeviceRegisters(RegisterMap& map);
    // The camera that the selector of the description shows; GC_ERR_NOT_AVAILABLE when it is off the list.
    std::shared_ptr<Camera> SelectedCamera() const;
    DEVICE_ACCESS_STATUS AccessStatusOf(const Camera& camera) const;
    bool IsListed(const Camera& camera) const;
    // Those present, and those that the list still shows.
    std::shared_ptr<Camera> FindCamera(const std::string& name) const;

    const std::shared_ptr<System> parent;
    const std::shared_ptr<const InterfaceModel> model;
    Port port;
    ChildList<Device> devices;
    std::vector<std::shared_ptr<Camera>> listed; // guarded by mutex; as of the last update
    std::vector<std::string> listedIds;          // guarded by mutex; theirs

    // Of the description; guarded by the lock of the registers.
    std::uint64_t deviceSelector = 0;
    std::uint64_t updateTimeout_ms = 1000;
};

} // namespace koro::simulator

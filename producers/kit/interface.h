// Interface: an open interface with the devices on it.
//
// A producer derives from it. The virtual functions are called on any thread, and the kit holds no lock, except
// in MakeDevice, where it holds the lock of the list of open devices.
#pragma once

#include "producers/kit/child_list.h"
#include "producers/kit/module.h"

#include <memory>
#include <string>

namespace koro::kit
{

class Device;
class System;

// What of an interface is known without opening it.
struct InterfaceFacts
{
    std::string id;
    std::string displayName;
    std::string tlType;

    const std::string& Id() const noexcept { return id; }
    // IFGetInfo and TLGetInterfaceInfo.
    InfoValue Info(INTERFACE_INFO_CMD command) const;
};

class Interface : public Module
{
public:
    Interface(std::shared_ptr<System> parentSystem, std::shared_ptr<const InterfaceFacts> interfaceFacts)
        : parent(std::move(parentSystem)), facts(std::move(interfaceFacts))
    {}

    const std::string& Id() const noexcept { return facts->id; }
    InfoValue Info(INTERFACE_INFO_CMD command) const { return facts->Info(command); }
    const std::shared_ptr<System>& Parent() const noexcept { return parent; }

    // Whether the list differs from the one before; it is empty until the first update.
    virtual bool UpdateDevices(std::uint64_t timeout_ms) = 0;
    virtual std::size_t NumDevices() const = 0;
    // Throws GC_ERR_INVALID_INDEX.
    virtual std::string DeviceIdAt(std::uint32_t index) const = 0;
    // By any name that the producer takes, listed or not. Throws GC_ERR_INVALID_ID.
    virtual InfoValue DeviceInfoOf(const std::string& name, DEVICE_INFO_CMD command) const = 0;
    std::shared_ptr<Device> OpenDevice(const std::string& name, DEVICE_ACCESS_FLAGS access);

protected:
    // The id under which a device of that name is open or would be. Throws GC_ERR_INVALID_ID.
    virtual std::string DeviceIdOf(const std::string& name) const = 0;
    virtual std::shared_ptr<Device> MakeDevice(const std::string& id, DEVICE_ACCESS_FLAGS access) = 0;
    void OnClose() override;

    // Null when it is not open.
    std::shared_ptr<Device> FindOpen(const std::string& id) const;

private:
    friend class Device;
    void Forget(const Device& device);

    const std::shared_ptr<System> parent;
    const std::shared_ptr<const InterfaceFacts> facts;
    ChildList<Device> open;
};

} // namespace koro::kit

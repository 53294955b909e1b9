// DiscoveringInterface: an interface whose devices are found, and known by their facts before they are opened.
#pragma once

#include "producers/kit/device.h"
#include "producers/kit/found_list.h"
#include "producers/kit/interface.h"

#include <memory>
#include <string>

namespace koro::kit
{

class DiscoveringInterface : public Interface
{
public:
    using Devices = FoundList<const DeviceFacts>::Entries;
    using Interface::Interface;

    bool UpdateDevices(std::uint64_t timeout_ms) override { return listed.Replace(PresentDevices(timeout_ms)); }
    std::size_t NumDevices() const override { return listed.Size(); }
    std::string DeviceIdAt(std::uint32_t index) const override { return listed.At(index)->id; }
    InfoValue DeviceInfoOf(const std::string& name, DEVICE_INFO_CMD command) const override;

protected:
    // Those that are there now, within that time.
    virtual Devices PresentDevices(std::uint64_t timeout_ms) const = 0;
    virtual std::shared_ptr<Device> OpenFound(
        const std::shared_ptr<const DeviceFacts>& found, DEVICE_ACCESS_FLAGS access) = 0;
    // Of a device that is not open here.
    virtual DEVICE_ACCESS_STATUS StatusOf(const DeviceFacts&) const { return DEVICE_ACCESS_STATUS_READWRITE; }

private:
    std::string DeviceIdOf(const std::string& name) const override { return FindDevice(name)->id; }
    std::shared_ptr<Device> MakeDevice(const std::string& id, DEVICE_ACCESS_FLAGS access) override
    {
        return OpenFound(FindDevice(id), access);
    }
    // By id, serial number or user name, of those that the list shows or that are there.
    std::shared_ptr<const DeviceFacts> FindDevice(const std::string& name) const;

    FoundList<const DeviceFacts> listed{"devices"};
};

} // namespace koro::kit

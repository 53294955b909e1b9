// UpdatableDevice: the device object of an update over a scripted camera, by a clock of the test's own.
#pragma once

#include "base/exceptions.h"
#include "firmware/firmware_updatable_device.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_firmware.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/firmware/scripted_clock.h"
#include "tests/unit/modules/open_objects.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace koro::test
{

class UpdatableDevice : public testing::Test
{
protected:
    using Strings = std::vector<std::string>;

    UpdatableDevice()
    {
        objects.stream.reset();
        objects.remoteDevice.reset();
        objects.device.reset();
        EditDevices([](Devices& devices) {
            for (auto& camera : devices)
            {
                firmware::MakeUpdatable(*camera);
                camera->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Text("4711" + camera->id.substr(7));
            }
        });
        objects.producer->ClearJournal();
    }

    using Devices = std::vector<std::shared_ptr<scripted::Device>>;
    void EditDevices(const std::function<void(Devices&)>& edit) const
    {
        objects.producer->Edit([&](scripted::Tree& edited) { edit(edited.interfaces[0]->devices); });
    }

    // A device object as an update makes it.
    internal::FirmwareUpdatableDevice& Device(std::uint64_t resetTimeout_ms = 1000)
    {
        device = std::make_unique<internal::FirmwareUpdatableDevice>(objects.deviceDescriptor, resetTimeout_ms, clock);
        return *device;
    }
    internal::FirmwareUpdatableDevice& Prepared(std::uint64_t resetTimeout_ms = 1000)
    {
        Device(resetTimeout_ms).PrepareForFirmwareUpdate();
        objects.producer->ClearJournal();
        return *device;
    }
    GENAPI_NAMESPACE::INodeMap* Reset(unsigned int firstWait_ms = 0)
    {
        return device->DeviceResetWhileUpdatingFirmware(12345, firstWait_ms);
    }

    // The first device leaves the tree when it is closed for a reset, and comes back at the n-th list update.
    void GoAwayUntilUpdate(int count)
    {
        objects.producer->OnEntry("DevClose", [this] {
            EditDevices([this](Devices& devices) {
                if (away) return;
                away = devices.front();
                devices.erase(devices.begin());
            });
        });
        objects.producer->OnEntry("IFUpdateDeviceList", [this, count] {
            if (++updates == count) EditDevices([this](Devices& devices) { devices.insert(devices.begin(), away); });
        });
    }

    std::string Retries(std::size_t index = 0) const
    {
        std::uint32_t value = 0;
        EditDevices([&](Devices& devices) { value = firmware::RegisterOf(devices.at(index)->port, 0); });
        return std::to_string(value);
    }
    Strings Calls(const Strings& functions) const { return CallsOf(objects.producer->Journal(), functions); }
    Strings OpenedDevices() const
    {
        Strings opened;
        for (const auto& id : objects.producer->Open())
            if (id.find("-dev") != std::string::npos) opened.push_back(id);
        return opened;
    }

    static auto NotReopened(std::uint64_t timeout_ms, const std::string& key)
    {
        return ThrowsExactly<internal::TimeoutException>(
            "Device could not be reopened within " + std::to_string(timeout_ms) +
            " ms after reset (Device Key: " + key + ")!");
    }
    std::string Key() const { return objects.deviceDescriptor->Key(); }

    OpenObjects objects;
    ScriptedClock clock;
    std::unique_ptr<internal::FirmwareUpdatableDevice> device;
    std::shared_ptr<scripted::Device> away;
    int updates = 0;
};

// Lines of the journal.
inline const std::string listUpdate = "IFUpdateDeviceList(if0, 200)";
inline const std::string openFirst = "IFOpenDevice(if0, if0-dev0, 3)";
inline const std::string openSecond = "IFOpenDevice(if0, if0-dev1, 3)";

} // namespace koro::test

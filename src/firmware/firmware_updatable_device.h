// FirmwareUpdatableDevice: the device to which the runtime applies an update. It opens and prepares the device, and
// finds it again after resets.
//
// Exists during one update, on the caller's thread, and keeps the device open meanwhile. No lock is held while it
// searches. Failures pass unchanged; a missing node map is the standard out-of-range failure.
#pragma once

#include "firmware/search_clock.h"

#include <FirmwareUpdate/FirmwareUpdatableDevice.h>
#include <cstdint>
#include <memory>
#include <string>

namespace koro::internal
{

class Device;
class DeviceDescriptor;
class Interface;

class FirmwareUpdatableDevice final : public GENAPI_NAMESPACE::IFirmwareUpdatableDevice
{
public:
    // Queries the descriptor for the identification of the device. The clock outlives this object.
    FirmwareUpdatableDevice(
        std::shared_ptr<DeviceDescriptor> descriptor, std::uint64_t timeout_ms, SearchClock& searchClock);

    void PrepareForFirmwareUpdate() override;
    // Returns the camera's map, which is valid until the next reset.
    GENAPI_NAMESPACE::INodeMap* GetNodeMapOfDeviceToUpdate() override;
    // Releases the device and opens the first device of the interface that has its serial number. Throws
    // TimeoutException when none returns in time; the device stays closed then.
    GENAPI_NAMESPACE::INodeMap* DeviceResetWhileUpdatingFirmware(
        unsigned int estimatedDuration_ms, unsigned int firstWait_ms) override;
    void CleanupAfterFirmwareUpdate() override {}
    GENICAM_NAMESPACE::gcstring GetDisplayName() override;

private:
    void LimitControlChannelRetries();
    void ExecuteReset();
    std::shared_ptr<Device> Reopen(
        std::uint64_t firstWait_ms, std::uint64_t timeout_ms, std::uint64_t interval_ms,
        std::uint64_t updateTimeout_ms);
    std::shared_ptr<Device> Search(std::uint64_t updateTimeout_ms) const;
    std::shared_ptr<Device> TryOpen(DeviceDescriptor& candidate) const;

    const std::shared_ptr<DeviceDescriptor> deviceDescriptor;
    std::shared_ptr<Device> device; // empty until it is opened, and during a search
    const std::string serialNumber; // to find it again
    const std::string displayName;
    const std::string key;                      // for messages
    std::shared_ptr<Interface> parentInterface; // set when the device is opened; survives its loss
    const std::uint64_t resetTimeout_ms;
    SearchClock& clock;
};

} // namespace koro::internal

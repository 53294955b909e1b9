// FirmwareUpdater: reads update files, and applies one update to one device.
//
// Owned by the handle table. Thread-safe; reading a file and updating run on the caller's thread until they are done,
// and no lock is held meanwhile. GenICam exceptions are translated, standard exceptions leave as
// InternalErrorException.
#pragma once

#include "base/instance.h"
#include "firmware/firmware_update_information_collector.h"
#include "firmware/search_clock.h"

#include <FirmwareUpdate/FirmwareUpdater.h>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace koro::internal
{

class DeviceDescriptor;
class FirmwareUpdateInformation;
class FirmwareUpdateProgressObserver;

class FirmwareUpdater final : public Instance
{
public:
    explicit FirmwareUpdater(std::shared_ptr<SearchClock> searchClock = std::make_shared<SearchClock>())
        : clock(std::move(searchClock))
    {}

    // Each call replaces the previous updates; a failure does not change them. The second function opens the device
    // while it runs and collects the updates that fit it.
    void CollectAllFirmwareUpdateInformation(const std::string& updateFilePath);
    void CollectFirmwareUpdateInformation(
        const std::string& updateFilePath, const std::shared_ptr<DeviceDescriptor>& deviceDescriptor);

    // The updates that were collected last, in the order of the file.
    std::vector<std::shared_ptr<internal::FirmwareUpdateInformation>> FirmwareUpdateInformation() const;

    // Opens the device and closes it at the end. The observer may be empty. Throws TimeoutException when the device
    // does not return from a reset in time.
    void UpdateDevice(
        const std::shared_ptr<DeviceDescriptor>& deviceDescriptor,
        const std::shared_ptr<internal::FirmwareUpdateInformation>& information,
        const std::shared_ptr<FirmwareUpdateProgressObserver>& observer, std::uint64_t resetTimeout_ms);

private:
    void Read(const std::string& updateFilePath, FirmwareUpdateInformationCollector& collector);

    const std::shared_ptr<SearchClock> clock; // for tests
    GENAPI_NAMESPACE::CFirmwareUpdater firmwareUpdater;
    std::vector<std::shared_ptr<internal::FirmwareUpdateInformation>> updateInformation;
    mutable std::mutex updateInformationMutex; // guards only the array
};

} // namespace koro::internal

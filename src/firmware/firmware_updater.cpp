#include "firmware/firmware_updater.h"

#include "base/exceptions.h"
#include "firmware/firmware_updatable_device.h"
#include "firmware/firmware_update_information.h"
#include "firmware/genapi_firmware_update_progress_observer.h"
#include "modules/device.h"
#include "modules/device_descriptor.h"
#include "nodes/text.h"
#include "nodes/translate_genapi_exceptions.h"

#include <optional>

namespace koro::internal
{

namespace
{

void CheckDescriptor(const std::shared_ptr<DeviceDescriptor>& deviceDescriptor)
{
    if (!deviceDescriptor) throw InvalidArgumentException("Device is an empty shared pointer!");
}

} // namespace

void FirmwareUpdater::CollectAllFirmwareUpdateInformation(const std::string& updateFilePath)
{
    InBothLayers([&] {
        FirmwareUpdateInformationCollector collector;
        Read(updateFilePath, collector);
    });
}

void FirmwareUpdater::CollectFirmwareUpdateInformation(
    const std::string& updateFilePath, const std::shared_ptr<DeviceDescriptor>& deviceDescriptor)
{
    InBothLayers([&] {
        CheckDescriptor(deviceDescriptor);
        FirmwareUpdateInformationCollector collector(deviceDescriptor->OpenDevice(GenTL::DEVICE_ACCESS_CONTROL));
        Read(updateFilePath, collector);
    });
}

std::vector<std::shared_ptr<FirmwareUpdateInformation>> FirmwareUpdater::FirmwareUpdateInformation() const
{
    const std::lock_guard lock(updateInformationMutex);
    return updateInformation;
}

// The update is not matched with the device again: it may be applied to any device, and its own conditions decide.
void FirmwareUpdater::UpdateDevice(
    const std::shared_ptr<DeviceDescriptor>& deviceDescriptor,
    const std::shared_ptr<internal::FirmwareUpdateInformation>& information,
    const std::shared_ptr<FirmwareUpdateProgressObserver>& observer, std::uint64_t resetTimeout_ms)
{
    InBothLayers([&] {
        CheckDescriptor(deviceDescriptor);
        if (!information) throw InvalidArgumentException("UpdateInfo is an empty shared pointer!");

        FirmwareUpdatableDevice device(deviceDescriptor, resetTimeout_ms, *clock);
        std::optional<GenApiFirmwareUpdateProgressObserver> told;
        if (observer) told.emplace(observer);
        firmwareUpdater.ApplyUpdate(&device, information->GenApiInformation(), told ? &*told : nullptr, nullptr);
    });
}

void FirmwareUpdater::Read(const std::string& updateFilePath, FirmwareUpdateInformationCollector& collector)
{
    firmwareUpdater.ReadFirmwareUpdateInfos(ToGenApiText(updateFilePath), collector, nullptr);
    auto found = collector.TakeUpdates();
    // The previous updates are released after the lock.
    const std::lock_guard lock(updateInformationMutex);
    updateInformation.swap(found);
}

} // namespace koro::internal

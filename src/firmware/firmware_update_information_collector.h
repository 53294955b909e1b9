// FirmwareUpdateInformationCollector: receives the updates of a file while the runtime reads it: all of them, or those
// that fit one device.
//
// Exists during one call.
#pragma once

#include <FirmwareUpdate/FirmwareUpdateInfoCollector.h>
#include <FirmwareUpdate/FirmwareUpdater.h>
#include <memory>
#include <vector>

namespace koro::internal
{

class Device;
class FirmwareUpdateInformation;

class FirmwareUpdateInformationCollector final : public GENAPI_NAMESPACE::IFirmwareUpdateInfoCollector
{
public:
    using Updates = std::vector<std::shared_ptr<FirmwareUpdateInformation>>;

    FirmwareUpdateInformationCollector() = default;
    // Keeps the device open. Throws std::out_of_range when its remote device has no node map.
    explicit FirmwareUpdateInformationCollector(std::shared_ptr<Device> matchedDevice);

    // Always returns true: reading continues after an update that does not fit.
    bool OnUpdateRead(const GENAPI_NAMESPACE::CFirmwareUpdateInfo& info) override;

    // In the order of the file.
    Updates TakeUpdates() { return std::move(updates); }

private:
    const std::shared_ptr<Device> device;
    Updates updates;
    GENAPI_NAMESPACE::INodeMap* const remoteNodeMap = nullptr; // null: every update fits
    const GENAPI_NAMESPACE::CFirmwareUpdater updater;
};

} // namespace koro::internal

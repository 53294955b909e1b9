#include "firmware/firmware_updater.h"

#include "base/ending_scope.h"
#include "base/hold.h"
#include "capi/arguments.h"
#include "firmware/firmware_update_information.h"
#include "firmware/firmware_update_progress_observer.h"
#include "modules/device_descriptor.h"
#include <koro/firmware_updater.h>

#include <memory>

using namespace koro::internal;

namespace
{

constexpr std::uint64_t defaultResetTimeout_ms = 60'000;

EndingScope::Objects ObjectsAbove(const Hold& hold)
{
    EndingScope::Objects above;
    for (auto next = hold.HoldAbove(); next; next = next->HoldAbove())
        above.push_back(&next->Object());
    return above;
}

} // namespace

KORO_ReturnCode KORO_FirmwareUpdater_Construct(KORO_FirmwareUpdaterHandle* firmwareUpdaterHandle)
{
    return ExecuteAndMapExceptions([&] {
        if (!firmwareUpdaterHandle) return InvalidPointer(KORO_ARG(firmwareUpdaterHandle));
        *firmwareUpdaterHandle = Table<FirmwareUpdater>().Add(std::make_shared<FirmwareUpdater>());
        return success;
    });
}

KORO_ReturnCode KORO_FirmwareUpdater_Destruct(KORO_FirmwareUpdaterHandle firmwareUpdaterHandle)
{
    return Destruct(KORO_ARG(firmwareUpdaterHandle));
}

KORO_ReturnCode KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, const char* updateFilePath, size_t updateFilePathSize)
{
    return WithObject(KORO_ARG(firmwareUpdaterHandle), [&](const auto& updater) {
        if (!updateFilePath) return InvalidPointer(KORO_ARG(updateFilePath));
        updater->CollectAllFirmwareUpdateInformation(TextArgument(updateFilePath, updateFilePathSize));
        return success;
    });
}

KORO_ReturnCode KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, const char* updateFilePath, size_t updateFilePathSize,
    KORO_DeviceDescriptorHandle deviceDescriptorHandle)
{
    return WithObject(KORO_ARG(firmwareUpdaterHandle), [&](const auto& updater) {
        const auto descriptor = Find(deviceDescriptorHandle);
        if (!descriptor) return InvalidHandle(KORO_ARG(deviceDescriptorHandle));
        if (!updateFilePath) return InvalidPointer(KORO_ARG(updateFilePath));
        updater->CollectFirmwareUpdateInformation(TextArgument(updateFilePath, updateFilePathSize), descriptor->Get());
        return success;
    });
}

KORO_ReturnCode KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, size_t* numFirmwareUpdateInformation)
{
    return GetScalar(KORO_ARG(firmwareUpdaterHandle), KORO_ARG(numFirmwareUpdateInformation), [](const auto& updater) {
        return updater.FirmwareUpdateInformation().size();
    });
}

KORO_ReturnCode KORO_FirmwareUpdater_GetFirmwareUpdateInformation(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, size_t index,
    KORO_FirmwareUpdateInformationHandle* firmwareUpdateInformationHandle)
{
    return GetIndexed(
        KORO_ARG(firmwareUpdaterHandle), index, KORO_ARG(firmwareUpdateInformationHandle),
        &FirmwareUpdater::FirmwareUpdateInformation, [](const auto& updater, const auto& information) {
            return Table<FirmwareUpdateInformation>().Add(information, updater);
        });
}

KORO_ReturnCode KORO_FirmwareUpdater_UpdateDevice(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, KORO_DeviceDescriptorHandle deviceDescriptorHandle,
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle)
{
    return KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout(
        firmwareUpdaterHandle, deviceDescriptorHandle, firmwareUpdateInformationHandle,
        firmwareUpdateProgressObserverHandle, defaultResetTimeout_ms);
}

// Only the observer's handle may be null.
KORO_ReturnCode KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout(
    KORO_FirmwareUpdaterHandle firmwareUpdaterHandle, KORO_DeviceDescriptorHandle deviceDescriptorHandle,
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle,
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle, uint64_t resetTimeout_ms)
{
    return WithObject(KORO_ARG(firmwareUpdaterHandle), [&](const auto& updater) {
        const auto descriptor = Find(deviceDescriptorHandle);
        if (!descriptor) return InvalidHandle(KORO_ARG(deviceDescriptorHandle));
        const auto information = Find(firmwareUpdateInformationHandle);
        if (!information) return InvalidHandle(KORO_ARG(firmwareUpdateInformationHandle));
        const auto observer = Find(firmwareUpdateProgressObserverHandle);
        if (firmwareUpdateProgressObserverHandle && !observer)
            return InvalidHandle(KORO_ARG(firmwareUpdateProgressObserverHandle));

        const EndingScope scope(ObjectsAbove(*descriptor)); // the update continues when they are ended
        updater->UpdateDevice(
            descriptor->Get(), information->Get(), observer ? observer->Get() : nullptr, resetTimeout_ms);
        return success;
    });
}

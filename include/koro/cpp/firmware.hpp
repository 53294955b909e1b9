// Firmware updates: the contents of an update file, applying an update to a camera, and observing the update.
//
// Programs include <koro/koro.hpp>, which includes this header.
#ifndef KORO_CPP_FIRMWARE_HPP
#define KORO_CPP_FIRMWARE_HPP

#include <koro/cpp/callbacks.hpp>
#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace koro
{

// The information about one update. A view: it ends with the updater that found it, or with the observer that received
// it at the start of the update.
class FirmwareUpdateInformation : public detail::View<KORO_FirmwareUpdateInformationHandle>
{
public:
    using View::View;

    bool IsValid() const { return detail::Flag(KORO_FirmwareUpdateInformation_GetIsValid, Get()); }
    std::string FileName() const { return detail::Text(KORO_FirmwareUpdateInformation_GetFileName, Get()); }
    // A text that is missing in the file is empty.
    std::string Description() const { return detail::Text(KORO_FirmwareUpdateInformation_GetDescription, Get()); }
    std::string Version() const { return detail::Text(KORO_FirmwareUpdateInformation_GetVersion, Get()); }
    std::string VersionExtractionPattern() const
    {
        return detail::Text(KORO_FirmwareUpdateInformation_GetVersionExtractionPattern, Get());
    }
    std::string ReleaseNotes() const { return detail::Text(KORO_FirmwareUpdateInformation_GetReleaseNotes, Get()); }
    std::string ReleaseNotesURL() const
    {
        return detail::Text(KORO_FirmwareUpdateInformation_GetReleaseNotesURL, Get());
    }
    // Always 0, regardless of the file, like the two functions below.
    KORO_FirmwareUpdateVersionStyle VersionStyle() const
    {
        return detail::Get(KORO_FirmwareUpdateInformation_GetVersionStyle, Get());
    }
    KORO_FirmwareUpdatePersistence UserSetPersistence() const
    {
        return detail::Get(KORO_FirmwareUpdateInformation_GetUserSetPersistence, Get());
    }
    KORO_FirmwareUpdatePersistence SequencerSetPersistence() const
    {
        return detail::Get(KORO_FirmwareUpdateInformation_GetSequencerSetPersistence, Get());
    }
};

// Observes updates. The functions run one at a time, on the thread that updates and within its call. They must not
// throw and must not make or end registrations of their own kind. Each Registration must end before its observer.
class FirmwareUpdateProgressObserver
    : public detail::Owner<KORO_FirmwareUpdateProgressObserverHandle, KORO_FirmwareUpdateProgressObserver_Destruct>
{
public:
    using StartedFunction = std::function<void(FirmwareUpdateInformation update, uint32_t expectedDuration_ms)>;
    using StepStartedFunction =
        std::function<void(KORO_FirmwareUpdateStep step, uint32_t expectedDuration_ms, const std::string& description)>;
    using StepProgressFunction = std::function<void(KORO_FirmwareUpdateStep step, double percent)>;
    using StepFinishedFunction = std::function<void(KORO_FirmwareUpdateStep step)>;
    using FinishedFunction = std::function<void()>;
    using FailedFunction = std::function<void(const std::string& error)>;

    FirmwareUpdateProgressObserver() : Owner(Construct()) {}

    [[nodiscard]] Registration OnStarted(StartedFunction function) const
    {
        return detail::Register(
            KORO_FirmwareUpdateProgressObserver_RegisterUpdateStartedCallback,
            KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback, Get(), &CallStarted,
            std::move(function));
    }
    [[nodiscard]] Registration OnStepStarted(StepStartedFunction function) const
    {
        return detail::Register(
            KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepStartedCallback,
            KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepStartedCallback, Get(), &CallStepStarted,
            std::move(function));
    }
    [[nodiscard]] Registration OnStepProgress(StepProgressFunction function) const
    {
        return detail::Register(
            KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepProgressChangedCallback,
            KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepProgressChangedCallback, Get(), &CallStepProgress,
            std::move(function));
    }
    [[nodiscard]] Registration OnStepFinished(StepFinishedFunction function) const
    {
        return detail::Register(
            KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepFinishedCallback,
            KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepFinishedCallback, Get(), &CallStepFinished,
            std::move(function));
    }
    [[nodiscard]] Registration OnFinished(FinishedFunction function) const
    {
        return detail::Register(
            KORO_FirmwareUpdateProgressObserver_RegisterUpdateFinishedCallback,
            KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFinishedCallback, Get(), &CallFinished,
            std::move(function));
    }
    [[nodiscard]] Registration OnFailed(FailedFunction function) const
    {
        return detail::Register(
            KORO_FirmwareUpdateProgressObserver_RegisterUpdateFailedCallback,
            KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFailedCallback, Get(), &CallFailed,
            std::move(function));
    }

private:
    static KORO_FirmwareUpdateProgressObserverHandle Construct()
    {
        KORO_FirmwareUpdateProgressObserverHandle observer{};
        detail::Check(KORO_FirmwareUpdateProgressObserver_Construct(&observer));
        return observer;
    }

    // Sizes of texts count the terminating zero.
    static std::string TextOf(const char* text, size_t size) { return std::string(text, size > 0 ? size - 1 : 0); }

    static void CallStarted(
        KORO_FirmwareUpdateInformationHandle update, uint32_t expectedDuration_ms, void* context) noexcept
    {
        detail::CallKept<StartedFunction>(context, FirmwareUpdateInformation(update), expectedDuration_ms);
    }
    static void CallStepStarted(
        KORO_FirmwareUpdateStep step, uint32_t expectedDuration_ms, const char* description, size_t descriptionSize,
        void* context) noexcept
    {
        detail::CallKept<StepStartedFunction>(context, step, expectedDuration_ms, TextOf(description, descriptionSize));
    }
    static void CallStepProgress(KORO_FirmwareUpdateStep step, double percent, void* context) noexcept
    {
        detail::CallKept<StepProgressFunction>(context, step, percent);
    }
    static void CallStepFinished(KORO_FirmwareUpdateStep step, void* context) noexcept
    {
        detail::CallKept<StepFinishedFunction>(context, step);
    }
    static void CallFinished(void* context) noexcept { detail::CallKept<FinishedFunction>(context); }
    static void CallFailed(const char* error, size_t errorSize, void* context) noexcept
    {
        detail::CallKept<FailedFunction>(context, TextOf(error, errorSize));
    }
};

// Reads update files and applies an update.
class FirmwareUpdater : public detail::Owner<KORO_FirmwareUpdaterHandle, KORO_FirmwareUpdater_Destruct>
{
public:
    using CameraView = detail::View<KORO_DeviceDescriptorHandle>; // a DeviceDescriptor

    FirmwareUpdater() : Owner(Construct()) {}

    // The first function collects all updates of the file, the second only those that fit the camera, which must not be
    // open.
    std::vector<FirmwareUpdateInformation> Collect(const std::string& updateFilePath) const
    {
        detail::Check(KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(
            Get(), updateFilePath.c_str(), updateFilePath.size() + 1));
        return Found();
    }
    std::vector<FirmwareUpdateInformation> Collect(const std::string& updateFilePath, const CameraView& camera) const
    {
        detail::Check(KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(
            Get(), updateFilePath.c_str(), updateFilePath.size() + 1, camera.Get()));
        return Found();
    }
    // The updates of the last collection that succeeded.
    std::vector<FirmwareUpdateInformation> Found() const
    {
        return detail::Children<FirmwareUpdateInformation>(
            KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation, KORO_FirmwareUpdater_GetFirmwareUpdateInformation,
            Get());
    }

    // Updates the camera and returns when the update is done. Throws Error with KORO_RETURN_CODE_TIMEOUT when the
    // camera does not return from a reset in time, by default within one minute. The camera must not be open. Its
    // descriptor may end during the update; get it again afterwards.
    void Update(const CameraView& camera, FirmwareUpdateInformation update) const
    {
        detail::Check(KORO_FirmwareUpdater_UpdateDevice(
            Get(), camera.Get(), update.Get(), KORO_FirmwareUpdateProgressObserverHandle{}));
    }
    void Update(const CameraView& camera, FirmwareUpdateInformation update, uint64_t resetTimeout_ms) const
    {
        Update(camera, update, KORO_FirmwareUpdateProgressObserverHandle{}, resetTimeout_ms);
    }
    void Update(
        const CameraView& camera, FirmwareUpdateInformation update,
        const FirmwareUpdateProgressObserver& observer) const
    {
        detail::Check(KORO_FirmwareUpdater_UpdateDevice(Get(), camera.Get(), update.Get(), observer.Get()));
    }
    void Update(
        const CameraView& camera, FirmwareUpdateInformation update, const FirmwareUpdateProgressObserver& observer,
        uint64_t resetTimeout_ms) const
    {
        Update(camera, update, observer.Get(), resetTimeout_ms);
    }

private:
    static KORO_FirmwareUpdaterHandle Construct()
    {
        KORO_FirmwareUpdaterHandle updater{};
        detail::Check(KORO_FirmwareUpdater_Construct(&updater));
        return updater;
    }

    void Update(
        const CameraView& camera, FirmwareUpdateInformation update, KORO_FirmwareUpdateProgressObserverHandle observer,
        uint64_t resetTimeout_ms) const
    {
        detail::Check(KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout(
            Get(), camera.Get(), update.Get(), observer, resetTimeout_ms));
    }
};

} // namespace koro

#endif

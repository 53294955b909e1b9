// FirmwareTest: a scripted camera that can be updated, an updater, and an observer that records its reports.
#pragma once

#include "tests/boundary/producer_errors.h"
#include "tests/boundary/tree_test.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_firmware.h"

#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace koro::test
{

inline const std::string fittingCondition = "<Condition Feature=\"DeviceVendorName\">Acme</Condition>";

// An update that fits where the vendor's name does.
inline std::string UpdateOf(const std::string& version, const std::string& vendor = "Acme")
{
    return Update(
        Entry("Version", version) + Entry("Description", "Update " + version),
        "<Condition Feature=\"DeviceVendorName\">" + vendor + "</Condition>");
}

// An update file with one update that runs the steps.
inline UpdateFileOnDisk FileWithSteps(const std::string& steps, const Files& files = {})
{
    return WithControl(Control(Procedure(steps) + UpdateOf("2.0")), files);
}

// A text as callbacks are given it.
inline std::string TextOf(const char* text, std::size_t size)
{
    EXPECT_EQ(text[size - 1], '\0');
    return {text, size - 1};
}

// Registered for all six reports, on an observer of its own.
class ToldObserver
{
public:
    ToldObserver()
    {
        Require(KORO_FirmwareUpdateProgressObserver_Construct(&handle));
        void* const self = this;
        KORO_FirmwareUpdateStartedCallbackHandle started = nullptr;
        Require(KORO_FirmwareUpdateProgressObserver_RegisterUpdateStartedCallback(handle, Started, self, &started));
        KORO_FirmwareUpdateStepStartedCallbackHandle step = nullptr;
        Require(KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepStartedCallback(handle, Step, self, &step));
        KORO_FirmwareUpdateStepProgressChangedCallbackHandle progress = nullptr;
        Require(KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepProgressChangedCallback(
            handle, Progress, self, &progress));
        KORO_FirmwareUpdateStepFinishedCallbackHandle stepFinished = nullptr;
        Require(KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepFinishedCallback(
            handle, StepFinished, self, &stepFinished));
        Require(KORO_FirmwareUpdateProgressObserver_RegisterUpdateFinishedCallback(handle, Finished, self, &finished));
        KORO_FirmwareUpdateFailedCallbackHandle failed = nullptr;
        Require(KORO_FirmwareUpdateProgressObserver_RegisterUpdateFailedCallback(handle, Failed, self, &failed));
    }
    ToldObserver(const ToldObserver&) = delete;
    ToldObserver& operator=(const ToldObserver&) = delete;

    KORO_FirmwareUpdateProgressObserverHandle handle = nullptr;
    std::vector<std::string> reports;
    KORO_FirmwareUpdateInformationHandle information = nullptr; // of the update that was started last
    KORO_FirmwareUpdateFinishedCallbackHandle finished = nullptr;
    std::function<void(const std::string& report)> onReport;

private:
    static void Tell(void* context, const std::string& report)
    {
        auto& self = *static_cast<ToldObserver*>(context);
        self.reports.push_back(report);
        if (self.onReport) self.onReport(report);
    }
    static void Started(
        KORO_FirmwareUpdateInformationHandle information, std::uint32_t expectedDuration_ms, void* context)
    {
        static_cast<ToldObserver*>(context)->information = information;
        Tell(
            context, "started " + GetText(KORO_FirmwareUpdateInformation_GetVersion, information) + ", " +
                         std::to_string(expectedDuration_ms) + " ms");
    }
    static void Step(
        KORO_FirmwareUpdateStep step, std::uint32_t expectedDuration_ms, const char* description,
        std::size_t descriptionSize, void* context)
    {
        Tell(
            context, "step " + std::to_string(step) + ", " + std::to_string(expectedDuration_ms) + " ms: '" +
                         TextOf(description, descriptionSize) + "'");
    }
    static void Progress(KORO_FirmwareUpdateStep step, double progress, void* context)
    {
        std::ostringstream report;
        report << "step " << step << " at " << progress << " %";
        Tell(context, report.str());
    }
    static void StepFinished(KORO_FirmwareUpdateStep step, void* context)
    {
        Tell(context, "step " + std::to_string(step) + " finished");
    }
    static void Finished(void* context) { Tell(context, "finished"); }
    static void Failed(const char* errorDescription, std::size_t errorDescriptionSize, void* context)
    {
        Tell(context, "failed: " + TextOf(errorDescription, errorDescriptionSize));
    }
};

class FirmwareTest : public TreeTest
{
protected:
    using Strings = std::vector<std::string>;
    using Information = KORO_FirmwareUpdateInformationHandle;

    FirmwareTest()
    {
        Require(KORO_Device_Destruct(tree.device));
        EditDevices([](Devices& devices) { firmware::MakeUpdatable(*devices[0]); });
        Require(KORO_FirmwareUpdater_Construct(&updater));
        producer->ClearJournal();
    }

    using Devices = std::vector<std::shared_ptr<scripted::Device>>;
    void EditDevices(const std::function<void(Devices&)>& edit) const
    {
        producer->Edit([&](scripted::Tree& edited) { edit(edited.interfaces[0]->devices); });
    }

    KORO_ReturnCode CollectAll(const std::string& path) const
    {
        return KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(updater, path.c_str(), path.size() + 1);
    }
    KORO_ReturnCode Collect(const std::string& path) const
    {
        return KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(
            updater, path.c_str(), path.size() + 1, tree.deviceDescriptor);
    }
    std::size_t NumFound() const
    {
        return Get<std::size_t>(KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation, updater);
    }
    Information Found(std::size_t index = 0) const
    {
        return Get<Information>(KORO_FirmwareUpdater_GetFirmwareUpdateInformation, updater, index);
    }
    Strings VersionsFound() const
    {
        Strings versions;
        for (std::size_t index = 0; index < NumFound(); ++index)
            versions.push_back(GetText(KORO_FirmwareUpdateInformation_GetVersion, Found(index)));
        return versions;
    }

    // The first update of the file, applied to the camera.
    Error Apply(const UpdateFileOnDisk& file, std::uint64_t resetTimeout_ms = 0) const
    {
        Require(CollectAll(file.path));
        return Outcome(KORO_FirmwareUpdater_UpdateDeviceWithResetTimeout(
            updater, tree.deviceDescriptor, Found(), observer.handle, resetTimeout_ms));
    }

    std::uint32_t Gain(std::size_t camera = 0) const
    {
        std::uint32_t gain = 0;
        EditDevices([&](Devices& devices) {
            gain = firmware::RegisterOf(devices.at(camera)->remotePort, firmware::gainAddress);
        });
        return gain;
    }
    Strings Calls(const Strings& functions) const { return CallsOf(producer->Journal(), functions); }

    KORO_FirmwareUpdaterHandle updater = nullptr;
    ToldObserver observer;
};

} // namespace koro::test

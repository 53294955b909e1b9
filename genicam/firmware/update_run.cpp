#include "firmware/update_run.h"

#include "base/failures.h"
#include "firmware/bounds.h"
#include "firmware/device_file.h"
#include "firmware/matching.h"
#include "firmware/pattern.h"
#include "firmware/waiting.h"

#include <FirmwareUpdate/FirmwareUpdateExceptions.h>
#include <GenApi/Pointer.h>
#include <cxxabi.h>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::GenericException;

UpdateRun::UpdateRun(
    IFirmwareUpdatableDevice& device, const CFirmwareUpdateInfo& info, IFirmwareUpdateProgressObserver* observer,
    const char* preferredLanguage)
    : device(device), info(info), record(InfoAccess::RecordOf(info)), observer(observer),
      language(preferredLanguage ? preferredLanguage : "")
{}

template <class Act>
void UpdateRun::Report(const Act& act)
{
    if (observer) Succeeds([&] { act(*observer); }); // a report that fails does not fail the update
}

void UpdateRun::ReportError(const GenericException& error)
{
    Report([&](IFirmwareUpdateProgressObserver& told) { told.OnFirmwareUpdateError(error); });
}

template <class Act>
void UpdateRun::ReportedStep(
    EFirmwareUpdateProgressStepType type, uint32_t duration_ms, const char* description, const Act& act)
{
    Report([&](IFirmwareUpdateProgressObserver& told) {
        told.OnFirmwareUpdateProgressStepBegin(type, duration_ms, description);
    });
    act();
    Report([&](IFirmwareUpdateProgressObserver& told) { told.OnFirmwareUpdateProgressStepEnd(type, duration_ms); });
}

void UpdateRun::Run()
{
    try
    {
        RunReported();
    }
    catch (const GenericException& exception)
    {
        ReportError(exception);
        throw;
    }
    catch (const std::exception& exception)
    {
        ReportError(GenericException(exception.what(), __FILE__, __LINE__));
        throw;
    }
    catch (const abi::__forced_unwind&)
    {
        throw;
    }
    catch (...)
    {
        ReportError(GenericException(unknownExceptionText, __FILE__, __LINE__));
        throw;
    }
    device.CleanupAfterFirmwareUpdate();
}

void UpdateRun::RunReported()
{
    displayName = device.GetDisplayName().c_str();
    device.PrepareForFirmwareUpdate();
    if (observer) observer->OnFirmwareUpdateBegin(info, record->duration_ms);
    map = device.GetNodeMapOfDeviceToUpdate();
    ReportedStep(ProgressStepType_CheckPreconditions, checkDuration_ms, "", [this] { CheckPreconditions(); });
    ReportedStep(ProgressStepType_AcquireUpdateData, checkDuration_ms, "", [this] { AcquireUpdateData(); });
    for (const Step& step : steps)
    {
        const LanguageText* const description = ChooseText(step.descriptions, language);
        ReportedStep(step.type, step.duration_ms, description ? description->text.c_str() : "", [&] { RunStep(step); });
    }
    if (observer) observer->OnFirmwareUpdateEnd();
}

void UpdateRun::CheckPreconditions()
{
    if (!map) throw INVALID_ARGUMENT_EXCEPTION("The device '%s' has no node map", Shown(displayName).c_str());
    if (Matches(*map, record->conditions)) return;
    throw INVALID_ARGUMENT_EXCEPTION("The update does not match the device '%s'", Shown(displayName).c_str());
}

// Everything is read and checked before the first step changes the device.
void UpdateRun::AcquireUpdateData()
{
    const UpdateFile file(record->path);
    if (file.PackageFingerprint() != record->package)
    {
        throw RUNTIME_EXCEPTION("The update file '%s' was changed since it was read", ShownPath(record->path).c_str());
    }
    Procedures procedures =
        ParseControlFile(file.ControlFile(), [](const UpdateRules&, const Procedures&) { return true; });
    steps = std::move(procedures[record->procedureId].steps); // none for an unknown procedure
    payloads = ReadPayloads(file, steps);
}

void UpdateRun::RunStep(const Step& step)
{
    switch (step.type)
    {
    case ProgressStepType_FeatureWrite:
        return Write(step);
    case ProgressStepType_FeatureExecute:
        return Execute(step);
    case ProgressStepType_FeatureAssert:
        return Assert(step);
    case ProgressStepType_FileUpload:
        return Upload(step);
    case ProgressStepType_DeviceReset:
        return Reset(step);
    default:
        break;
    }
}

void UpdateRun::Write(const Step& step)
{
    ValueOf(*map, step.feature).FromString(step.value.c_str());
}

void UpdateRun::Execute(const Step& step)
{
    const CCommandPtr command = &ValueOf(*map, step.feature);
    if (!command)
    {
        throw LOGICAL_ERROR_EXCEPTION(
            "The feature '%s' of the device '%s' is no command", Shown(step.feature).c_str(),
            Shown(displayName).c_str());
    }
    const uint32_t limit_ms = step.limit_ms.value_or(executionLimit_ms);
    if (ExecuteAndWait(*command, limit_ms)) return;
    throw RUNTIME_EXCEPTION(
        "The device '%s' did not finish the command '%s' within %u ms", Shown(displayName).c_str(),
        Shown(step.feature).c_str(), limit_ms);
}

void UpdateRun::Assert(const Step& step)
{
    const std::string text = TextOf(*map, step.feature);
    if (Pattern(step.value).Matches(text)) return;
    if (!step.message.empty()) throw RUNTIME_EXCEPTION("%s", step.message.c_str());
    throw RUNTIME_EXCEPTION(
        "The feature '%s' of the device '%s' is '%s', which does not match '%s'", Shown(step.feature).c_str(),
        Shown(displayName).c_str(), Shown(text).c_str(), Shown(step.value).c_str());
}

void UpdateRun::Upload(const Step& step)
{
    const std::string& content = payloads.at(step.file);
    size_t reported = 0;
    const auto progress = [&](size_t done) {
        if (done < content.size() && done - reported < uploadReportSize) return;
        reported = done;
        const double percent = 100.0 * static_cast<double>(done) / static_cast<double>(content.size());
        Report([&](IFirmwareUpdateProgressObserver& told) {
            told.OnFirmwareUpdateProgressStepPartialProgress(ProgressStepType_FileUpload, percent);
        });
    };
    DeviceFile file(*map, step.deviceFile, fileOperationLimit_ms);
    file.Open();
    try
    {
        file.Write(content, progress);
    }
    catch (...)
    {
        file.CloseAfterFailure();
        throw;
    }
    file.Close();
}

void UpdateRun::Reset(const Step& step)
{
    map = nullptr; // its nodes end even if the device does not return
    map = device.DeviceResetWhileUpdatingFirmware(step.duration_ms, step.delay_ms);
    if (map) return;
    throw RUNTIME_EXCEPTION("The device '%s' has no node map after its reset", Shown(displayName).c_str());
}

} // namespace GENAPI_NAMESPACE::runtime

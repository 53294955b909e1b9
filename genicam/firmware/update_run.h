// UpdateRun: applies one update to one device. Exists during one call, on the caller's thread.
#pragma once

#include "firmware/payloads.h"
#include "firmware/update_record.h"

#include <FirmwareUpdate/FirmwareUpdatableDevice.h>
#include <FirmwareUpdate/FirmwareUpdateProgressObserver.h>
#include <GenApi/INodeMap.h>

namespace GENAPI_NAMESPACE::runtime
{

class UpdateRun
{
public:
    // The observer may be null.
    UpdateRun(
        IFirmwareUpdatableDevice& device, const CFirmwareUpdateInfo& info, IFirmwareUpdateProgressObserver* observer,
        const char* preferredLanguage);

    // Every failure before the final report is reported to the observer and passed on unchanged.
    void Run();

private:
    void RunReported();
    void CheckPreconditions();
    void AcquireUpdateData();
    void RunStep(const Step& step);
    void Write(const Step& step);
    void Execute(const Step& step);
    void Assert(const Step& step);
    void Upload(const Step& step);
    void Reset(const Step& step);

    template <class Act>
    void Report(const Act& act); // swallows what the observer throws
    void ReportError(const GENICAM_NAMESPACE::GenericException& error);
    template <class Act>
    void ReportedStep(
        EFirmwareUpdateProgressStepType type, uint32_t duration_ms, const char* description, const Act& act);

    IFirmwareUpdatableDevice& device;
    const CFirmwareUpdateInfo& info;
    const std::shared_ptr<const UpdateRecord> record;
    IFirmwareUpdateProgressObserver* const observer;
    const std::string language;

    std::string displayName;
    INodeMap* map = nullptr; // changes with a reset
    std::vector<Step> steps;
    Payloads payloads;
};

} // namespace GENAPI_NAMESPACE::runtime

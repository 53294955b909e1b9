// IFirmwareUpdateProgressObserver: receives the progress of an update, on the thread that applies it. Implemented by
// the application.
//
// An exception from the reports of the beginning and the end fails the update; exceptions from the other reports are
// ignored.
#pragma once

#include <Base/GCException.h>
#include <FirmwareUpdate/Destructible.h>
#include <FirmwareUpdate/FirmwareUpdateInfo.h>

namespace GENAPI_NAMESPACE
{

enum EFirmwareUpdateProgressStepType
{
    ProgressStepType_CheckPreconditions = 0,
    ProgressStepType_AcquireUpdateData = 1,
    ProgressStepType_FeatureWrite = 2,
    ProgressStepType_FeatureExecute = 3,
    ProgressStepType_FeatureAssert = 4,
    ProgressStepType_FileUpload = 5,
    ProgressStepType_DeviceReset = 6,
    ProgressStepType_Invalid = 7
};

class GENFW_DECL_ABSTRACT IFirmwareUpdateProgressObserver : public IDestructible
{
public:
    // The sum of the expected durations of the steps.
    virtual void OnFirmwareUpdateBegin(
        const CFirmwareUpdateInfo& FirmwareUpdateInfo, unsigned int EstimatedDurationMs) = 0;
    virtual void OnFirmwareUpdateProgressStepBegin(
        EFirmwareUpdateProgressStepType ProgressStepType, unsigned int EstimatedDurationMs,
        const char* Description) = 0;
    // 0.0 to 100.0
    virtual void OnFirmwareUpdateProgressStepPartialProgress(
        EFirmwareUpdateProgressStepType ProgressStepType, double ProgressPercentOfDone) = 0;
    virtual void OnFirmwareUpdateProgressStepEnd(
        EFirmwareUpdateProgressStepType ProgressStepType, unsigned int EstimatedDurationMs) = 0;
    virtual void OnFirmwareUpdateEnd() = 0;
    // The last report of an update that fails.
    virtual void OnFirmwareUpdateError(const GENICAM_NAMESPACE::GenericException& TheError) = 0;
};

} // namespace GENAPI_NAMESPACE

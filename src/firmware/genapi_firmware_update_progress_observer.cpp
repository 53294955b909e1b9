#include "firmware/genapi_firmware_update_progress_observer.h"

#include "firmware/firmware_update_information.h"
#include "firmware/firmware_update_progress_observer.h"

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

FirmwareUpdateStep StepOf(EFirmwareUpdateProgressStepType step)
{
    return static_cast<FirmwareUpdateStep>(step);
}

} // namespace

GenApiFirmwareUpdateProgressObserver::GenApiFirmwareUpdateProgressObserver(
    std::shared_ptr<FirmwareUpdateProgressObserver> told)
    : observer(std::move(told))
{}

void GenApiFirmwareUpdateProgressObserver::OnFirmwareUpdateBegin(
    const CFirmwareUpdateInfo& info, unsigned int duration_ms)
{
    observer->updateStarted.TriggerCallback(std::make_shared<FirmwareUpdateInformation>(info), duration_ms);
}

void GenApiFirmwareUpdateProgressObserver::OnFirmwareUpdateProgressStepBegin(
    EFirmwareUpdateProgressStepType step, unsigned int duration_ms, const char* description)
{
    observer->updateStepStarted.TriggerCallback(StepOf(step), duration_ms, description);
}

void GenApiFirmwareUpdateProgressObserver::OnFirmwareUpdateProgressStepPartialProgress(
    EFirmwareUpdateProgressStepType step, double percent)
{
    observer->updateStepProgressChanged.TriggerCallback(StepOf(step), percent);
}

void GenApiFirmwareUpdateProgressObserver::OnFirmwareUpdateProgressStepEnd(
    EFirmwareUpdateProgressStepType step, unsigned int)
{
    observer->updateStepFinished.TriggerCallback(StepOf(step));
}

void GenApiFirmwareUpdateProgressObserver::OnFirmwareUpdateEnd()
{
    observer->updateFinished.TriggerCallback();
}

void GenApiFirmwareUpdateProgressObserver::OnFirmwareUpdateError(const GENICAM_NAMESPACE::GenericException& error)
{
    observer->updateFailed.TriggerCallback(error.GetDescription());
}

} // namespace koro::internal

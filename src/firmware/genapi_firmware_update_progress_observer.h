// GenApiFirmwareUpdateProgressObserver: passes reports of the runtime to an observer.
//
// Exists during one update and keeps the observer meanwhile. Exceptions of callbacks pass to the runtime.
#pragma once

#include <FirmwareUpdate/FirmwareUpdateProgressObserver.h>
#include <memory>

namespace koro::internal
{

class FirmwareUpdateProgressObserver;

class GenApiFirmwareUpdateProgressObserver final : public GENAPI_NAMESPACE::IFirmwareUpdateProgressObserver
{
public:
    explicit GenApiFirmwareUpdateProgressObserver(std::shared_ptr<FirmwareUpdateProgressObserver> told);

    void OnFirmwareUpdateBegin(const GENAPI_NAMESPACE::CFirmwareUpdateInfo& info, unsigned int duration_ms) override;
    void OnFirmwareUpdateProgressStepBegin(
        GENAPI_NAMESPACE::EFirmwareUpdateProgressStepType step, unsigned int duration_ms,
        const char* description) override;
    void OnFirmwareUpdateProgressStepPartialProgress(
        GENAPI_NAMESPACE::EFirmwareUpdateProgressStepType step, double percent) override;
    // The duration is not passed on.
    void OnFirmwareUpdateProgressStepEnd(
        GENAPI_NAMESPACE::EFirmwareUpdateProgressStepType step, unsigned int duration_ms) override;
    void OnFirmwareUpdateEnd() override;
    void OnFirmwareUpdateError(const GENICAM_NAMESPACE::GenericException& error) override;

private:
    const std::shared_ptr<FirmwareUpdateProgressObserver> observer;
};

} // namespace koro::internal

#include "firmware/firmware_update_progress_observer.h"

#include "base/expiring.h"
#include "capi/callbacks.h"
#include "firmware/firmware_update_information.h"
#include <koro/firmware_update_progress_observer.h>

#include <cstdint>
#include <memory>
#include <string>

using namespace koro::internal;

namespace
{

using Observer = FirmwareUpdateProgressObserver;
using ObserverHandle = NamedArgument<KORO_FirmwareUpdateProgressObserverHandle>;

// `function` calls the application's callback with the arguments of the trigger.
template <class Callback, class CallbackHandle, class Trigger, class Function>
KORO_ReturnCode RegisterAt(
    Trigger Observer::*trigger, const ObserverHandle& handle, const NamedArgument<Callback>& callback,
    const NamedArgument<CallbackHandle*>& callbackHandle, const Function& function)
{
    return RegisterCallback(handle, callback, callbackHandle, [&](const auto& observer) {
        return ((*observer).*trigger).RegisterCallback(function);
    });
}

template <class CallbackHandle, class Trigger>
KORO_ReturnCode UnregisterAt(Trigger Observer::*trigger, const ObserverHandle& handle, CallbackHandle callbackHandle)
{
    return Perform(handle, [&](auto& observer) { (observer.*trigger).UnregisterCallback(callbackHandle); });
}

KORO_FirmwareUpdateStep StepNumber(FirmwareUpdateStep step)
{
    return static_cast<KORO_FirmwareUpdateStep>(step);
}

} // namespace

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_Construct(
    KORO_FirmwareUpdateProgressObserverHandle* firmwareUpdateProgressObserverHandle)
{
    return ExecuteAndMapExceptions([&] {
        if (!firmwareUpdateProgressObserverHandle)
            return InvalidPointer(KORO_ARG(firmwareUpdateProgressObserverHandle));
        *firmwareUpdateProgressObserverHandle = Table<Observer>().Add(std::make_shared<Observer>());
        return success;
    });
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_Destruct(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle)
{
    return Destruct(KORO_ARG(firmwareUpdateProgressObserverHandle));
}

// The information is entered before the application sees its handle. The observer is held weakly: it owns the trigger.
KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStartedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStartedCallbackHandle* callbackHandle)
{
    return RegisterCallback(
        KORO_ARG(firmwareUpdateProgressObserverHandle), KORO_ARG(callback), KORO_ARG(callbackHandle),
        [&](const auto& observer) {
            return observer->updateStarted.RegisterCallback(
                [weakObserver = std::weak_ptr(observer), callback,
                 callbackContext](const auto& information, std::uint32_t duration_ms) {
                    const auto parent = LockOrThrow(weakObserver);
                    callback(Table<FirmwareUpdateInformation>().Add(information, parent), duration_ms, callbackContext);
                });
        });
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepStartedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepStartedCallbackHandle* callbackHandle)
{
    return RegisterAt(
        &Observer::updateStepStarted, KORO_ARG(firmwareUpdateProgressObserverHandle), KORO_ARG(callback),
        KORO_ARG(callbackHandle),
        [=](FirmwareUpdateStep step, std::uint32_t duration_ms, const std::string& description) {
            callback(StepNumber(step), duration_ms, description.c_str(), description.size() + 1, callbackContext);
        });
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepProgressChangedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepProgressChangedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepProgressChangedCallbackHandle* callbackHandle)
{
    return RegisterAt(
        &Observer::updateStepProgressChanged, KORO_ARG(firmwareUpdateProgressObserverHandle), KORO_ARG(callback),
        KORO_ARG(callbackHandle),
        [=](FirmwareUpdateStep step, double progress) { callback(StepNumber(step), progress, callbackContext); });
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepFinishedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepFinishedCallbackHandle* callbackHandle)
{
    return RegisterAt(
        &Observer::updateStepFinished, KORO_ARG(firmwareUpdateProgressObserverHandle), KORO_ARG(callback),
        KORO_ARG(callbackHandle), [=](FirmwareUpdateStep step) { callback(StepNumber(step), callbackContext); });
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFinishedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateFinishedCallbackHandle* callbackHandle)
{
    return RegisterAt(
        &Observer::updateFinished, KORO_ARG(firmwareUpdateProgressObserverHandle), KORO_ARG(callback),
        KORO_ARG(callbackHandle), [=] { callback(callbackContext); });
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateFailedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFailedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateFailedCallbackHandle* callbackHandle)
{
    return RegisterAt(
        &Observer::updateFailed, KORO_ARG(firmwareUpdateProgressObserverHandle), KORO_ARG(callback),
        KORO_ARG(callbackHandle),
        [=](const std::string& error) { callback(error.c_str(), error.size() + 1, callbackContext); });
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStartedCallbackHandle callbackHandle)
{
    return UnregisterAt(&Observer::updateStarted, KORO_ARG(firmwareUpdateProgressObserverHandle), callbackHandle);
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepStartedCallbackHandle callbackHandle)
{
    return UnregisterAt(&Observer::updateStepStarted, KORO_ARG(firmwareUpdateProgressObserverHandle), callbackHandle);
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepProgressChangedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepProgressChangedCallbackHandle callbackHandle)
{
    return UnregisterAt(
        &Observer::updateStepProgressChanged, KORO_ARG(firmwareUpdateProgressObserverHandle), callbackHandle);
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepFinishedCallbackHandle callbackHandle)
{
    return UnregisterAt(&Observer::updateStepFinished, KORO_ARG(firmwareUpdateProgressObserverHandle), callbackHandle);
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFinishedCallbackHandle callbackHandle)
{
    return UnregisterAt(&Observer::updateFinished, KORO_ARG(firmwareUpdateProgressObserverHandle), callbackHandle);
}

KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFailedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFailedCallbackHandle callbackHandle)
{
    return UnregisterAt(&Observer::updateFailed, KORO_ARG(firmwareUpdateProgressObserverHandle), callbackHandle);
}

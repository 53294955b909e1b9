/*
 * Follows firmware updates: six kinds of report, each with any number of callbacks.
 *
 * Give the handle to KORO_FirmwareUpdater_UpdateDevice; one observer may serve several updates. The reports of an
 * update come one at a time, on the thread that called it and within that call: started, then for each step its start,
 * its progress any number of times and its end, and at last finished or, at any point, failed.
 *
 * A callback may call any export but those that register and unregister its own kind of report at this observer: they
 * answer KORO_RETURN_CODE_ERROR there. Other threads that call them wait until the report is over. An update that
 * starts inside a callback needs another observer: this one cannot be given the report that is under way, which for a
 * start and an end is KORO_RETURN_CODE_ERROR, and two threads that try could wait for each other without end. A
 * callback must not throw, and must not close the library.
 *
 * Any thread.
 */
#ifndef KORO_FIRMWARE_UPDATE_PROGRESS_OBSERVER_H
#define KORO_FIRMWARE_UPDATE_PROGRESS_OBSERVER_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What an update does; the numbers of GenApi. */
typedef int32_t KORO_FirmwareUpdateStep;
enum KORO_FirmwareUpdateSteps
{
    KORO_FIRMWARE_UPDATE_STEP_CHECK_PRECONDITIONS = 0,
    KORO_FIRMWARE_UPDATE_STEP_ACQUIRE_UPDATE_DATA = 1,
    KORO_FIRMWARE_UPDATE_STEP_FEATURE_WRITE = 2,
    KORO_FIRMWARE_UPDATE_STEP_FEATURE_EXECUTE = 3,
    KORO_FIRMWARE_UPDATE_STEP_FEATURE_ASSERT = 4,
    KORO_FIRMWARE_UPDATE_STEP_FILE_UPLOAD = 5,
    KORO_FIRMWARE_UPDATE_STEP_DEVICE_RESET = 6,
    KORO_FIRMWARE_UPDATE_STEP_INVALID = 7
};

/*
 * Callbacks. Durations are what the update file expects, in milliseconds. Texts live for the length of the call, and
 * their sizes count the terminating zero.
 */

/* The handle of the information ends with the observer. */
typedef void (*KORO_FirmwareUpdateStartedCallback)(
    KORO_FirmwareUpdateInformationHandle firmwareUpdateInformationHandle, uint32_t expectedDuration_ms,
    void* callbackContext);
typedef void (*KORO_FirmwareUpdateStepStartedCallback)(
    KORO_FirmwareUpdateStep step, uint32_t expectedDuration_ms, const char* description, size_t descriptionSize,
    void* callbackContext);
/* `progress` is in percent. */
typedef void (*KORO_FirmwareUpdateStepProgressChangedCallback)(
    KORO_FirmwareUpdateStep step, double progress, void* callbackContext);
typedef void (*KORO_FirmwareUpdateStepFinishedCallback)(KORO_FirmwareUpdateStep step, void* callbackContext);
typedef void (*KORO_FirmwareUpdateFinishedCallback)(void* callbackContext);
typedef void (*KORO_FirmwareUpdateFailedCallback)(
    const char* errorDescription, size_t errorDescriptionSize, void* callbackContext);

/* What a registration gives, for unregistering alone. */
typedef struct KORO_FirmwareUpdateStartedCallback_st* KORO_FirmwareUpdateStartedCallbackHandle;
typedef struct KORO_FirmwareUpdateStepStartedCallback_st* KORO_FirmwareUpdateStepStartedCallbackHandle;
typedef struct KORO_FirmwareUpdateStepProgressChangedCallback_st* KORO_FirmwareUpdateStepProgressChangedCallbackHandle;
typedef struct KORO_FirmwareUpdateStepFinishedCallback_st* KORO_FirmwareUpdateStepFinishedCallbackHandle;
typedef struct KORO_FirmwareUpdateFinishedCallback_st* KORO_FirmwareUpdateFinishedCallbackHandle;
typedef struct KORO_FirmwareUpdateFailedCallback_st* KORO_FirmwareUpdateFailedCallbackHandle;

/**
 * Makes an observer.
 * @param[out] firmwareUpdateProgressObserverHandle a new handle; end it with
 * KORO_FirmwareUpdateProgressObserver_Destruct
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_Construct(
    KORO_FirmwareUpdateProgressObserverHandle* firmwareUpdateProgressObserverHandle);

/** Ends the handle. An update that is running goes on reporting to the callbacks that are registered. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_Destruct(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle);

/**
 * Calls the application at the start of an update, before anything is written to the camera.
 * @param[in]  callbackContext passed to the callback as it is; may be null
 * @param[out] callbackHandle  for unregistering; ends there or with the observer
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStartedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStartedCallbackHandle* callbackHandle);

/** Calls the application at the start of each step. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepStartedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepStartedCallbackHandle* callbackHandle);

/** Calls the application as a step goes on. Of the steps, uploads alone tell it. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepProgressChangedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepProgressChangedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepProgressChangedCallbackHandle* callbackHandle);

/** Calls the application at the end of each step that succeeded. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepFinishedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepFinishedCallbackHandle* callbackHandle);

/** Calls the application at the end of an update that succeeded. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFinishedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateFinishedCallbackHandle* callbackHandle);

/** Calls the application at the failure of an update, which is its last report. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateFailedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFailedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateFailedCallbackHandle* callbackHandle);

/**
 * Ends the calls of a callback; waits for a report that is under way on another thread. An unknown handle is ignored,
 * so a second time is no failure.
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind: the registration stands
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStartedCallbackHandle callbackHandle);

/** The same for the other kinds of report. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepStartedCallbackHandle callbackHandle);

KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepProgressChangedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepProgressChangedCallbackHandle callbackHandle);

KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepFinishedCallbackHandle callbackHandle);

KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFinishedCallbackHandle callbackHandle);

KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFailedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFailedCallbackHandle callbackHandle);

#ifdef __cplusplus
}
#endif

#endif

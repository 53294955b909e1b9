/*
 * Reports the progress of firmware updates by six kinds of callbacks. Each kind may have any number of callbacks.
 *
 * Pass the handle to KORO_FirmwareUpdater_UpdateDevice; one observer may serve several updates. The callbacks of an
 * update run one at a time, within the call and on the thread that called it: first "update started"; then for each
 * step "step started", any number of "progress changed" and "step finished"; at last "update finished" or, at any
 * point, "update failed".
 *
 * A callback may call any function with one exception: registering or unregistering a callback of its own kind at this
 * observer returns KORO_RETURN_CODE_ERROR. Other threads that do this wait until the callback has returned. A callback
 * that starts another update must use another observer: this one cannot deliver the kind of callback that is running.
 * For "update started", "update finished" and "update failed" the attempt returns KORO_RETURN_CODE_ERROR, and two
 * threads that try it could wait for each other forever. A callback must not throw and must not close the library.
 *
 * Any thread may call these functions.
 */
#ifndef KORO_FIRMWARE_UPDATE_PROGRESS_OBSERVER_H
#define KORO_FIRMWARE_UPDATE_PROGRESS_OBSERVER_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The kinds of update steps; the numbers are those of GenApi. */
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
 * Callbacks. Durations are the ones that the update file expects, in milliseconds. Texts are valid only during the
 * call; their sizes include the terminating zero.
 */

/* The information handle ends with the observer. */
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

/* Handles of registered callbacks. They serve only to unregister the callback. */
typedef struct KORO_FirmwareUpdateStartedCallback_st* KORO_FirmwareUpdateStartedCallbackHandle;
typedef struct KORO_FirmwareUpdateStepStartedCallback_st* KORO_FirmwareUpdateStepStartedCallbackHandle;
typedef struct KORO_FirmwareUpdateStepProgressChangedCallback_st* KORO_FirmwareUpdateStepProgressChangedCallbackHandle;
typedef struct KORO_FirmwareUpdateStepFinishedCallback_st* KORO_FirmwareUpdateStepFinishedCallbackHandle;
typedef struct KORO_FirmwareUpdateFinishedCallback_st* KORO_FirmwareUpdateFinishedCallbackHandle;
typedef struct KORO_FirmwareUpdateFailedCallback_st* KORO_FirmwareUpdateFailedCallbackHandle;

/**
 * Creates an observer.
 * @param[out] firmwareUpdateProgressObserverHandle a new handle; end it with
 * KORO_FirmwareUpdateProgressObserver_Destruct
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_Construct(
    KORO_FirmwareUpdateProgressObserverHandle* firmwareUpdateProgressObserverHandle);

/** Ends the handle. An update that is running continues to call the registered callbacks. */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_Destruct(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle);

/**
 * Registers a callback for the start of an update, before anything is written to the camera.
 * @param[in]  callback        the function to call
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the unregistration or with the observer
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStartedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStartedCallbackHandle* callbackHandle);

/**
 * Registers a callback for the start of each step.
 * @param[in]  callback        the function to call
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the unregistration or with the observer
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepStartedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepStartedCallbackHandle* callbackHandle);

/**
 * Registers a callback for the progress of a step. Only file uploads report progress.
 * @param[in]  callback        the function to call
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the unregistration or with the observer
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepProgressChangedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepProgressChangedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepProgressChangedCallbackHandle* callbackHandle);

/**
 * Registers a callback for the end of each step that succeeded.
 * @param[in]  callback        the function to call
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the unregistration or with the observer
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepFinishedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateStepFinishedCallbackHandle* callbackHandle);

/**
 * Registers a callback for the end of an update that succeeded.
 * @param[in]  callback        the function to call
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the unregistration or with the observer
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFinishedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateFinishedCallbackHandle* callbackHandle);

/**
 * Registers a callback for the failure of an update. This is the last callback of the update.
 * @param[in]  callback        the function to call
 * @param[in]  callbackContext passed to the callback unchanged; may be null
 * @param[out] callbackHandle  handle for unregistering; ends with the unregistration or with the observer
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_RegisterUpdateFailedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFailedCallback callback, void* callbackContext,
    KORO_FirmwareUpdateFailedCallbackHandle* callbackHandle);

/**
 * Unregisters a callback for the start of an update. Waits while another thread is inside the callback. An unknown
 * handle is ignored, so a second call is not a failure.
 * @param[in] callbackHandle the handle that the registration returned
 * @return KORO_RETURN_CODE_ERROR inside a callback of this kind; the registration stays
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStartedCallbackHandle callbackHandle);

/**
 * Unregisters a callback for the start of each step, as
 * KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback does.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepStartedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepStartedCallbackHandle callbackHandle);

/**
 * Unregisters a callback for the progress of a step, as
 * KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback does.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepProgressChangedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepProgressChangedCallbackHandle callbackHandle);

/**
 * Unregisters a callback for the end of each step, as
 * KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback does.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateStepFinishedCallbackHandle callbackHandle);

/**
 * Unregisters a callback for the end of an update, as
 * KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback does.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFinishedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFinishedCallbackHandle callbackHandle);

/**
 * Unregisters a callback for the failure of an update, as
 * KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStartedCallback does.
 * @param[in] callbackHandle the handle that the registration returned
 */
KORO_API KORO_ReturnCode KORO_FirmwareUpdateProgressObserver_UnregisterUpdateFailedCallback(
    KORO_FirmwareUpdateProgressObserverHandle firmwareUpdateProgressObserverHandle,
    KORO_FirmwareUpdateFailedCallbackHandle callbackHandle);

#ifdef __cplusplus
}
#endif

#endif

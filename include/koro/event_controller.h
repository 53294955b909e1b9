/*
 * A registered event type of a module. Events are taken one by one, on the thread that waits. The producer holds the
 * queue and counts the kills.
 *
 * The handle ends with KORO_EventController_Destruct, or with its module. Several threads may wait, and each event
 * goes to one of them.
 */
#ifndef KORO_EVENT_CONTROLLER_H
#define KORO_EVENT_CONTROLLER_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Ends the handle and the handles of events taken from it. Waits that are running return KORO_RETURN_CODE_ABORTED. The
 * event is unregistered when no call uses it any more.
 */
KORO_API KORO_ReturnCode KORO_EventController_Destruct(KORO_EventControllerHandle eventControllerHandle);

/**
 * Returns any information about the registration as raw bytes.
 * @param[in]  infoCommand    KORO_EVENT_EVENT_TYPE, KORO_EVENT_NUM_..., KORO_EVENT_SIZE_MAX,
 *                            KORO_EVENT_INFO_DATA_SIZE_MAX or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_EventController_GetInfo(
    KORO_EventControllerHandle eventControllerHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/**
 * Returns the type of the events.
 * @param[out] controlledEventType KORO_EVENT_...
 */
KORO_API KORO_ReturnCode KORO_EventController_GetControlledEventType(
    KORO_EventControllerHandle eventControllerHandle, int32_t* controlledEventType);

/** Returns the number of events in the queue. */
KORO_API KORO_ReturnCode
KORO_EventController_GetNumEventsInQueue(KORO_EventControllerHandle eventControllerHandle, size_t* numEventsInQueue);

/** Returns the number of events since the registration. */
KORO_API KORO_ReturnCode
KORO_EventController_GetNumEventsFired(KORO_EventControllerHandle eventControllerHandle, uint64_t* numEventsFired);

/**
 * Returns the largest size of an event's raw data.
 * @param[out] eventMaxSize bytes
 */
KORO_API KORO_ReturnCode
KORO_EventController_GetEventMaxSize(KORO_EventControllerHandle eventControllerHandle, size_t* eventMaxSize);

/**
 * Returns the largest size of an event's data.
 * @param[out] eventDataMaxSize bytes
 */
KORO_API KORO_ReturnCode
KORO_EventController_GetEventDataMaxSize(KORO_EventControllerHandle eventControllerHandle, size_t* eventDataMaxSize);

/**
 * Waits on the calling thread for the next event. The library holds no lock meanwhile.
 * @param[in]  timeout_ms  milliseconds; KORO_INFINITE for no limit
 * @param[out] eventHandle a new handle; end it with KORO_Event_Destruct
 * @return KORO_RETURN_CODE_TIMEOUT when no event arrived in time; KORO_RETURN_CODE_ABORTED after
 *         KORO_EventController_KillWait, and when the controller or its module ends meanwhile: an event that arrives
 *         then is lost
 */
KORO_API KORO_ReturnCode KORO_EventController_WaitForEvent(
    KORO_EventControllerHandle eventControllerHandle, uint64_t timeout_ms, KORO_EventHandle* eventHandle);

/**
 * Ends one running wait, or the next wait if no thread is waiting. Any thread may call it, but not a signal handler,
 * for the reasons given at KORO_DataStream_KillWait.
 */
KORO_API KORO_ReturnCode KORO_EventController_KillWait(KORO_EventControllerHandle eventControllerHandle);

/**
 * Discards kills that no wait has received. It unregisters the event and registers it again, so queued events are
 * discarded too. Call it while no thread waits.
 */
KORO_API KORO_ReturnCode KORO_EventController_FlushPendingKillWaits(KORO_EventControllerHandle eventControllerHandle);

/** Discards the queued events. */
KORO_API KORO_ReturnCode KORO_EventController_FlushEvents(KORO_EventControllerHandle eventControllerHandle);

#ifdef __cplusplus
}
#endif

#endif

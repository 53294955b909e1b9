/*
 * A registered event of a module: events are taken one by one, on the thread that waits. The queue and the count of
 * kills lie in the producer.
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
 * Ends the handle and the handles of events taken from it. Waits that are inside return KORO_RETURN_CODE_ABORTED. The
 * event is unregistered when its last use ends.
 */
KORO_API KORO_ReturnCode KORO_EventController_Destruct(KORO_EventControllerHandle eventControllerHandle);

/**
 * Gives any information of the registration as raw bytes.
 * @param[in]  infoCommand    KORO_EVENT_EVENT_TYPE, KORO_EVENT_NUM_..., KORO_EVENT_SIZE_MAX,
 *                            KORO_EVENT_INFO_DATA_SIZE_MAX or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_EventController_GetInfo(
    KORO_EventControllerHandle eventControllerHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize);

/**
 * Gives the type of the events.
 * @param[out] controlledEventType KORO_EVENT_...
 */
KORO_API KORO_ReturnCode KORO_EventController_GetControlledEventType(
    KORO_EventControllerHandle eventControllerHandle, int32_t* controlledEventType);

/** Gives the number of events that nobody has taken yet. */
KORO_API KORO_ReturnCode
KORO_EventController_GetNumEventsInQueue(KORO_EventControllerHandle eventControllerHandle, size_t* numEventsInQueue);

/** Gives the number of events since the registration. */
KORO_API KORO_ReturnCode
KORO_EventController_GetNumEventsFired(KORO_EventControllerHandle eventControllerHandle, uint64_t* numEventsFired);

/**
 * Gives the largest size of an event's raw data.
 * @param[out] eventMaxSize bytes
 */
KORO_API KORO_ReturnCode
KORO_EventController_GetEventMaxSize(KORO_EventControllerHandle eventControllerHandle, size_t* eventMaxSize);

/**
 * Gives the largest size of an event's data.
 * @param[out] eventDataMaxSize bytes
 */
KORO_API KORO_ReturnCode
KORO_EventController_GetEventDataMaxSize(KORO_EventControllerHandle eventControllerHandle, size_t* eventDataMaxSize);

/**
 * Waits on the calling thread for the next event. No lock is held meanwhile.
 * @param[in]  timeout_ms  milliseconds; KORO_INFINITE waits without end
 * @param[out] eventHandle a new handle; end it with KORO_Event_Destruct
 * @return KORO_RETURN_CODE_TIMEOUT when none came; KORO_RETURN_CODE_ABORTED after
 *         KORO_EventController_KillWait and when the controller, or its module, is ended meanwhile: an event that came
 *         then is lost
 */
KORO_API KORO_ReturnCode KORO_EventController_WaitForEvent(
    KORO_EventControllerHandle eventControllerHandle, uint64_t timeout_ms, KORO_EventHandle* eventHandle);

/**
 * Ends one wait, or the next one if nobody waits. Any thread, but no signal handler, as for KORO_DataStream_KillWait.
 */
KORO_API KORO_ReturnCode KORO_EventController_KillWait(KORO_EventControllerHandle eventControllerHandle);

/**
 * Drops kills that found no waiter, by registering the event anew. Queued events go too. Not while another thread
 * waits.
 */
KORO_API KORO_ReturnCode KORO_EventController_FlushPendingKillWaits(KORO_EventControllerHandle eventControllerHandle);

/** Drops the queued events. */
KORO_API KORO_ReturnCode KORO_EventController_FlushEvents(KORO_EventControllerHandle eventControllerHandle);

#ifdef __cplusplus
}
#endif

#endif

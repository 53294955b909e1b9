#include "modules/event_controller.h"

#include "capi/arguments.h"
#include "modules/event.h"
#include <koro/event_controller.h>

#include <memory>

using namespace koro::internal;

namespace
{

// An event that arrives while the controller ends is lost: the wait returns as if the end had interrupted it.
KORO_EventHandle EnterEvent(const std::shared_ptr<EventController>& controller, const std::shared_ptr<Event>& event)
{
    try
    {
        if (controller->HasEndReached()) throw EventController::EndedWait();
        return Table<Event>().Add(event, controller);
    }
    catch (const Exception&)
    {
        if (controller->HasEndReached()) throw EventController::EndedWait();
        throw;
    }
}

} // namespace

KORO_ReturnCode KORO_EventController_Destruct(KORO_EventControllerHandle eventControllerHandle)
{
    return Destruct(KORO_ARG(eventControllerHandle));
}

KORO_ReturnCode KORO_EventController_GetInfo(
    KORO_EventControllerHandle eventControllerHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info,
    size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(eventControllerHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_EventController_GetControlledEventType(
    KORO_EventControllerHandle eventControllerHandle, int32_t* controlledEventType)
{
    return GetScalar(
        KORO_ARG(eventControllerHandle), KORO_ARG(controlledEventType), &EventController::ControlledEventType);
}

KORO_ReturnCode KORO_EventController_GetNumEventsInQueue(
    KORO_EventControllerHandle eventControllerHandle, size_t* numEventsInQueue)
{
    return GetScalar(KORO_ARG(eventControllerHandle), KORO_ARG(numEventsInQueue), &EventController::NumEventsInQueue);
}

KORO_ReturnCode KORO_EventController_GetNumEventsFired(
    KORO_EventControllerHandle eventControllerHandle, uint64_t* numEventsFired)
{
    return GetScalar(KORO_ARG(eventControllerHandle), KORO_ARG(numEventsFired), &EventController::NumEventsFired);
}

KORO_ReturnCode KORO_EventController_GetEventMaxSize(
    KORO_EventControllerHandle eventControllerHandle, size_t* eventMaxSize)
{
    return GetScalar(KORO_ARG(eventControllerHandle), KORO_ARG(eventMaxSize), &EventController::EventMaxSize);
}

KORO_ReturnCode KORO_EventController_GetEventDataMaxSize(
    KORO_EventControllerHandle eventControllerHandle, size_t* eventDataMaxSize)
{
    return GetScalar(KORO_ARG(eventControllerHandle), KORO_ARG(eventDataMaxSize), &EventController::EventDataMaxSize);
}

KORO_ReturnCode KORO_EventController_WaitForEvent(
    KORO_EventControllerHandle eventControllerHandle, uint64_t timeout_ms, KORO_EventHandle* eventHandle)
{
    return GetHandle(KORO_ARG(eventControllerHandle), KORO_ARG(eventHandle), [&](const auto& controller) {
        return EnterEvent(controller, controller->WaitForEvent(timeout_ms));
    });
}

KORO_ReturnCode KORO_EventController_KillWait(KORO_EventControllerHandle eventControllerHandle)
{
    return Perform(KORO_ARG(eventControllerHandle), &EventController::KillWait);
}

KORO_ReturnCode KORO_EventController_FlushPendingKillWaits(KORO_EventControllerHandle eventControllerHandle)
{
    return Perform(KORO_ARG(eventControllerHandle), &EventController::FlushPendingKillWaits);
}

KORO_ReturnCode KORO_EventController_FlushEvents(KORO_EventControllerHandle eventControllerHandle)
{
    return Perform(KORO_ARG(eventControllerHandle), &EventController::FlushEvents);
}

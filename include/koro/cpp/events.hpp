// Events of modules: registrations, and the events that a wait returns.
//
// Programs include <koro/koro.hpp>, which includes this header. Any thread may call these functions.
#ifndef KORO_CPP_EVENTS_HPP
#define KORO_CPP_EVENTS_HPP

#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace koro
{

// Timeouts are in milliseconds; this value means no limit, also as a number of frames.
constexpr uint64_t infinite = ~uint64_t{0};

// Producer-specific types begin at 1000: static_cast<EventType>(1000).
enum class EventType : int32_t
{
    Error = 0,
    NewBuffer = 1, // the library registers it itself for each data stream
    FeatureInvalidate = 2,
    FeatureChange = 3,
    RemoteDevice = 4, // events that the camera sends; registered at the device
    Module = 5,
};

class Event : public detail::Owner<KORO_EventHandle, KORO_Event_Destruct>
{
public:
    using Owner::Owner;

    uint64_t ID() const { return detail::Get(KORO_Event_GetID, Get()); }
    EventType Type() const { return detail::GetEnumeration<EventType>(KORO_Event_GetType, Get()); }
    std::vector<uint8_t> Data() const { return detail::Bytes(KORO_Event_GetData, Get()); }
    std::vector<uint8_t> RawData() const { return detail::Bytes(KORO_Event_GetRawData, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Event_GetInfo, Get(), command); }
};

class EventController : public detail::Owner<KORO_EventControllerHandle, KORO_EventController_Destruct>
{
public:
    using Owner::Owner;

    // Throws Error with KORO_RETURN_CODE_TIMEOUT when no event arrived in time, and with KORO_RETURN_CODE_ABORTED after
    // KillWait().
    Event WaitForEvent(uint64_t timeout_ms = infinite) const
    {
        KORO_EventHandle event{};
        detail::Check(KORO_EventController_WaitForEvent(Get(), timeout_ms, &event));
        return Event(event);
    }
    // Returns empty when no event arrived in time. Throws like WaitForEvent() for all other failures, including
    // KillWait().
    std::optional<Event> TryWait(uint64_t timeout_ms) const
    {
        KORO_EventHandle event{};
        const KORO_ReturnCode code = KORO_EventController_WaitForEvent(Get(), timeout_ms, &event);
        if (code == KORO_RETURN_CODE_TIMEOUT) return std::nullopt;
        detail::Check(code);
        return Event(event);
    }
    // Ends one wait: the running one, or otherwise the next. Do not call it in a signal handler;
    // <koro/event_controller.h> gives the reasons.
    void KillWait() const { detail::Check(KORO_EventController_KillWait(Get())); }
    void FlushPendingKillWaits() const { detail::Check(KORO_EventController_FlushPendingKillWaits(Get())); }
    void FlushEvents() const { detail::Check(KORO_EventController_FlushEvents(Get())); }

    EventType ControlledEventType() const
    {
        return detail::GetEnumeration<EventType>(KORO_EventController_GetControlledEventType, Get());
    }
    size_t NumEventsInQueue() const { return detail::Get(KORO_EventController_GetNumEventsInQueue, Get()); }
    uint64_t NumEventsFired() const { return detail::Get(KORO_EventController_GetNumEventsFired, Get()); }
    size_t EventMaxSize() const { return detail::Get(KORO_EventController_GetEventMaxSize, Get()); }
    size_t EventDataMaxSize() const { return detail::Get(KORO_EventController_GetEventDataMaxSize, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_EventController_GetInfo, Get(), command); }
};

namespace detail
{

template <typename Handle>
EventController EnableEvents(
    KORO_ReturnCode (*toEventSupporting)(Handle, KORO_EventSupportingModuleHandle*), Handle handle, EventType type)
{
    KORO_EventControllerHandle controller{};
    Check(KORO_EventSupportingModule_EnableEvents(
        Get(toEventSupporting, handle), static_cast<int32_t>(type), &controller));
    return EventController(controller);
}

} // namespace detail

} // namespace koro

#endif

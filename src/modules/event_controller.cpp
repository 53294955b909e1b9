#include "modules/event_controller.h"

#include "base/expiring.h"
#include "gentl/bounds.h"
#include "modules/event.h"
#include "modules/event_supporting_module.h"

#include <algorithm>

namespace koro::internal
{

using namespace GenTL;

EventController::EventController(
    EVENTSRC_HANDLE module, EVENT_HANDLE event, std::int32_t type,
    const std::weak_ptr<EventSupportingModule>& parentModule, const std::shared_ptr<const GenTLProxy>& proxy)
    : TGenTLInfoAccessor(GenTLCaller(proxy)), moduleHandle(module), eventHandle(event), eventType(type),
      parent(parentModule)
{}

EventController::~EventController()
{
    gentl.CallIgnoringFailures<&GenTLProxy::GCUnregisterEvent>(moduleHandle, eventType);
}

std::int32_t EventController::ControlledEventType() const
{
    return NumericInfo<std::int32_t>(EVENT_EVENT_TYPE, INFO_DATATYPE_INT32);
}

std::size_t EventController::NumEventsInQueue() const
{
    return NumericInfo<std::size_t>(EVENT_NUM_IN_QUEUE, INFO_DATATYPE_SIZET);
}

std::uint64_t EventController::NumEventsFired() const
{
    return NumericInfo<std::uint64_t>(EVENT_NUM_FIRED, INFO_DATATYPE_UINT64);
}

std::size_t EventController::EventMaxSize() const
{
    return NumericInfo<std::size_t>(EVENT_SIZE_MAX, INFO_DATATYPE_SIZET);
}

std::size_t EventController::EventDataMaxSize() const
{
    return NumericInfo<std::size_t>(EVENT_INFO_DATA_SIZE_MAX, INFO_DATATYPE_SIZET);
}

// One thread that is inside the producer's wait. Throws AbortedException when waits have ended.
class EventController::Waiter
{
public:
    explicit Waiter(const EventController& waitedFor) : controller(waitedFor)
    {
        ++controller.numWaiters;
        if (!controller.haveWaitsEnded) return;
        --controller.numWaiters;
        throw EndedWait();
    }
    // Some producers merge two pending kills into one, so each wait that has ended ends the next one.
    ~Waiter()
    {
        if (--controller.numWaiters > 0 && controller.haveWaitsEnded) controller.Kill();
    }
    Waiter(const Waiter&) = delete;
    Waiter& operator=(const Waiter&) = delete;

private:
    const EventController& controller;
};

AbortedException EventController::EndedWait()
{
    return AbortedException("[Function: EventGetData | Error: the wait was ended by the end of its module]");
}

std::shared_ptr<Event> EventController::WaitForEvent(std::uint64_t timeout_ms)
{
    return WithStandardExceptionsAsInternalErrors([&] {
        auto block = WaitForBlock(timeout_ms);
        return std::make_shared<Event>(
            eventHandle.load(), std::move(block), eventType, shared_from_this(), gentl.Proxy());
    });
}

std::vector<std::uint8_t> EventController::WaitForBlock(std::uint64_t timeout_ms) const
{
    return WithStandardExceptionsAsInternalErrors([&] {
        const std::size_t capacity = EventMaxSize();
        CheckClaim(eventBlockBound, capacity, QueryName());
        std::vector<std::uint8_t> block;
        block.reserve(std::max<std::size_t>(capacity, 1)); // a null buffer would discard the event
        block.resize(capacity);
        std::size_t size = capacity;
        const Waiter waiter(*this);
        const auto result =
            gentl.Result<&GenTLProxy::EventGetData>(eventHandle.load(), block.data(), &size, timeout_ms);
        if (result == GC_ERR_TIMEOUT)
        {
            // The only place where a timeout of the producer is also one for the application.
            throw TimeoutException(StandardMessage("EventGetData", FetchProducerError(*gentl.Proxy())));
        }
        gentl.Check<&GenTLProxy::EventGetData>(result);
        block.resize(std::min(size, capacity));
        block.shrink_to_fit();
        return block;
    });
}

// A kill for a wait that has returned meanwhile stays pending; nobody waits any more.
void EventController::EndWaits() noexcept
{
    if (haveWaitsEnded.exchange(true)) return;
    for (std::size_t count = numWaiters; count > 0; --count)
        Kill();
}

void EventController::Kill() const noexcept
{
    gentl.CallIgnoringFailures<&GenTLProxy::EventKill>(eventHandle.load());
}

void EventController::KillWait()
{
    WithStandardExceptionsAsInternalErrors([&] { gentl.Call<&GenTLProxy::EventKill>(eventHandle.load()); });
}

void EventController::FlushPendingKillWaits()
{
    WithStandardExceptionsAsInternalErrors([&] {
        gentl.Call<&GenTLProxy::GCUnregisterEvent>(moduleHandle, eventType);
        EVENT_HANDLE event = GENTL_INVALID_HANDLE;
        gentl.Call<&GenTLProxy::GCRegisterEvent>(moduleHandle, eventType, &event);
        eventHandle = event;
    });
}

void EventController::FlushEvents()
{
    WithStandardExceptionsAsInternalErrors([&] { gentl.Call<&GenTLProxy::EventFlush>(eventHandle.load()); });
}

std::shared_ptr<EventSupportingModule> EventController::ParentModule() const
{
    return LockOrThrow(parent);
}

GC_ERROR EventController::QueryInfo(
    std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    return gentl.Result<&GenTLProxy::EventGetInfo>(eventHandle.load(), command, dataType, buffer, size);
}

} // namespace koro::internal

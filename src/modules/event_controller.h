// EventController: one registration of an event type at a module, from which events are taken.
//
// The constructor registers, the destructor unregisters. Holds its module weakly; its events do not keep it alive. It
// has no thread, no queue and no counter: the producer holds the queue and the pending kills, and the caller's thread
// waits. No lock is held during a wait, so another thread can end it.
#pragma once

#include "base/instance.h"
#include "gentl/info_accessor.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace koro::internal
{

class Event;
class EventSupportingModule;

class AbortedException;

class EventController final : public TGenTLInfoAccessor<GenTL::EVENT_INFO_CMD_LIST>,
                              public Instance,
                              public std::enable_shared_from_this<EventController>
{
public:
    EventController(
        GenTL::EVENTSRC_HANDLE module, GenTL::EVENT_HANDLE event, std::int32_t type,
        const std::weak_ptr<EventSupportingModule>& parentModule, const std::shared_ptr<const GenTLProxy>& proxy);
    ~EventController() override;

    // Queries the producer at each call.
    std::int32_t ControlledEventType() const;
    std::size_t NumEventsInQueue() const;
    std::uint64_t NumEventsFired() const;
    std::size_t EventMaxSize() const;     // bytes of the largest block
    std::size_t EventDataMaxSize() const; // bytes of the largest data

    // Waits on the calling thread. Throws TimeoutException, AbortedException after a kill, or the exception of the
    // producer's failure.
    std::shared_ptr<Event> WaitForEvent(std::uint64_t timeout_ms);
    // The same wait for callers that need only the block as delivered.
    std::vector<std::uint8_t> WaitForBlock(std::uint64_t timeout_ms) const;

    // Ends the running waits, as kills do; later waits end at once.
    void EndWaits() noexcept override;
    // Whether waits have ended. A wait then throws EndedWait(), even if the producer had an event for it.
    bool HasEndReached() const noexcept { return haveWaitsEnded || HasEnded(); }
    static AbortedException EndedWait();
    // Ends one wait; without a waiter the kill stays pending in the producer and ends the next one.
    void KillWait();
    // Registers the event again, since the standard has no call for this: queued events and the old event handle are
    // lost. Must not run while another thread waits on this controller.
    void FlushPendingKillWaits();
    void FlushEvents();

    std::shared_ptr<EventSupportingModule> ParentModule() const;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->EventGetInfo.Name(); }

    class Waiter;
    void Kill() const noexcept;

    const GenTL::EVENTSRC_HANDLE moduleHandle;
    std::atomic<GenTL::EVENT_HANDLE> eventHandle; // replaced by FlushPendingKillWaits
    const std::int32_t eventType;
    const std::weak_ptr<EventSupportingModule> parent;
    // A waiter counts itself before it checks whether waits have ended; the thread that ends waits reads the count
    // afterwards.
    mutable std::atomic<std::size_t> numWaiters{0};
    std::atomic<bool> haveWaitsEnded{false};
};

} // namespace koro::internal

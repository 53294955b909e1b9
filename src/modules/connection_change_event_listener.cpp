#include "modules/connection_change_event_listener.h"

#include "base/exceptions.h"
#include "base/expiring.h"
#include "base/own_threads.h"
#include "modules/event_controller.h"
#include "modules/event_supporting_module.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <future>
#include <system_error>
#include <utility>
#include <vector>

namespace koro::internal
{

using namespace GenTL;

namespace
{

constexpr EVENT_TYPE connectionChangeEvent = EVENT_CUSTOM_ID;

// Empty when the producer does not have the event, or uses its number for another one.
std::shared_ptr<EventController> RegisterEvent(
    const std::weak_ptr<EventSupportingModule>& weakSystem, const std::shared_ptr<const GenTLProxy>& proxy)
{
    const auto system = LockOrThrow(weakSystem);
    const GenTLCaller gentl(proxy);
    EVENT_HANDLE event = GENTL_INVALID_HANDLE;
    const auto result = gentl.Result<&GenTLProxy::GCRegisterEvent>(system->Handle(), connectionChangeEvent, &event);
    if (result == GC_ERR_NOT_IMPLEMENTED || result == GC_ERR_NOT_AVAILABLE) return nullptr;
    gentl.Check<&GenTLProxy::GCRegisterEvent>(result);

    auto controller =
        std::make_shared<EventController>(system->Handle(), event, connectionChangeEvent, weakSystem, proxy);
    if (controller->EventMaxSize() != sizeof(ConnectionChangeEventListener::Record)) return nullptr;
    return controller;
}

} // namespace

// Everything that the thread uses.
struct ConnectionChangeEventListener::Delivery
{
    static constinit thread_local const Delivery* current; // set on the thread of a listener; null on others

    explicit Delivery(std::shared_ptr<EventController> controller) : events(std::move(controller)) {}

    void Run(std::promise<void> started);
    bool IsOnItsThread() const noexcept { return current == this; }
    void DeliverNext();
    // Waits after a failure: a producer that refuses each wait at once must not keep a processor busy.
    void Pause();
    void EndRunning();

    const std::shared_ptr<EventController> events; // empty when the event is not available
    Subscribers subscribers;
    std::atomic<bool> running{false};
    std::mutex pauseMutex; // only for `runningChanged`
    std::condition_variable runningChanged;
};

constinit thread_local const ConnectionChangeEventListener::Delivery* ConnectionChangeEventListener::Delivery::current =
    nullptr;

void ConnectionChangeEventListener::Delivery::Run(std::promise<void> started)
{
    try
    {
        events->FlushEvents();
    }
    catch (...)
    {
        started.set_exception(std::current_exception());
        return;
    }
    const OwnThread ownThread;
    current = this;
    running = true;
    started.set_value();
    while (running)
        DeliverNext();
}

void ConnectionChangeEventListener::Delivery::DeliverNext()
{
    std::vector<std::uint8_t> block;
    try
    {
        block = events->WaitForBlock(GENTL_INFINITE);
    }
    catch (...)
    {
        Pause();
        return;
    }
    if (block.size() != sizeof(Record)) return;

    Record record;
    std::memcpy(&record, block.data(), sizeof record);
    try
    {
        subscribers.TriggerCallback(&record);
    }
    catch (...)
    {
        // No caller could receive the failure; the next record may be readable.
    }
}

void ConnectionChangeEventListener::Delivery::Pause()
{
    std::unique_lock lock(pauseMutex);
    runningChanged.wait_for(lock, std::chrono::milliseconds(50), [&] { return !running; });
}

void ConnectionChangeEventListener::Delivery::EndRunning()
{
    {
        const std::lock_guard lock(pauseMutex);
        running = false;
    }
    runningChanged.notify_all();
    try
    {
        events->KillWait();
    }
    catch (...)
    {
        try
        {
            events->FlushPendingKillWaits(); // registers again, which also ends a wait
        }
        catch (...)
        {}
    }
}

ConnectionChangeEventListener::ConnectionChangeEventListener(
    const std::weak_ptr<EventSupportingModule>& system, const std::shared_ptr<const GenTLProxy>& proxy)
    : delivery(std::make_shared<Delivery>(RegisterEvent(system, proxy)))
{}

ConnectionChangeEventListener::~ConnectionChangeEventListener()
{
    if (!delivery->IsOnItsThread())
    {
        Stop();
        return;
    }
    // A callback on this thread was the last to hold the system. The thread ends when it returns from the callback,
    // together with the data that it shares.
    delivery->EndRunning();
    thread.detach();
}

bool ConnectionChangeEventListener::IsAvailable() const noexcept
{
    return delivery->events != nullptr;
}

ConnectionChangeEventListener::Subscribers::Handle ConnectionChangeEventListener::Subscribe(
    Subscribers::Function function)
{
    const auto handle = delivery->subscribers.RegisterCallback(std::move(function));
    try
    {
        Start();
    }
    catch (...)
    {
        delivery->subscribers.UnregisterCallback(handle);
        throw;
    }
    return handle;
}

void ConnectionChangeEventListener::Unsubscribe(Subscribers::Handle handle)
{
    delivery->subscribers.UnregisterCallback(handle);
    RefuseInsideDelivery();
    const std::lock_guard lock(threadMutex);
    if (delivery->subscribers.IsEmpty()) EndThread();
}

void ConnectionChangeEventListener::Stop()
{
    RefuseInsideDelivery();
    const std::lock_guard lock(threadMutex);
    isStopped = true;
    EndThread();
}

void ConnectionChangeEventListener::Start()
{
    if (!IsAvailable()) throw NotAvailableException("Connection change event is not available!");
    const std::lock_guard lock(threadMutex);
    if (isStopped) throw InternalErrorException("Pointer has expired!");
    if (thread.joinable()) return;
    std::promise<void> started;
    auto start = started.get_future();
    thread =
        std::thread([shared = delivery, promise = std::move(started)]() mutable { shared->Run(std::move(promise)); });
    try
    {
        start.get();
    }
    catch (...)
    {
        thread.join();
        throw;
    }
}

void ConnectionChangeEventListener::RefuseInsideDelivery() const
{
    if (delivery->IsOnItsThread())
        throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
}

void ConnectionChangeEventListener::EndThread()
{
    if (!thread.joinable()) return;
    delivery->EndRunning();
    thread.join();
}

} // namespace koro::internal

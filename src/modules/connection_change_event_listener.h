// ConnectionChangeEventListener: waits for a producer's notifications that a device was disconnected or connected, and
// passes each one to all subscribers.
//
// Owned by its System. Its own thread waits and delivers; the thread runs exactly while there is a subscriber. If the
// producer does not have the event, the listener is not available, which is not a failure. Thread-safe. If a subscriber
// is the last to hold the system, the listener ends on its own thread, which then runs to its end.
#pragma once

#include "base/callback_registry.h"
#include "modules/connection_change_record.h"

#include <memory>
#include <mutex>
#include <thread>

namespace koro::internal
{

class EventController;
class EventSupportingModule;
class GenTLProxy;

class ConnectionChangeEventListener
{
public:
    using Record = ZVR_GenTL::S_EVENT_DEVICE_CONNECTION_CHANGE_DATA;
    // The record lives for the length of the call. Subscribers run under the registry's mutex, one record after the
    // other; what one throws ends the round of its record.
    using Subscribers = TCallbackManager<const Record*>;

    // Registers the event; throws what the producer's failure gives unless that is the answer of one that does not
    // know the event.
    ConnectionChangeEventListener(
        const std::weak_ptr<EventSupportingModule>& system, const std::shared_ptr<const GenTLProxy>& proxy);
    ~ConnectionChangeEventListener();
    ConnectionChangeEventListener(const ConnectionChangeEventListener&) = delete;
    ConnectionChangeEventListener& operator=(const ConnectionChangeEventListener&) = delete;

    bool IsAvailable() const noexcept;

    // The first subscriber starts the thread, which discards what is in the event's queue. Throws NotAvailableException
    // without the event, InternalErrorException after Stop(), std::system_error when no thread is to be had, what the
    // discarding throws, and the standard deadlock error inside a delivery; nobody is subscribed then.
    Subscribers::Handle Subscribe(Subscribers::Function function);
    // Waits for a delivery that is under way; the last one ends the thread. Throws the standard deadlock error inside a
    // delivery; the subscription stands then.
    void Unsubscribe(Subscribers::Handle handle);
    // Ends the thread for good: an open that is under way on another thread must not bring it back. The subscriptions
    // stay and are not called any more. Throws the standard deadlock error inside a delivery.
    void Stop();
    // That error alone.
    void RefuseInsideDelivery() const;

private:
    struct Delivery;

    void Start();
    void EndThread();

    const std::shared_ptr<Delivery> delivery; // the thread's too
    std::mutex threadMutex; // starting and stopping; not taken by the thread, nor while a registry's mutex is held
    std::thread thread;
    bool isStopped = false; // guarded by threadMutex; from Stop() on
};

} // namespace koro::internal

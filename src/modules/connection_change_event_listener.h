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
    // The record is valid only during the call. Subscribers run under the registry's mutex, one record after the other;
    // an exception of one ends the calls for its record.
    using Subscribers = TCallbackManager<const Record*>;

    // Registers the event. Throws the exception of the producer's failure, unless the failure means that the producer
    // does not have the event.
    ConnectionChangeEventListener(
        const std::weak_ptr<EventSupportingModule>& system, const std::shared_ptr<const GenTLProxy>& proxy);
    ~ConnectionChangeEventListener();
    ConnectionChangeEventListener(const ConnectionChangeEventListener&) = delete;
    ConnectionChangeEventListener& operator=(const ConnectionChangeEventListener&) = delete;

    bool IsAvailable() const noexcept;

    // The first subscriber starts the thread, which discards the events in the queue. Throws NotAvailableException
    // without the event, InternalErrorException after Stop(), std::system_error when no thread can be started, any
    // exception of the discarding, and the standard deadlock error inside a delivery; in each case nothing is
    // subscribed.
    Subscribers::Handle Subscribe(Subscribers::Function function);
    // Waits for a running delivery; the last unsubscription ends the thread. Throws the standard deadlock error inside
    // a delivery; the subscription then stays.
    void Unsubscribe(Subscribers::Handle handle);
    // Ends the thread for good: opening an interface on another thread must not start it again. The subscriptions stay
    // but are not called any more. Throws the standard deadlock error inside a delivery.
    void Stop();
    // Throws only that error.
    void RefuseInsideDelivery() const;

private:
    struct Delivery;

    void Start();
    void EndThread();

    const std::shared_ptr<Delivery> delivery; // shared with the thread
    std::mutex threadMutex; // for starting and stopping; not taken by the thread, nor while a registry's mutex is held
    std::thread thread;
    bool isStopped = false; // guarded by threadMutex; true after Stop()
};

} // namespace koro::internal

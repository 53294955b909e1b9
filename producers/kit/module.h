// Module: what System, Interface, Device, remote device, DataStream and Buffer have in common: a handle, events, a
// port.
//
// Alive while open; whoever holds it longer finds it closed. Any thread. Lock order: control locks of a module before
// its `mutex`; the mutexes of two modules are never held together.
#pragma once

#include "producers/kit/event_queue.h"
#include "producers/kit/handle_registry.h"
#include "producers/kit/port.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace koro::kit
{

class Module : public Object, public std::enable_shared_from_this<Module>
{
public:
    // Kills the handle, ends the events, then closes what is below. False if that was done before.
    bool Close();

    std::shared_ptr<EventQueue> RegisterEvent(EVENT_TYPE type);
    void UnregisterEvent(EVENT_TYPE type);

    // Lost without trace while the type is not registered.
    void RaiseEvent(EVENT_TYPE type, std::string block);

    // EVENT_MODULE, unless it is switched off.
    void RaiseTestEvent();

    // EventGetDataInfo of packets. Throws GC_ERR_INVALID_PARAMETER for a block that is none.
    virtual InfoValue PacketInfo(EVENT_TYPE type, std::string_view block, EVENT_DATA_INFO_CMD command) const;

    virtual Port& ModulePort() = 0;

protected:
    // EVENT_ERROR and EVENT_MODULE, unless the module says otherwise.
    virtual bool SupportsEvent(EVENT_TYPE type) const noexcept;
    // EVENT_SIZE_MAX.
    virtual std::size_t MaxBlockBytes(EVENT_TYPE type) const noexcept;
    // EventSelector and what belongs to it; before anyone else sees the map.
    void AddEventRegisters(RegisterMap& map, const std::string& tlType);
    // A new registration, or null when it went; called with `mutex` held.
    virtual void OnRegistration(EVENT_TYPE, EventQueue*) noexcept {}
    virtual BufferObserver* Observer() noexcept { return nullptr; }
    virtual void OnClose() = 0;

    bool IsClosed() const noexcept { return closed; }

    mutable std::mutex mutex; // guards the registrations, and what derived classes say

private:
    // Those of the standard, and EVENT_CUSTOM_ID.
    static constexpr std::size_t numEventTypes = EVENT_MODULE + 2;

    // Of a supported type.
    std::shared_ptr<EventQueue>& RegistrationOf(EVENT_TYPE type);
    void RequireEvent(EVENT_TYPE type) const;
    std::shared_ptr<EventQueue> TakeRegistration(EVENT_TYPE type);

    std::atomic<bool> closed{false};
    std::atomic<bool> isTestNotified{true};
    std::atomic<std::uint64_t> numTestEvents{0};
    EventPackets packets{EventForm::Item, false}; // of EVENT_MODULE; set once
    std::array<std::shared_ptr<EventQueue>, numEventTypes> registrations;
};

} // namespace koro::kit

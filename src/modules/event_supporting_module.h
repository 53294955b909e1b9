// EventSupportingModule: the base of all modules at which events can be registered: System, Interface, Device,
// DataStream, Buffer.
#pragma once

#include "modules/module.h"

#include <cstdint>
#include <memory>

namespace koro::internal
{

class EventController;

class EventSupportingModule : public Module, public std::enable_shared_from_this<EventSupportingModule>
{
public:
    EventSupportingModule(GenTL::EVENTSRC_HANDLE handle, const std::shared_ptr<const GenTLProxy>& proxy);

    // Registers an event type of the standard, which is passed on unchanged. The producer knows which types are
    // registered: it refuses a second registration. Thread-safe.
    std::shared_ptr<EventController> EnableEvents(std::int32_t eventType);

private:
    const GenTLCaller eventCaller;
};

} // namespace koro::internal

// EventRequests: sends the events of local modules at the wish of features or of a script.
//
// Owned by the system's PlugControl. Any thread.
#pragma once

#include "producers/kit/module.h"
#include "producers/kit/register_map.h"
#include "producers/simulator/kit.h"
#include "producers/simulator/settings/event_request.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace koro::simulator
{

class System;

class EventRequests
{
public:
    explicit EventRequests(System& owningSystem) : system(owningSystem) {}

    // False when that module of the camera is not open. GC_ERR_INVALID_PARAMETER for an event that it has not.
    bool Send(const EventRequest& request, const std::string& interfaceId, const std::string& cameraId) const;

    // SimulatedEvent...; `send` is called with what they say.
    void AddRegisters(RegisterMap& map, std::function<void(const EventRequest&)> send);

private:
    std::shared_ptr<Module> Find(EventModule module, const std::string& interfaceId, const std::string& cameraId) const;

    System& system;
    std::mutex mutex; // guards the next
    EventRequest next;
};

} // namespace koro::simulator

// EventRequest: an event that a local module is to send, as a step of a script or a feature asks for it.
#pragma once

#include "producers/simulator/settings/json_reader.h"

#include <array>
#include <cstddef>
#include <string>

namespace koro::simulator
{

// Numbers of SimulatedEventModule.
enum class EventModule
{
    System,
    Interface,
    Device,
    Stream
};

struct EventRequest
{
    EventModule module = EventModule::Device;
    EVENT_TYPE type = EVENT_MODULE;
    std::string text = "an error that was asked for"; // of errors
    std::string feature;
    std::string value; // of a changed feature
    GC_ERROR code = GC_ERR_ERROR;
};

// Takes the keys of a step of the script.
EventRequest ReadEventRequest(JsonObject& object);

// In the order of SimulatedEventType.
inline constexpr std::array<EVENT_TYPE, 4> requestableEvents{
    EVENT_ERROR, EVENT_FEATURE_INVALIDATE, EVENT_FEATURE_CHANGE, EVENT_MODULE};
inline constexpr std::size_t numEventModules = 4;

// Whether that module has such an event.
constexpr bool IsAllowed(EventModule module, EVENT_TYPE type)
{
    return module == EventModule::Device || type == EVENT_ERROR || type == EVENT_MODULE;
}

} // namespace koro::simulator

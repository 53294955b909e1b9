#include "producers/simulator/settings/event_request.h"

#include <algorithm>
#include <iterator>

namespace koro::simulator
{
namespace
{

// In the order of EventModule and of requestableEvents.
constexpr const char* moduleNames[numEventModules] = {"system", "interface", "device", "stream"};
constexpr const char* eventNames[requestableEvents.size()] = {"error", "featureInvalidate", "featureChange", "module"};

template <std::size_t number>
std::size_t IndexOf(const std::string& name, const char* const (&names)[number])
{
    return static_cast<std::size_t>(std::find(std::begin(names), std::end(names), name) - std::begin(names));
}

} // namespace

EventRequest ReadEventRequest(JsonObject& object)
{
    EventRequest request;
    std::string module = "device";
    object.Read("module", module);
    const std::size_t moduleIndex = IndexOf(module, moduleNames);
    if (moduleIndex == numEventModules) object.Refuse("module", "must be system, interface, device or stream");
    request.module = static_cast<EventModule>(moduleIndex);

    std::string event;
    object.Read("event", event);
    const std::size_t eventIndex = IndexOf(event, eventNames);
    if (eventIndex == requestableEvents.size())
        object.Refuse("event", "must be error, featureInvalidate, featureChange or module");
    request.type = requestableEvents[eventIndex];
    if (!IsAllowed(request.module, request.type)) object.Refuse("module", "only devices have this event");

    object.Read("feature", request.feature);
    object.Read("value", request.value);
    object.Read("text", request.text);
    object.ReadError("code", request.code);
    return request;
}

} // namespace koro::simulator

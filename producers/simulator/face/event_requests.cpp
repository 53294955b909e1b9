#include "producers/simulator/face/event_requests.h"

#include "producers/kit/failure.h"
#include "producers/simulator/face/data_stream.h"
#include "producers/simulator/face/device.h"
#include "producers/simulator/face/interface.h"
#include "producers/simulator/face/system.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <system_register_names.h>
#include <utility>

namespace koro::simulator
{
namespace
{

std::uint64_t IndexOf(EVENT_TYPE type)
{
    const auto* const found = std::find(requestableEvents.begin(), requestableEvents.end(), type);
    return static_cast<std::uint64_t>(found - requestableEvents.begin());
}

} // namespace

std::shared_ptr<Module> EventRequests::Find(
    EventModule module, const std::string& interfaceId, const std::string& cameraId) const
{
    if (module == EventModule::System) return system.shared_from_this();
    const auto interface = system.FindOpenInterface(interfaceId);
    if (module == EventModule::Interface || !interface) return interface;
    const auto device = interface->FindOpenDevice(cameraId);
    if (module == EventModule::Device || !device) return device;
    return device->FindOpenStream();
}

bool EventRequests::Send(const EventRequest& request, const std::string& interfaceId, const std::string& cameraId) const
{
    if (!IsAllowed(request.module, request.type))
        throw Failure(GC_ERR_INVALID_PARAMETER, "only devices have this event");
    const auto module = Find(request.module, interfaceId, cameraId);
    if (!module) return false;
    switch (request.type)
    {
    case EVENT_ERROR:
        module->RaiseEvent(EVENT_ERROR, ErrorBlock(request.code, request.text));
        break;
    case EVENT_FEATURE_INVALIDATE:
        module->RaiseEvent(EVENT_FEATURE_INVALIDATE, FeatureBlock(request.feature));
        break;
    case EVENT_FEATURE_CHANGE:
        module->RaiseEvent(EVENT_FEATURE_CHANGE, FeatureBlock(request.feature) + FeatureBlock(request.value));
        break;
    default:
        module->RaiseTestEvent();
        break;
    }
    return true;
}

void EventRequests::AddRegisters(RegisterMap& map, std::function<void(const EventRequest&)> send)
{
    const auto change = [this](const auto& set) {
        const std::lock_guard lock(mutex);
        set(next);
    };
    const auto present = [this] {
        const std::lock_guard lock(mutex);
        return next;
    };
    map.AddInteger(
        registers::system::SimulatedEventModuleReg, [present] { return static_cast<std::uint64_t>(present().module); },
        [change](std::uint64_t module) {
            if (module >= numEventModules) RefuseValue("there is no such module");
            change([module](EventRequest& request) { request.module = static_cast<EventModule>(module); });
        });
    map.AddInteger(
        registers::system::SimulatedEventTypeReg, [present] { return IndexOf(present().type); },
        [change](std::uint64_t type) {
            if (type >= requestableEvents.size()) RefuseValue("there is no such event");
            change([type](EventRequest& request) { request.type = requestableEvents[type]; });
        });
    map.AddInteger(
        registers::system::SimulatedEventErrorCodeReg, [present] { return static_cast<std::uint32_t>(present().code); },
        [change](std::uint64_t code) {
            change([code](EventRequest& request) { request.code = static_cast<GC_ERROR>(code); });
        });
    map.AddAction(registers::system::SimulatedEventSendReg, [present, send = std::move(send)] { send(present()); });
    const auto addText = [&](RegisterPlace place, std::string EventRequest::*member) {
        map.AddText(
            place, [present, member] { return present().*member; },
            [change, member](const std::string& text) {
                change([&text, member](EventRequest& request) { request.*member = text; });
            });
    };
    addText(registers::system::SimulatedEventFeature, &EventRequest::feature);
    addText(registers::system::SimulatedEventValue, &EventRequest::value);
    addText(registers::system::SimulatedEventErrorText, &EventRequest::text);
}

} // namespace koro::simulator

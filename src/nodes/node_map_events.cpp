// The data of events as nodes of a map.
//
// An adapter of GenApi takes an event's block apart, as the camera's transport has made it, and shows it as the event
// ports of the map. Which map an event belongs to is told by the module that it came from: a camera's events come from
// the local device, and belong to the maps of the remote one.

#include "base/exceptions.h"
#include "gentl/port.h"
#include "modules/device.h"
#include "modules/event.h"
#include "modules/event_controller.h"
#include "modules/remote_device.h"
#include "nodes/event_message.h"
#include "nodes/node_map.h"
#include "nodes/translate_genapi_exceptions.h"

#include <GenApi/EventAdapter1394.h>
#include <GenApi/EventAdapterCL.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterU3V.h>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

std::unique_ptr<CEventAdapter> MakeEventAdapter(const std::string& tlType, INodeMap* nodeMap)
{
    if (tlType == "1394") return std::make_unique<CEventAdapter1394>(nodeMap);
    if (tlType == "CL") return std::make_unique<CEventAdapterCL>(nodeMap);
    if (tlType == "GEV") return std::make_unique<CEventAdapterGEV>(nodeMap);
    if (tlType == "U3V") return std::make_unique<CEventAdapterU3V>(nodeMap);
    throw InternalErrorException("Event adapter for TLType " + tlType + " not supported!");
}

// Of the module that the event came from.
bool HasDataForNodes(std::int32_t eventType)
{
    return eventType == GenTL::EVENT_FEATURE_INVALIDATE || eventType == GenTL::EVENT_FEATURE_CHANGE ||
           eventType == GenTL::EVENT_MODULE || eventType >= GenTL::EVENT_CUSTOM_ID;
}

} // namespace

bool NodeMap::HasEventSupportedData(const std::shared_ptr<Event>& event)
{
    return InBothLayers([&] {
        const AutoLock lock(GenApiLock());
        EnsureEventAdapter();
        return IsOfThisMap(*event);
    });
}

void NodeMap::UpdateEventNodes(const std::shared_ptr<Event>& event)
{
    InBothLayers([&] {
        const AutoLock lock(GenApiLock());
        CEventAdapter& adapter = EnsureEventAdapter();
        if (!IsOfThisMap(*event)) throw InvalidArgumentException("Event does not have supported data!");
        const auto& message = event->RawData();
        adapter.DeliverMessage(message.data(), EventMessageSize(message.size()));
    });
}

CEventAdapter& NodeMap::EnsureEventAdapter()
{
    if (!eventAdapter) eventAdapter = MakeEventAdapter(port->TLType(), nodeMapRef._Ptr);
    return *eventAdapter;
}

bool NodeMap::IsOfThisMap(const Event& event) const
{
    const auto module = event.ParentController()->ParentModule();
    if (event.Type() != GenTL::EVENT_REMOTE_DEVICE) return module->Port() == port && HasDataForNodes(event.Type());

    const auto device = std::dynamic_pointer_cast<Device>(module);
    if (!device) throw InternalErrorException("Violation of GenTL remote device event specification detected!");
    return device->GetRemoteDevice()->Port() == port;
}

} // namespace koro::internal

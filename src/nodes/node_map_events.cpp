// The data of events as nodes of a map.
//
// An adapter of GenApi decodes the block of an event, as the camera's transport layer built it, and presents it as the
// event ports of the map. The event states the port whose maps it belongs to.

#include "base/exceptions.h"
#include "gentl/port.h"
#include "nodes/event_message.h"
#include "nodes/event_source.h"
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

} // namespace

bool NodeMap::HasEventSupportedData(const EventSource& event)
{
    return InBothLayers([&] {
        const AutoLock lock(GenApiLock());
        EnsureEventAdapter();
        return IsOfThisMap(event);
    });
}

void NodeMap::UpdateEventNodes(const EventSource& event)
{
    InBothLayers([&] {
        const AutoLock lock(GenApiLock());
        CEventAdapter& adapter = EnsureEventAdapter();
        if (!IsOfThisMap(event)) throw InvalidArgumentException("Event does not have supported data!");
        const auto& message = event.RawData();
        adapter.DeliverMessage(message.data(), EventMessageSize(message.size()));
    });
}

CEventAdapter& NodeMap::EnsureEventAdapter()
{
    if (!eventAdapter) eventAdapter = MakeEventAdapter(port->TLType(), nodeMapRef._Ptr);
    return *eventAdapter;
}

bool NodeMap::IsOfThisMap(const EventSource& event) const
{
    return event.PortOfNodes() == port;
}

} // namespace koro::internal

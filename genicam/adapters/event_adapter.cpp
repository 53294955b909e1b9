#include "adapters/event_nodes.h"

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE
{

CEventAdapter::CEventAdapter(INodeMap* pNodeMap) : nodes(std::make_shared<runtime::EventNodes>())
{
    m_ppEventPorts = &nodes->ports;
    if (pNodeMap) nodes->AttachMap(pNodeMap);
}

CEventAdapter::~CEventAdapter()
{
    nodes->DetachMap();
}

void CEventAdapter::AttachNodeMap(INodeMap* pNodeMap)
{
    nodes->AttachMap(pNodeMap);
}

void CEventAdapter::DetachNodeMap()
{
    nodes->DetachMap();
}

void CEventAdapter::DeliverItems(runtime::EventItems items)
{
    const std::shared_ptr<runtime::EventNodes> held = nodes;
    runtime::EventItem item;
    while (items.Next(item))
        held->Deliver(item);
}

} // namespace GENAPI_NAMESPACE

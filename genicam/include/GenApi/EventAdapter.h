// CEventAdapter: presents the bytes of events as the event ports of a node map, and notifies the nodes of an event.
// There is one derived class for each message format.
//
// Takes the lock of the map for each event; callbacks of the type "outside" are called after it was released. If a
// message is refused, the nodes do not change. The adapter may outlive the map, which detaches it.
#pragma once

#include <GenApi/EventPort.h>
#include <GenApi/INodeMap.h>
#include <memory>
#include <vector>

namespace GENAPI_NAMESPACE
{

namespace runtime
{
class EventItems;
}

class GENAPI_DECL CEventAdapter
{
public:
    explicit CEventAdapter(INodeMap* pNodeMap = NULL);
    virtual ~CEventAdapter();
    // Takes over all nodes with an event id, including their ports, even from another adapter.
    virtual void AttachNodeMap(INodeMap* pNodeMap);
    virtual void DetachNodeMap();
    // Delivers a whole message. Throws RuntimeException when it is malformed; an id that no node has is not an error.
    virtual void DeliverMessage(const uint8_t msg[], uint32_t numBytes) = 0;

    CEventAdapter(const CEventAdapter&) = delete;
    CEventAdapter& operator=(const CEventAdapter&) = delete;

protected:
    void DeliverItems(runtime::EventItems items);

    std::vector<CEventPort*>* m_ppEventPorts;
    // Shared with running deliveries: a callback may destroy the adapter.
    const std::shared_ptr<runtime::EventNodes> nodes;
};

} // namespace GENAPI_NAMESPACE

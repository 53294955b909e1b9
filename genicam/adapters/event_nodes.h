// EventNodes: the nodes of one node map that have an event id, to which an adapter delivers events.
//
// Shared by the adapter and its running deliveries. Each operation takes the lock of the map.
#pragma once

#include "adapters/event_items.h"
#include "adapters/map_link.h"

#include <GenApi/EventPort.h>
#include <string_view>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

class EventNodes
{
public:
    // Detaches the previous map first; after a failure no map is attached.
    void AttachMap(INodeMap* pMap);
    void DetachMap();
    void Deliver(const EventItem& item);
    // `id` in its canonical form.
    void Deliver(std::string_view id, const uint8_t* bytes, uint32_t size, bool showsSize);

    std::vector<CEventPort*> ports;

private:
    void Show(CEventPort& port, const uint8_t* bytes, uint32_t size, bool showsSize);

    MapLink link;
    std::vector<std::unique_ptr<CEventPort>> owned;
    std::vector<CEventPort*> sorted; // by id, only those that have one
    std::vector<Node*> affected;     // temporary list: the nodes of one event
};

} // namespace GENAPI_NAMESPACE::runtime

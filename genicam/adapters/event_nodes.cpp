#include "adapters/event_nodes.h"

#include "adapters/event_port_data.h"

#include <algorithm>
#include <optional>

namespace GENAPI_NAMESPACE::runtime
{

void EventNodes::AttachMap(INodeMap* pMap)
{
    NodeMap& map = OwnMap(pMap);
    DetachMap();
    const AutoLock held(map.GetLock());
    std::vector<std::unique_ptr<CEventPort>> made;
    std::vector<CEventPort*> list;
    std::vector<CEventPort*> withID;
    for (NodeIndex index = 0; index < map.Source().nodes.size(); ++index)
    {
        if (!map.Source().Find(index, Property::EventID)) continue;
        auto port = std::make_unique<CEventPort>();
        if (!port->AttachNode(map.At(index))) continue;
        list.push_back(port.get());
        if (port->data->id.IsId()) withID.push_back(port.get());
        made.push_back(std::move(port));
    }
    std::stable_sort(withID.begin(), withID.end(), [](const CEventPort* a, const CEventPort* b) {
        return a->data->id.Canonical() < b->data->id.Canonical();
    });
    ports.swap(list);
    sorted.swap(withID);
    owned.swap(made);
    link = MapLink(map);
}

void EventNodes::DetachMap()
{
    std::optional<AutoLock> held;
    if (const NodeMap* const map = link.Get()) held.emplace(map->GetLock());
    ports.clear();
    sorted.clear();
    owned.clear();
    link = {};
}

void EventNodes::Deliver(const EventItem& item)
{
    Deliver(NumberId(item.id).Canonical(), item.bytes, item.size, item.showsSize);
}

void EventNodes::Deliver(std::string_view id, const uint8_t* bytes, uint32_t size, bool showsSize)
{
    NodeMap* const map = link.Get();
    if (!map) return;
    map->Operate(nullptr, "DeliverMessage", [&] {
        const auto before = [](const CEventPort* port, std::string_view wanted) {
            return port->data->id.Canonical() < wanted;
        };
        affected.clear();
        auto port = std::lower_bound(sorted.begin(), sorted.end(), id, before);
        for (; port != sorted.end() && (*port)->data->id.Canonical() == id; ++port)
        {
            affected.push_back((*port)->data->node);
            Show(**port, bytes, size, showsSize);
        }
        map->Announce(affected);
    });
}

void EventNodes::Show(CEventPort& port, const uint8_t* bytes, uint32_t size, bool showsSize)
{
    CEventPort::Data& data = *port.data;
    if (!data.portNode) return;
    data.bytes.assign(bytes, bytes + size);
    data.delivered = true;
    if (!showsSize) return;
    data.bytes[0] = static_cast<uint8_t>(size >> 8);
    data.bytes[1] = static_cast<uint8_t>(size);
}

} // namespace GENAPI_NAMESPACE::runtime

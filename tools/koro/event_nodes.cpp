#include "tools/koro/event_nodes.h"

#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"

#include <algorithm>

namespace koro::tool
{

namespace
{

constexpr const char* prefix = "Event";

std::vector<std::string> EventNames(const NodeMap& nodes)
{
    std::vector<std::string> names;
    const Node selector = nodes.TryNode("EventSelector");
    if (!selector || selector.Type() != KORO_NODE_TYPE_ENUMERATION) return names;
    for (const EnumerationEntryNode& entry : selector.ToEnumeration().Entries())
        names.push_back(entry.SymbolicValue());
    return names;
}

bool MayHoldEventData(const Node& node, const std::string& name)
{
    return name.rfind(prefix, 0) == 0 && name != "EventSelector" && name != "EventNotification" && node.IsFeature() &&
           HasValue(node.Type());
}

} // namespace

EventNodes::EventNodes(const NodeMap& map) : nodes(map)
{
    const std::vector<std::string> events = EventNames(nodes);
    for (const Node& node : nodes.Nodes())
    {
        std::string name = node.Name();
        if (!MayHoldEventData(node, name)) continue;
        Watched& added = watched.emplace_back();
        added.node = node;
        added.event = EventOfFeature(name, events);
        added.name = std::move(name);
        // Runs on this thread, inside UpdateEventNodes.
        added.news = node.OnChanged([&added](Node) { added.hasChanged = true; });
    }
}

std::vector<EventNews> EventNodes::Deliver(const Event& event)
{
    for (Watched& feature : watched)
        feature.hasChanged = false;
    nodes.UpdateEventNodes(event);

    std::vector<EventNews> news;
    for (const Watched& feature : watched)
    {
        if (!feature.hasChanged) continue;
        const auto value = IfKnown([&] { return ReadValue(feature.node); });
        if (!value) continue;
        auto found =
            std::find_if(news.begin(), news.end(), [&](const EventNews& known) { return known.name == feature.event; });
        if (found == news.end()) found = news.insert(news.end(), {feature.event, {}});
        found->values.emplace_back(feature.name, *value);
    }
    return news;
}

std::string EventOfFeature(const std::string& feature, const std::vector<std::string>& events)
{
    std::string longest;
    for (const std::string& event : events)
    {
        if (event.size() > longest.size() && feature.rfind(prefix + event, 0) == 0) longest = event;
    }
    return longest;
}

} // namespace koro::tool

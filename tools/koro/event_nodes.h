// EventNodes: the features that hold the data of a camera's events, and which of them an event has changed.
//
// Owned by one command; one thread at a time. The node map outlives it.
#pragma once

#include <koro/koro.hpp>

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace koro::tool
{

// What one event brought: the name of its entry in EventSelector, empty for features that belong to none, and the
// values of its features in the order of the description.
struct EventNews
{
    std::string name;
    std::vector<std::pair<std::string, std::string>> values;
};

class EventNodes
{
public:
    explicit EventNodes(const NodeMap& nodes);

    // Delivers the event. One packet may bring several; none when no feature has its id. Throws koro::Error.
    std::vector<EventNews> Deliver(const Event& event);

private:
    struct Watched
    {
        Node node;
        std::string name;
        std::string event;
        bool hasChanged = false;
        Registration news;
    };

    NodeMap nodes;
    std::deque<Watched> watched; // each stays at its address
};

// Of these names the longest that the feature's name carries behind "Event"; empty when it carries none.
std::string EventOfFeature(const std::string& feature, const std::vector<std::string>& events);

} // namespace koro::tool

// MapLink: the reference of an adapter to a node map, which may end first.
#pragma once

#include "nodes/node_inline.h"

namespace GENAPI_NAMESPACE::runtime
{

// The map of this runtime behind the interface; InvalidArgumentException for any other object.
inline NodeMap& OwnMap(INodeMap* map)
{
    NodeMap* const own = dynamic_cast<NodeMap*>(map);
    if (!own) throw INVALID_ARGUMENT_EXCEPTION("The node map is missing or not one of this runtime");
    return *own;
}

// A map that may end before this object.
class MapLink
{
public:
    MapLink() = default;
    explicit MapLink(NodeMap& target) : map(&target), life(target.Life()) {}

    // Null without a map and after its end.
    NodeMap* Get() const { return life.expired() ? nullptr : map; }

private:
    NodeMap* map = nullptr;
    std::weak_ptr<const void> life;
};

} // namespace GENAPI_NAMESPACE::runtime

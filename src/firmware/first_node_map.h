// The node map of a module that an update uses: the first one.
#pragma once

#include "modules/device.h"
#include "modules/remote_device.h"
#include "nodes/node_map.h"

#include <memory>
#include <stdexcept>

namespace koro::internal
{

// Throws the standard out-of-range failure when the module has none.
inline std::shared_ptr<NodeMap> FirstNodeMap(Module& module)
{
    const auto maps = module.NodeMaps();
    if (maps.empty()) throw std::out_of_range("invalid vector subscript");
    return maps.front();
}

inline std::shared_ptr<NodeMap> FirstRemoteNodeMap(Device& device)
{
    return FirstNodeMap(*device.GetRemoteDevice());
}

} // namespace koro::internal

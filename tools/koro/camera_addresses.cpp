#include "tools/koro/camera_addresses.h"

#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"

#include <algorithm>

namespace koro::tool
{

namespace
{

// As many as a module may have children.
constexpr int64_t mostCameras = 65536;

OptionalText Address(const NodeMap& nodes, const char* name, KORO_NodeRepresentation form)
{
    return IfKnown([&] { return NumberText(nodes.Integer(name).Value(CachePolicy::IgnoreCache), form); });
}

std::map<std::string, CameraAddresses> ReadAll(const NodeMap& nodes)
{
    std::map<std::string, CameraAddresses> addresses;
    if (!nodes.TryNode("GevDeviceIPAddress") && !nodes.TryNode("GevDeviceMACAddress")) return addresses;
    const IntegerNode selector = nodes.Integer("DeviceSelector");
    const int64_t before = selector.Value();
    const int64_t first = selector.Minimum();
    const int64_t last = std::min(selector.Maximum(), mostCameras);
    for (int64_t index = first; index <= last; ++index)
    {
        const auto id = IfKnown([&] {
            selector.SetValue(index);
            return nodes.String("DeviceID").Value(CachePolicy::IgnoreCache);
        });
        if (!id) continue;
        addresses[*id] = {
            Address(nodes, "GevDeviceIPAddress", KORO_NODE_REPRESENTATION_IPV4_ADDRESS),
            Address(nodes, "GevDeviceMACAddress", KORO_NODE_REPRESENTATION_MAC_ADDRESS)};
    }
    IfKnown([&] { return selector.SetValue(before), true; });
    return addresses;
}

} // namespace

std::map<std::string, CameraAddresses> ReadAddresses(const Interface& opened)
{
    return IfKnown([&] {
               const auto maps = opened.NodeMaps();
               return maps.empty() ? std::map<std::string, CameraAddresses>() : ReadAll(maps.front());
           })
        .value_or(std::map<std::string, CameraAddresses>());
}

} // namespace koro::tool

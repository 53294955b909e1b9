// Camera addresses: what an interface knows of the cameras on its network. One thread at a time.
#pragma once

#include "tools/koro/camera_tree.h"
#include <koro/koro.hpp>

#include <map>
#include <string>

namespace koro::tool
{

struct CameraAddresses
{
    OptionalText ip;  // "169.254.1.7"
    OptionalText mac; // "00:11:1c:f0:12:34"
};

// Of each camera by its id, as the features of the interface say: `GevDeviceIPAddress` and `GevDeviceMACAddress` for
// each value of `DeviceSelector`, which is set back. Empty for an interface without them. Throws nothing.
std::map<std::string, CameraAddresses> ReadAddresses(const Interface& opened);

} // namespace koro::tool

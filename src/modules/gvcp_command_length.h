// The GVCP command length test: determines how long a control command to a GigE Vision camera may be.
#pragma once

namespace koro::internal
{

class Device;

// Writes the camera's test register with growing lengths and lets the transport layer's length node follow: what it
// holds in the end is the longest command that passed. Fetches the node maps of the device and of its remote device.
// Devices without these nodes, with nodes of another type by these names, or without a usable description are left as
// they are. A length that fails ends the test; throws when the transport layer cannot be set accordingly.
void TestGVCPCommandLength(Device& device);

} // namespace koro::internal

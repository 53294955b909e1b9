// The GVCP command length test: how long a command may be on the way to a GigE Vision camera.
#pragma once

namespace koro::internal
{

class Device;

// Writes the camera's test register with growing lengths and lets the transport layer's length node follow: what it
// holds in the end is the longest command that passed. Fetches the node maps of the device and of its remote device.
// Devices without these nodes, or with nodes of another type by these names, are left alone. A length that fails ends
// the test; throws when the transport layer cannot be told so.
void TestGVCPCommandLength(Device& device);

} // namespace koro::internal

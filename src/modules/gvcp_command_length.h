// The GVCP command length test: determines how long a control command to a GigE Vision camera may be.
#pragma once

namespace koro::internal
{

class Device;

// Writes the camera's test register with growing lengths and adapts the transport layer's length node: at the end it
// contains the longest command that succeeded. Fetches the node maps of the device and of its remote device. Does
// nothing for devices without these nodes, with nodes of another type by these names, or without a usable description.
// A length that fails ends the test; the function throws when the transport layer cannot be set accordingly.
void TestGVCPCommandLength(Device& device);

} // namespace koro::internal

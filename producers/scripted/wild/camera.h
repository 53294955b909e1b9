// Camera: what a wild producer's camera is: its features, as registers and a description, and the picture it takes.
//
// The registers lie in the tree; a write to them changes the fields, which the thread that takes pictures reads.
#pragma once

#include "producers/scripted/tree.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace scripted::wild
{

struct Camera
{
    std::string id;
    std::atomic<bool> isStarted{false};
    std::atomic<std::uint32_t> width{64};
    std::atomic<std::uint32_t> height{48};
    std::atomic<std::uint32_t> packetSize{1500};
    std::atomic<std::uint64_t> pictures{0}; // taken

    // Mono8; the first four bytes are the packet size, least significant one first.
    Frame Picture() const;
};

// The device as the tree has it, with features in its ports. `changed` is called behind each start and stop.
std::shared_ptr<Device> MakeCameraDevice(Camera& camera, const std::function<void()>& changed);

// The features of the modules above the cameras.
void DescribeHost(Tree& tree);
// Overwrites the packet size of every camera by the system's feature StreamPacketSize, which it gives.
std::uint32_t TakeHostPacketSize(Tree& tree);

} // namespace scripted::wild

// CameraLink: whether a camera is still there, by what its producer reports and by its device list.
//
// Owned by one grab, whose connection outlives it; one thread at a time, while reports come on a thread of the library.
#pragma once

#include "tools/koro/camera_connection.h"
#include <koro/koro.hpp>

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

namespace koro::tool
{

class CameraLink
{
public:
    // A camera is known by its id and its serial number together, since several may share either. `serialNumber` may be
    // empty: then it is known by its id.
    CameraLink(const CameraConnection& connection, std::string id, std::string serialNumber);

    // The producer has told that the camera was disconnected, and not yet that it came back. Asks nobody.
    bool IsReportedLost() const noexcept { return reportedLost; }
    // How often it has told that. Asks nobody.
    uint64_t NumReportedLosses() const noexcept { return numReportedLosses; }
    // Reads the device list anew and looks for the camera.
    std::optional<DeviceDescriptor> Find();

private:
    bool IsTheCamera(const DeviceDescriptor& device) const;

    const Interface& cameraInterface;
    const std::string id;
    const std::string serialNumber;
    std::atomic<bool> reportedLost{false};
    std::atomic<uint64_t> numReportedLosses{0};
    // Last: they use everything above.
    Registration disconnected;
    Registration reconnected;
};

} // namespace koro::tool

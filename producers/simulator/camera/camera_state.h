// CameraState: all that changes of a camera. A plain value; it can be encoded as bytes, for a CameraMemory.
#pragma once

#include "producers/simulator/camera/acquisition.h"
#include "producers/simulator/camera/feature_values.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace koro::simulator
{

// The machine's, so all processes agree on it.
using CameraClock = std::chrono::steady_clock;

struct CameraState
{
    explicit CameraState(const CameraSettings& settings);

    FeatureValues values;
    std::array<FeatureValues, 3> userSets; // Default, UserSet0, UserSet1
    std::uint64_t userSetDefault = 0;
    std::string userName;
    std::string firmware;
    std::string nextFirmware; // after a restart
    std::uint64_t paramsLocked = 0;
    bool isStreaming = false;
    Acquisition acquisition;
    std::optional<CameraClock::time_point> timerStart;
    CameraClock::time_point clockStart;
    std::uint64_t latched_ns = 0;
    std::uint64_t numResets = 0; // by this process since the power was lost; not encoded

    // Takes images, or somebody is about to.
    bool IsInUse() const noexcept { return acquisition.IsActive() || paramsLocked == 1 || isStreaming; }
    // Nobody is there any more who wants images.
    void EndUse() noexcept;
};

// The same number of bytes for every state; no other build need understand them.
std::vector<std::byte> Encode(const CameraState& state);

// False for bytes that no camera with this sensor could have left; `state` is then as it was. Times that lie ahead, as
// after the machine was started again, become now.
bool Decode(std::span<const std::byte> bytes, const Sensor& sensor, CameraState& state);

// What a state depends on: two cameras of the same answer may take each other's.
std::string IdentityOf(const CameraSettings& settings, const std::string& tlType);

} // namespace koro::simulator

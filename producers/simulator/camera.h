// Camera: a simulated camera as it stands on the desk, plugged in or not; it outlives every opening of its Device
// module.
//
// Owned by the library, shared with open devices. Any thread.
#pragma once

#include "producers/simulator/image_source.h"
#include "producers/simulator/settings.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace koro::simulator
{

class Camera
{
public:
    // Loads the folder, if it plays one. Takes from the misbehaviour what concerns this camera.
    Camera(const CameraSettings& cameraSettings, std::string transportType, const Misbehaviour& misbehaviour);

    const CameraSettings& Settings() const noexcept { return settings; }
    const std::string& Id() const noexcept { return id; }
    const std::string& TLType() const noexcept { return tlType; }
    std::string DisplayName() const { return settings.vendor + " " + settings.model + " (" + id + ")"; }
    const ImageSource& Source() const noexcept { return *source; }

    // Id, serial number or user name.
    bool AnswersTo(const std::string& name) const;

    // The fault of frame n, or null.
    const FrameFault* FaultOfFrame(std::uint64_t n) const noexcept;
    bool VanishesAtFrame(std::uint64_t n) const noexcept;

    bool IsPresent() const;
    void Vanish();
    // Counts one list update; whether the camera is found by it.
    bool OnListUpdate();

private:
    void Unplug() noexcept; // mutex held

    const CameraSettings settings;
    const std::string tlType;
    const std::string id;
    std::unique_ptr<ImageSource> source;
    std::vector<FrameFault> frameFaults;
    DeviceFault deviceFault;

    mutable std::mutex mutex; // guards all below
    bool present = true;
    std::uint64_t numUpdates = 0;
    std::uint64_t numMissed = 0;
};

} // namespace koro::simulator

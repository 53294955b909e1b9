// Camera: a simulated camera as it stands on the desk, plugged in or not; it outlives every opening of its Device
// module.
//
// Owned by the library, shared with open devices. Any thread.
#pragma once

#include "producers/simulator/camera/camera_features.h"
#include "producers/simulator/frames/image_source.h"
#include "producers/simulator/settings/settings.h"

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
    enum class Finding
    {
        Here,
        Unplugged,
        Gone
    };

    // Loads the folder, if it plays one. Takes from the misbehaviour what concerns this camera.
    Camera(const CameraSettings& cameraSettings, CameraConnection plug, const Misbehaviour& misbehaviour);

    const CameraSettings& Settings() const noexcept { return settings; }
    // Another one after a reset that changes it, from the list update on that finds the camera again.
    std::string Id() const;
    const std::string& TLType() const noexcept { return connection.tlType; }
    const NetworkAddress& Network() const noexcept { return connection.network; }
    std::string DisplayNameUnder(const std::string& id) const
    {
        return settings.vendor + " " + settings.model + " (" + id + ")";
    }
    const ImageSource& Source() const noexcept { return *source; }
    CameraFeatures& Features() const noexcept { return *features; }
    PortFacts Facts(const char* module, const char* portName) const;
    // The camera's own registers and description, or those that the settings name.
    const PortRegisters& Registers() const noexcept { return registers; }

    // Id, serial number or user name.
    bool AnswersTo(const std::string& name) const;

    // The fault of frame n, or null.
    const FrameFault* FaultOfFrame(std::uint64_t n) const noexcept;
    bool VanishesAtFrame(std::uint64_t n) const noexcept;

    std::string UserName() const { return features->UserName(); }

    // Neither unplugged nor gone.
    bool IsPresent() const;
    // Absent for another reason than its cable.
    bool IsGone() const;
    // The cable is pulled until Replug; false when the camera was gone before. One that gets its power over the cable
    // starts again.
    bool Unplug(bool losesPower);
    bool Replug(); // false when the cable was not pulled
    bool IsUnplugged() const;
    // A camera that is already gone keeps the time for which it stays away.
    void Vanish();
    // Goes after each DeviceReset when the settings want it.
    void VanishAfterReset();
    // Counts one list update; what it finds.
    Finding OnListUpdate();

private:
    PortFacts FactsUnder(const std::string& id, const char* module, const char* portName) const;
    // With the mutex held.
    void Leave(const Absence& asked);
    bool IsTimeToReturn();
    void LosePower();

    const CameraSettings settings;
    const CameraConnection connection;
    const std::string firstId;
    std::unique_ptr<ImageSource> source;
    const std::shared_ptr<CameraFeatures> features;
    const PortRegisters registers;
    std::vector<FrameFault> frameFaults;
    DeviceFault deviceFault;

    mutable std::mutex mutex; // guards all below
    std::uint64_t numIds = 1; // that it has had
    bool present = true;
    bool unplugged = false; // apart from `present`: ends by Replug alone
    std::uint64_t numUpdates = 0;
    std::uint64_t numMissed = 0;
    Absence absence; // this time
    CameraClock::time_point leftAt;
    std::uint64_t resetsSeen = 0;
};

} // namespace koro::simulator

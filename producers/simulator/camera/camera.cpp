#include "producers/simulator/camera/camera.h"

#include "producers/kit/failure.h"
#include "producers/simulator/camera/camera_descriptions.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/frames/picture.h"
#include "producers/simulator/kit.h"

#include <utility>

namespace koro::simulator
{
namespace
{

std::unique_ptr<ImageSource> MakeSource(const CameraSettings& settings)
{
    switch (settings.source)
    {
    case SourceKind::Sequence:
        return MakeSequenceSource();
    case SourceKind::Surface:
        return MakeSurfaceSource();
    case SourceKind::Folder:
        return MakePictureSource(LoadFolder(settings.folder));
    case SourceKind::Pattern:
        break;
    }
    return MakePatternSource();
}

// Somebody else's description has no AcquisitionStart that would reach the generator.
CameraSettings Complete(CameraSettings settings)
{
    if (!settings.description.empty()) settings.startWithStream = true;
    return settings;
}

// What of a list concerns one camera.
template <typename Fault>
std::vector<Fault> FaultsOf(const std::vector<Fault>& faults, const std::string& serial)
{
    std::vector<Fault> own;
    std::copy_if(faults.begin(), faults.end(), std::back_inserter(own), [&](const Fault& fault) {
        return fault.camera == "*" || fault.camera == serial;
    });
    return own;
}

Absence AbsenceOf(const DeviceFault& fault) noexcept
{
    Absence absence;
    absence.missingUpdates = fault.missingUpdates;
    absence.returns = fault.missingUpdates > 0;
    return absence;
}

} // namespace

Camera::Camera(const CameraSettings& cameraSettings, CameraConnection plug, const Misbehaviour& misbehaviour)
    : settings(Complete(cameraSettings)), connection(std::move(plug)), firstId(settings.model + "_" + settings.serial),
      source(MakeSource(settings)),
      features(std::make_shared<CameraFeatures>(settings, connection, FaultsOf(misbehaviour.files, settings.serial))),
      registers(MakeCameraRegisters(settings, FactsUnder(firstId, "Device", "Device"), features)),
      frameFaults(FaultsOf(misbehaviour.frames, settings.serial))
{
    const auto own = FaultsOf(misbehaviour.devices, settings.serial);
    if (!own.empty()) deviceFault = own.front();
}

std::string Camera::Id() const
{
    const std::lock_guard lock(mutex);
    return numIds == 1 ? firstId : firstId + "_" + std::to_string(numIds);
}

bool Camera::AnswersTo(const std::string& name) const
{
    if (name == Id() || name == settings.serial) return true;
    try
    {
        return !name.empty() && name == UserName();
    }
    catch (const Failure&)
    {
        return false; // who asks for another camera is not concerned by the memory of this one
    }
}

const FrameFault* Camera::FaultOfFrame(std::uint64_t n) const noexcept
{
    for (const FrameFault& fault : frameFaults)
        if (fault.frames.Contains(n)) return &fault;
    return nullptr;
}

bool Camera::VanishesAtFrame(std::uint64_t n) const noexcept
{
    return deviceFault.vanishAtFrame == n;
}

bool Camera::IsPresent() const
{
    const std::lock_guard lock(mutex);
    return present && !unplugged;
}

bool Camera::IsGone() const
{
    const std::lock_guard lock(mutex);
    return !present;
}

bool Camera::IsUnplugged() const
{
    const std::lock_guard lock(mutex);
    return unplugged;
}

bool Camera::Unplug(bool losesPower)
{
    const std::lock_guard lock(mutex);
    if (!present || unplugged) return false;
    unplugged = true;
    if (losesPower) LosePower();
    return true;
}

bool Camera::Replug()
{
    const std::lock_guard lock(mutex);
    return std::exchange(unplugged, false);
}

void Camera::Vanish()
{
    const std::lock_guard lock(mutex);
    Leave(AbsenceOf(deviceFault));
}

void Camera::VanishAfterReset()
{
    if (!settings.reset.IsOne()) return;
    const std::uint64_t resets = features->NumResets();
    const std::lock_guard lock(mutex);
    if (resets > resetsSeen) Leave(settings.reset);
}

void Camera::Leave(const Absence& asked)
{
    if (!present || unplugged) return; // gone already: what it missed goes on counting
    present = false;
    numMissed = 0;
    absence = asked;
    leftAt = CameraClock::now();
    LosePower();
}

bool Camera::IsTimeToReturn()
{
    return absence.returns && numMissed++ >= absence.missingUpdates &&
           CameraClock::now() - leftAt >= std::chrono::milliseconds(absence.time_ms);
}

void Camera::LosePower()
{
    features->OnPowerLoss();
    resetsSeen = 0;
}

PortFacts Camera::Facts(const char* module, const char* portName) const
{
    return FactsUnder(Id(), module, portName);
}

PortFacts Camera::FactsUnder(const std::string& id, const char* module, const char* portName) const
{
    return {id, settings.vendor, settings.model, connection.tlType, module, portName, producerVersion};
}

Camera::Finding Camera::OnListUpdate()
{
    const std::lock_guard lock(mutex);
    if (++numUpdates == deviceFault.vanishAtUpdate) Leave(AbsenceOf(deviceFault));
    if (!present && IsTimeToReturn())
    {
        present = true;
        if (absence.changesId) ++numIds;
    }
    if (unplugged) return Finding::Unplugged;
    return present ? Finding::Here : Finding::Gone;
}

} // namespace koro::simulator

#include "producers/simulator/camera.h"

#include "producers/simulator/picture.h"

#include <utility>

namespace koro::simulator
{
namespace
{

std::unique_ptr<ImageSource> MakeSource(const CameraSettings& settings)
{
    const ImageShape shape{settings.format, settings.width, settings.height};
    switch (settings.source)
    {
    case SourceKind::Sequence:
        return MakeSequenceSource(shape);
    case SourceKind::Folder:
        return MakePictureSource(shape, LoadFolder(settings.folder));
    case SourceKind::Pattern:
        break;
    }
    return MakePatternSource(shape);
}

} // namespace

Camera::Camera(const CameraSettings& cameraSettings, CameraConnection plug, const Misbehaviour& misbehaviour)
    : settings(cameraSettings), connection(std::move(plug)), id(settings.model + "_" + settings.serial),
      source(MakeSource(settings))
{
    const auto concerns = [this](const auto& fault) { return fault.camera == "*" || fault.camera == settings.serial; };
    std::copy_if(misbehaviour.frames.begin(), misbehaviour.frames.end(), std::back_inserter(frameFaults), concerns);
    const auto found = std::find_if(misbehaviour.devices.begin(), misbehaviour.devices.end(), concerns);
    if (found != misbehaviour.devices.end()) deviceFault = *found;
}

bool Camera::AnswersTo(const std::string& name) const
{
    return name == id || name == settings.serial || (!name.empty() && name == settings.userName);
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
    return present;
}

void Camera::Vanish()
{
    const std::lock_guard lock(mutex);
    Unplug();
}

void Camera::Unplug() noexcept
{
    if (!present) return; // gone already: what it missed goes on counting
    present = false;
    numMissed = 0;
}

bool Camera::OnListUpdate()
{
    const std::lock_guard lock(mutex);
    if (++numUpdates == deviceFault.vanishAtUpdate) Unplug();
    if (!present && deviceFault.missingUpdates > 0 && numMissed++ == deviceFault.missingUpdates) present = true;
    return present;
}

} // namespace koro::simulator

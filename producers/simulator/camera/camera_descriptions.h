// How a camera serves its description: plain, zipped, by two URLs, or somebody else's over a memory without meaning.
#pragma once

#include "producers/kit/port.h"
#include "producers/simulator/camera/camera_features.h"
#include "producers/simulator/kit.h"
#include "producers/simulator/settings/settings.h"

#include <memory>

namespace koro::simulator
{

// Throws Failure (GC_ERR_ERROR) that names a description file that cannot be read.
PortRegisters MakeCameraRegisters(
    const CameraSettings& settings, const PortFacts& facts, const std::shared_ptr<CameraFeatures>& features);

} // namespace koro::simulator

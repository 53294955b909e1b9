// What the port of a camera leads to.
#pragma once

#include "producers/simulator/camera_features.h"
#include "producers/simulator/port.h"

#include <memory>

namespace koro::simulator
{

PortRegisters MakeCameraRegisters(const PortFacts& facts, const std::shared_ptr<CameraFeatures>& features);

} // namespace koro::simulator

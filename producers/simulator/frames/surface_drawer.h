// Draws the parts of a 3D camera that are no image.
#pragma once

#include "producers/simulator/frames/frame_plan.h"
#include "producers/simulator/frames/parts.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace koro::simulator
{

// As many whole lines of frame n as `memory` takes. A pixel shows the first of the sensor pixels behind it.
void DrawSurface(std::uint64_t n, const Part& part, const FramePlan& plan, std::span<std::byte> memory);

} // namespace koro::simulator

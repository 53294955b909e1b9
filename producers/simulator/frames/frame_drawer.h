// FrameDrawer: draws the frames of one engine; pictures that come again are kept as they were packed.
//
// Owned by its engine and used by its thread alone.
#pragma once

#include "producers/simulator/frames/image_source.h"

#include <memory>
#include <vector>

namespace koro::simulator
{

class FrameDrawer
{
public:
    explicit FrameDrawer(const ImageSource& drawnSource) : source(drawnSource) {}

    // Writes as many whole lines of that part of frame n as `memory` takes.
    void Draw(
        std::uint64_t n, const std::shared_ptr<const FramePlan>& plan, const Part& part, std::span<std::byte> memory);

private:
    void DrawImage(std::uint64_t n, const std::shared_ptr<const FramePlan>& plan, std::span<std::byte> memory);

    const ImageSource& source;
    std::shared_ptr<const FramePlan> keptPlan; // of all that is kept
    std::vector<std::vector<std::byte>> kept;  // empty where not drawn yet
};

} // namespace koro::simulator

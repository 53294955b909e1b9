#include "producers/simulator/frames/frame_drawer.h"

#include "producers/simulator/frames/surface_drawer.h"

#include <algorithm>
#include <cstring>

namespace koro::simulator
{
namespace
{

constexpr std::size_t maxKeptBytes = std::size_t{1} << 29;

} // namespace

void FrameDrawer::Draw(
    std::uint64_t n, const std::shared_ptr<const FramePlan>& plan, const Part& part, std::span<std::byte> memory)
{
    if (part.kind == PartKind::Intensity) return DrawImage(n, plan, memory);
    DrawSurface(n, part, *plan, memory);
}

void FrameDrawer::DrawImage(std::uint64_t n, const std::shared_ptr<const FramePlan>& plan, std::span<std::byte> memory)
{
    const std::size_t numPictures = source.NumPictures();
    const std::size_t payload = plan->shape.ImageBytes();
    const bool isMoving = plan->testPattern != TestPattern::Off;
    if (numPictures == 0 || isMoving || payload > maxKeptBytes / numPictures) return source.Draw(n, *plan, memory);

    if (keptPlan != plan)
    {
        keptPlan = plan;
        kept.assign(numPictures, {});
    }
    std::vector<std::byte>& picture = kept[n % numPictures];
    if (picture.empty())
    {
        std::vector<std::byte> drawn(payload);
        source.Draw(n, *plan, drawn);
        picture = std::move(drawn);
    }
    std::memcpy(memory.data(), picture.data(), std::min(memory.size(), payload));
}

} // namespace koro::simulator

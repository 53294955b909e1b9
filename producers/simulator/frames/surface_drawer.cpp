#include "producers/simulator/frames/surface_drawer.h"

#include "producers/simulator/frames/surface.h"

#include <algorithm>
#include <vector>

namespace koro::simulator
{

void DrawSurface(std::uint64_t n, const Part& part, const FramePlan& plan, std::span<std::byte> memory)
{
    const ImageShape& shape = part.shape;
    std::vector<std::uint16_t> samples(shape.width);
    const std::size_t lines = std::min(shape.height, memory.size() / shape.LineBytes());
    for (std::size_t y = 0; y < lines; ++y)
    {
        const std::size_t line = plan.y.SensorAt(y);
        for (std::size_t x = 0; x < shape.width; ++x)
        {
            const std::size_t column = plan.x.SensorAt(x);
            samples[x] = part.kind == PartKind::Range
                             ? RangeValue(column, line, n, plan.sensorWidth, plan.sensorHeight)
                             : ConfidenceValue(column, line, plan.sensorWidth, plan.sensorHeight);
        }
        PackLine(*shape.format, samples, memory.subspan(y * shape.LineBytes(), shape.LineBytes()));
    }
}

} // namespace koro::simulator

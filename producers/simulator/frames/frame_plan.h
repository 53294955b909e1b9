// FramePlan: all that the features say about the pictures, worked out once after a change. Immutable.
#pragma once

#include "producers/simulator/frames/chunks.h"
#include "producers/simulator/frames/image_shape.h"
#include "producers/simulator/frames/parts.h"
#include "producers/simulator/frames/pattern.h"
#include "producers/simulator/frames/pixel_format.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace koro::simulator
{

// Which sensor pixels make up one side of the image.
struct Axis
{
    std::size_t whole = 0; // pixels of the whole binned image
    std::size_t offset = 0;
    std::size_t binning = 1;
    bool reverse = false;

    // The first of the `binning` sensor pixels behind pixel `at` of the image.
    std::size_t SensorAt(std::size_t at) const noexcept
    {
        const std::size_t binned = reverse ? whole - 1 - (offset + at) : offset + at;
        return binned * binning;
    }
};

struct FramePlan
{
    ImageShape shape;
    std::size_t sensorWidth;
    std::size_t sensorHeight;
    Axis x;
    Axis y;
    TestPattern testPattern;
    // By component, the sample that becomes of each sample; empty where none changes.
    std::array<std::vector<std::uint16_t>, 4> response;
    PartLayout parts;
    bool isMultiPart = false;
    ChunkLayout chunks;
    ChunkValues chunkValues; // but those that each frame has of its own

    bool IsPlain() const noexcept
    {
        return x.binning == 1 && y.binning == 1 && !x.reverse && !y.reverse && testPattern == TestPattern::Off &&
               response[0].empty();
    }
    std::uint16_t Respond(Component component, std::uint16_t sample) const noexcept
    {
        const auto& table = response[static_cast<std::size_t>(component)];
        return table.empty() ? sample : table[sample];
    }
};

// The samples that become of all samples of `depth` bits; `table` may be null.
std::vector<std::uint16_t> MakeResponse(unsigned depth, const Analog& analog, const std::uint8_t* table);

} // namespace koro::simulator

// Picture: a finished raster that any viewer can show. A value: owns its samples. Not synchronised.
#pragma once

#include <cstddef>
#include <cstdint>
#include <variant>
#include <vector>

namespace koro::tool
{

using Samples8 = std::vector<uint8_t>;
using Samples16 = std::vector<uint16_t>;

struct Picture
{
    size_t width = 0;
    size_t height = 0;
    // 1 grey, 3 red-green-blue, 4 red-green-blue-alpha; samples of a pixel stand side by side, lines have no padding.
    unsigned channels = 1;
    // 16-bit samples are in the machine's byte order and use the full range up to 65535, but for measurements.
    std::variant<Samples8, Samples16> samples;

    unsigned BitsPerSample() const { return std::holds_alternative<Samples8>(samples) ? 8 : 16; }
};

} // namespace koro::tool

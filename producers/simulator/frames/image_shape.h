// ImageShape: format and size of one picture. A plain value.
#pragma once

#include "producers/simulator/frames/pixel_format.h"

#include <cstddef>

namespace koro::simulator
{

struct ImageShape
{
    const PixelFormat* format; // lives as long as the library
    std::size_t width;         // pixels
    std::size_t height;        // lines

    std::size_t LineBytes() const noexcept { return format->LineBytes(width); }
    std::size_t ImageBytes() const noexcept { return LineBytes() * height; }
};

} // namespace koro::simulator

// Unpacking of one line of pixels into samples of 16 bits. Pure functions over the caller's memory. Any thread.
#pragma once

#include "tools/koro/pixel_format.h"

#include <cstddef>
#include <cstdint>

namespace koro::tool
{

// Reads format.BytesOf(samples) bytes of `line` and writes `samples` values as the camera meant them, unscaled.
// `bigEndian` concerns the formats of two bytes a sample alone. Not for formats of one byte a sample.
void UnpackLine(const PixelFormat& format, bool bigEndian, const uint8_t* line, size_t samples, uint16_t* values);

// Stretches values of `bits` bits to 16 by repeating their high bits below: 0 stays 0 and the largest becomes 65535.
// A value beyond its range counts as the largest.
void StretchToFullRange(unsigned bits, uint16_t* values, size_t count);

} // namespace koro::tool

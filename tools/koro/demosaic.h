// Demosaicing: colours for a picture taken through a Bayer mosaic. Pure functions. Any thread.
#pragma once

#include "tools/koro/pixel_format.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace koro::tool
{

// Bilinear: a missing colour is the rounded mean of its nearest neighbours, two or four. The plane is mirrored at its
// edges, which keeps the mosaic's phase. `plane` holds width * height samples; the result three samples a pixel.
std::vector<uint8_t> Demosaic(const std::vector<uint8_t>& plane, size_t width, size_t height, Mosaic mosaic);
std::vector<uint16_t> Demosaic(const std::vector<uint16_t>& plane, size_t width, size_t height, Mosaic mosaic);

} // namespace koro::tool

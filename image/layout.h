// Layout: a checked description of a picture, and where its lines lie. Pure functions. Any thread.
#pragma once

#include "image/format_table.h"
#include <koro/image.h>

#include <cstddef>

namespace koro::image
{

// Far beyond any sensor. With these limits every product in this library stays far below 2^63.
static_assert(sizeof(size_t) == 8, "sizes of pictures are computed in 64 bits and used as they are");
constexpr uint64_t maxSide = 1'000'000;
constexpr uint64_t maxPadding = 1'000'000;
constexpr uint64_t maxOffset = uint64_t{1} << 40;

struct Layout
{
    const PixelFormat* format;
    uint64_t width;
    uint64_t height;
    uint64_t xPadding;
    uint64_t imageOffset;
    bool bigEndian;

    KIMG_PLANE Plane(unsigned index) const noexcept;
    // From the start of the frame to the last pixel.
    uint64_t Size() const noexcept;
};

// Throws Failure for a null record, an unknown format, one without a layout, and sizes beyond the limits.
Layout CheckedLayout(const KIMG_IMAGE* image);

// Throws Failure for a region that is empty or reaches over an edge; null is the whole picture.
KIMG_REGION CheckedRegion(const Layout& layout, const KIMG_REGION* region);

// Throws Failure for null and for a frame that is shorter than its picture.
const uint8_t* CheckedData(const Layout& layout, const void* data, size_t dataSize);

} // namespace koro::image

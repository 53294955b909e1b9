// Changes of single samples in place, by a table for each colour. Any thread, as long as nobody else uses the frame.
#pragma once

#include "image/layout.h"

#include <vector>

namespace koro::image
{

using SampleTable = std::vector<uint16_t>;

// Throws Failure for a format other than samples of 8 to 16 bits in whole bytes, without a sign: mono, Bayer, RGB.
void RequireTables(const PixelFormat& format);

// `tables` are for red, green and blue, 2 to the power of the bits of a sample entries each. A mono picture takes the
// second. Alpha stays as it is.
void ApplyTables(const Layout& layout, uint8_t* data, const KIMG_REGION& region, const SampleTable* const (&tables)[3]);

// Means of red, green and blue, for Bayer and RGB formats that have passed RequireTables.
struct ColorMeans
{
    double of[3];
};
ColorMeans MeansOf(const Layout& layout, const uint8_t* data, const KIMG_REGION& region);

} // namespace koro::image

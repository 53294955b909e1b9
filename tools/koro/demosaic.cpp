#include "tools/koro/demosaic.h"

#include <algorithm>

namespace koro::tool
{

namespace
{

// The plane with a border of one mirrored pixel, so that the inner loop needs no test.
template <typename Sample>
struct PaddedPlane
{
    size_t stride;
    std::vector<Sample> samples;

    const Sample* Line(size_t y) const { return samples.data() + y * stride; }
};

// Line or column that stands for the one just outside of an edge; a plane of one line has only itself.
size_t MirrorLow(size_t size)
{
    return size > 1 ? 1 : 0;
}

size_t MirrorHigh(size_t size)
{
    return size > 1 ? size - 2 : 0;
}

template <typename Sample>
PaddedPlane<Sample> Pad(const std::vector<Sample>& plane, size_t width, size_t height)
{
    PaddedPlane<Sample> padded{width + 2, std::vector<Sample>((width + 2) * (height + 2))};
    for (size_t y = 0; y < height + 2; ++y)
    {
        const size_t source = y == 0 ? MirrorLow(height) : y > height ? MirrorHigh(height) : y - 1;
        const Sample* from = plane.data() + source * width;
        Sample* to = padded.samples.data() + y * padded.stride;
        to[0] = from[MirrorLow(width)];
        std::copy_n(from, width, to + 1);
        to[width + 1] = from[MirrorHigh(width)];
    }
    return padded;
}

// What one line of the mosaic holds beside green.
struct LineColours
{
    size_t ownChannel; // 0 for red, 2 for blue
    size_t firstOwn;   // column of the first pixel of that colour, 0 or 1
    size_t OtherChannel() const { return 2 - ownChannel; }
};

LineColours ColoursOf(Mosaic mosaic, size_t y)
{
    const bool redFirst = mosaic == Mosaic::RG || mosaic == Mosaic::GR;
    const bool colourAtOrigin = mosaic == Mosaic::RG || mosaic == Mosaic::BG;
    const bool evenLine = y % 2 == 0;
    return {redFirst == evenLine ? size_t{0} : size_t{2}, colourAtOrigin == evenLine ? size_t{0} : size_t{1}};
}

template <typename Sample>
Sample Mean(unsigned a, unsigned b)
{
    return static_cast<Sample>((a + b + 1) / 2);
}

template <typename Sample>
Sample Mean(unsigned a, unsigned b, unsigned c, unsigned d)
{
    return static_cast<Sample>((a + b + c + d + 2) / 4);
}

// `above`, `here` and `below` are padded: column x of the picture is at x + 1.
template <typename Sample>
void DemosaicLine(
    const LineColours& colours, const Sample* above, const Sample* here, const Sample* below, size_t width, Sample* rgb)
{
    const size_t own = colours.ownChannel;
    const size_t other = colours.OtherChannel();
    for (size_t x = colours.firstOwn; x < width; x += 2)
    {
        Sample* pixel = rgb + 3 * x;
        pixel[own] = here[x + 1];
        pixel[1] = Mean<Sample>(here[x], here[x + 2], above[x + 1], below[x + 1]);
        pixel[other] = Mean<Sample>(above[x], above[x + 2], below[x], below[x + 2]);
    }
    for (size_t x = 1 - colours.firstOwn; x < width; x += 2)
    {
        Sample* pixel = rgb + 3 * x;
        pixel[own] = Mean<Sample>(here[x], here[x + 2]);
        pixel[1] = here[x + 1];
        pixel[other] = Mean<Sample>(above[x + 1], below[x + 1]);
    }
}

template <typename Sample>
std::vector<Sample> DemosaicPlane(const std::vector<Sample>& plane, size_t width, size_t height, Mosaic mosaic)
{
    std::vector<Sample> rgb(3 * width * height);
    if (rgb.empty()) return rgb;

    const PaddedPlane<Sample> padded = Pad(plane, width, height);
    for (size_t y = 0; y < height; ++y)
    {
        DemosaicLine(
            ColoursOf(mosaic, y), padded.Line(y), padded.Line(y + 1), padded.Line(y + 2), width,
            rgb.data() + 3 * width * y);
    }
    return rgb;
}

} // namespace

std::vector<uint8_t> Demosaic(const std::vector<uint8_t>& plane, size_t width, size_t height, Mosaic mosaic)
{
    return DemosaicPlane(plane, width, height, mosaic);
}

std::vector<uint16_t> Demosaic(const std::vector<uint16_t>& plane, size_t width, size_t height, Mosaic mosaic)
{
    return DemosaicPlane(plane, width, height, mosaic);
}

} // namespace koro::tool

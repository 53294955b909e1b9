#include "image/picture_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace koro::image
{

namespace
{

struct Weights
{
    double red;
    double blue;
};

Weights WeightsOf(ColorSpace space)
{
    switch (space)
    {
    case ColorSpace::BT709:
        return {0.2126, 0.0722};
    case ColorSpace::BT2020:
        return {0.2627, 0.0593};
    default:
        return {0.299, 0.114};
    }
}

// `scale` is the largest result in fixed-point numbers.
ColorMatrix MatrixOf(ColorSpace space, unsigned bits, double scale)
{
    const Weights weights = WeightsOf(space);
    const double green = 1 - weights.red - weights.blue;
    const bool full = space == ColorSpace::Full;
    const double unit = static_cast<double>(1u << (bits - 8));
    const double fullRange = static_cast<double>((1u << bits) - 1);
    const double ofY = scale / (full ? fullRange : 219 * unit);
    const double ofColor = scale / (full ? fullRange : 224 * unit);
    return {
        full ? 0 : 16 << (bits - 8),
        1 << (bits - 1),
        std::llround(ofY),
        std::llround(2 * (1 - weights.red) * ofColor),
        std::llround(-2 * (1 - weights.blue) * weights.blue / green * ofColor),
        std::llround(-2 * (1 - weights.red) * weights.red / green * ofColor),
        std::llround(2 * (1 - weights.blue) * ofColor)};
}

// Words can hold more than the bits of their format; sums of the matrix have room for those only.
void LimitToRange(uint16_t* const* components, size_t count, unsigned bits)
{
    const auto largest = static_cast<uint16_t>((1u << bits) - 1);
    for (unsigned component = 0; component < 3; ++component)
    {
        for (size_t i = 0; i < count; ++i)
            components[component][i] = std::min(components[component][i], largest);
    }
}

} // namespace

template <class T>
PictureReader<T>::PictureReader(
    const Layout& picture, const uint8_t* frame, const KIMG_REGION& part, Method way, const Kernels& loops)
    : layout(picture), region(part), kernels(loops), reader(picture, frame, part.width + 2, loops)
{
    if (layout.format->content.kind == KIMG_KIND_BAYER)
        demosaicer = std::make_unique<Demosaicer<T>>(layout, frame, region, way, kernels);
    for (Line<T>& line : lines)
        line = Line<T>(region.width + 2);
    if (layout.format->content.kind == KIMG_KIND_BICOLOR)
    {
        alternating = Line<T>(region.width + 2);
        green = Line<T>(region.width + 2);
    }
    for (Line<uint16_t>& line : raw)
        line = Line<uint16_t>(region.width + 2);
    std::fill_n(lines[3].Pixels(), region.width, std::numeric_limits<T>::max());
}

template <class T>
bool PictureReader<T>::IsGrey() const
{
    return layout.format->NumComponents() == 1 && !demosaicer;
}

// Brightness is the green of a grey pixel.
template <class T>
void PictureReader<T>::ReadYCbCr(uint64_t y, bool onlyBrightness, T* const* colors)
{
    uint16_t* const components[] = {raw[0].Pixels(), raw[1].Pixels(), raw[2].Pixels(), nullptr};
    reader.ReadRaw(y, region.x, region.width, components);
    const PixelFormat& format = *layout.format;
    const double scale = static_cast<double>(std::numeric_limits<T>::max()) * (1 << matrixFraction<T>);
    const ColorMatrix matrix = MatrixOf(format.content.colorSpace, format.samples.bits, scale);
    if (onlyBrightness)
    {
        for (const unsigned difference : {1u, 2u})
            std::fill_n(components[difference], region.width, static_cast<uint16_t>(matrix.neutral));
    }
    if (format.samples.packing == KIMG_PACKING_WHOLE_BYTES && format.samples.bits != format.BitsInMemory())
        LimitToRange(components, region.width, format.samples.bits);
    PixelsOf<T>(kernels).colors(components, region.width, matrix, colors);
}

// Both pixels of a pair share red and blue; the last pixel of an odd line takes the one it lacks from the pixel before.
template <class T>
void PictureReader<T>::ReadBiColor(uint64_t y, T* const* colors)
{
    const uint64_t before = region.x > 0 ? 1 : 0;
    const uint64_t after = region.x + region.width < layout.width ? 1 : 0;
    T* const components[] = {alternating.Pixels(), green.Pixels(), nullptr, nullptr};
    reader.ReadFull(y, region.x - before, region.width + before + after, components);
    const unsigned first = layout.format->content.mosaic == Mosaic::RG ? 0 : 2;
    for (uint64_t i = 0; i < region.width; ++i)
    {
        const uint64_t x = region.x + i;
        const bool even = x % 2 == 0;
        const uint64_t partner = !even ? x - 1 : x + 1 < layout.width ? x + 1 : x > 0 ? x - 1 : x;
        const unsigned own = even ? first : 2 - first;
        colors[own][i] = alternating.Pixels()[i + before];
        colors[1][i] = green.Pixels()[i + before];
        colors[2 - own][i] = alternating.Pixels()[partner + before - region.x];
    }
}

template <class T>
const T* const* PictureReader<T>::ReadColors(uint64_t y)
{
    T* const colors[] = {lines[0].Pixels(), lines[1].Pixels(), lines[2].Pixels(), lines[3].Pixels()};
    const int kind = layout.format->content.kind;
    if (demosaicer)
        demosaicer->ReadLine(region.y + y, colors);
    else if (kind == KIMG_KIND_YCBCR)
        ReadYCbCr(region.y + y, false, colors);
    else if (kind == KIMG_KIND_BICOLOR)
        ReadBiColor(region.y + y, colors);
    else
        reader.ReadFull(region.y + y, region.x, region.width, colors);
    for (unsigned color = 0; color < 4; ++color)
        result[color] = colors[IsGrey() && color < 3 ? 0 : color];
    return result;
}

template <class T>
void PictureReader<T>::WriteColors(uint64_t y, bool blueFirst, T* pixels)
{
    T* const scratch[] = {lines[0].Pixels(), lines[1].Pixels(), lines[2].Pixels()};
    if (demosaicer) return demosaicer->WriteLine(region.y + y, blueFirst, scratch, pixels);
    const T* const* const colors = ReadColors(y);
    const T* const ordered[] = {colors[blueFirst ? 2 : 0], colors[1], colors[blueFirst ? 0 : 2]};
    PixelsOf<T>(kernels).interleave3(ordered, region.width, pixels);
}

template <class T>
void PictureReader<T>::ReadBrightness(uint64_t y, T* brightness)
{
    T* const components[] = {brightness, nullptr, nullptr, nullptr};
    if (IsGrey()) return reader.ReadFull(region.y + y, region.x, region.width, components);
    if (layout.format->content.kind == KIMG_KIND_YCBCR)
    {
        T* const grey[] = {lines[0].Pixels(), lines[1].Pixels(), lines[2].Pixels(), nullptr};
        ReadYCbCr(region.y + y, true, grey);
        std::copy_n(grey[1], region.width, brightness);
        return;
    }
    const T* const* const colors = ReadColors(y);
    PixelsOf<T>(kernels).luma(colors[0], colors[1], colors[2], region.width, brightness);
}

template class PictureReader<uint8_t>;
template class PictureReader<uint16_t>;

} // namespace koro::image

#include "tools/koro/pixel_conversion.h"

#include "tools/koro/demosaic.h"
#include "tools/koro/pixel_unpacking.h"

#include <algorithm>
#include <string>

namespace koro::tool
{

namespace
{

// Far beyond any sensor; keeps every product of this file far below 2^64.
constexpr size_t maxSide = 1000000;
constexpr size_t maxBytes = size_t{1} << 40;

const PixelFormat& KnownFormat(uint64_t code)
{
    const PixelFormat* format = FindPixelFormat(code);
    if (format) return *format;
    throw UnknownPixelFormat(
        "Pixel format " + PixelFormatName(code) + " cannot be turned into a picture.",
        "Save the frames as they are with --format raw.");
}

size_t SamplesPerLine(const PixelFormat& format, const FrameLayout& layout)
{
    return layout.width * format.SamplesPerPixel();
}

// Calls `convertLine(bytes, y)` with the start of each line.
template <typename ConvertLine>
void ForEachLine(
    const PixelFormat& format, const FrameLayout& layout, const uint8_t* frame, const ConvertLine& convertLine)
{
    const size_t stride = format.BytesOf(SamplesPerLine(format, layout)) + layout.xPadding;
    for (size_t y = 0; y < layout.height; ++y)
        convertLine(frame + layout.imageOffset + y * stride, y);
}

Samples8 ReadBytes(const PixelFormat& format, const FrameLayout& layout, const uint8_t* frame)
{
    const size_t samples = SamplesPerLine(format, layout);
    Samples8 result(samples * layout.height);
    ForEachLine(format, layout, frame, [&](const uint8_t* line, size_t y) {
        std::copy_n(line, samples, result.data() + y * samples);
    });
    return result;
}

Samples16 ReadWide(const PixelFormat& format, const FrameLayout& layout, const uint8_t* frame, Depth depth)
{
    const size_t samples = SamplesPerLine(format, layout);
    Samples16 result(samples * layout.height);
    ForEachLine(format, layout, frame, [&](const uint8_t* line, size_t y) {
        uint16_t* values = result.data() + y * samples;
        UnpackLine(format, layout.bigEndian, line, samples, values);
        if (depth == Depth::Full) StretchToFullRange(format.bits, values, samples);
    });
    return result;
}

template <typename Samples>
void SwapRedAndBlue(Samples& samples, unsigned channels)
{
    for (size_t i = 0; i + 2 < samples.size(); i += channels)
        std::swap(samples[i], samples[i + 2]);
}

template <typename Samples>
Picture Finish(const PixelFormat& format, const FrameLayout& layout, Samples samples)
{
    unsigned channels = format.SamplesPerPixel();
    if (format.mosaic != Mosaic::None)
    {
        samples = Demosaic(samples, layout.width, layout.height, format.mosaic);
        channels = 3;
    }
    else if (format.channels == Channels::BGR || format.channels == Channels::BGRa)
    {
        SwapRedAndBlue(samples, channels);
    }
    return {layout.width, layout.height, channels, std::move(samples)};
}

} // namespace

size_t BytesNeeded(const FrameLayout& layout)
{
    const PixelFormat& format = KnownFormat(layout.pixelFormat);
    if (layout.width == 0 || layout.height == 0) throw ToolError("The frame says that it has no pixels.");
    if (layout.width > maxSide || layout.height > maxSide || layout.xPadding > maxBytes / maxSide ||
        layout.imageOffset > maxBytes)
    {
        throw ToolError(
            "The producer claims a frame of " + std::to_string(layout.width) + " x " + std::to_string(layout.height) +
            " pixels with " + std::to_string(layout.xPadding) + " bytes of padding at offset " +
            std::to_string(layout.imageOffset) + ", which is beyond reason.");
    }

    const size_t lineBytes = format.BytesOf(SamplesPerLine(format, layout));
    return layout.imageOffset + (layout.height - 1) * (lineBytes + layout.xPadding) + lineBytes;
}

Picture ToPicture(const FrameLayout& layout, const uint8_t* frame, size_t size, Depth depth)
{
    const size_t needed = BytesNeeded(layout);
    if (needed > size)
    {
        throw ToolError(
            "The frame is too short: " + std::to_string(size) + " bytes where " + std::to_string(needed) +
            " are needed.");
    }

    const PixelFormat& format = KnownFormat(layout.pixelFormat);
    if (format.packing == Packing::Bytes) return Finish(format, layout, ReadBytes(format, layout, frame));
    return Finish(format, layout, ReadWide(format, layout, frame, depth));
}

} // namespace koro::tool

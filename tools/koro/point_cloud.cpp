#include "tools/koro/point_cloud.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace koro::tool
{

namespace
{

constexpr size_t maxSide = 1000000;

enum class Number
{
    Byte,
    Word,
    Float,
};

struct RangeFormat
{
    uint32_t code;
    unsigned numCoordinates; // 3: A, B and C of a pixel side by side; 1: C alone
    Number number;
};

constexpr RangeFormat rangeFormats[] = {
    {0x021800B2, 3, Number::Byte},  // Coord3D_ABC8
    {0x023000B9, 3, Number::Word},  // Coord3D_ABC16
    {0x026000C0, 3, Number::Float}, // Coord3D_ABC32f
    {0x010800B1, 1, Number::Byte},  // Coord3D_C8
    {0x011000B8, 1, Number::Word},  // Coord3D_C16
    {0x012000BF, 1, Number::Float}, // Coord3D_C32f
};

size_t BytesOf(Number number)
{
    switch (number)
    {
    case Number::Byte:
        return 1;
    case Number::Word:
        return 2;
    case Number::Float:
        return 4;
    }
    return 1;
}

double ReadNumber(Number number, bool bigEndian, const uint8_t* bytes)
{
    const size_t size = BytesOf(number);
    uint32_t bits = 0;
    for (size_t i = 0; i < size; ++i)
        bits |= static_cast<uint32_t>(bytes[bigEndian ? size - 1 - i : i]) << (8 * i);
    if (number != Number::Float) return bits;
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

enum class Projection
{
    None,      // all three coordinates are sent
    Rectified, // the grid of the pixels, scaled
    Pinhole,   // rays through the pixels
};

std::optional<Projection> ProjectionOf(const RangeFormat& format, const Scan3D& geometry)
{
    if (format.numCoordinates == 3) return Projection::None;
    if (geometry.outputMode == "RectifiedC") return Projection::Rectified;
    if (geometry.outputMode == "ProjectedC" && geometry.focalLength > 0) return Projection::Pinhole;
    return std::nullopt;
}

bool IsWhole(const FramePart& part, const RangeFormat& format)
{
    const FrameLayout& layout = part.layout;
    if (layout.width == 0 || layout.width > maxSide || layout.height == 0 || layout.height > maxSide) return false;
    if (layout.xPadding > part.size || layout.imageOffset > part.size) return false;
    const size_t lineBytes = layout.width * format.numCoordinates * BytesOf(format.number);
    return layout.imageOffset + (layout.height - 1) * (lineBytes + layout.xPadding) + lineBytes <= part.size;
}

bool Fits(const Picture* picture, const FrameLayout& layout)
{
    return picture && picture->width == layout.width && picture->height == layout.height;
}

uint8_t SampleAt(const Picture& picture, size_t pixel, unsigned channel)
{
    const size_t index = pixel * picture.channels + (picture.channels >= 3 ? channel : 0);
    if (const auto* samples = std::get_if<Samples8>(&picture.samples)) return (*samples)[index];
    return static_cast<uint8_t>(std::get<Samples16>(picture.samples)[index] >> 8);
}

bool IsTrusted(const Picture& confidence, size_t pixel)
{
    const size_t index = pixel * confidence.channels;
    return std::visit([index](const auto& samples) { return samples[index] != 0; }, confidence.samples);
}

struct Place
{
    double x;
    double y;
    double z;
};

Place PlaceOf(Projection projection, const Scan3D& geometry, const double* sent, size_t column, size_t line)
{
    const auto scaled = [&](size_t axis, double number) {
        return number * geometry.axes[axis].scale + geometry.axes[axis].offset;
    };
    const double u = static_cast<double>(column);
    const double v = static_cast<double>(line);
    switch (projection)
    {
    case Projection::None:
        break;
    case Projection::Rectified:
        return {scaled(0, u), scaled(1, v), scaled(2, sent[0])};
    case Projection::Pinhole: {
        const double z = scaled(2, sent[0]);
        return {
            (u - geometry.principalPointU) * z / geometry.focalLength,
            (v - geometry.principalPointV) * z / geometry.focalLength, z};
    }
    }
    return {scaled(0, sent[0]), scaled(1, sent[1]), scaled(2, sent[2])};
}

} // namespace

std::optional<PointCloud> ToPointCloud(
    const FramePart& range, const Scan3D& geometry, const Picture* colours, const Picture* confidence)
{
    const FrameLayout& layout = range.layout;
    const auto* const format =
        std::find_if(std::begin(rangeFormats), std::end(rangeFormats), [&](const RangeFormat& candidate) {
            return candidate.code == layout.pixelFormat;
        });
    if (format == std::end(rangeFormats) || !IsWhole(range, *format)) return std::nullopt;
    const std::optional<Projection> projection = ProjectionOf(*format, geometry);
    if (!projection) return std::nullopt;

    const bool hasColours = Fits(colours, layout);
    const bool hasConfidence = Fits(confidence, layout);
    const size_t numberBytes = BytesOf(format->number);
    const size_t pixelBytes = format->numCoordinates * numberBytes;
    PointCloud cloud;
    for (size_t line = 0; line < layout.height; ++line)
    {
        const uint8_t* pixelStart =
            range.bytes + layout.imageOffset + line * (layout.width * pixelBytes + layout.xPadding);
        for (size_t column = 0; column < layout.width; ++column, pixelStart += pixelBytes)
        {
            const size_t pixel = line * layout.width + column;
            if (hasConfidence && !IsTrusted(*confidence, pixel)) continue;
            double sent[3] = {};
            for (unsigned i = 0; i < format->numCoordinates; ++i)
                sent[i] = ReadNumber(format->number, layout.bigEndian, pixelStart + i * numberBytes);
            if (geometry.invalidValue && sent[format->numCoordinates - 1] == *geometry.invalidValue) continue;
            const Place place = PlaceOf(*projection, geometry, sent, column, line);
            if (!std::isfinite(place.x) || !std::isfinite(place.y) || !std::isfinite(place.z)) continue;

            if (geometry.rangeLimit && std::hypot(place.x, place.y, place.z) > *geometry.rangeLimit)
            {
                ++cloud.numLeftOut;
                continue;
            }

            for (const double coordinate : {place.x, place.y, place.z})
                cloud.coordinates.push_back(static_cast<float>(coordinate));
            for (unsigned channel = 0; hasColours && channel < 3; ++channel)
                cloud.colours.push_back(SampleAt(*colours, pixel, channel));
        }
    }
    return cloud;
}

} // namespace koro::tool

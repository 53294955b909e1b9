// What a picture of the simulated camera must look like, worked out from the pattern's formula without the tool's code.
#pragma once

#include "producers/simulator/frames/pattern.h"
#include "tools/koro/picture.h"

#include <array>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace koro::test
{

struct PictureCase
{
    std::string pixelFormat;
    std::string tile;   // components of the pixels (0,0), (1,0), (0,1), (1,1); one letter when all are equal; "" colour
    unsigned depth = 8; // bits of a sample

    friend std::ostream& operator<<(std::ostream& stream, const PictureCase& shown)
    {
        return stream << shown.pixelFormat;
    }
};

inline simulator::Component ComponentCalled(char letter)
{
    switch (letter)
    {
    case 'R':
        return simulator::Component::Red;
    case 'G':
        return simulator::Component::Green;
    case 'B':
        return simulator::Component::Blue;
    default:
        return simulator::Component::Mono;
    }
}

// The sample that the camera sends, scaled to 8 or 16 bits as docs/tool.md documents.
inline unsigned SampleAt(const PictureCase& picture, char component, size_t x, size_t y, uint64_t n)
{
    const unsigned value =
        simulator::Deepen(simulator::PatternValue(ComponentCalled(component), x, y, n), picture.depth, x);
    if (picture.depth == 8 || picture.depth == 16) return value;
    return value << (16 - picture.depth) | value >> (2 * picture.depth - 16);
}

class ExpectedPicture
{
public:
    ExpectedPicture(const PictureCase& pictureCase, size_t pictureWidth, size_t pictureHeight, uint64_t frame)
        : picture(pictureCase), width(pictureWidth), height(pictureHeight), n(frame)
    {}

    unsigned NumChannels() const { return picture.tile == "M" ? 1 : 3; }
    unsigned At(size_t x, size_t y, unsigned channel) const
    {
        const char component = "RGB"[channel];
        if (picture.tile == "M") return SampleAt(picture, 'M', x, y, n);
        if (picture.tile.empty()) return SampleAt(picture, component, x, y, n);
        return Interpolated(x, y, component);
    }

private:
    // The pixel's own sample, or else the rounded mean of the nearest pixels of that colour: those at its four sides
    // if any of them has it, at its corners otherwise.
    unsigned Interpolated(size_t x, size_t y, char component) const
    {
        if (TileAt(x, y) == component) return SampleAt(picture, component, x, y, n);
        static constexpr std::array<std::array<int, 2>, 4> sides = {{{-1, 0}, {1, 0}, {0, -1}, {0, 1}}};
        static constexpr std::array<std::array<int, 2>, 4> corners = {{{-1, -1}, {1, -1}, {-1, 1}, {1, 1}}};
        unsigned sum = 0;
        unsigned count = 0;
        for (const auto& neighbours : {sides, corners})
        {
            for (const auto& [dx, dy] : neighbours)
            {
                const size_t nx = Mirrored(x, dx, width);
                const size_t ny = Mirrored(y, dy, height);
                if (TileAt(nx, ny) != component) continue;
                sum += SampleAt(picture, component, nx, ny, n);
                ++count;
            }
            if (count > 0) break;
        }
        return (sum + count / 2) / count;
    }
    char TileAt(size_t x, size_t y) const { return picture.tile[2 * (y % 2) + x % 2]; }
    static size_t Mirrored(size_t at, int step, size_t size)
    {
        if (step < 0) return at == 0 ? 1 : at - 1;
        if (step > 0) return at == size - 1 ? size - 2 : at + 1;
        return at;
    }

    PictureCase picture;
    size_t width;
    size_t height;
    uint64_t n;
};

// Empty when the picture is frame n of the pattern; else the first pixel that differs.
inline std::string DifferenceToPattern(const tool::Picture& read, const PictureCase& picture, uint64_t n)
{
    const ExpectedPicture expected(picture, read.width, read.height, n);
    if (read.channels != expected.NumChannels()) return std::to_string(read.channels) + " channels";
    if (read.BitsPerSample() != (picture.depth == 8 ? 8 : 16)) return std::to_string(read.BitsPerSample()) + " bits";
    size_t index = 0;
    for (size_t y = 0; y < read.height; ++y)
    {
        for (size_t x = 0; x < read.width; ++x)
        {
            for (unsigned channel = 0; channel < read.channels; ++channel, ++index)
            {
                const unsigned is =
                    std::visit([&](const auto& samples) { return unsigned{samples[index]}; }, read.samples);
                const unsigned should = expected.At(x, y, channel);
                if (is == should) continue;
                return "(" + std::to_string(x) + "," + std::to_string(y) + ") channel " + std::to_string(channel) +
                       ": " + std::to_string(is) + " instead of " + std::to_string(should);
            }
        }
    }
    return {};
}

} // namespace koro::test

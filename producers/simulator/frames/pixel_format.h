// PixelFormat: the formats that a simulated camera can send: code, depth, colour of each sample, packing.
#pragma once

#include "producers/simulator/frames/pattern.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace koro::simulator
{

enum class Colours
{
    Mono,
    BayerRG,
    BayerGR,
    BayerGB,
    BayerBG,
    RGB,
    BGR
};

enum class Packing
{
    Bytes,       // one byte a sample
    Words,       // two bytes a sample, little-endian, value in the low bits
    PackedPairs, // "Packed": two samples in three bytes, high bits in the outer bytes, low nibbles in the middle one
    PackedBits   // "p": no gaps, from the least significant bit on
};

struct PixelFormat
{
    std::string name;
    std::uint32_t code; // of the 32-bit pixel format naming convention
    Colours colours;
    unsigned depth; // bits of a sample
    Packing packing;

    std::size_t SamplesPerPixel() const noexcept;
    std::size_t BitsPerPixel() const noexcept { return code >> 16 & 0xFF; }

    // The colour of sample `index` of the pixel in column x, line y.
    Component ComponentAt(std::size_t index, std::size_t x, std::size_t y) const noexcept;

    // Whether a line of that many pixels ends on a byte (and on a pair, where pairs are packed).
    bool FitsWidth(std::size_t width) const noexcept;
    std::size_t LineBytes(std::size_t width) const noexcept { return width * BitsPerPixel() / 8; }
};

// Null for a name that the simulator does not know.
const PixelFormat* FindPixelFormat(std::string_view name);
const PixelFormat* FindPixelFormatByCode(std::uint64_t code);

// In the order of the enumeration PixelFormat of the descriptions.
const std::vector<PixelFormat>& PixelFormats();

// All names, separated by blanks, for error texts.
std::string PixelFormatNames();

// One line: samples in, `line` filled exactly.
void PackLine(const PixelFormat& format, std::span<const std::uint16_t> samples, std::span<std::byte> line);

} // namespace koro::simulator

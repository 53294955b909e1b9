// PixelFormat: how the pixels of one format code lie in memory. Rows of a constant table. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace koro::tool
{

enum class Packing
{
    Bytes,      // one byte a sample
    Words,      // two bytes a sample, the value in the low bits
    Dense,      // suffix p: samples without gaps, from the least significant bit on
    GigEPacked, // suffix Packed: two samples in three bytes, the high bits in the outer bytes
};

enum class Channels
{
    Grey,
    RGB,
    BGR,
    RGBa,
    BGRa,
};

// Named by the colours of the first two pixels of the first line.
enum class Mosaic
{
    None,
    GR,
    RG,
    GB,
    BG,
};

struct PixelFormat
{
    uint32_t code;
    const char* name;
    Packing packing;
    unsigned bits; // of one sample's value
    Channels channels;
    Mosaic mosaic;

    unsigned SamplesPerPixel() const noexcept;
    unsigned BitsPerSampleInMemory() const noexcept;
    // Bytes of `samples` samples in a row; a line starts on a byte of its own.
    size_t BytesOf(size_t samples) const noexcept;
};

// Null for a format that the tool cannot turn into a picture.
const PixelFormat* FindPixelFormat(uint64_t code) noexcept;

// The format's name, or its code in hexadecimal.
std::string PixelFormatName(uint64_t code);

} // namespace koro::tool

#include "tools/koro/pixel_unpacking.h"

#include <algorithm>
#include <array>

namespace koro::tool
{

namespace
{

uint16_t Join(unsigned low, unsigned high)
{
    return static_cast<uint16_t>(low | high);
}

// A group is the smallest run of samples that ends on a byte. The last, partial group of a line is completed with
// zeros, so that nothing is read or written beyond the line.
template <size_t groupBytes, size_t groupSamples, typename UnpackGroup>
void UnpackGroups(
    const PixelFormat& format, const uint8_t* line, size_t samples, uint16_t* values, UnpackGroup unpackGroup)
{
    const size_t groups = samples / groupSamples;
    for (size_t group = 0; group < groups; ++group)
    {
        unpackGroup(line + group * groupBytes, values + group * groupSamples);
    }

    const size_t rest = samples % groupSamples;
    if (rest == 0) return;
    std::array<uint8_t, groupBytes> bytes{};
    std::array<uint16_t, groupSamples> tail{};
    std::copy_n(line + groups * groupBytes, format.BytesOf(rest), bytes.begin());
    unpackGroup(bytes.data(), tail.data());
    std::copy_n(tail.begin(), rest, values + groups * groupSamples);
}

void UnpackDense10(const uint8_t* in, uint16_t* out)
{
    out[0] = Join(in[0], (in[1] & 0x03u) << 8);
    out[1] = Join(in[1] >> 2u, (in[2] & 0x0Fu) << 6);
    out[2] = Join(in[2] >> 4u, (in[3] & 0x3Fu) << 4);
    out[3] = Join(in[3] >> 6u, static_cast<unsigned>(in[4]) << 2);
}

void UnpackDense12(const uint8_t* in, uint16_t* out)
{
    out[0] = Join(in[0], (in[1] & 0x0Fu) << 8);
    out[1] = Join(in[1] >> 4u, static_cast<unsigned>(in[2]) << 4);
}

void UnpackDense14(const uint8_t* in, uint16_t* out)
{
    out[0] = Join(in[0], (in[1] & 0x3Fu) << 8);
    out[1] = Join((in[1] >> 6u) | (static_cast<unsigned>(in[2]) << 2), (in[3] & 0x0Fu) << 10);
    out[2] = Join((in[3] >> 4u) | (static_cast<unsigned>(in[4]) << 4), (in[5] & 0x03u) << 12);
    out[3] = Join(in[5] >> 2u, static_cast<unsigned>(in[6]) << 6);
}

void UnpackGigE10(const uint8_t* in, uint16_t* out)
{
    out[0] = Join(in[1] & 0x03u, static_cast<unsigned>(in[0]) << 2);
    out[1] = Join((in[1] >> 4u) & 0x03u, static_cast<unsigned>(in[2]) << 2);
}

void UnpackGigE12(const uint8_t* in, uint16_t* out)
{
    out[0] = Join(in[1] & 0x0Fu, static_cast<unsigned>(in[0]) << 4);
    out[1] = Join(in[1] >> 4u, static_cast<unsigned>(in[2]) << 4);
}

void UnpackWords(bool bigEndian, const uint8_t* line, size_t samples, uint16_t* values)
{
    const size_t low = bigEndian ? 1 : 0;
    const size_t high = bigEndian ? 0 : 1;
    for (size_t i = 0; i < samples; ++i)
    {
        values[i] = Join(line[2 * i + low], static_cast<unsigned>(line[2 * i + high]) << 8);
    }
}

void UnpackDense(const PixelFormat& format, const uint8_t* line, size_t samples, uint16_t* values)
{
    switch (format.bits)
    {
    case 10:
        return UnpackGroups<5, 4>(format, line, samples, values, UnpackDense10);
    case 12:
        return UnpackGroups<3, 2>(format, line, samples, values, UnpackDense12);
    default:
        return UnpackGroups<7, 4>(format, line, samples, values, UnpackDense14);
    }
}

template <unsigned bits>
void Stretch(uint16_t* values, size_t count)
{
    constexpr unsigned largest = (1u << bits) - 1;
    for (size_t i = 0; i < count; ++i)
    {
        const unsigned value = std::min<unsigned>(values[i], largest);
        values[i] = Join(value << (16 - bits), value >> (2 * bits - 16));
    }
}

} // namespace

void UnpackLine(const PixelFormat& format, bool bigEndian, const uint8_t* line, size_t samples, uint16_t* values)
{
    if (format.packing == Packing::Words) return UnpackWords(bigEndian, line, samples, values);
    if (format.packing == Packing::Dense) return UnpackDense(format, line, samples, values);
    if (format.bits == 10) return UnpackGroups<3, 2>(format, line, samples, values, UnpackGigE10);
    UnpackGroups<3, 2>(format, line, samples, values, UnpackGigE12);
}

void StretchToFullRange(unsigned bits, uint16_t* values, size_t count)
{
    switch (bits)
    {
    case 10:
        return Stretch<10>(values, count);
    case 12:
        return Stretch<12>(values, count);
    case 14:
        return Stretch<14>(values, count);
    default:
        return;
    }
}

} // namespace koro::tool

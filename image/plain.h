// The plain versions of the kernels: the definition of every result, and the tails of the SIMD versions.
#pragma once

#include "image/kernels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace koro::image::plain
{

inline uint16_t Word(unsigned value)
{
    return static_cast<uint16_t>(value);
}

// Samples without gaps, from the least significant bit on. 9 to 16 bits.
template <unsigned bits>
void UnpackDense(const uint8_t* line, size_t count, uint16_t* values)
{
    for (size_t i = 0; i < count; ++i)
    {
        const size_t start = i * bits;
        const uint8_t* const bytes = line + start / 8;
        const unsigned shift = start % 8;
        unsigned word = bytes[0] | static_cast<unsigned>(bytes[1]) << 8;
        if (shift + bits > 16) word |= static_cast<unsigned>(bytes[2]) << 16;
        values[i] = Word((word >> shift) & ((1u << bits) - 1));
    }
}

// Two samples in three bytes; the middle byte has the low bits of the first one in its lower half.
template <unsigned bits>
void UnpackGvsp(const uint8_t* line, size_t count, uint16_t* values)
{
    constexpr unsigned lowBits = bits - 8;
    constexpr unsigned mask = (1u << lowBits) - 1;
    for (size_t i = 0; i < count; ++i)
    {
        const uint8_t* const group = line + i / 2 * 3;
        const bool second = i % 2 != 0;
        const unsigned high = group[second ? 2 : 0];
        const unsigned low = static_cast<unsigned>(group[1]) >> (second ? 4 : 0);
        values[i] = Word(high << lowBits | (low & mask));
    }
}

inline void CopyWords(const uint8_t* line, size_t count, uint16_t* values)
{
    std::memcpy(values, line, 2 * count);
}

inline void UnpackSwappedWords(const uint8_t* line, size_t count, uint16_t* values)
{
    for (size_t i = 0; i < count; ++i)
        values[i] = Word(static_cast<unsigned>(line[2 * i]) << 8 | line[2 * i + 1]);
}

inline void Narrow(const uint16_t* values, size_t count, unsigned bits, uint8_t* narrowed)
{
    const unsigned largest = (1u << bits) - 1;
    for (size_t i = 0; i < count; ++i)
        narrowed[i] = static_cast<uint8_t>(std::min<unsigned>(values[i], largest) >> (bits - 8));
}

inline void Stretch(const uint16_t* values, size_t count, unsigned bits, uint16_t* stretched)
{
    const unsigned largest = (1u << bits) - 1;
    for (size_t i = 0; i < count; ++i)
    {
        const unsigned value = std::min<unsigned>(values[i], largest);
        stretched[i] = Word(value << (16 - bits) | value >> (2 * bits - 16));
    }
}

inline void BytesToWords(const uint8_t* line, size_t count, uint16_t* values)
{
    std::copy_n(line, count, values);
}

template <class T>
Wide<T> Clamped(int value)
{
    return static_cast<Wide<T>>(std::clamp<int>(value, 0, static_cast<T>(~T{0})));
}

template <class T>
T Mean(unsigned a, unsigned b)
{
    return static_cast<T>((a + b + 1) / 2);
}

template <class T>
T Mean(unsigned a, unsigned b, unsigned c, unsigned d)
{
    return static_cast<T>((a + b + c + d + 2) / 4);
}

template <class T>
void Bilinear(const T* above, const T* here, const T* below, size_t width, bool greenFirst, T* own, T* green, T* other)
{
    for (size_t x = 0; x < width; ++x)
    {
        const T* const a = above + x;
        const T* const h = here + x;
        const T* const b = below + x;
        if ((x % 2 == 0) == greenFirst)
        {
            own[x] = Mean<T>(h[-1], h[1]);
            green[x] = h[0];
            other[x] = Mean<T>(a[0], b[0]);
        }
        else
        {
            own[x] = h[0];
            green[x] = Mean<T>(h[-1], h[1], a[0], b[0]);
            other[x] = Mean<T>(a[-1], a[1], b[-1], b[1]);
        }
    }
}

template <class T>
void Split(const T* samples, size_t numPairs, Wide<T>* even, Wide<T>* odd)
{
    for (size_t i = 0; i < numPairs; ++i)
    {
        even[i] = samples[2 * i];
        odd[i] = samples[2 * i + 1];
    }
}

// Both directions: the mean of the two greens, corrected by the curvature of the pixel's own colour. The direction with
// the smaller sum of slope and curvature is taken; for equal sums the mean of both.
template <class T>
void EdgeGreen(const EdgeGreenInput<T>& in, size_t count, Wide<T>* green, Wide<T>* difference)
{
    for (size_t i = 0; i < count; ++i)
    {
        const Wide<T>* const own = in.own + i;
        const int left = in.left[i], right = in.left[i + 1], up = in.up[i], down = in.down[i];
        const int curveAcross = 2 * own[0] - own[-1] - own[1];
        const int curveDown = 2 * own[0] - in.up2[i] - in.down2[i];
        const int changeAcross = std::abs(left - right) + std::abs(curveAcross);
        const int changeDown = std::abs(up - down) + std::abs(curveDown);
        const int across = (2 * (left + right) + curveAcross + 2) >> 2;
        const int downward = (2 * (up + down) + curveDown + 2) >> 2;
        const int both = (across + downward + 1) >> 1;
        green[i] = Clamped<T>(changeAcross < changeDown ? across : changeDown < changeAcross ? downward : both);
        difference[i] = static_cast<Wide<T>>(own[0] - green[i]);
    }
}

template <class T>
void EdgeColors(const EdgeColorsInput<T>& in, size_t numPairs, T* own, T* green, T* other)
{
    const size_t ownPlace = in.greenFirst ? 1 : 0;
    const size_t greenPlace = 1 - ownPlace;
    for (size_t i = 0; i < numPairs; ++i)
    {
        const int corners = in.cornersAbove[i] + in.cornersAbove[i + 1] + in.cornersBelow[i] + in.cornersBelow[i + 1];
        own[2 * i + ownPlace] = static_cast<T>(in.own[i]);
        green[2 * i + ownPlace] = static_cast<T>(in.greenAtOwn[i]);
        other[2 * i + ownPlace] = static_cast<T>(Clamped<T>(in.greenAtOwn[i] + ((corners + 2) >> 2)));
        const int across = in.across[i] + in.across[i + 1];
        const int downward = in.above[i] + in.below[i];
        own[2 * i + greenPlace] = static_cast<T>(Clamped<T>(in.green[i] + ((across + 1) >> 1)));
        green[2 * i + greenPlace] = static_cast<T>(in.green[i]);
        other[2 * i + greenPlace] = static_cast<T>(Clamped<T>(in.green[i] + ((downward + 1) >> 1)));
    }
}

template <size_t channels, class T>
void Interleave(const T* const* planes, size_t count, T* pixels)
{
    for (size_t x = 0; x < count; ++x)
    {
        for (size_t channel = 0; channel < channels; ++channel)
            pixels[channels * x + channel] = planes[channel][x];
    }
}

template <size_t channels, class T>
void Deinterleave(const T* pixels, size_t count, T* const* planes)
{
    for (size_t x = 0; x < count; ++x)
    {
        for (size_t channel = 0; channel < channels; ++channel)
            planes[channel][x] = pixels[channels * x + channel];
    }
}

// Weights of 1/256 for 8 bits and of 1/65536 for 16; they add up to 1.
template <class T>
void Luma(const T* red, const T* green, const T* blue, size_t count, T* brightness)
{
    constexpr bool isByte = sizeof(T) == 1;
    constexpr uint32_t weights[] = {isByte ? 77 : 19595, isByte ? 150 : 38470, isByte ? 29 : 7471};
    constexpr unsigned shift = isByte ? 8 : 16;
    for (size_t x = 0; x < count; ++x)
    {
        const uint32_t sum = weights[0] * red[x] + weights[1] * green[x] + weights[2] * blue[x];
        brightness[x] = static_cast<T>((sum + (1u << (shift - 1))) >> shift);
    }
}

template <class T>
void InterleaveColors(T* const* planes, bool ownFirst, size_t count, T* pixels)
{
    const T* const ordered[] = {planes[ownFirst ? 0 : 2], planes[1], planes[ownFirst ? 2 : 0]};
    Interleave<3, T>(ordered, count, pixels);
}

template <class T>
void BilinearPixels(
    const T* above, const T* here, const T* below, size_t width, bool greenFirst, bool ownFirst, T* const* scratch,
    T* pixels)
{
    Bilinear(above, here, below, width, greenFirst, scratch[0], scratch[1], scratch[2]);
    InterleaveColors(scratch, ownFirst, width, pixels);
}

template <class T>
void EdgePixels(const EdgeColorsInput<T>& in, size_t width, bool ownFirst, T* const* scratch, T* pixels)
{
    EdgeColors(in, (width + 1) / 2, scratch[0], scratch[1], scratch[2]);
    InterleaveColors(scratch, ownFirst, width, pixels);
}

// 64 bits where samples have 16, else 32.
template <class T>
void Colors(const uint16_t* const* components, size_t width, const ColorMatrix& matrix, T* const* rgb)
{
    using Sum = std::conditional_t<sizeof(T) == 1, int32_t, int64_t>;
    constexpr unsigned fraction = matrixFraction<T>;
    const auto rounded = [](Sum sum) {
        return static_cast<T>(
            std::clamp<Sum>((sum + (Sum{1} << (fraction - 1))) >> fraction, 0, static_cast<T>(~T{0})));
    };
    for (size_t x = 0; x < width; ++x)
    {
        const Sum y = static_cast<Sum>(matrix.y) * (components[0][x] - matrix.offset);
        const Sum cb = components[1][x] - matrix.neutral;
        const Sum cr = components[2][x] - matrix.neutral;
        rgb[0][x] = rounded(y + static_cast<Sum>(matrix.redOfCr) * cr);
        rgb[1][x] = rounded(y + static_cast<Sum>(matrix.greenOfCb) * cb + static_cast<Sum>(matrix.greenOfCr) * cr);
        rgb[2][x] = rounded(y + static_cast<Sum>(matrix.blueOfCb) * cb);
    }
}

} // namespace koro::image::plain

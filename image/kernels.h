// Kernels: the loops over a line that cost time, once in plain C++ and once for each SIMD target of the processor.
//
// The plain versions in plain.h are the definition: every other version gives the same results bit for bit. The table
// of a target is constant. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace koro::image
{

// Lines in work have this many elements of room in front of column 0, and as many behind the last column rounded up to
// a multiple of it. Kernels that are marked "padded" may read and write there.
constexpr size_t lineMargin = 64;

// Holds sums of a few samples with their sign.
template <class T>
using Wide = std::conditional_t<sizeof(T) == 1, int16_t, int32_t>;

// Red, green and blue as sums of Y, Cb and Cr, in numbers with `matrixFraction` bits behind the point.
struct ColorMatrix
{
    int32_t offset;  // of Y
    int32_t neutral; // of Cb and Cr
    int64_t y;
    int64_t redOfCr;
    int64_t greenOfCb;
    int64_t greenOfCr;
    int64_t blueOfCb;
};

// Sums for 8 bits stay within 31 bits, with an error below a hundredth for samples of 12 bits.
template <class T>
constexpr unsigned matrixFraction = sizeof(T) == 1 ? 20 : 24;

template <class T>
struct PixelKernels
{
    // Padded. Fills the missing colours of one line of a mosaic: the mean of the two or four nearest neighbours,
    // rounded half up. `own` is the colour that shares the line with green.
    void (*bilinear)(
        const T* above, const T* here, const T* below, size_t width, bool greenFirst, T* own, T* green, T* other);
    // Padded. Signed numbers with room for sums of a few samples.
    void (*widen)(const T* samples, size_t width, Wide<T>* wide);
    // Padded. The green of each pixel, along the direction in which the picture changes less, and the difference of
    // the pixel from it. `rows` are the line and its two neighbours on each side, from the top.
    void (*edgeGreen)(const Wide<T>* const* rows, size_t width, bool greenFirst, Wide<T>* green, Wide<T>* difference);
    // Padded. All colours, red and blue by their differences from green. `differences` are three lines from the top.
    void (*edgeColors)(
        const Wide<T>* green, const Wide<T>* const* differences, size_t width, bool greenFirst, T* own, T* greenOut,
        T* other);
    // Exact: read and write `count` pixels. `planes` are lines in work.
    void (*interleave3)(const T* const* planes, size_t count, T* pixels);
    void (*interleave4)(const T* const* planes, size_t count, T* pixels);
    void (*deinterleave3)(const T* pixels, size_t count, T* const* planes);
    void (*deinterleave4)(const T* pixels, size_t count, T* const* planes);
    // Brightness by the weights of BT.601.
    void (*luma)(const T* red, const T* green, const T* blue, size_t count, T* brightness);
    // Padded. `components` are Y, Cb and Cr, of at most 12 bits for results of 8 bits.
    void (*colors)(const uint16_t* const* components, size_t width, const ColorMatrix& matrix, T* const* rgb);
};

struct Kernels
{
    const char* name;
    // Read the bytes that `count` samples take, and write `count` values.
    using Unpack = void (*)(const uint8_t* line, size_t count, uint16_t* values);
    Unpack dense10;
    Unpack dense12;
    Unpack gvsp10;
    Unpack gvsp12;
    Unpack swappedWords;
    Unpack bytesToWords;
    // The upper 8 of `bits` bits, 8 to 16; a value beyond its range counts as the largest.
    void (*narrow)(const uint16_t* values, size_t count, unsigned bits, uint8_t* narrowed);
    // From `bits` bits, 8 to 16, to 16 by repeating the high bits below; a value beyond its range counts as the
    // largest.
    void (*stretch)(const uint16_t* values, size_t count, unsigned bits, uint16_t* stretched);
    PixelKernels<uint8_t> bytes;
    PixelKernels<uint16_t> words;
};

// All that this processor can run, the fastest first, the plain ones last.
std::span<const Kernels* const> SupportedKernels();

// The fastest, or those that KIMG_Library_UseTarget has chosen.
const Kernels& ChosenKernels();
void ChooseKernels(const Kernels* kernels);

const Kernels& PlainKernels();

// Element access by type, for code that is written once for both depths.
template <class T>
const PixelKernels<T>& PixelsOf(const Kernels& kernels)
{
    if constexpr (sizeof(T) == 1)
        return kernels.bytes;
    else
        return kernels.words;
}

} // namespace koro::image

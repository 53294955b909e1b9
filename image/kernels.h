// Kernels: the loops over a line that cost time, once in plain C++ and once for each SIMD target of the processor.
//
// The plain versions in plain.h are the definition: every other version gives the same results bit for bit. The table
// of a target is constant. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace koro::image
{

// Lines in work have this many elements of room in front of column 0, and as many behind the last column rounded up to
// a multiple of it. Kernels that are marked "padded" may read and write there.
constexpr size_t lineMargin = 64;

template <class T>
struct PixelKernels
{
    // Padded. Fills the missing colours of one line of a mosaic: the mean of the two or four nearest neighbours,
    // rounded half up. `own` is the colour that shares the line with green.
    void (*bilinear)(
        const T* above, const T* here, const T* below, size_t width, bool greenFirst, T* own, T* green, T* other);
    // Padded. The green of each pixel, along the direction in which the picture changes less. `rows` are the line and
    // its two neighbours on each side, from the top.
    void (*edgeGreen)(const T* const* rows, size_t width, bool greenFirst, T* green);
    // Padded. The other two colours, by their differences from green. `rows` and `greens` are three lines each.
    void (*edgeColors)(const T* const* rows, const T* const* greens, size_t width, bool greenFirst, T* own, T* other);
    // Exact: read and write `count` pixels. `planes` are lines in work.
    void (*interleave3)(const T* const* planes, size_t count, T* pixels);
    void (*interleave4)(const T* const* planes, size_t count, T* pixels);
    void (*deinterleave3)(const T* pixels, size_t count, T* const* planes);
    void (*deinterleave4)(const T* pixels, size_t count, T* const* planes);
    // Brightness by the weights of BT.601.
    void (*luma)(const T* red, const T* green, const T* blue, size_t count, T* brightness);
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

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

// A line buffer (line.h) has this many extra elements before column 0, and as many after the last column, which is
// first rounded up to a multiple of this number. Kernels that are marked "padded" may read and write there.
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

// For the edge-aware method a line is split: every second pixel is green, the others have the line's own colour. Entry
// i of each array belongs to pixel i of that colour.
template <class T>
struct EdgeGreenInput
{
    const Wide<T>* own;
    const Wide<T>* left; // entries i and i + 1 are the green neighbours
    const Wide<T>* up;   // green above and below
    const Wide<T>* down;
    const Wide<T>* up2; // the own colour two lines above and below
    const Wide<T>* down2;
};

template <class T>
struct EdgeColorsInput
{
    bool greenFirst; // column 0 is green
    const Wide<T>* own;
    const Wide<T>* greenAtOwn;
    const Wide<T>* green;
    const Wide<T>* across; // differences of the line; entries i and i + 1 are beside green pixel i
    const Wide<T>* above;  // differences of the lines above and below; entry i is at green pixel i
    const Wide<T>* below;
    const Wide<T>* cornersAbove; // the same; entries i and i + 1 are at the corners of own pixel i
    const Wide<T>* cornersBelow;
};

// The input from pixel pair `first` on.
template <class T>
EdgeColorsInput<T> From(const EdgeColorsInput<T>& in, size_t first)
{
    return {in.greenFirst,    in.own + first,   in.greenAtOwn + first,   in.green + first,       in.across + first,
            in.above + first, in.below + first, in.cornersAbove + first, in.cornersBelow + first};
}

template <class T>
struct PixelKernels
{
    // Padded. Fills the missing colours of one line of a mosaic: the mean of the two or four nearest neighbours,
    // rounded half up. `own` is the colour that shares the line with green.
    void (*bilinear)(
        const T* above, const T* here, const T* below, size_t width, bool greenFirst, T* own, T* green, T* other);
    // The same, written as pixels of three samples: own, green, other, or the other way round. Exact in `pixels`;
    // `scratch` are three line buffers.
    void (*bilinearPixels)(
        const T* above, const T* here, const T* below, size_t width, bool greenFirst, bool ownFirst, T* const* scratch,
        T* pixels);
    // Padded. The samples of even and of odd columns, as signed numbers.
    void (*split)(const T* samples, size_t numPairs, Wide<T>* even, Wide<T>* odd);
    // Padded. Green at pixels of another colour, and the differences of these pixels from it.
    void (*edgeGreen)(const EdgeGreenInput<T>& input, size_t count, Wide<T>* green, Wide<T>* difference);
    // Padded. All colours of a line, red and blue by their differences from green.
    void (*edgeColors)(const EdgeColorsInput<T>& input, size_t numPairs, T* own, T* green, T* other);
    void (*edgePixels)(const EdgeColorsInput<T>& input, size_t width, bool ownFirst, T* const* scratch, T* pixels);
    // Exact: read and write `count` pixels. `planes` are line buffers.
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

// The fastest, unless a test has chosen others.
const Kernels& ChosenKernels();
// For tests and benches, which compare the versions: all later calls of the process use `kernels`; null for the
// fastest.
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

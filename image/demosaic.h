// Demosaicer: colours for the lines of a picture taken through a Bayer mosaic.
//
// The picture is mirrored at its edges, which keeps the mosaic's phase. Neighbours outside of the region are used, so
// that a region has the pixels that the whole picture has there. Not synchronised: keeps lines for the next call.
#pragma once

#include "image/line_reader.h"

#include <array>
#include <optional>

namespace koro::image
{

enum class Method
{
    Bilinear = KIMG_DEMOSAIC_BILINEAR,
    EdgeAware = KIMG_DEMOSAIC_EDGE_AWARE,
};

template <class T>
class Demosaicer
{
public:
    Demosaicer(const Layout& picture, const uint8_t* frame, const KIMG_REGION& part, Method way, const Kernels& loops);

    // Red, green and blue of line `y` of the picture, in the columns of the region. `colors` are line buffers.
    void ReadLine(uint64_t y, T* const* colors);
    // The same as pixels of three samples, red or blue first. `scratch` are three line buffers.
    void WriteLine(uint64_t y, bool blueFirst, T* const* scratch, T* output);

private:
    static constexpr size_t numKept = 8; // more than the lines that one line of colours needs
    struct KeptRaw
    {
        std::optional<uint64_t> y;
        Line<T> line;
        Line<Wide<T>> even; // columns, for the edge-aware method only
        Line<Wide<T>> odd;
    };
    struct KeptGreen
    {
        std::optional<uint64_t> y;
        // At the pixels of the line that are not green: green, and their difference from it.
        Line<Wide<T>> green;
        Line<Wide<T>> difference;
    };
    struct LineColors
    {
        unsigned own; // 0 for red, 2 for blue
        bool greenFirst;
    };

    const KeptRaw& RawLine(int64_t y);
    const KeptGreen& GreenLine(int64_t y);
    void Read(uint64_t y, T* line);
    EdgeColorsInput<T> EdgesOf(int64_t y, bool greenFirst);
    LineColors ColorsOf(uint64_t y) const;
    size_t NumPairs() const { return (region.width + 1) / 2; }

    Layout layout;
    KIMG_REGION region;
    Method method;
    const PixelKernels<T>& pixels;
    LineReader reader;
    std::array<KeptRaw, numKept> rawLines;
    std::array<KeptGreen, numKept> greenLines;
};

} // namespace koro::image

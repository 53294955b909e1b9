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

    // Red, green and blue of line `y` of the picture, in the columns of the region. The colours are lines in work.
    void ReadLine(uint64_t y, T* const* colors);

private:
    static constexpr size_t numKept = 8; // more than the lines that one line of colours needs
    struct KeptRaw
    {
        std::optional<uint64_t> y;
        Line<T> line;
        Line<Wide<T>> wide; // edge-aware method only
    };
    struct KeptGreen
    {
        std::optional<uint64_t> y;
        Line<Wide<T>> green;
        Line<Wide<T>> difference; // of the pixels from green
    };
    struct LineColors
    {
        unsigned own; // 0 for red, 2 for blue
        bool greenFirst;
    };

    const KeptRaw& RawLine(int64_t y);
    const KeptGreen& GreenLine(int64_t y);
    void Read(uint64_t y, T* line);
    LineColors ColorsOf(uint64_t y) const;

    Layout layout;
    KIMG_REGION region;
    Method method;
    const PixelKernels<T>& pixels;
    LineReader reader;
    std::array<KeptRaw, numKept> rawLines;
    std::array<KeptGreen, numKept> greenLines;
};

} // namespace koro::image

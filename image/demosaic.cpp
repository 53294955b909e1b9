#include "image/demosaic.h"

#include <algorithm>

namespace koro::image
{

namespace
{

// Columns on each side of the region that the edge-aware method looks at. An even number keeps the phase.
constexpr int64_t margin = 4;
static_assert(margin + 1 < static_cast<int64_t>(lineMargin));

// The index that stands for one beyond an edge, without repeating the edge itself.
uint64_t Mirrored(int64_t index, uint64_t size)
{
    if (size == 1) return 0;
    const auto period = static_cast<int64_t>(2 * (size - 1));
    const int64_t inPeriod = ((index % period) + period) % period;
    return static_cast<uint64_t>(std::min(inPeriod, period - inPeriod));
}

} // namespace

template <class T>
Demosaicer<T>::Demosaicer(
    const Layout& picture, const uint8_t* frame, const KIMG_REGION& part, Method way, const Kernels& loops)
    : layout(picture), region(part), method(way), pixels(PixelsOf<T>(loops)),
      reader(picture, frame, part.width + 2 * margin, loops)
{
    for (KeptRaw& kept : rawLines)
    {
        kept.line = Line<T>(region.width + margin);
        if (method == Method::EdgeAware) kept.wide = Line<Wide<T>>(region.width + margin);
    }
    if (method == Method::Bilinear) return;
    for (KeptGreen& kept : greenLines)
    {
        kept.green = Line<Wide<T>>(region.width + margin);
        kept.difference = Line<Wide<T>>(region.width + margin);
    }
}

template <class T>
typename Demosaicer<T>::LineColors Demosaicer<T>::ColorsOf(uint64_t y) const
{
    const Mosaic mosaic = layout.format->content.mosaic;
    const bool redInFirstLine = mosaic == Mosaic::RG || mosaic == Mosaic::GR;
    const bool greenAtOrigin = mosaic == Mosaic::GR || mosaic == Mosaic::GB;
    const bool evenLine = y % 2 == 0;
    const bool evenColumn = region.x % 2 == 0;
    return {redInFirstLine == evenLine ? 0u : 2u, (greenAtOrigin == evenLine) == evenColumn};
}

// Column 0 of `line` is the first one of the region.
template <class T>
void Demosaicer<T>::Read(uint64_t y, T* line)
{
    const auto width = static_cast<int64_t>(region.width);
    const auto x = static_cast<int64_t>(region.x);
    const int64_t first = std::max<int64_t>(-margin, -x);
    const int64_t last = std::min<int64_t>(width + margin, static_cast<int64_t>(layout.width) - x);
    T* const components[] = {line + first, nullptr, nullptr, nullptr};
    reader.ReadFull(y, static_cast<uint64_t>(x + first), static_cast<size_t>(last - first), components);
    // Mirrored columns may lie outside of what was read where the picture is narrow; they are within the picture.
    const auto mirror = [&](int64_t column) {
        line[column] = line[static_cast<int64_t>(Mirrored(column + x, layout.width)) - x];
    };
    for (int64_t column = first - 1; column >= -margin; --column)
        mirror(column);
    for (int64_t column = last; column < width + margin; ++column)
        mirror(column);
}

template <class T>
const typename Demosaicer<T>::KeptRaw& Demosaicer<T>::RawLine(int64_t y)
{
    const uint64_t source = Mirrored(y, layout.height);
    KeptRaw& kept = rawLines[source % numKept];
    if (kept.y != source)
    {
        Read(source, kept.line.Pixels());
        if (method == Method::EdgeAware)
            pixels.widen(kept.line.Pixels() - margin, region.width + 2 * margin, kept.wide.Pixels() - margin);
        kept.y = source;
    }
    return kept;
}

template <class T>
const typename Demosaicer<T>::KeptGreen& Demosaicer<T>::GreenLine(int64_t y)
{
    const uint64_t source = Mirrored(y, layout.height);
    KeptGreen& kept = greenLines[source % numKept];
    if (kept.y != source)
    {
        // Two columns more on each side, since colours look at their neighbours.
        const auto line = static_cast<int64_t>(source);
        const Wide<T>* rows[5] = {};
        for (int64_t i = 0; i < 5; ++i)
            rows[i] = RawLine(line - 2 + i).wide.Pixels() - 2;
        pixels.edgeGreen(
            rows, region.width + 4, ColorsOf(source).greenFirst, kept.green.Pixels() - 2, kept.difference.Pixels() - 2);
        kept.y = source;
    }
    return kept;
}

template <class T>
void Demosaicer<T>::ReadLine(uint64_t y, T* const* colors)
{
    const auto line = static_cast<int64_t>(y);
    const LineColors arrangement = ColorsOf(y);
    T* const own = colors[arrangement.own];
    T* const other = colors[2 - arrangement.own];
    if (method == Method::Bilinear)
    {
        pixels.bilinear(
            RawLine(line - 1).line.Pixels(), RawLine(line).line.Pixels(), RawLine(line + 1).line.Pixels(), region.width,
            arrangement.greenFirst, own, colors[1], other);
        return;
    }
    const Wide<T>* differences[3] = {};
    for (int64_t i = 0; i < 3; ++i)
        differences[i] = GreenLine(line - 1 + i).difference.Pixels();
    pixels.edgeColors(
        GreenLine(line).green.Pixels(), differences, region.width, arrangement.greenFirst, own, colors[1], other);
}

template class Demosaicer<uint8_t>;
template class Demosaicer<uint16_t>;

} // namespace koro::image

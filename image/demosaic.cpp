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
        if (method == Method::Bilinear) continue;
        kept.even = Line<Wide<T>>(NumPairs() + margin);
        kept.odd = Line<Wide<T>>(NumPairs() + margin);
    }
    if (method == Method::Bilinear) return;
    for (KeptGreen& kept : greenLines)
    {
        kept.green = Line<Wide<T>>(NumPairs() + margin);
        kept.difference = Line<Wide<T>>(NumPairs() + margin);
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
        {
            constexpr int64_t pairs = margin / 2;
            pixels.split(
                kept.line.Pixels() - margin, NumPairs() + 2 * pairs, kept.even.Pixels() - pairs,
                kept.odd.Pixels() - pairs);
        }
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
        // From pair -1 to one pair behind the region, since colours look at their neighbours.
        const auto line = static_cast<int64_t>(source);
        const bool greenFirst = ColorsOf(source).greenFirst;
        const auto column = [&](int64_t row) {
            const KeptRaw& raw = RawLine(row);
            return (greenFirst ? raw.odd : raw.even).Pixels() - 1;
        };
        const KeptRaw& raw = RawLine(line);
        const EdgeGreenInput<T> input = {column(line),     greenFirst ? raw.even.Pixels() - 1 : raw.odd.Pixels() - 2,
                                         column(line - 1), column(line + 1),
                                         column(line - 2), column(line + 2)};
        pixels.edgeGreen(input, NumPairs() + 2, kept.green.Pixels() - 1, kept.difference.Pixels() - 1);
        kept.y = source;
    }
    return kept;
}

template <class T>
void Demosaicer<T>::ReadLine(uint64_t y, T* const* colors)
{
    const auto line = static_cast<int64_t>(y);
    const auto [ownColor, greenFirst] = ColorsOf(y);
    T* const own = colors[ownColor];
    T* const other = colors[2 - ownColor];
    if (method == Method::EdgeAware)
        return pixels.edgeColors(EdgesOf(line, greenFirst), NumPairs(), own, colors[1], other);
    pixels.bilinear(
        RawLine(line - 1).line.Pixels(), RawLine(line).line.Pixels(), RawLine(line + 1).line.Pixels(), region.width,
        greenFirst, own, colors[1], other);
}

template <class T>
void Demosaicer<T>::WriteLine(uint64_t y, bool blueFirst, T* const* scratch, T* output)
{
    const auto line = static_cast<int64_t>(y);
    const auto [ownColor, greenFirst] = ColorsOf(y);
    const bool ownFirst = (ownColor == 0) != blueFirst;
    if (method == Method::EdgeAware)
        return pixels.edgePixels(EdgesOf(line, greenFirst), region.width, ownFirst, scratch, output);
    pixels.bilinearPixels(
        RawLine(line - 1).line.Pixels(), RawLine(line).line.Pixels(), RawLine(line + 1).line.Pixels(), region.width,
        greenFirst, ownFirst, scratch, output);
}

// Where green comes first, own pixel i is right of green pixel i, else left of it.
template <class T>
EdgeColorsInput<T> Demosaicer<T>::EdgesOf(int64_t y, bool greenFirst)
{
    const KeptGreen& above = GreenLine(y - 1);
    const KeptGreen& here = GreenLine(y);
    const KeptGreen& below = GreenLine(y + 1);
    const KeptRaw& raw = RawLine(y);
    const ptrdiff_t across = greenFirst ? -1 : 0;
    const ptrdiff_t corner = greenFirst ? 0 : -1;
    return {
        greenFirst,
        (greenFirst ? raw.odd : raw.even).Pixels(),
        here.green.Pixels(),
        (greenFirst ? raw.even : raw.odd).Pixels(),
        here.difference.Pixels() + across,
        above.difference.Pixels(),
        below.difference.Pixels(),
        above.difference.Pixels() + corner,
        below.difference.Pixels() + corner};
}

template class Demosaicer<uint8_t>;
template class Demosaicer<uint16_t>;

} // namespace koro::image

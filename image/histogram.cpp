#include "image/histogram.h"

#include "image/failure.h"
#include "image/line_reader.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace koro::image
{

namespace
{

// Counts two neighbours at once in a table of pairs, which takes half of the steps. There is only one table, since two
// were slower: together they touch more memory pages than the processor keeps translated.
class ByteCounter
{
public:
    void Count(const uint8_t* samples, size_t count)
    {
        if (pending + count > UINT32_MAX) Collect();
        pending += count;
        uint32_t* const table = pairs.data();
        size_t done = 0;
        for (; done + 8 <= count; done += 8)
        {
            uint64_t eight = 0;
            std::memcpy(&eight, samples + done, sizeof eight);
            ++table[eight & 0xFFFF];
            ++table[(eight >> 16) & 0xFFFF];
            ++table[(eight >> 32) & 0xFFFF];
            ++table[eight >> 48];
        }
        for (; done < count; ++done)
            ++sums[samples[done]];
    }

    std::vector<uint64_t> Result()
    {
        Collect();
        return sums;
    }

private:
    void Collect()
    {
        for (size_t high = 0; high < 256; ++high)
        {
            uint64_t sumOfHigh = 0;
            for (size_t low = 0; low < 256; ++low)
            {
                const uint32_t number = pairs[256 * high + low];
                sums[low] += number;
                sumOfHigh += number;
            }
            sums[high] += sumOfHigh;
        }
        std::fill(pairs.begin(), pairs.end(), 0);
        pending = 0;
    }

    std::vector<uint32_t> pairs = std::vector<uint32_t>(65536);
    std::vector<uint64_t> sums = std::vector<uint64_t>(256);
    uint64_t pending = 0;
};

bool IsPlainByte(const PixelFormat& format)
{
    return format.NumComponents() == 1 && format.samples.packing == KIMG_PACKING_WHOLE_BYTES &&
           format.samples.bits == 8 && format.samples.type == KIMG_SAMPLE_TYPE_UNSIGNED;
}

std::vector<uint64_t> ByteHistogram(const Layout& layout, const uint8_t* data, const KIMG_REGION& region)
{
    const KIMG_PLANE plane = layout.Plane(0);
    ByteCounter counter;
    for (uint64_t y = region.y; y < region.y + region.height; ++y)
        counter.Count(data + plane.offset + y * plane.stride + region.x, region.width);
    return counter.Result();
}

// Calls `use(line)` for each line of the component.
template <class T, class Read, class Use>
void ForEachLine(const Layout& layout, const KIMG_REGION& region, unsigned component, const Read& read, const Use& use)
{
    Line<T> lines[4];
    T* components[4] = {};
    for (unsigned i = 0; i < layout.format->NumComponents(); ++i)
    {
        lines[i] = Line<T>(region.width);
        components[i] = lines[i].Pixels();
    }
    for (uint64_t y = region.y; y < region.y + region.height; ++y)
    {
        read(y, components);
        use(components[component]);
    }
}

KIMG_STATISTICS FromHistogram(const std::vector<uint64_t>& histogram, bool isSigned)
{
    KIMG_STATISTICS figures{};
    const double shift = isSigned ? static_cast<double>(histogram.size() / 2) : 0;
    double sum = 0;
    for (size_t value = 0; value < histogram.size(); ++value)
    {
        if (histogram[value] == 0) continue;
        const double number = static_cast<double>(value) - shift;
        if (figures.numSamples == 0) figures.minimum = number;
        figures.maximum = number;
        figures.numSamples += histogram[value];
        sum += number * static_cast<double>(histogram[value]);
    }
    figures.mean = sum / static_cast<double>(figures.numSamples);
    figures.numSaturated = histogram.back();
    return figures;
}

// The largest value of an integer format as a float, in which wide samples arrive; infinite for floats.
float LargestOf(const PixelFormat& format)
{
    if (format.samples.type == KIMG_SAMPLE_TYPE_FLOAT) return std::numeric_limits<float>::infinity();
    const int bits = format.samples.bits - (format.samples.type == KIMG_SAMPLE_TYPE_SIGNED ? 1 : 0);
    return static_cast<float>(std::ldexp(1.0, bits) - 1);
}

KIMG_STATISTICS FromFloats(const Layout& layout, const uint8_t* data, const KIMG_REGION& region, unsigned component)
{
    KIMG_STATISTICS figures{};
    LineReader reader(layout, data, region.width, ChosenKernels());
    const float largest = LargestOf(*layout.format);
    double sum = 0;
    const auto add = [&](float sample) {
        if (!std::isfinite(sample)) return;
        const double number = sample;
        figures.minimum = figures.numSamples == 0 ? number : std::min(figures.minimum, number);
        figures.maximum = figures.numSamples == 0 ? number : std::max(figures.maximum, number);
        ++figures.numSamples;
        if (sample >= largest) ++figures.numSaturated;
        sum += number;
    };
    ForEachLine<float>(
        layout, region, component,
        [&](uint64_t y, float* const* lines) { reader.ReadFloat(y, region.x, region.width, lines); },
        [&](const float* line) { std::for_each_n(line, region.width, add); });
    if (figures.numSamples == 0)
        throw Failure(KIMG_RETURN_CODE_NOT_AVAILABLE, "No sample of the region is a finite number.");
    figures.mean = sum / static_cast<double>(figures.numSamples);
    return figures;
}

} // namespace

std::vector<uint64_t> HistogramOf(
    const Layout& layout, const uint8_t* data, const KIMG_REGION& region, unsigned component)
{
    const PixelFormat& format = *layout.format;
    if (IsPlainByte(format)) return ByteHistogram(layout, data, region);
    LineReader reader(layout, data, region.width, ChosenKernels());
    // Fields of one pixel can differ in their bits; the table is made for the widest.
    std::vector<uint64_t> histogram(size_t{1} << format.samples.bits);
    const size_t largest = (size_t{1} << BitsOfComponent(format, component)) - 1;
    ForEachLine<uint16_t>(
        layout, region, component,
        [&](uint64_t y, uint16_t* const* lines) { reader.ReadRaw(y, region.x, region.width, lines); },
        [&](const uint16_t* line) {
            for (size_t x = 0; x < region.width; ++x)
                ++histogram[std::min<size_t>(line[x], largest)];
        });
    return histogram;
}

KIMG_STATISTICS StatisticsOf(const Layout& layout, const uint8_t* data, const KIMG_REGION& region, unsigned component)
{
    const PixelFormat& format = *layout.format;
    if (format.samples.bits > 16) return FromFloats(layout, data, region, component);
    auto histogram = HistogramOf(layout, data, region, component);
    histogram.resize(size_t{1} << BitsOfComponent(format, component));
    return FromHistogram(histogram, format.samples.type == KIMG_SAMPLE_TYPE_SIGNED);
}

} // namespace koro::image

#include "image/sample_tables.h"

#include "image/failure.h"
#include "image/line_reader.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace koro::image
{

namespace
{

// Colours of the samples of a line in turns: 0 to 2 for red, green and blue, 3 for alpha.
struct Turns
{
    std::array<unsigned, 4> colors;
    size_t length;
};

Turns TurnsOf(const Layout& layout, unsigned plane, uint64_t x, uint64_t y)
{
    const Content& content = layout.format->content;
    if (content.kind == KIMG_KIND_BAYER)
    {
        constexpr std::string_view firstLines[] = {"", "GR", "RG", "GB", "BG"};
        constexpr std::string_view secondLines[] = {"", "BG", "GB", "RG", "GR"};
        const std::string_view colors = (y % 2 == 0 ? firstLines : secondLines)[static_cast<size_t>(content.mosaic)];
        const auto colorAt = [&](uint64_t column) {
            return static_cast<unsigned>(std::string_view("RGB").find(colors[column % 2]));
        };
        return {{colorAt(x), colorAt(x + 1)}, 2};
    }
    if (content.kind == KIMG_KIND_MONO) return {{1}, 1};
    if (layout.format->NumPlanes() > 1) return {{ComponentOf(*layout.format, plane)}, 1};
    Turns turns{{}, layout.format->NumComponents()};
    for (size_t i = 0; i < turns.length; ++i)
        turns.colors[i] = ComponentOf(*layout.format, i);
    return turns;
}

void ApplyToBytes(uint8_t* samples, size_t count, size_t step, const SampleTable& table)
{
    for (size_t i = 0; i < count; i += step)
        samples[i] = static_cast<uint8_t>(table[samples[i]]);
}

void ApplyToWords(uint8_t* samples, size_t count, size_t step, const SampleTable& table, bool bigEndian)
{
    const size_t low = bigEndian ? 1 : 0;
    for (size_t i = 0; i < count; i += step)
    {
        uint8_t* const sample = samples + 2 * i;
        const size_t value = sample[low] | static_cast<size_t>(sample[1 - low]) << 8;
        const uint16_t changed = table[std::min(value, table.size() - 1)];
        sample[low] = static_cast<uint8_t>(changed);
        sample[1 - low] = static_cast<uint8_t>(changed >> 8);
    }
}

} // namespace

void RequireTables(const PixelFormat& format)
{
    const int kind = format.content.kind;
    const bool fits = (kind == KIMG_KIND_MONO || kind == KIMG_KIND_BAYER || kind == KIMG_KIND_RGB) &&
                      format.samples.packing == KIMG_PACKING_WHOLE_BYTES &&
                      format.samples.type == KIMG_SAMPLE_TYPE_UNSIGNED && format.samples.bits >= 8 &&
                      format.samples.bits <= 16 && format.WhyNot(KIMG_OPERATION_UNPACK) == nullptr;
    if (fits) return;
    throw Failure(
        KIMG_RETURN_CODE_NOT_IMPLEMENTED,
        std::string(format.name) + ": Only mono, Bayer and RGB samples of 8 to 16 bits in whole bytes can be changed "
                                   "in place; convert first.");
}

void ApplyTables(const Layout& layout, uint8_t* data, const KIMG_REGION& region, const SampleTable* const (&tables)[3])
{
    const PixelFormat& format = *layout.format;
    const size_t samplesPerPixel = format.NumComponents() / format.NumPlanes();
    const size_t sampleBytes = format.BitsInMemory() / 8;
    const size_t count = region.width * samplesPerPixel;
    for (unsigned planeIndex = 0; planeIndex < format.NumPlanes(); ++planeIndex)
    {
        const KIMG_PLANE plane = layout.Plane(planeIndex);
        for (uint64_t y = region.y; y < region.y + region.height; ++y)
        {
            const Turns turns = TurnsOf(layout, planeIndex, region.x, y);
            uint8_t* const line = data + plane.offset + y * plane.stride + region.x * samplesPerPixel * sampleBytes;
            for (size_t turn = 0; turn < std::min(turns.length, count); ++turn)
            {
                if (turns.colors[turn] == 3) continue;
                const SampleTable& table = *tables[turns.colors[turn]];
                if (sampleBytes == 1)
                    ApplyToBytes(line + turn, count - turn, turns.length, table);
                else
                    ApplyToWords(line + 2 * turn, count - turn, turns.length, table, layout.bigEndian);
            }
        }
    }
}

ColorMeans MeansOf(const Layout& layout, const uint8_t* data, const KIMG_REGION& region)
{
    const PixelFormat& format = *layout.format;
    const bool bayer = format.content.kind == KIMG_KIND_BAYER;
    LineReader reader(layout, data, region.width, ChosenKernels());
    Line<uint16_t> lines[4];
    for (Line<uint16_t>& line : lines)
        line = Line<uint16_t>(region.width);
    uint16_t* const components[] = {lines[0].Pixels(), lines[1].Pixels(), lines[2].Pixels(), lines[3].Pixels()};
    const unsigned largest = (1u << format.samples.bits) - 1;
    uint64_t sums[3] = {};
    uint64_t counts[3] = {};
    for (uint64_t y = region.y; y < region.y + region.height; ++y)
    {
        reader.ReadRaw(y, region.x, region.width, components);
        const Turns turns = TurnsOf(layout, 0, region.x, y);
        for (size_t i = 0; i < region.width; ++i)
        {
            for (unsigned component = 0; component < (bayer ? 1u : 3u); ++component)
            {
                const unsigned color = bayer ? turns.colors[i % 2] : component;
                sums[color] += std::min<unsigned>(components[component][i], largest);
                ++counts[color];
            }
        }
    }
    ColorMeans means{};
    for (unsigned color = 0; color < 3; ++color)
        means.of[color] =
            counts[color] == 0 ? 0 : static_cast<double>(sums[color]) / static_cast<double>(counts[color]);
    return means;
}

} // namespace koro::image

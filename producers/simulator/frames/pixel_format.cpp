#include "producers/simulator/frames/pixel_format.h"

#include <array>
#include <utility>
#include <vector>

namespace koro::simulator
{
namespace
{

struct Row
{
    const char* suffix;
    unsigned depth;
    Packing packing;
    std::uint32_t mono;                 // 0: no such format
    std::array<std::uint32_t, 4> bayer; // RG GR GB BG
};

constexpr std::uint32_t Code(std::uint32_t bits, std::uint32_t number)
{
    return 0x01000000 | bits << 16 | number;
}

constexpr Row rows[] = {
    {"8", 8, Packing::Bytes, Code(8, 0x01), {Code(8, 0x09), Code(8, 0x08), Code(8, 0x0A), Code(8, 0x0B)}},
    {"10", 10, Packing::Words, Code(16, 0x03), {Code(16, 0x0D), Code(16, 0x0C), Code(16, 0x0E), Code(16, 0x0F)}},
    {"10Packed",
     10,
     Packing::PackedPairs,
     Code(12, 0x04),
     {Code(12, 0x27), Code(12, 0x26), Code(12, 0x28), Code(12, 0x29)}},
    {"10p", 10, Packing::PackedBits, Code(10, 0x46), {Code(10, 0x58), Code(10, 0x56), Code(10, 0x54), Code(10, 0x52)}},
    {"12", 12, Packing::Words, Code(16, 0x05), {Code(16, 0x11), Code(16, 0x10), Code(16, 0x12), Code(16, 0x13)}},
    {"12Packed",
     12,
     Packing::PackedPairs,
     Code(12, 0x06),
     {Code(12, 0x2B), Code(12, 0x2A), Code(12, 0x2C), Code(12, 0x2D)}},
    {"12p", 12, Packing::PackedBits, Code(12, 0x47), {Code(12, 0x59), Code(12, 0x57), Code(12, 0x55), Code(12, 0x53)}},
    {"16", 16, Packing::Words, Code(16, 0x07), {Code(16, 0x2F), Code(16, 0x2E), Code(16, 0x30), Code(16, 0x31)}},
};

constexpr std::pair<const char*, Colours> bayerKinds[] = {
    {"BayerRG", Colours::BayerRG},
    {"BayerGR", Colours::BayerGR},
    {"BayerGB", Colours::BayerGB},
    {"BayerBG", Colours::BayerBG},
};

std::vector<PixelFormat> MakeFormats()
{
    std::vector<PixelFormat> formats;
    for (const Row& row : rows)
        formats.push_back({std::string("Mono") + row.suffix, row.mono, Colours::Mono, row.depth, row.packing});
    for (std::size_t kind = 0; kind < std::size(bayerKinds); ++kind)
        for (const Row& row : rows)
            formats.push_back(
                {std::string(bayerKinds[kind].first) + row.suffix, row.bayer[kind], bayerKinds[kind].second, row.depth,
                 row.packing});
    formats.push_back({"RGB8", 0x02180014, Colours::RGB, 8, Packing::Bytes});
    formats.push_back({"BGR8", 0x02180015, Colours::BGR, 8, Packing::Bytes});
    return formats;
}

void PackPairs(unsigned depth, std::span<const std::uint16_t> samples, std::span<std::byte> line)
{
    const unsigned extra = depth - 8;
    const unsigned lowMask = (1U << extra) - 1;
    for (std::size_t pair = 0; pair * 2 + 1 < samples.size(); ++pair)
    {
        const unsigned first = samples[pair * 2];
        const unsigned second = samples[pair * 2 + 1];
        line[pair * 3] = static_cast<std::byte>(first >> extra);
        line[pair * 3 + 1] = static_cast<std::byte>((second & lowMask) << 4 | (first & lowMask));
        line[pair * 3 + 2] = static_cast<std::byte>(second >> extra);
    }
}

void PackBits(unsigned depth, std::span<const std::uint16_t> samples, std::span<std::byte> line)
{
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    std::size_t at = 0;
    for (const std::uint16_t sample : samples)
    {
        pending |= static_cast<std::uint32_t>(sample) << pendingBits;
        for (pendingBits += depth; pendingBits >= 8; pendingBits -= 8, pending >>= 8)
            line[at++] = static_cast<std::byte>(pending & 0xFF);
    }
}

} // namespace

const std::vector<PixelFormat>& PixelFormats()
{
    static const std::vector<PixelFormat> formats = MakeFormats();
    return formats;
}

std::size_t PixelFormat::SamplesPerPixel() const noexcept
{
    return colours == Colours::RGB || colours == Colours::BGR ? 3 : 1;
}

Component PixelFormat::ComponentAt(std::size_t index, std::size_t x, std::size_t y) const noexcept
{
    constexpr Component red = Component::Red;
    constexpr Component green = Component::Green;
    constexpr Component blue = Component::Blue;
    const auto tile = [cell = y % 2 * 2 + x % 2](Component a, Component b, Component c, Component d) {
        return std::array{a, b, c, d}[cell];
    };
    switch (colours)
    {
    case Colours::BayerRG:
        return tile(red, green, green, blue);
    case Colours::BayerGR:
        return tile(green, red, blue, green);
    case Colours::BayerGB:
        return tile(green, blue, red, green);
    case Colours::BayerBG:
        return tile(blue, green, green, red);
    case Colours::RGB:
        return std::array{red, green, blue}[index];
    case Colours::BGR:
        return std::array{blue, green, red}[index];
    case Colours::Mono:
        break;
    }
    return Component::Mono;
}

bool PixelFormat::FitsWidth(std::size_t width) const noexcept
{
    return width * BitsPerPixel() % 8 == 0 && (packing != Packing::PackedPairs || width % 2 == 0);
}

const PixelFormat* FindPixelFormat(std::string_view name)
{
    for (const PixelFormat& format : PixelFormats())
        if (format.name == name) return &format;
    return nullptr;
}

const PixelFormat* FindPixelFormatByCode(std::uint64_t code)
{
    for (const PixelFormat& format : PixelFormats())
        if (format.code == code) return &format;
    return nullptr;
}

std::string PixelFormatNames()
{
    std::string names;
    for (const PixelFormat& format : PixelFormats())
        names += (names.empty() ? "" : " ") + format.name;
    return names;
}

void PackLine(const PixelFormat& format, std::span<const std::uint16_t> samples, std::span<std::byte> line)
{
    switch (format.packing)
    {
    case Packing::Bytes:
        for (std::size_t i = 0; i < samples.size(); ++i)
            line[i] = static_cast<std::byte>(samples[i]);
        return;
    case Packing::Words:
        for (std::size_t i = 0; i < samples.size(); ++i)
        {
            line[i * 2] = static_cast<std::byte>(samples[i] & 0xFF);
            line[i * 2 + 1] = static_cast<std::byte>(samples[i] >> 8);
        }
        return;
    case Packing::PackedPairs:
        return PackPairs(format.depth, samples, line);
    case Packing::PackedBits:
        return PackBits(format.depth, samples, line);
    }
}

} // namespace koro::simulator

#include "tools/koro/pixel_format.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace koro::tool
{

namespace
{

constexpr PixelFormat Mono(uint32_t code, const char* name, Packing packing, unsigned bits)
{
    return {code, name, packing, bits, Channels::Grey, Mosaic::None};
}

constexpr PixelFormat Bayer(uint32_t code, const char* name, Packing packing, unsigned bits, Mosaic mosaic)
{
    return {code, name, packing, bits, Channels::Grey, mosaic};
}

constexpr PixelFormat Colour(uint32_t code, const char* name, Packing packing, unsigned bits, Channels channels)
{
    return {code, name, packing, bits, channels, Mosaic::None};
}

constexpr PixelFormat formats[] = {
    Mono(0x01080001, "Mono8", Packing::Bytes, 8),
    Mono(0x01100003, "Mono10", Packing::Words, 10),
    Mono(0x010C0004, "Mono10Packed", Packing::GigEPacked, 10),
    Mono(0x010A0046, "Mono10p", Packing::Dense, 10),
    Mono(0x01100005, "Mono12", Packing::Words, 12),
    Mono(0x010C0006, "Mono12Packed", Packing::GigEPacked, 12),
    Mono(0x010C0047, "Mono12p", Packing::Dense, 12),
    Mono(0x01100025, "Mono14", Packing::Words, 14),
    Mono(0x010E0104, "Mono14p", Packing::Dense, 14),
    Mono(0x01100007, "Mono16", Packing::Words, 16),

    Bayer(0x01080008, "BayerGR8", Packing::Bytes, 8, Mosaic::GR),
    Bayer(0x01080009, "BayerRG8", Packing::Bytes, 8, Mosaic::RG),
    Bayer(0x0108000A, "BayerGB8", Packing::Bytes, 8, Mosaic::GB),
    Bayer(0x0108000B, "BayerBG8", Packing::Bytes, 8, Mosaic::BG),
    Bayer(0x0110000C, "BayerGR10", Packing::Words, 10, Mosaic::GR),
    Bayer(0x0110000D, "BayerRG10", Packing::Words, 10, Mosaic::RG),
    Bayer(0x0110000E, "BayerGB10", Packing::Words, 10, Mosaic::GB),
    Bayer(0x0110000F, "BayerBG10", Packing::Words, 10, Mosaic::BG),
    Bayer(0x010A0056, "BayerGR10p", Packing::Dense, 10, Mosaic::GR),
    Bayer(0x010A0058, "BayerRG10p", Packing::Dense, 10, Mosaic::RG),
    Bayer(0x010A0054, "BayerGB10p", Packing::Dense, 10, Mosaic::GB),
    Bayer(0x010A0052, "BayerBG10p", Packing::Dense, 10, Mosaic::BG),
    Bayer(0x010C0026, "BayerGR10Packed", Packing::GigEPacked, 10, Mosaic::GR),
    Bayer(0x010C0027, "BayerRG10Packed", Packing::GigEPacked, 10, Mosaic::RG),
    Bayer(0x010C0028, "BayerGB10Packed", Packing::GigEPacked, 10, Mosaic::GB),
    Bayer(0x010C0029, "BayerBG10Packed", Packing::GigEPacked, 10, Mosaic::BG),
    Bayer(0x01100010, "BayerGR12", Packing::Words, 12, Mosaic::GR),
    Bayer(0x01100011, "BayerRG12", Packing::Words, 12, Mosaic::RG),
    Bayer(0x01100012, "BayerGB12", Packing::Words, 12, Mosaic::GB),
    Bayer(0x01100013, "BayerBG12", Packing::Words, 12, Mosaic::BG),
    Bayer(0x010C0057, "BayerGR12p", Packing::Dense, 12, Mosaic::GR),
    Bayer(0x010C0059, "BayerRG12p", Packing::Dense, 12, Mosaic::RG),
    Bayer(0x010C0055, "BayerGB12p", Packing::Dense, 12, Mosaic::GB),
    Bayer(0x010C0053, "BayerBG12p", Packing::Dense, 12, Mosaic::BG),
    Bayer(0x010C002A, "BayerGR12Packed", Packing::GigEPacked, 12, Mosaic::GR),
    Bayer(0x010C002B, "BayerRG12Packed", Packing::GigEPacked, 12, Mosaic::RG),
    Bayer(0x010C002C, "BayerGB12Packed", Packing::GigEPacked, 12, Mosaic::GB),
    Bayer(0x010C002D, "BayerBG12Packed", Packing::GigEPacked, 12, Mosaic::BG),
    Bayer(0x0110002E, "BayerGR16", Packing::Words, 16, Mosaic::GR),
    Bayer(0x0110002F, "BayerRG16", Packing::Words, 16, Mosaic::RG),
    Bayer(0x01100030, "BayerGB16", Packing::Words, 16, Mosaic::GB),
    Bayer(0x01100031, "BayerBG16", Packing::Words, 16, Mosaic::BG),

    Mono(0x010800AF, "Coord3D_A8", Packing::Bytes, 8),
    Mono(0x010800B1, "Coord3D_C8", Packing::Bytes, 8),
    Mono(0x011000B6, "Coord3D_A16", Packing::Words, 16),
    Mono(0x011000B7, "Coord3D_B16", Packing::Words, 16),
    Mono(0x011000B8, "Coord3D_C16", Packing::Words, 16),
    Mono(0x010800C6, "Confidence8", Packing::Bytes, 8),
    Mono(0x011000C7, "Confidence16", Packing::Words, 16),

    Colour(0x02180014, "RGB8", Packing::Bytes, 8, Channels::RGB),
    Colour(0x02180015, "BGR8", Packing::Bytes, 8, Channels::BGR),
    Colour(0x02200016, "RGBa8", Packing::Bytes, 8, Channels::RGBa),
    Colour(0x02200017, "BGRa8", Packing::Bytes, 8, Channels::BGRa),
    Colour(0x02300018, "RGB10", Packing::Words, 10, Channels::RGB),
    Colour(0x02300019, "BGR10", Packing::Words, 10, Channels::BGR),
    Colour(0x0230001A, "RGB12", Packing::Words, 12, Channels::RGB),
    Colour(0x0230001B, "BGR12", Packing::Words, 12, Channels::BGR),
    Colour(0x02300033, "RGB16", Packing::Words, 16, Channels::RGB),
    Colour(0x0230004B, "BGR16", Packing::Words, 16, Channels::BGR),
};

} // namespace

unsigned PixelFormat::SamplesPerPixel() const noexcept
{
    switch (channels)
    {
    case Channels::Grey:
        return 1;
    case Channels::RGB:
    case Channels::BGR:
        return 3;
    case Channels::RGBa:
    case Channels::BGRa:
        return 4;
    }
    return 1;
}

unsigned PixelFormat::BitsPerSampleInMemory() const noexcept
{
    switch (packing)
    {
    case Packing::Bytes:
        return 8;
    case Packing::Words:
        return 16;
    case Packing::Dense:
        return bits;
    case Packing::GigEPacked:
        return 12;
    }
    return 16;
}

size_t PixelFormat::BytesOf(size_t samples) const noexcept
{
    return (samples * BitsPerSampleInMemory() + 7) / 8;
}

const PixelFormat* FindPixelFormat(uint64_t code) noexcept
{
    const auto found =
        std::find_if(std::begin(formats), std::end(formats), [code](const PixelFormat& f) { return f.code == code; });
    return found == std::end(formats) ? nullptr : found;
}

std::string PixelFormatName(uint64_t code)
{
    if (const PixelFormat* format = FindPixelFormat(code)) return format->name;

    char text[32];
    std::snprintf(text, sizeof text, "0x%08llX", static_cast<unsigned long long>(code));
    return text;
}

} // namespace koro::tool

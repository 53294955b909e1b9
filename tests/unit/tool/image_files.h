// Image files read back, for tests of what the tool wrote. Throws std::runtime_error for a file that is none.
#pragma once

#include "tools/koro/picture.h"

#include <cstdio>
#include <memory>
#include <png.h>
#include <stdexcept>
#include <string>
#include <tiffio.h>
#include <vector>

namespace koro::test
{

// As the decoder gives them: 16-bit samples are in the machine's byte order.
inline tool::Picture ReadPNG(const std::string& path)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) throw std::runtime_error("no file " + path);
    const auto fail = [](png_structp, png_const_charp text) { throw std::runtime_error(text); };
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file.get());
    png_read_info(png, info);
    png_set_swap(png);

    tool::Picture picture;
    picture.width = png_get_image_width(png, info);
    picture.height = png_get_image_height(png, info);
    picture.channels = png_get_channels(png, info);
    const size_t samples = picture.width * picture.height * picture.channels;
    if (png_get_bit_depth(png, info) == 16)
    {
        picture.samples = tool::Samples16(samples);
    }
    else
    {
        picture.samples = tool::Samples8(samples);
    }
    auto* bytes = std::visit([](auto& values) { return reinterpret_cast<uint8_t*>(values.data()); }, picture.samples);
    for (size_t y = 0; y < picture.height; ++y)
        png_read_row(png, bytes + y * png_get_rowbytes(png, info), nullptr);
    png_read_end(png, nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    return picture;
}

inline tool::Picture ReadTIFF(const std::string& path)
{
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tiff(TIFFOpen(path.c_str(), "r"), TIFFClose);
    if (!tiff) throw std::runtime_error("no TIFF file " + path);
    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t channels = 0;
    uint16_t bits = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &channels);
    TIFFGetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, &bits);

    tool::Picture picture{width, height, channels, tool::Samples8()};
    const size_t samples = picture.width * picture.height * picture.channels;
    if (bits == 16)
    {
        picture.samples = tool::Samples16(samples);
    }
    else
    {
        picture.samples = tool::Samples8(samples);
    }
    auto* bytes = std::visit([](auto& values) { return reinterpret_cast<uint8_t*>(values.data()); }, picture.samples);
    const auto lineBytes = static_cast<size_t>(TIFFScanlineSize(tiff.get()));
    for (uint32_t y = 0; y < height; ++y)
    {
        if (TIFFReadScanline(tiff.get(), bytes + y * lineBytes, y, 0) != 1)
            throw std::runtime_error("a line is missing");
    }
    return picture;
}

} // namespace koro::test

#include "producers/simulator/frames/picture.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <png.h>
#include <string>
#include <system_error>

namespace koro::simulator
{
namespace
{

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& why)
{
    throw Failure(GC_ERR_ERROR, "picture '" + file.string() + "': " + why);
}

void CheckSize(const std::filesystem::path& file, std::size_t width, std::size_t height)
{
    if (width == 0 || height == 0 || width > maxPictureSide || height > maxPictureSide)
        Refuse(file, "width and height must be 1 to " + std::to_string(maxPictureSide));
    if (width * height > maxFolderSamples / 3) Refuse(file, "too many pixels");
}

// Frees what libpng keeps in the image, also when reading fails half way.
struct PngImage
{
    PngImage() noexcept { std::memset(&image, 0, sizeof image); }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
    ~PngImage() { png_image_free(&image); }

    png_image image;
};

// libpng's linear formats would change the values, so pictures of 16 bits come in as 8.
Picture ReadPng(const std::filesystem::path& file)
{
    PngImage png;
    png.image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&png.image, file.c_str()) == 0) Refuse(file, png.image.message);
    CheckSize(file, png.image.width, png.image.height);

    Picture picture;
    picture.width = png.image.width;
    picture.height = png.image.height;
    picture.channels = (png.image.format & PNG_FORMAT_FLAG_COLOR) != 0 ? 3 : 1;
    png.image.format = picture.channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    std::vector<png_byte> bytes(picture.width * picture.height * picture.channels);
    const png_color black{};
    if (png_image_finish_read(&png.image, &black, bytes.data(), 0, nullptr) == 0) Refuse(file, png.image.message);
    for (const png_byte value : bytes)
        picture.samples.push_back(static_cast<std::uint16_t>(value << 8));
    return picture;
}

// Next number of a PGM header; white space and comments in front of it are skipped.
std::size_t ReadHeaderNumber(std::istream& in, const std::filesystem::path& file)
{
    in >> std::ws;
    while (in.peek() == '#')
    {
        std::string comment;
        std::getline(in, comment);
        in >> std::ws;
    }
    std::size_t number = 0;
    if (!(in >> number)) Refuse(file, "the header lacks a number");
    return number;
}

Picture ReadPortable(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    char magic[2] = {};
    in.read(magic, sizeof magic);
    if (!in || magic[0] != 'P' || (magic[1] != '5' && magic[1] != '6')) Refuse(file, "neither binary PGM nor PPM");

    Picture picture;
    picture.channels = magic[1] == '6' ? 3 : 1;
    picture.width = ReadHeaderNumber(in, file);
    picture.height = ReadHeaderNumber(in, file);
    const std::size_t largest = ReadHeaderNumber(in, file);
    in.get(); // the one white space behind the header
    CheckSize(file, picture.width, picture.height);
    if (largest == 0 || largest > 65535) Refuse(file, "the largest value must be 1 to 65535");

    const std::size_t sampleBytes = largest > 255 ? 2 : 1;
    std::vector<unsigned char> bytes(picture.width * picture.height * picture.channels * sampleBytes);
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!in) Refuse(file, "the file ends before its last pixel");
    const unsigned shift = 16 - static_cast<unsigned>(std::bit_width(largest));
    for (std::size_t at = 0; at < bytes.size(); at += sampleBytes)
    {
        const unsigned value = sampleBytes == 2 ? bytes[at] * 256U + bytes[at + 1] : bytes[at];
        picture.samples.push_back(static_cast<std::uint16_t>(std::min<std::size_t>(value, largest) << shift));
    }
    return picture;
}

std::string Extension(const std::filesystem::path& file)
{
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), [](unsigned char letter) {
        return static_cast<char>(std::tolower(letter));
    });
    return extension;
}

bool IsPicture(const std::filesystem::path& file)
{
    const std::string extension = Extension(file);
    return extension == ".png" || extension == ".pgm" || extension == ".ppm";
}

std::vector<std::filesystem::path> ListPictures(const std::filesystem::path& folder)
{
    std::error_code error;
    std::vector<std::filesystem::path> files;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error))
        if (IsPicture(entry->path())) files.push_back(entry->path());
    if (error) throw Failure(GC_ERR_ERROR, "folder '" + folder.string() + "': " + error.message());
    if (files.empty()) throw Failure(GC_ERR_ERROR, "folder '" + folder.string() + "' holds no .png, .pgm or .ppm file");
    if (files.size() > maxPictures)
        throw Failure(
            GC_ERR_ERROR,
            "folder '" + folder.string() + "' holds more than " + std::to_string(maxPictures) + " pictures");
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

std::uint16_t Picture::ValueAt(Component component, std::size_t x, std::size_t y) const noexcept
{
    if (x >= width || y >= height) return 0;
    const std::uint16_t* pixel = &samples[(y * width + x) * channels];
    if (channels == 1) return pixel[0];
    switch (component)
    {
    case Component::Red:
        return pixel[0];
    case Component::Green:
        return pixel[1];
    case Component::Blue:
        return pixel[2];
    case Component::Mono:
        break;
    }
    return static_cast<std::uint16_t>((pixel[0] * 77U + pixel[1] * 150U + pixel[2] * 29U) >> 8U);
}

std::vector<Picture> LoadFolder(const std::filesystem::path& folder)
{
    std::vector<Picture> pictures;
    std::size_t samples = 0;
    for (const std::filesystem::path& file : ListPictures(folder))
    {
        pictures.push_back(Extension(file) == ".png" ? ReadPng(file) : ReadPortable(file));
        samples += pictures.back().samples.size();
        if (samples > maxFolderSamples)
            throw Failure(GC_ERR_ERROR, "folder '" + folder.string() + "': the pictures are too large together");
    }
    return pictures;
}

} // namespace koro::simulator

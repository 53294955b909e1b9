#include "tools/koro/image_writer.h"

#include "tools/koro/tool_error.h"

#include <bit>
#include <cerrno>
#include <csetjmp>
#include <cstdarg>
#include <cstring>
#include <memory>
#include <png.h>
#include <string>
#include <system_error>
#include <tiffio.h>
#include <unistd.h>

namespace koro::tool
{

namespace
{

const uint8_t* BytesOf(const Picture& picture)
{
    return std::visit(
        [](const auto& samples) { return reinterpret_cast<const uint8_t*>(samples.data()); }, picture.samples);
}

size_t LineBytes(const Picture& picture)
{
    return picture.width * picture.channels * (picture.BitsPerSample() / 8);
}

ToolError WriteError(const std::filesystem::path& path, const std::string& reason)
{
    return ToolError("Cannot write " + path.string() + ": " + reason + ".", "Check that the disk has room.");
}

// libpng reports by jumping: the text is kept here, outside of the frames that a jump skips.
struct PNGFailure
{
    char text[160] = "unknown reason";
};

void KeepPNGError(png_structp png, png_const_charp text)
{
    auto* failure = static_cast<PNGFailure*>(png_get_error_ptr(png));
    std::strncpy(failure->text, text, sizeof failure->text - 1);
    png_longjmp(png, 1);
}

void IgnorePNGWarning(png_structp, png_const_charp) {}

int ColourTypeOf(const Picture& picture)
{
    if (picture.channels == 1) return PNG_COLOR_TYPE_GRAY;
    return picture.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA;
}

// Holds nothing with a destructor: a jump may leave it. The light compression keeps pace with a camera.
bool EncodePNG(png_structp png, png_infop info, std::FILE* stream, const Picture& picture, const uint8_t* bytes)
{
    if (setjmp(png_jmpbuf(png))) return false;

    png_init_io(png, stream);
    png_set_compression_level(png, 1);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    png_set_IHDR(
        png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
        static_cast<int>(picture.BitsPerSample()), ColourTypeOf(picture), PNG_INTERLACE_NONE,
        PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    if (picture.BitsPerSample() == 16 && std::endian::native == std::endian::little) png_set_swap(png);
    const size_t lineBytes = LineBytes(picture);
    for (size_t y = 0; y < picture.height; ++y)
        png_write_row(png, bytes + y * lineBytes);
    png_write_end(png, nullptr);
    return true;
}

// libtiff reports to one function of the process; the text belongs to the thread that writes.
thread_local std::string tiffFailure;

__attribute__((format(printf, 2, 0))) void KeepTIFFError(const char*, const char* format, va_list arguments)
{
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    tiffFailure = text;
}

struct CloseTIFF
{
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TIFFOwner = std::unique_ptr<TIFF, CloseTIFF>;

bool DescribeTIFF(TIFF* tiff, const Picture& picture)
{
    const int photometric = picture.channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
    const uint16_t alpha[] = {EXTRASAMPLE_UNASSALPHA};
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(picture.width)) &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(picture.height)) &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, picture.BitsPerSample()) &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, picture.channels) &&
           (picture.channels != 4 || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, alpha)) &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric) &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE) &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

bool EncodeTIFF(TIFF* tiff, const Picture& picture)
{
    if (!DescribeTIFF(tiff, picture)) return false;
    const uint8_t* bytes = BytesOf(picture);
    const size_t lineBytes = LineBytes(picture);
    for (size_t y = 0; y < picture.height; ++y)
    {
        // The parameter lacks its const; an uncompressed line in the machine's byte order is left untouched.
        auto* line = const_cast<uint8_t*>(bytes + y * lineBytes);
        if (TIFFWriteScanline(tiff, line, static_cast<uint32_t>(y), 0) != 1) return false;
    }
    return TIFFFlush(tiff) == 1;
}

} // namespace

void WritePNG(const Picture& picture, PendingFile& file)
{
    PNGFailure failure;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &failure, KeepPNGError, IgnorePNGWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    const bool written = info && EncodePNG(png, info, file.Stream(), picture, BytesOf(picture));
    png_destroy_write_struct(&png, &info);
    if (!written) throw WriteError(file.FinalPath(), failure.text);
}

void WriteTIFF(const Picture& picture, PendingFile& file)
{
    const std::filesystem::path& path = file.FinalPath();
    TIFFSetErrorHandler(KeepTIFFError);
    tiffFailure = "unknown reason";
    // libtiff closes what it is given; the pending file keeps its own descriptor.
    const int descriptor = dup(fileno(file.Stream()));
    if (descriptor < 0) throw WriteError(path, std::generic_category().message(errno));
    TIFFOwner tiff(TIFFFdOpen(descriptor, path.c_str(), "w"));
    if (!tiff)
    {
        close(descriptor);
        throw WriteError(path, tiffFailure);
    }
    if (!EncodeTIFF(tiff.get(), picture)) throw WriteError(path, tiffFailure);
}

void WritePLY(const PointCloud& points, PendingFile& file)
{
    const bool hasColours = !points.colours.empty();
    std::string content = "ply\nformat binary_little_endian 1.0\nelement vertex " + std::to_string(points.NumPoints()) +
                          "\nproperty float x\nproperty float y\nproperty float z\n";
    if (hasColours) content += "property uchar red\nproperty uchar green\nproperty uchar blue\n";
    content += "end_header\n";
    content.reserve(content.size() + points.NumPoints() * (hasColours ? 15 : 12));
    for (size_t point = 0; point < points.NumPoints(); ++point)
    {
        for (size_t axis = 0; axis < 3; ++axis)
        {
            const auto bits = std::bit_cast<uint32_t>(points.coordinates[3 * point + axis]);
            for (unsigned shift = 0; shift < 32; shift += 8)
                content.push_back(static_cast<char>(bits >> shift & 0xFF));
        }
        for (size_t channel = 0; hasColours && channel < 3; ++channel)
            content.push_back(static_cast<char>(points.colours[3 * point + channel]));
    }
    WriteRaw(reinterpret_cast<const uint8_t*>(content.data()), content.size(), file);
}

void WriteRaw(const uint8_t* bytes, size_t size, PendingFile& file)
{
    if (std::fwrite(bytes, 1, size, file.Stream()) != size)
    {
        throw WriteError(file.FinalPath(), std::generic_category().message(errno));
    }
}

void WritePNG(const Picture& picture, const std::filesystem::path& path)
{
    PendingFile file(path);
    WritePNG(picture, file);
    file.Commit();
}

void WriteTIFF(const Picture& picture, const std::filesystem::path& path)
{
    PendingFile file(path);
    WriteTIFF(picture, file);
    file.Commit();
}

void WritePLY(const PointCloud& points, const std::filesystem::path& path)
{
    PendingFile file(path);
    WritePLY(points, file);
    file.Commit();
}

void WriteRaw(const uint8_t* bytes, size_t size, const std::filesystem::path& path)
{
    PendingFile file(path);
    WriteRaw(bytes, size, file);
    file.Commit();
}

} // namespace koro::tool

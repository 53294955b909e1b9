// The table of pixel formats: one row for each number, sorted by number. Constant data. Any thread.
#pragma once

#include <koro/image.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace koro::image
{

enum class Mosaic : uint8_t
{
    None = KIMG_MOSAIC_NONE,
    GR = KIMG_MOSAIC_GR,
    RG = KIMG_MOSAIC_RG,
    GB = KIMG_MOSAIC_GB,
    BG = KIMG_MOSAIC_BG,
};

enum class ColorSpace : uint8_t
{
    None = KIMG_COLOR_SPACE_NONE,
    Full = KIMG_COLOR_SPACE_FULL,
    BT601 = KIMG_COLOR_SPACE_BT601,
    BT709 = KIMG_COLOR_SPACE_BT709,
    BT2020 = KIMG_COLOR_SPACE_BT2020,
};

// Why a format is not supported as far as its kind would be.
enum class Refusal : uint8_t
{
    None,
    WrongSize,       // the number states a size that the data do not have
    UnknownBitOrder, // the place of the low bits is not confirmed
};

// What the pixels are. `order` names the samples of the first plane of a group of pixels in the order of memory: one
// letter for each, Y, U (Cb) and V (Cr) for brightness and colour differences. Of a semiplanar format it names those of
// the second plane.
struct Content
{
    int kind;
    int arrangement;
    std::string_view order;
    Mosaic mosaic = Mosaic::None; // of BiColor: RG where the first pixel has red, BG where it has blue
    ColorSpace colorSpace = ColorSpace::None;
    uint8_t groupHeight = 1;
};

struct Samples
{
    int packing;
    int type;
    uint8_t bits;
};

struct PixelFormat
{
    uint32_t number;
    std::string_view name;
    Content content;
    Samples samples;
    Refusal refusal = Refusal::None;

    unsigned NumComponents() const noexcept;
    unsigned NumPlanes() const noexcept;
    // Pixels of a line that share colour differences.
    unsigned GroupWidth() const noexcept;
    // Bits of one sample in memory; not for pixel fields.
    unsigned BitsInMemory() const noexcept;
    // Over all planes.
    unsigned BitsPerPixel() const noexcept;
    // Null if the operation is supported, else the reason.
    const char* WhyNot(uint32_t operation) const noexcept;
};

std::span<const PixelFormat> PixelFormats() noexcept;

// Null for a number or name that the table does not have.
const PixelFormat* FindPixelFormat(uint32_t number) noexcept;
const PixelFormat* FindPixelFormat(std::string_view name) noexcept;

// Throws Failure with KIMG_RETURN_CODE_NOT_FOUND.
const PixelFormat& RequirePixelFormat(uint32_t number);

// Throws Failure with KIMG_RETURN_CODE_NOT_IMPLEMENTED and the reason.
void RequireOperation(const PixelFormat& format, uint32_t operation);

} // namespace koro::image

#include "image/layout.h"

#include "image/call.h"

#include <algorithm>
#include <string>

namespace koro::image
{

namespace
{

uint64_t BytesOfBits(uint64_t bits)
{
    return (bits + 7) / 8;
}

uint64_t RoundedUpQuotient(uint64_t number, uint64_t divisor)
{
    return (number + divisor - 1) / divisor;
}

[[noreturn]] void ThrowOutOfRange(const std::string& text)
{
    throw Failure(KIMG_RETURN_CODE_OUT_OF_RANGE, text);
}

void CheckSide(const char* name, uint64_t pixels)
{
    if (pixels >= 1 && pixels <= maxSide) return;
    ThrowOutOfRange(
        "The " + std::string(name) + " of the image is " + std::to_string(pixels) + ", not 1 to " +
        std::to_string(maxSide) + ".");
}

void CheckLimit(const char* name, uint64_t bytes, uint64_t limit)
{
    if (bytes <= limit) return;
    ThrowOutOfRange(
        std::string(name) + " is " + std::to_string(bytes) + " bytes, more than " + std::to_string(limit) + ".");
}

} // namespace

KIMG_PLANE Layout::Plane(unsigned index) const noexcept
{
    const bool semiplanar = format->content.arrangement == KIMG_ARRANGEMENT_SEMIPLANAR;
    const unsigned bitsOfPlane = semiplanar ? format->BitsInMemory() : format->BitsPerPixel() / format->NumPlanes();
    KIMG_PLANE plane{imageOffset, BytesOfBits(width * bitsOfPlane), 0, height};
    plane.stride = plane.lineBytes + xPadding;
    plane.offset += index * plane.stride * height;
    if (semiplanar && index == 1)
    {
        plane.lineBytes = 2 * BytesOfBits(RoundedUpQuotient(width, 2) * format->BitsInMemory());
        plane.stride = plane.lineBytes + xPadding;
        plane.numLines = RoundedUpQuotient(height, format->content.groupHeight);
    }
    return plane;
}

uint64_t Layout::Size() const noexcept
{
    const KIMG_PLANE last = Plane(format->NumPlanes() - 1);
    return last.offset + (last.numLines - 1) * last.stride + last.lineBytes;
}

Layout CheckedLayout(const KIMG_IMAGE* image)
{
    RequirePointer(image, "image");
    if (image->bigEndian > 1) ThrowInvalidArgument("bigEndian of the image is neither 0 nor 1.");
    if (std::any_of(std::begin(image->reserved), std::end(image->reserved), [](uint8_t byte) { return byte != 0; }))
        ThrowInvalidArgument("Reserved bytes of the image are not zero.");
    const PixelFormat& format = RequirePixelFormat(image->pixelFormat);
    RequireOperation(format, KIMG_OPERATION_LAYOUT);
    CheckSide("width", image->width);
    CheckSide("height", image->height);
    CheckLimit("The padding behind a line", image->xPadding, maxPadding);
    CheckLimit("The offset of the image", image->imageOffset, maxOffset);
    return {&format, image->width, image->height, image->xPadding, image->imageOffset, image->bigEndian == 1};
}

KIMG_REGION CheckedRegion(const Layout& layout, const KIMG_REGION* region)
{
    if (!region) return {0, 0, layout.width, layout.height};
    const auto fits = [](uint64_t start, uint64_t size, uint64_t limit) {
        return size >= 1 && size <= limit && start <= limit - size;
    };
    if (!fits(region->x, region->width, layout.width) || !fits(region->y, region->height, layout.height))
        ThrowOutOfRange("The region is empty or reaches over an edge of the image.");
    return *region;
}

const uint8_t* CheckedData(const Layout& layout, const void* data, size_t dataSize)
{
    RequirePointer(data, "data");
    if (dataSize < layout.Size())
    {
        throw Failure(
            KIMG_RETURN_CODE_NO_DATA, "The frame is too short: " + std::to_string(dataSize) + " bytes where " +
                                          std::to_string(layout.Size()) + " are needed.");
    }
    return static_cast<const uint8_t*>(data);
}

} // namespace koro::image

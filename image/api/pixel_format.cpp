#include "image/call.h"
#include "image/format_table.h"
#include <koro/image.h>

#include <bit>

using namespace koro::image;

namespace
{

constexpr uint32_t operations[] = {
    KIMG_OPERATION_LAYOUT, KIMG_OPERATION_UNPACK, KIMG_OPERATION_UNPACK_FLOAT, KIMG_OPERATION_CONVERT};
constexpr uint32_t allOperations =
    KIMG_OPERATION_LAYOUT | KIMG_OPERATION_UNPACK | KIMG_OPERATION_UNPACK_FLOAT | KIMG_OPERATION_CONVERT;

uint32_t SupportedOperations(const PixelFormat& format)
{
    uint32_t supported = 0;
    for (const uint32_t operation : operations)
    {
        if (!format.WhyNot(operation)) supported |= operation;
    }
    return supported;
}

KIMG_PIXEL_FORMAT_INFO InfoOf(const PixelFormat& format)
{
    KIMG_PIXEL_FORMAT_INFO info{};
    info.pixelFormat = format.number;
    info.kind = format.content.kind;
    info.packing = format.samples.packing;
    info.sampleType = format.samples.type;
    info.arrangement = format.content.arrangement;
    info.mosaic = static_cast<int32_t>(format.content.mosaic);
    info.colorSpace = static_cast<int32_t>(format.content.colorSpace);
    info.bitsPerSample = format.samples.bits;
    info.bitsPerPixel = format.BitsPerPixel();
    info.numComponents = format.NumComponents();
    info.numPlanes = format.NumPlanes();
    info.groupWidth = format.GroupWidth();
    info.groupHeight = format.content.groupHeight;
    info.operations = SupportedOperations(format);
    return info;
}

} // namespace

KIMG_ReturnCode KIMG_PixelFormat_GetNum(size_t* numPixelFormats)
{
    return Call([&] {
        RequirePointer(numPixelFormats, "numPixelFormats");
        *numPixelFormats = PixelFormats().size();
    });
}

KIMG_ReturnCode KIMG_PixelFormat_GetByIndex(size_t index, uint32_t* pixelFormat)
{
    return Call([&] {
        RequirePointer(pixelFormat, "pixelFormat");
        if (index >= PixelFormats().size()) throw Failure(KIMG_RETURN_CODE_OUT_OF_RANGE, "index is out of range!");
        *pixelFormat = PixelFormats()[index].number;
    });
}

KIMG_ReturnCode KIMG_PixelFormat_FindByName(const char* name, uint32_t* pixelFormat)
{
    return Call([&] {
        RequirePointer(name, "name");
        RequirePointer(pixelFormat, "pixelFormat");
        const PixelFormat* format = FindPixelFormat(std::string_view(name));
        if (!format)
            throw Failure(KIMG_RETURN_CODE_NOT_FOUND, "No pixel format is called '" + std::string(name) + "'.");
        *pixelFormat = format->number;
    });
}

KIMG_ReturnCode KIMG_PixelFormat_GetName(uint32_t pixelFormat, char* name, size_t* nameSize)
{
    return Call([&] { WriteText(RequirePixelFormat(pixelFormat).name, name, "name", nameSize); });
}

KIMG_ReturnCode KIMG_PixelFormat_GetInfo(uint32_t pixelFormat, KIMG_PIXEL_FORMAT_INFO* info)
{
    return Call([&] {
        RequirePointer(info, "info");
        *info = InfoOf(RequirePixelFormat(pixelFormat));
    });
}

KIMG_ReturnCode KIMG_PixelFormat_GetRefusal(
    uint32_t pixelFormat, uint32_t operation, char* refusal, size_t* refusalSize)
{
    return Call([&] {
        if (!std::has_single_bit(operation) || (operation & allOperations) == 0)
            ThrowInvalidArgument("operation is not one of KIMG_OPERATION_....");
        const PixelFormat& format = RequirePixelFormat(pixelFormat);
        const char* const reason = format.WhyNot(operation);
        if (!reason)
        {
            throw Failure(
                KIMG_RETURN_CODE_NOT_AVAILABLE, "The operation is supported for " + std::string(format.name) + ".");
        }
        WriteText(reason, refusal, "refusal", refusalSize);
    });
}

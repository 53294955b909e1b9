#include "producers/kit/frame_facts.h"

#include "producers/kit/failure.h"

#include <string>

namespace koro::kit
{
namespace
{

// Of a multi-part payload these are reported part by part.
bool IsAboutOnePart(BUFFER_INFO_CMD command) noexcept
{
    switch (command)
    {
    case BUFFER_INFO_WIDTH:
    case BUFFER_INFO_HEIGHT:
    case BUFFER_INFO_XOFFSET:
    case BUFFER_INFO_YOFFSET:
    case BUFFER_INFO_XPADDING:
    case BUFFER_INFO_IMAGEOFFSET:
    case BUFFER_INFO_PIXELFORMAT:
    case BUFFER_INFO_PIXELFORMAT_NAMESPACE:
    case BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
        return true;
    default:
        return false;
    }
}

} // namespace

InfoValue FrameFacts::Info(BUFFER_INFO_CMD command) const
{
    if (isMultiPart && IsAboutOnePart(command))
        throw Failure(GC_ERR_NO_DATA, "the buffer holds parts, each has its own");
    switch (command)
    {
    case BUFFER_INFO_TIMESTAMP:
    case BUFFER_INFO_TIMESTAMP_NS:
        return InfoValue::UInt64(timestamp_ns);
    case BUFFER_INFO_IS_INCOMPLETE:
        return InfoValue::Bool(incomplete);
    case BUFFER_INFO_SIZE_FILLED:
        return InfoValue::Size(sizeFilled);
    case BUFFER_INFO_WIDTH:
        return InfoValue::Size(image.width);
    case BUFFER_INFO_HEIGHT:
        return InfoValue::Size(image.height);
    case BUFFER_INFO_XOFFSET:
        return InfoValue::Size(image.offsetX);
    case BUFFER_INFO_YOFFSET:
        return InfoValue::Size(image.offsetY);
    case BUFFER_INFO_XPADDING:
    case BUFFER_INFO_YPADDING:
    case BUFFER_INFO_IMAGEOFFSET:
        return InfoValue::Size(0);
    case BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
        return InfoValue::Size(chunkBytes);
    case BUFFER_INFO_FRAMEID:
        return InfoValue::UInt64(frameId);
    case BUFFER_INFO_IMAGEPRESENT:
        return InfoValue::Bool(!isMultiPart);
    case BUFFER_INFO_PAYLOADTYPE:
        return InfoValue::Size(isMultiPart ? PAYLOAD_TYPE_MULTI_PART : PAYLOAD_TYPE_IMAGE);
    case BUFFER_INFO_PIXELFORMAT:
        return InfoValue::UInt64(image.pixelFormat);
    case BUFFER_INFO_PIXELFORMAT_NAMESPACE:
        return InfoValue::UInt64(PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    case BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
        return InfoValue::Size(image.deliveredLines);
    case BUFFER_INFO_CHUNKLAYOUTID:
        return InfoValue::UInt64(chunkLayoutId);
    case BUFFER_INFO_PIXEL_ENDIANNESS:
        return InfoValue::Int32(PIXELENDIANNESS_LITTLE);
    case BUFFER_INFO_DATA_SIZE:
        return InfoValue::Size(dataSize);
    case BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
        return InfoValue::Bool(largerThanBuffer);
    case BUFFER_INFO_CONTAINS_CHUNKDATA:
        return InfoValue::Bool(HasChunks());
    default:
        throw Failure(GC_ERR_NO_DATA, "the buffer holds no file"); // only BUFFER_INFO_FILENAME is left
    }
}

InfoValue FrameFacts::PartInfo(const std::byte* base, std::uint32_t index, BUFFER_PART_INFO_CMD command) const
{
    if (index >= parts.size()) throw Failure(GC_ERR_INVALID_INDEX, "there is no part " + std::to_string(index));
    const PartFacts& part = parts[index];
    switch (command)
    {
    case BUFFER_PART_INFO_BASE:
        return InfoValue::Pointer(base + part.offset);
    case BUFFER_PART_INFO_DATA_SIZE:
        return InfoValue::Size(part.bytes);
    case BUFFER_PART_INFO_DATA_TYPE:
        return InfoValue::Size(part.dataType);
    case BUFFER_PART_INFO_DATA_FORMAT:
        return InfoValue::UInt64(part.image.pixelFormat);
    case BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE:
        return InfoValue::UInt64(PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    case BUFFER_PART_INFO_WIDTH:
        return InfoValue::Size(part.image.width);
    case BUFFER_PART_INFO_HEIGHT:
        return InfoValue::Size(part.image.height);
    case BUFFER_PART_INFO_XOFFSET:
        return InfoValue::Size(part.image.offsetX);
    case BUFFER_PART_INFO_YOFFSET:
        return InfoValue::Size(part.image.offsetY);
    case BUFFER_PART_INFO_XPADDING:
        return InfoValue::Size(0);
    case BUFFER_PART_INFO_SOURCE_ID: // all are of one sensor
    case BUFFER_PART_INFO_REGION_ID:
        return InfoValue::UInt64(0);
    case BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT:
        return InfoValue::Size(part.image.deliveredLines);
    case BUFFER_PART_INFO_DATA_PURPOSE_ID:
        return InfoValue::UInt64(part.purpose);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown part information");
    }
}

} // namespace koro::kit

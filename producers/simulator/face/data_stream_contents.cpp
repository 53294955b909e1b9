// What a filled buffer of a stream holds: its image, its parts, its chunks, its segment.
#include "producers/simulator/face/data_stream.h"

namespace koro::simulator
{
namespace
{

// Of a multi-part payload these are told part by part.
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

InfoValue DataStream::FilledBufferInfo(const Buffer& buffer, BUFFER_INFO_CMD command) const
{
    const FillResult& result = buffer.result;
    const ImageShape& shape = result.shape;
    if (result.isMultiPart && IsAboutOnePart(command))
        throw Failure(GC_ERR_NO_DATA, "the buffer holds parts, each has its own");
    switch (command)
    {
    case BUFFER_INFO_TIMESTAMP:
    case BUFFER_INFO_TIMESTAMP_NS:
        return InfoValue::UInt64(result.timestamp_ns);
    case BUFFER_INFO_IS_INCOMPLETE:
        return InfoValue::Bool(result.incomplete);
    case BUFFER_INFO_SIZE_FILLED:
        return InfoValue::Size(result.sizeFilled);
    case BUFFER_INFO_WIDTH:
        return InfoValue::Size(shape.width);
    case BUFFER_INFO_HEIGHT:
        return InfoValue::Size(shape.height);
    case BUFFER_INFO_XOFFSET:
        return InfoValue::Size(result.offsetX);
    case BUFFER_INFO_YOFFSET:
        return InfoValue::Size(result.offsetY);
    case BUFFER_INFO_XPADDING:
    case BUFFER_INFO_YPADDING:
    case BUFFER_INFO_IMAGEOFFSET:
        return InfoValue::Size(0);
    case BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
        return InfoValue::Size(result.chunkBytes);
    case BUFFER_INFO_FRAMEID:
        return InfoValue::UInt64(result.frameId);
    case BUFFER_INFO_IMAGEPRESENT:
        return InfoValue::Bool(!result.isMultiPart);
    case BUFFER_INFO_PAYLOADTYPE:
        return InfoValue::Size(result.isMultiPart ? PAYLOAD_TYPE_MULTI_PART : PAYLOAD_TYPE_IMAGE);
    case BUFFER_INFO_PIXELFORMAT:
        return InfoValue::UInt64(shape.format->code);
    case BUFFER_INFO_PIXELFORMAT_NAMESPACE:
        return InfoValue::UInt64(PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    case BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
        return InfoValue::Size(result.partLines[0]);
    case BUFFER_INFO_CHUNKLAYOUTID:
        return InfoValue::UInt64(result.chunkLayoutId);
    case BUFFER_INFO_PIXEL_ENDIANNESS:
        return InfoValue::Int32(PIXELENDIANNESS_LITTLE);
    case BUFFER_INFO_DATA_SIZE:
        return InfoValue::Size(result.dataSize);
    case BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
        return InfoValue::Bool(result.largerThanBuffer);
    case BUFFER_INFO_CONTAINS_CHUNKDATA:
        return InfoValue::Bool(result.HasChunks());
    default:
        throw Failure(GC_ERR_NO_DATA, "the buffer holds no file"); // BUFFER_INFO_FILENAME alone is left
    }
}

std::vector<SINGLE_CHUNK_DATA> DataStream::Chunks(const Buffer& buffer) const
{
    const std::lock_guard lock(mutex);
    RequireBufferLocked(buffer);
    if (buffer.place != Place::Idle) throw Failure(GC_ERR_NOT_AVAILABLE, "the buffer is queued");
    if (!buffer.hasNewData || !buffer.result.HasChunks()) throw Failure(GC_ERR_NO_DATA, "the buffer holds no chunks");
    return ParseChunks(camera->Features().ChunksForm(), buffer.Memory().first(buffer.result.sizeFilled));
}

std::span<const Part> DataStream::PartsLocked(const Buffer& buffer) const
{
    RequireBufferLocked(buffer);
    if (buffer.place != Place::Idle) throw Failure(GC_ERR_NOT_AVAILABLE, "the buffer is queued");
    if (!buffer.hasNewData || !buffer.result.isMultiPart) throw Failure(GC_ERR_NO_DATA, "the buffer holds no parts");
    return buffer.result.parts.Parts();
}

std::uint32_t DataStream::NumParts(const Buffer& buffer) const
{
    const std::lock_guard lock(mutex);
    return static_cast<std::uint32_t>(PartsLocked(buffer).size());
}

InfoValue DataStream::PartInfo(const Buffer& buffer, std::uint32_t index, BUFFER_PART_INFO_CMD command) const
{
    const std::lock_guard lock(mutex);
    const auto parts = PartsLocked(buffer);
    if (index >= parts.size()) throw Failure(GC_ERR_INVALID_INDEX, "there is no part " + std::to_string(index));
    const Part& part = parts[index];
    const std::size_t lines = buffer.result.partLines[index];
    switch (command)
    {
    case BUFFER_PART_INFO_BASE:
        return InfoValue::Pointer(buffer.Memory().data() + part.offset);
    case BUFFER_PART_INFO_DATA_SIZE:
        return InfoValue::Size(lines * part.shape.LineBytes());
    case BUFFER_PART_INFO_DATA_TYPE:
        return InfoValue::Size(DataTypeOf(part.kind));
    case BUFFER_PART_INFO_DATA_FORMAT:
        return InfoValue::UInt64(part.shape.format->code);
    case BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE:
        return InfoValue::UInt64(PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    case BUFFER_PART_INFO_WIDTH:
        return InfoValue::Size(part.shape.width);
    case BUFFER_PART_INFO_HEIGHT:
        return InfoValue::Size(part.shape.height);
    case BUFFER_PART_INFO_XOFFSET:
        return InfoValue::Size(buffer.result.offsetX);
    case BUFFER_PART_INFO_YOFFSET:
        return InfoValue::Size(buffer.result.offsetY);
    case BUFFER_PART_INFO_XPADDING:
        return InfoValue::Size(0);
    case BUFFER_PART_INFO_SOURCE_ID: // all are of one sensor
    case BUFFER_PART_INFO_REGION_ID:
        return InfoValue::UInt64(0);
    case BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT:
        return InfoValue::Size(lines);
    case BUFFER_PART_INFO_DATA_PURPOSE_ID:
        return InfoValue::UInt64(PurposeOf(part.kind));
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown part information");
    }
}

InfoValue DataStream::SegmentInfo(const Buffer& buffer, std::uint32_t index, SEGMENT_INFO_CMD command) const
{
    RequireBuffer(buffer);
    if (index > 0) throw Failure(GC_ERR_INVALID_INDEX, "the buffer has one segment");
    switch (command)
    {
    case SEGMENT_INFO_BASE:
        return BufferInfo(buffer, BUFFER_INFO_BASE);
    case SEGMENT_INFO_SIZE:
        return BufferInfo(buffer, BUFFER_INFO_SIZE);
    case SEGMENT_INFO_IS_INCOMPLETE:
        return BufferInfo(buffer, BUFFER_INFO_IS_INCOMPLETE);
    case SEGMENT_INFO_SIZE_FILLED:
        return BufferInfo(buffer, BUFFER_INFO_SIZE_FILLED);
    case SEGMENT_INFO_DATA_SIZE:
        return BufferInfo(buffer, BUFFER_INFO_DATA_SIZE);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown segment information");
    }
}

} // namespace koro::simulator

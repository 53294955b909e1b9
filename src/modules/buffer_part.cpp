#include "modules/buffer_part.h"

#include "base/expiring.h"
#include "modules/buffer.h"

namespace koro::internal
{

using namespace GenTL;

BufferPart::BufferPart(
    std::uint32_t partIndex, const std::weak_ptr<Buffer>& buffer, const std::shared_ptr<const GenTLProxy>& proxy)
    : TGenTLInfoAccessor(GenTLCaller(proxy)), parent(buffer), index(partIndex)
{}

void* BufferPart::BasePtr() const
{
    return NumericInfo<void*>(BUFFER_PART_INFO_BASE, INFO_DATATYPE_PTR);
}

std::size_t BufferPart::Size() const
{
    return SizeInfo(BUFFER_PART_INFO_DATA_SIZE);
}

std::int32_t BufferPart::Type() const
{
    return static_cast<std::int32_t>(SizeInfo(BUFFER_PART_INFO_DATA_TYPE));
}

std::uint64_t BufferPart::Format() const
{
    return NumberInfo(BUFFER_PART_INFO_DATA_FORMAT);
}

std::uint64_t BufferPart::FormatNamespace() const
{
    return NumberInfo(BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE);
}

std::size_t BufferPart::Width() const
{
    return SizeInfo(BUFFER_PART_INFO_WIDTH);
}

std::size_t BufferPart::Height() const
{
    return SizeInfo(BUFFER_PART_INFO_HEIGHT);
}

std::size_t BufferPart::XOffset() const
{
    return SizeInfo(BUFFER_PART_INFO_XOFFSET);
}

std::size_t BufferPart::YOffset() const
{
    return SizeInfo(BUFFER_PART_INFO_YOFFSET);
}

std::size_t BufferPart::XPadding() const
{
    return SizeInfo(BUFFER_PART_INFO_XPADDING);
}

std::uint64_t BufferPart::SourceID() const
{
    return NumberInfo(BUFFER_PART_INFO_SOURCE_ID);
}

std::size_t BufferPart::DeliveredImageHeight() const
{
    return SizeInfo(BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT);
}

std::size_t BufferPart::SizeInfo(std::int32_t command) const
{
    return NumericInfo<std::size_t>(command, INFO_DATATYPE_SIZET);
}

std::uint64_t BufferPart::NumberInfo(std::int32_t command) const
{
    return NumericInfo<std::uint64_t>(command, INFO_DATATYPE_UINT64);
}

std::shared_ptr<Buffer> BufferPart::ParentBuffer() const
{
    return LockOrThrow(parent);
}

GC_ERROR BufferPart::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto parentBuffer = ParentBuffer();
    const auto stream = parentBuffer->ParentStream();
    return gentl.Result<&GenTLProxy::DSGetBufferPartInfo>(
        stream->Handle(), parentBuffer->Handle(), index, command, dataType, buffer, size);
}

} // namespace koro::internal

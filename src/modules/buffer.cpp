#include "modules/buffer.h"

#include "base/expiring.h"
#include "gentl/bounds.h"
#include "modules/buffer_chunk.h"
#include "modules/buffer_part.h"
#include "nodes/node_map.h"

namespace koro::internal
{

using namespace GenTL;

Buffer::Buffer(
    BUFFER_HANDLE handle, const std::weak_ptr<DataStream>& stream, const std::shared_ptr<const GenTLProxy>& proxy)
    : TGenTLInfoAccessor(GenTLCaller(proxy)), EventSupportingModule(handle, proxy), parent(stream)
{}

void* Buffer::BasePtr() const
{
    return NumericInfo<void*>(BUFFER_INFO_BASE, INFO_DATATYPE_PTR);
}

std::size_t Buffer::Size() const
{
    return SizeInfo(BUFFER_INFO_SIZE);
}

void* Buffer::UserPtr() const
{
    return NumericInfo<void*>(BUFFER_INFO_USER_PTR, INFO_DATATYPE_PTR);
}

std::uint64_t Buffer::Timestamp_ticks() const
{
    return NumberInfo(BUFFER_INFO_TIMESTAMP);
}

std::uint64_t Buffer::Timestamp_ns() const
{
    return NumberInfo(BUFFER_INFO_TIMESTAMP_NS);
}

bool Buffer::HasNewData() const
{
    return BooleanInfo(BUFFER_INFO_NEW_DATA);
}

bool Buffer::IsQueued() const
{
    return BooleanInfo(BUFFER_INFO_IS_QUEUED);
}

bool Buffer::IsAcquiring() const
{
    return BooleanInfo(BUFFER_INFO_IS_ACQUIRING);
}

bool Buffer::IsIncomplete() const
{
    return BooleanInfo(BUFFER_INFO_IS_INCOMPLETE);
}

std::string Buffer::TLType() const
{
    return StringInfo(BUFFER_INFO_TLTYPE);
}

std::size_t Buffer::ExpectedDataSize() const
{
    return SizeInfo(BUFFER_INFO_DATA_SIZE);
}

std::size_t Buffer::DeliveredDataSize() const
{
    return SizeInfo(BUFFER_INFO_SIZE_FILLED);
}

std::size_t Buffer::Width() const
{
    return SizeInfo(BUFFER_INFO_WIDTH);
}

std::size_t Buffer::Height() const
{
    return SizeInfo(BUFFER_INFO_HEIGHT);
}

std::size_t Buffer::XOffset() const
{
    return SizeInfo(BUFFER_INFO_XOFFSET);
}

std::size_t Buffer::YOffset() const
{
    return SizeInfo(BUFFER_INFO_YOFFSET);
}

std::size_t Buffer::XPadding() const
{
    return SizeInfo(BUFFER_INFO_XPADDING);
}

std::size_t Buffer::YPadding() const
{
    return SizeInfo(BUFFER_INFO_YPADDING);
}

std::uint64_t Buffer::FrameID() const
{
    return NumberInfo(BUFFER_INFO_FRAMEID);
}

bool Buffer::HasImage() const
{
    return BooleanInfo(BUFFER_INFO_IMAGEPRESENT);
}

std::size_t Buffer::ImageOffset() const
{
    return SizeInfo(BUFFER_INFO_IMAGEOFFSET);
}

std::int32_t Buffer::PayloadType() const
{
    return static_cast<std::int32_t>(SizeInfo(BUFFER_INFO_PAYLOADTYPE));
}

std::uint64_t Buffer::PixelFormat() const
{
    return NumberInfo(BUFFER_INFO_PIXELFORMAT);
}

std::int32_t Buffer::PixelFormatNamespace() const
{
    return static_cast<std::int32_t>(NumberInfo(BUFFER_INFO_PIXELFORMAT_NAMESPACE));
}

std::int32_t Buffer::PixelEndianness() const
{
    return NumericInfo<std::int32_t>(BUFFER_INFO_PIXEL_ENDIANNESS, INFO_DATATYPE_INT32);
}

std::size_t Buffer::DeliveredImageHeight() const
{
    return SizeInfo(BUFFER_INFO_DELIVERED_IMAGEHEIGHT);
}

std::size_t Buffer::DeliveredChunkPayloadSize() const
{
    return SizeInfo(BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE);
}

std::uint64_t Buffer::ChunkLayoutID() const
{
    return NumberInfo(BUFFER_INFO_CHUNKLAYOUTID);
}

std::string Buffer::FileName() const
{
    return StringInfo(BUFFER_INFO_FILENAME);
}

bool Buffer::HasChunks() const
{
    return BooleanInfo(BUFFER_INFO_CONTAINS_CHUNKDATA);
}

bool Buffer::HasParts() const
{
    return NumParts() != 0;
}

void Buffer::UpdateChunks()
{
    WithStandardExceptionsAsInternalErrors([&] {
        const auto stream = ParentStream();
        std::size_t count = 0;
        gentl.Call<&GenTLProxy::DSGetBufferChunkData>(
            stream->Handle(), Handle(), static_cast<SINGLE_CHUNK_DATA*>(nullptr), &count);
        CheckClaim(chunksBound, count, gentl.Proxy()->DSGetBufferChunkData.Name());

        std::vector<SINGLE_CHUNK_DATA> records(count);
        gentl.Call<&GenTLProxy::DSGetBufferChunkData>(stream->Handle(), Handle(), records.data(), &count);

        const auto newChunks = std::make_shared<ChunkList>();
        newChunks->reserve(records.size());
        // All records, even if the producer returned fewer than announced; the rest stay zero.
        for (const auto& record : records)
            newChunks->push_back(std::make_shared<BufferChunk>(record, WeakSelf()));

        Exchange<ChunkList>(chunks, newChunks);
    });
}

void Buffer::UpdateParts()
{
    WithStandardExceptionsAsInternalErrors([&] {
        const std::uint32_t count = NumParts();
        CheckClaim(partsBound, count, gentl.Proxy()->DSGetNumBufferParts.Name());

        const auto newParts = std::make_shared<PartList>();
        newParts->reserve(count);
        for (std::uint32_t index = 0; index < count; ++index)
            newParts->push_back(std::make_shared<BufferPart>(index, WeakSelf(), gentl.Proxy()));

        Exchange<PartList>(parts, newParts);
    });
}

std::shared_ptr<const Buffer::ChunkList> Buffer::Chunks() const
{
    const std::lock_guard lock(listsLock);
    return chunks;
}

std::shared_ptr<const Buffer::PartList> Buffer::Parts() const
{
    const std::lock_guard lock(listsLock);
    return parts;
}

// The old list is released after the lock.
template <class List>
void Buffer::Exchange(std::shared_ptr<const List>& list, std::shared_ptr<const List> newList)
{
    const std::lock_guard lock(listsLock);
    list.swap(newList);
}

std::uint32_t Buffer::NumParts() const
{
    const auto stream = ParentStream();
    std::uint32_t count = 0;
    gentl.Call<&GenTLProxy::DSGetNumBufferParts>(stream->Handle(), Handle(), &count);
    return count;
}

std::weak_ptr<Buffer> Buffer::WeakSelf()
{
    return std::static_pointer_cast<Buffer>(shared_from_this());
}

std::size_t Buffer::SizeInfo(std::int32_t command) const
{
    return NumericInfo<std::size_t>(command, INFO_DATATYPE_SIZET);
}

std::uint64_t Buffer::NumberInfo(std::int32_t command) const
{
    return NumericInfo<std::uint64_t>(command, INFO_DATATYPE_UINT64);
}

void Buffer::Revoke(DS_HANDLE streamHandle)
{
    if (revoked) throw InternalErrorException("Pointer has expired!");
    void* base = nullptr;
    void* userPtr = nullptr;
    gentl.Call<&GenTLProxy::DSRevokeBuffer>(streamHandle, Handle(), &base, &userPtr);

    for (const auto& [callbackKey, callback] : TakeRevocationCallbacks())
    {
        if (callback) callback(Handle(), base, userPtr);
    }
    revoked = true;
}

// The key belongs to this map while the buffer stores the callback: the memory of an object is not used again while a
// weak reference to it exists.
bool Buffer::DetachAtRevocation(const std::shared_ptr<NodeMap>& nodeMap)
{
    return AddRevocationCallback(nodeMap.get(), [map = std::weak_ptr(nodeMap)](BUFFER_HANDLE handle, void*, void*) {
        if (const auto held = map.lock()) held->DetachRevoked(handle);
    });
}

void Buffer::DropRevocationCallbacks()
{
    TakeRevocationCallbacks();
}

std::unordered_map<const void*, Buffer::RevocationCallback> Buffer::TakeRevocationCallbacks()
{
    const std::lock_guard lock(revocationLock);
    isRevocationTold = true;
    return std::exchange(revocationCallbacks, {});
}

std::shared_ptr<DataStream> Buffer::ParentStream() const
{
    if (revoked) throw InternalErrorException("Pointer has expired!");
    return LockOrThrow(parent);
}

std::shared_ptr<Module> Buffer::ParentModule() const
{
    return ParentStream();
}

GC_ERROR Buffer::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto stream = ParentStream();
    return gentl.Result<&GenTLProxy::DSGetBufferInfo>(stream->Handle(), Handle(), command, dataType, buffer, size);
}

} // namespace koro::internal

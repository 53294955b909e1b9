// Buffer: one GenTL buffer of a data stream. Every query calls the producer.
//
// The image memory belongs to the application or the producer, whichever allocated it, and is never accessed here. The
// stream and the handle table own the buffer until it is revoked; it holds the stream weakly. Every operation that
// calls the producer throws InternalErrorException after the stream has ended or the buffer was revoked. Thread-safe.
#pragma once

#include "gentl/info_accessor.h"
#include "modules/data_stream.h"
#include "modules/event_supporting_module.h"
#include "nodes/chunk_source.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace koro::internal
{

class BufferChunk;
class BufferPart;

class Buffer final : public TGenTLInfoAccessor<GenTL::BUFFER_INFO_CMD_LIST>,
                     public EventSupportingModule,
                     public ChunkSource
{
public:
    using RevocationCallback = DataStream::RevocationCallback;

    Buffer(
        GenTL::BUFFER_HANDLE handle, const std::weak_ptr<DataStream>& stream,
        const std::shared_ptr<const GenTLProxy>& proxy);

    GenTL::BUFFER_HANDLE Handle() const override { return EventSupportingModule::Handle(); }
    void* BasePtr() const override;
    std::size_t Size() const override; // bytes, as announced
    void* UserPtr() const;
    std::uint64_t Timestamp_ticks() const;
    std::uint64_t Timestamp_ns() const;
    bool HasNewData() const;
    bool IsQueued() const;
    bool IsAcquiring() const;
    bool IsIncomplete() const;
    std::string TLType() const override;
    std::size_t ExpectedDataSize() const;           // bytes
    std::size_t DeliveredDataSize() const override; // bytes
    std::size_t Width() const;                      // pixels, like the next three
    std::size_t Height() const;
    std::size_t XOffset() const;
    std::size_t YOffset() const;
    std::size_t XPadding() const; // bytes for each line
    std::size_t YPadding() const; // bytes at the end
    std::uint64_t FrameID() const;
    bool HasImage() const;
    std::size_t ImageOffset() const; // bytes from the base
    std::int32_t PayloadType() const;
    std::uint64_t PixelFormat() const;
    std::int32_t PixelFormatNamespace() const;
    std::int32_t PixelEndianness() const;
    std::size_t DeliveredImageHeight() const;
    std::size_t DeliveredChunkPayloadSize() const; // bytes
    std::uint64_t ChunkLayoutID() const override;
    std::string FileName() const;
    bool HasChunks() const override;
    // Throws NoDataException when the producer reports that there is no data.
    bool HasParts() const;

    // Nothing else updates the two lists: until the next call they describe the earlier contents of the buffer.
    void UpdateChunks();
    void UpdateParts();
    // In the producer's order. Empty before the first update; never null. An update creates a new list, so access to
    // each element of a long list copies nothing.
    using ChunkList = std::vector<std::shared_ptr<BufferChunk>>;
    using PartList = std::vector<std::shared_ptr<BufferPart>>;
    std::shared_ptr<const ChunkList> Chunks() const;
    std::shared_ptr<const PartList> Parts() const;

    // Stored until the revocation; an entry with the same key is not replaced. An empty function is allowed. Returns
    // false and stores nothing when the callbacks of the revocation have run already.
    template <class Callback>
    bool AddRevocationCallback(const void* callbackKey, Callback&& callback)
    {
        const std::lock_guard lock(revocationLock);
        if (isRevocationTold) return false;
        revocationCallbacks.try_emplace(callbackKey, std::forward<Callback>(callback));
        return true;
    }

    bool DetachAtRevocation(const std::shared_ptr<NodeMap>& nodeMap) override;

    // Called only by the stream, with its handle. On success every callback has run and the object can no longer be
    // used.
    void Revoke(GenTL::DS_HANDLE streamHandle);
    // The callbacks that were added are not called any more.
    void DropRevocationCallbacks();

    std::shared_ptr<DataStream> ParentStream() const;
    std::shared_ptr<Module> ParentModule() const override;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->DSGetBufferInfo.Name(); }

    std::size_t SizeInfo(std::int32_t command) const;
    std::uint64_t NumberInfo(std::int32_t command) const;
    std::uint32_t NumParts() const;
    template <class List>
    void Exchange(std::shared_ptr<const List>& list, std::shared_ptr<const List> newList);
    std::weak_ptr<Buffer> WeakSelf();
    std::unordered_map<const void*, RevocationCallback> TakeRevocationCallbacks();

    const std::weak_ptr<DataStream> parent;
    std::atomic<bool> revoked{false}; // once set, the parent counts as ended

    // Guards the next two fields; not held while callbacks run, which may take the locks of node maps.
    std::mutex revocationLock;
    std::unordered_map<const void*, RevocationCallback> revocationCallbacks;
    bool isRevocationTold = false;

    mutable std::mutex listsLock; // guards the two pointers; the lists do not change
    std::shared_ptr<const ChunkList> chunks = std::make_shared<ChunkList>();
    std::shared_ptr<const PartList> parts = std::make_shared<PartList>();
};

} // namespace koro::internal

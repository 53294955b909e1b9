// Acquisition on the host: buffers, the streams that fill them, and their descriptors.
//
// Programs include <koro/koro.hpp>, which includes this header. Any thread may call these functions.
#ifndef KORO_CPP_STREAMS_HPP
#define KORO_CPP_STREAMS_HPP

#include <koro/cpp/buffer_contents.hpp>
#include <koro/cpp/callbacks.hpp>
#include <koro/cpp/events.hpp>
#include <koro/cpp/library.hpp>
#include <koro/cpp/nodes.hpp>
#include <koro/cpp/ports.hpp>
#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace koro
{

class DeviceView;

enum class FlushMode : int32_t
{
    InputToOutput = 0,
    OutputDiscard = 1,
    AllToInput = 2,
    UnqueuedToInput = 3,
    AllDiscard = 4,
};

// Producer-specific modes begin at 1000: static_cast<StartMode>(1000). The same applies to StopMode.
enum class StartMode : int32_t
{
    Default = 0,
};

enum class StopMode : int32_t
{
    Default = 0, // the current frame may be finished
    Kill = 1,
};

namespace detail
{

// The node maps of a module, one for each of its descriptions.
template <typename Handle>
std::vector<NodeMap> NodeMapsOf(KORO_ReturnCode (*toModule)(Handle, KORO_ModuleHandle*), Handle handle)
{
    return Children<NodeMap>(KORO_Module_GetNumNodeMaps, KORO_Module_GetNodeMap, Get(toModule, handle));
}

template <typename Handle>
NodeMap NodeMapOf(KORO_ReturnCode (*toModule)(Handle, KORO_ModuleHandle*), Handle handle, size_t index)
{
    return NodeMap(GetAt(KORO_Module_GetNodeMap, Get(toModule, handle), index));
}

template <typename Handle>
Port PortOf(KORO_ReturnCode (*toModule)(Handle, KORO_ModuleHandle*), Handle handle)
{
    return Port(Get(KORO_Module_GetPort, Get(toModule, handle)));
}

} // namespace detail

// A buffer that is announced to a data stream. A view: the stream revokes the buffer when it ends. Each query calls the
// producer; information that the producer does not have throws Error.
class Buffer : public detail::View<KORO_BufferHandle>
{
public:
    using View::View;

    // The image data. The memory belongs to the application or the producer, whichever allocated it, and can be read
    // until the buffer is queued again or revoked.
    void* BasePtr() const { return detail::Get(KORO_Buffer_GetBasePtr, Get()); }
    size_t Size() const { return detail::Get(KORO_Buffer_GetSize, Get()); }
    void* UserPtr() const { return detail::Get(KORO_Buffer_GetUserPtr, Get()); }
    uint64_t Timestamp_ticks() const { return detail::Get(KORO_Buffer_GetTimestamp_ticks, Get()); }
    uint64_t Timestamp_ns() const { return detail::Get(KORO_Buffer_GetTimestamp_ns, Get()); }
    bool HasNewData() const { return detail::Flag(KORO_Buffer_GetHasNewData, Get()); }
    bool IsQueued() const { return detail::Flag(KORO_Buffer_GetIsQueued, Get()); }
    bool IsAcquiring() const { return detail::Flag(KORO_Buffer_GetIsAcquiring, Get()); }
    bool IsIncomplete() const { return detail::Flag(KORO_Buffer_GetIsIncomplete, Get()); }
    std::string TLType() const { return detail::Text(KORO_Buffer_GetTLType, Get()); }
    size_t ExpectedDataSize() const { return detail::Get(KORO_Buffer_GetExpectedDataSize, Get()); }
    size_t DeliveredDataSize() const { return detail::Get(KORO_Buffer_GetDeliveredDataSize, Get()); }
    size_t Width() const { return detail::Get(KORO_Buffer_GetWidth, Get()); }
    size_t Height() const { return detail::Get(KORO_Buffer_GetHeight, Get()); }
    size_t XOffset() const { return detail::Get(KORO_Buffer_GetXOffset, Get()); }
    size_t YOffset() const { return detail::Get(KORO_Buffer_GetYOffset, Get()); }
    size_t XPadding() const { return detail::Get(KORO_Buffer_GetXPadding, Get()); }
    size_t YPadding() const { return detail::Get(KORO_Buffer_GetYPadding, Get()); }
    uint64_t FrameID() const { return detail::Get(KORO_Buffer_GetFrameID, Get()); }
    bool HasImage() const { return detail::Flag(KORO_Buffer_GetHasImage, Get()); }
    size_t ImageOffset() const { return detail::Get(KORO_Buffer_GetImageOffset, Get()); }
    int32_t PayloadType() const { return detail::Get(KORO_Buffer_GetPayloadType, Get()); }
    uint64_t PixelFormat() const { return detail::Get(KORO_Buffer_GetPixelFormat, Get()); }
    int32_t PixelFormatNamespace() const { return detail::Get(KORO_Buffer_GetPixelFormatNamespace, Get()); }
    int32_t PixelEndianness() const { return detail::Get(KORO_Buffer_GetPixelEndianness, Get()); }
    size_t DeliveredImageHeight() const { return detail::Get(KORO_Buffer_GetDeliveredImageHeight, Get()); }
    size_t DeliveredChunkPayloadSize() const { return detail::Get(KORO_Buffer_GetDeliveredChunkPayloadSize, Get()); }
    uint64_t ChunkLayoutID() const { return detail::Get(KORO_Buffer_GetChunkLayoutID, Get()); }
    std::string FileName() const { return detail::Text(KORO_Buffer_GetFileName, Get()); }
    bool HasChunks() const { return detail::Flag(KORO_Buffer_GetHasChunks, Get()); }
    bool HasParts() const { return detail::Flag(KORO_Buffer_GetHasParts, Get()); }
    // Each call reads the list from the producer, for the frame that is in the buffer now; empty when the producer
    // reports that there is none.
    std::vector<BufferPart> Parts() const
    {
        return detail::UpdatedChildren<BufferPart>(
            KORO_Buffer_UpdateParts, KORO_Buffer_GetNumParts, KORO_Buffer_GetPart, Get());
    }
    std::vector<BufferChunk> Chunks() const
    {
        return detail::UpdatedChildren<BufferChunk>(
            KORO_Buffer_UpdateChunks, KORO_Buffer_GetNumChunks, KORO_Buffer_GetChunk, Get());
    }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Buffer_GetInfo, Get(), command); }
    koro::Port Port() const { return detail::PortOf(KORO_Buffer_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_Buffer_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const { return detail::NodeMapOf(KORO_Buffer_ToModule, Get(), index); }
    EventController EnableEvents(EventType eventType) const
    {
        return detail::EnableEvents(KORO_Buffer_ToEventSupportingModule, Get(), eventType);
    }
};

inline bool NodeMap::HasBufferSupportedChunks(const Buffer& buffer) const
{
    KORO_Bool8 has = 0;
    detail::Check(KORO_NodeMap_GetHasBufferSupportedChunks(Get(), buffer.Get(), &has));
    return has != 0;
}
inline void NodeMap::UpdateChunkNodes(const Buffer& buffer) const
{
    detail::Check(KORO_NodeMap_UpdateChunkNodes(Get(), buffer.Get()));
}
inline bool NodeMap::HasEventSupportedData(const Event& event) const
{
    KORO_Bool8 has = 0;
    detail::Check(KORO_NodeMap_GetHasEventSupportedData(Get(), event.Get(), &has));
    return has != 0;
}
inline void NodeMap::UpdateEventNodes(const Event& event) const
{
    detail::Check(KORO_NodeMap_UpdateEventNodes(Get(), event.Get()));
}

inline Buffer BufferPart::ParentBuffer() const
{
    return Buffer(detail::Get(KORO_BufferPart_GetParentBuffer, Get()));
}
inline Buffer BufferChunk::ParentBuffer() const
{
    return Buffer(detail::Get(KORO_BufferChunk_GetParentBuffer, Get()));
}

namespace detail
{

using RevocationFunction = std::function<void(void* buffer, void* userPtr)>;

inline void CallRevoked(void* buffer, void* userPtr, void* context) noexcept
{
    const auto revoked = std::static_pointer_cast<RevocationFunction>(KeptFunctions::OfProcess().Take(context));
    if (revoked) (*revoked)(buffer, userPtr);
}

// A stream that ended earlier together with its device revokes nothing. A stream that ends here may revoke its buffers
// later, when a call that is running on another thread returns.
inline KORO_ReturnCode EndStream(KORO_DataStreamHandle stream)
{
    const KORO_ReturnCode code = KORO_DataStream_Destruct(stream);
    if (code != KORO_RETURN_CODE_SUCCESS) KeptFunctions::OfProcess().DropGroup(stream);
    return code;
}

// The calls on a stream, through its handle.
template <typename Base>
class StreamCalls : public Base
{
public:
    using Base::Base;
    using Base::Get;
    using RevocationFunction = detail::RevocationFunction;

    // Announces memory of the caller, which must stay valid until the buffer is revoked. `revoked` runs once when the
    // buffer is revoked, on the thread that revokes it; it must not throw. It is discarded without a call when this
    // function throws, or when the device ended before the stream.
    Buffer AnnounceBuffer(
        void* memory, size_t size, void* userPtr = nullptr, RevocationFunction revoked = nullptr) const
    {
        KeptFunction kept;
        if (revoked) kept = KeptFunction(std::make_shared<RevocationFunction>(std::move(revoked)), Get());
        KORO_BufferHandle buffer{};
        Check(KORO_DataStream_AnnounceBuffer(
            Get(), memory, size, userPtr, kept.Number() ? CallRevoked : nullptr, kept.Number(), &buffer));
        kept.Release(); // the revocation or the end of the stream releases it
        return Buffer(buffer);
    }
    Buffer AllocAndAnnounceBuffer(size_t size, void* userPtr = nullptr) const
    {
        KORO_BufferHandle buffer{};
        Check(KORO_DataStream_AllocAndAnnounceBuffer(Get(), size, userPtr, &buffer));
        return Buffer(buffer);
    }
    void QueueBuffer(Buffer buffer) const { Check(KORO_DataStream_QueueBuffer(Get(), buffer.Get())); }
    // If the producer refuses, the buffer stays announced and valid.
    void RevokeBuffer(Buffer buffer) const { Check(KORO_DataStream_RevokeBuffer(Get(), buffer.Get())); }

    // Throws Error with KORO_RETURN_CODE_TIMEOUT when no buffer was finished in time, and with KORO_RETURN_CODE_ABORTED
    // after KillWait().
    Buffer WaitForFinishedBuffer(uint64_t timeout_ms = infinite) const
    {
        KORO_BufferHandle buffer{};
        Check(KORO_DataStream_WaitForFinishedBuffer(Get(), timeout_ms, &buffer));
        return Buffer(buffer);
    }
    // Returns empty when no buffer was finished in time; WhyNoFrame() finds out why. Throws like
    // WaitForFinishedBuffer() for all other failures, including KillWait().
    std::optional<Buffer> TryWait(uint64_t timeout_ms) const
    {
        KORO_BufferHandle buffer{};
        const KORO_ReturnCode code = KORO_DataStream_WaitForFinishedBuffer(Get(), timeout_ms, &buffer);
        if (code == KORO_RETURN_CODE_TIMEOUT) return std::nullopt;
        Check(code);
        return Buffer(buffer);
    }
    // Ends one wait: the running one, or otherwise the next. Do not call it in a signal handler; <koro/data_stream.h>
    // gives the reasons.
    void KillWait() const { Check(KORO_DataStream_KillWait(Get())); }
    void FlushPendingKillWaits() const { Check(KORO_DataStream_FlushPendingKillWaits(Get())); }
    void StartAcquisition(uint64_t numToAcquire = infinite, StartMode mode = StartMode::Default) const
    {
        Check(KORO_DataStream_StartAcquisition(Get(), static_cast<int32_t>(mode), numToAcquire));
        Opened(Get());
    }
    void StartAcquisitionInfinite(StartMode mode = StartMode::Default) const
    {
        Check(KORO_DataStream_StartAcquisitionInfinite(Get(), static_cast<int32_t>(mode)));
        Opened(Get());
    }
    void StopAcquisition(StopMode mode = StopMode::Default) const
    {
        Check(KORO_DataStream_StopAcquisition(Get(), static_cast<int32_t>(mode)));
    }
    void Flush(FlushMode mode) const { Check(KORO_DataStream_Flush(Get(), static_cast<int32_t>(mode))); }

    std::string Key() const { return detail::Text(KORO_DataStream_GetKey, Get()); }
    std::string ID() const { return detail::Text(KORO_DataStream_GetID, Get()); }
    std::string TLType() const { return detail::Text(KORO_DataStream_GetTLType, Get()); }
    size_t NumBuffersAnnounced() const { return detail::Get(KORO_DataStream_GetNumBuffersAnnounced, Get()); }
    size_t NumBuffersAnnouncedMinRequired() const
    {
        return detail::Get(KORO_DataStream_GetNumBuffersAnnouncedMinRequired, Get());
    }
    size_t NumBuffersAwaitDelivery() const { return detail::Get(KORO_DataStream_GetNumBuffersAwaitDelivery, Get()); }
    size_t NumBuffersQueued() const { return detail::Get(KORO_DataStream_GetNumBuffersQueued, Get()); }
    uint64_t NumBuffersDelivered() const { return detail::Get(KORO_DataStream_GetNumBuffersDelivered, Get()); }
    uint64_t NumBuffersStarted() const { return detail::Get(KORO_DataStream_GetNumBuffersStarted, Get()); }
    uint64_t NumUnderruns() const { return detail::Get(KORO_DataStream_GetNumUnderruns, Get()); }
    size_t NumChunksPerBufferMax() const { return detail::Get(KORO_DataStream_GetNumChunksPerBufferMax, Get()); }
    size_t BufferAlignment() const { return detail::Get(KORO_DataStream_GetBufferAlignment, Get()); }
    size_t PayloadSize() const { return detail::Get(KORO_DataStream_GetPayloadSize, Get()); }
    bool DefinesPayloadSize() const { return detail::Flag(KORO_DataStream_GetDefinesPayloadSize, Get()); }
    bool IsGrabbing() const { return detail::Flag(KORO_DataStream_GetIsGrabbing, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_DataStream_GetInfo, Get(), command); }
    koro::Port Port() const { return detail::PortOf(KORO_DataStream_ToModule, Get()); }
    std::vector<koro::NodeMap> NodeMaps() const { return detail::NodeMapsOf(KORO_DataStream_ToModule, Get()); }
    koro::NodeMap NodeMap(size_t index = 0) const { return detail::NodeMapOf(KORO_DataStream_ToModule, Get(), index); }
    EventController EnableEvents(EventType eventType) const
    {
        return detail::EnableEvents(KORO_DataStream_ToEventSupportingModule, Get(), eventType);
    }
    DeviceView ParentDevice() const;
};

} // namespace detail

// A view of a stream that a DataStream owns; it can be copied.
class DataStreamView : public detail::StreamCalls<detail::View<KORO_DataStreamHandle>>
{
public:
    using StreamCalls::StreamCalls;
};

// An open stream. When it is closed, the library stops the acquisition and discards and revokes the buffers, on the
// thread that closes it.
class DataStream : public detail::StreamCalls<detail::Owner<KORO_DataStreamHandle, detail::EndStream>>
{
public:
    using StreamCalls::StreamCalls;

    operator DataStreamView() const& noexcept { return DataStreamView(Get()); }
    operator DataStreamView() const&& = delete; // the stream ends at once
};

class DataStreamDescriptor : public detail::View<KORO_DataStreamDescriptorHandle>
{
public:
    using View::View;

    std::string Key() const { return detail::Text(KORO_DataStreamDescriptor_GetKey, Get()); }
    std::string ID() const { return detail::DescriptorID(KORO_DataStreamDescriptor_ToModuleDescriptor, Get()); }
    DataStream OpenDataStream() const
    {
        return DataStream(detail::Opened(detail::Get(KORO_DataStreamDescriptor_OpenDataStream, Get())));
    }
    DeviceView ParentDevice() const;
};

} // namespace koro

#endif

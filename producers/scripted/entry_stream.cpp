// Entry points of data streams and buffers.
#define GENTL_PRODUCER
#include "producers/scripted/call.h"

#include <algorithm>
#include <utility>

using namespace GenTL;
using namespace scripted;

namespace
{

// A function of one stream: `behaviour` is GC_ERROR(State&, Module&).
template <class Behaviour, class... Arguments>
GC_ERROR CallOnStream(const char* function, DS_HANDLE stream, const Behaviour& behaviour, const Arguments&... arguments)
{
    return CallOn(Kind::Stream, function, stream, behaviour, arguments...);
}

// A function of one buffer: `behaviour` is GC_ERROR(State&, Module& stream, std::shared_ptr<Buffer>).
template <class Behaviour, class... Arguments>
GC_ERROR CallOnBuffer(
    const char* function, DS_HANDLE stream, BUFFER_HANDLE handle, const Behaviour& behaviour,
    const Arguments&... arguments)
{
    const auto onBuffer = [&](State& state, Module& module) -> GC_ERROR {
        const auto buffer = state.live.FindBuffer(handle);
        if (!buffer || buffer->stream != stream) return GC_ERR_INVALID_HANDLE;
        return behaviour(state, module, buffer);
    };
    return CallOnStream(function, stream, onBuffer, handle, arguments...);
}

std::size_t CountPlace(const Module& stream, Place place)
{
    const auto inPlace = [&](const auto& buffer) { return buffer->place == place; };
    return static_cast<std::size_t>(std::count_if(stream.announced.begin(), stream.announced.end(), inPlace));
}

Infos StreamInfos(const Module& stream)
{
    Infos infos = stream.stream->info;
    infos.try_emplace(STREAM_INFO_NUM_DELIVERED, UInt64(stream.delivered));
    infos.try_emplace(STREAM_INFO_NUM_UNDERRUN, UInt64(stream.underruns));
    infos.try_emplace(STREAM_INFO_NUM_ANNOUNCED, Size(stream.announced.size()));
    infos.try_emplace(STREAM_INFO_NUM_QUEUED, Size(stream.input.size()));
    infos.try_emplace(STREAM_INFO_NUM_AWAIT_DELIVERY, Size(CountPlace(stream, Place::Output)));
    infos.try_emplace(STREAM_INFO_NUM_STARTED, UInt64(stream.started));
    infos.try_emplace(STREAM_INFO_IS_GRABBING, Bool8(stream.acquiring));
    return infos;
}

// The frame's own answers first, then what holds for any buffer, then a picture of one line of Mono8.
Infos BufferInfos(const Buffer& buffer)
{
    const Frame& frame = buffer.frame;
    Infos infos = frame.info;
    infos.try_emplace(BUFFER_INFO_BASE, Pointer(buffer.base));
    infos.try_emplace(BUFFER_INFO_SIZE, Size(buffer.size));
    infos.try_emplace(BUFFER_INFO_USER_PTR, Pointer(buffer.userPointer));
    infos.try_emplace(BUFFER_INFO_NEW_DATA, Bool8(buffer.newData));
    infos.try_emplace(BUFFER_INFO_IS_QUEUED, Bool8(buffer.place != Place::Idle));
    infos.try_emplace(BUFFER_INFO_IS_ACQUIRING, Bool8(false));
    infos.try_emplace(BUFFER_INFO_TLTYPE, Text("GEV"));
    infos.try_emplace(BUFFER_INFO_SIZE_FILLED, Size(buffer.filled));
    infos.try_emplace(BUFFER_INFO_DATA_SIZE, Size(frame.bytes.size()));
    infos.try_emplace(BUFFER_INFO_IS_INCOMPLETE, Bool8(frame.incomplete));
    infos.try_emplace(BUFFER_INFO_DATA_LARGER_THAN_BUFFER, Bool8(frame.bytes.size() > buffer.size));
    infos.try_emplace(BUFFER_INFO_FRAMEID, UInt64(buffer.frameID));
    infos.try_emplace(BUFFER_INFO_TIMESTAMP, UInt64(1000 * buffer.frameID));
    infos.try_emplace(BUFFER_INFO_TIMESTAMP_NS, UInt64(1'000'000 * buffer.frameID));
    infos.try_emplace(BUFFER_INFO_WIDTH, Size(4));
    infos.try_emplace(BUFFER_INFO_HEIGHT, Size(2));
    infos.try_emplace(BUFFER_INFO_XOFFSET, Size(0));
    infos.try_emplace(BUFFER_INFO_YOFFSET, Size(0));
    infos.try_emplace(BUFFER_INFO_XPADDING, Size(0));
    infos.try_emplace(BUFFER_INFO_YPADDING, Size(0));
    infos.try_emplace(BUFFER_INFO_IMAGEPRESENT, Bool8(frame.parts.empty()));
    infos.try_emplace(BUFFER_INFO_IMAGEOFFSET, Size(0));
    infos.try_emplace(
        BUFFER_INFO_PAYLOADTYPE, Size(frame.parts.empty() ? PAYLOAD_TYPE_IMAGE : PAYLOAD_TYPE_MULTI_PART));
    infos.try_emplace(BUFFER_INFO_PIXELFORMAT, UInt64(0x01080001)); // Mono8
    infos.try_emplace(BUFFER_INFO_PIXELFORMAT_NAMESPACE, UInt64(PIXELFORMAT_NAMESPACE_PFNC_32BIT));
    infos.try_emplace(BUFFER_INFO_DELIVERED_IMAGEHEIGHT, Size(2));
    infos.try_emplace(BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE, Size(0));
    infos.try_emplace(BUFFER_INFO_CHUNKLAYOUTID, UInt64(0));
    infos.try_emplace(BUFFER_INFO_FILENAME, Failing(GC_ERR_NO_DATA));
    infos.try_emplace(BUFFER_INFO_PIXEL_ENDIANNESS, Int32(PIXELENDIANNESS_LITTLE));
    infos.try_emplace(BUFFER_INFO_CONTAINS_CHUNKDATA, Bool8(!frame.chunks.empty()));
    return infos;
}

Infos PartInfos(const Buffer& buffer, std::size_t index)
{
    const auto& offsets = buffer.frame.partOffsets;
    Infos infos = buffer.frame.parts[index];
    if (index < offsets.size()) infos.try_emplace(BUFFER_PART_INFO_BASE, Pointer(buffer.base + offsets[index]));
    return infos;
}

void Queue(Module& stream, const std::shared_ptr<Buffer>& buffer)
{
    buffer->place = Place::Input;
    buffer->newData = false;
    buffer->filled = 0;
    stream.input.push_back(buffer);
}

// Takes every buffer out of `place`; the entries of the output queue go with their buffers.
std::vector<std::shared_ptr<Buffer>> TakeFrom(Module& stream, Place place)
{
    std::vector<std::shared_ptr<Buffer>> taken;
    for (const auto& buffer : stream.announced)
    {
        if (buffer->place == place) taken.push_back(buffer);
    }
    for (const auto& buffer : taken)
        buffer->place = Place::Idle;
    if (place == Place::Input) stream.input.clear();
    const auto event = stream.events.find(EVENT_NEW_BUFFER);
    if (place == Place::Output && event != stream.events.end()) event->second->queue.clear();
    return taken;
}

GC_ERROR Flush(State& state, Module& stream, ACQ_QUEUE_TYPE operation)
{
    switch (operation)
    {
    case ACQ_QUEUE_INPUT_TO_OUTPUT:
        for (const auto& buffer : TakeFrom(stream, Place::Input))
            state.HandOut(stream, buffer);
        return GC_ERR_SUCCESS;
    case ACQ_QUEUE_OUTPUT_DISCARD:
        TakeFrom(stream, Place::Output);
        return GC_ERR_SUCCESS;
    case ACQ_QUEUE_ALL_TO_INPUT:
        TakeFrom(stream, Place::Output);
        [[fallthrough]];
    case ACQ_QUEUE_UNQUEUED_TO_INPUT:
        for (const auto& buffer : TakeFrom(stream, Place::Idle))
            Queue(stream, buffer);
        return GC_ERR_SUCCESS;
    case ACQ_QUEUE_ALL_DISCARD:
        TakeFrom(stream, Place::Input);
        TakeFrom(stream, Place::Output);
        return GC_ERR_SUCCESS;
    default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
}

} // namespace

GC_ERROR GenTL::DSClose(DS_HANDLE hDataStream)
{
    return CallOnStream("DSClose", hDataStream, [](State& state, Module& stream) {
        state.live.Close(stream.handle);
        state.happened.notify_all();
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR GenTL::DSGetParentDev(DS_HANDLE hDataStream, DEV_HANDLE* phDevice)
{
    return CallOnStream("DSGetParentDev", hDataStream, [&](State&, Module& stream) -> GC_ERROR {
        if (!phDevice) return GC_ERR_INVALID_PARAMETER;
        *phDevice = stream.parent;
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR GenTL::DSGetInfo(
    DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallOnStream(
        "DSGetInfo", hDataStream,
        [&](State& state, Module& stream) {
            return AnswerInfo(Choose(state, "DSGetInfo", StreamInfos(stream), iInfoCmd), piType, pBuffer, piSize);
        },
        iInfoCmd, Half{pBuffer});
}

GC_ERROR
GenTL::DSAnnounceBuffer(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate, BUFFER_HANDLE* phBuffer)
{
    return CallOnStream(
        "DSAnnounceBuffer", hDataStream,
        [&](State& state, Module& stream) -> GC_ERROR {
            if (!pBuffer || !phBuffer) return GC_ERR_INVALID_PARAMETER;
            const auto sameMemory = [&](const auto& buffer) { return buffer->base == pBuffer; };
            if (std::any_of(stream.announced.begin(), stream.announced.end(), sameMemory))
            {
                return GC_ERR_RESOURCE_IN_USE;
            }
            const auto buffer = state.live.AddBuffer(stream, static_cast<char*>(pBuffer), iSize, pPrivate);
            *phBuffer = buffer->handle;
            return GC_ERR_SUCCESS;
        },
        iSize);
}

GC_ERROR GenTL::DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t iSize, void* pPrivate, BUFFER_HANDLE* phBuffer)
{
    return CallOnStream(
        "DSAllocAndAnnounceBuffer", hDataStream,
        [&](State& state, Module& stream) -> GC_ERROR {
            if (!phBuffer) return GC_ERR_INVALID_PARAMETER;
            if (iSize > (std::size_t{1} << 30)) return GC_ERR_OUT_OF_MEMORY;
            const auto buffer = state.live.AddBuffer(stream, nullptr, iSize, pPrivate);
            *phBuffer = buffer->handle;
            return GC_ERR_SUCCESS;
        },
        iSize);
}

GC_ERROR
GenTL::DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** ppBuffer, void** ppPrivate)
{
    return CallOnBuffer(
        "DSRevokeBuffer", hDataStream, hBuffer,
        [&](State& state, Module& stream, const std::shared_ptr<Buffer>& buffer) -> GC_ERROR {
            if (buffer->place != Place::Idle) return GC_ERR_BUSY;
            if (ppBuffer) *ppBuffer = buffer->allocated.empty() ? buffer->base : nullptr;
            if (ppPrivate) *ppPrivate = buffer->userPointer;
            state.live.RemoveBuffer(stream, hBuffer);
            return GC_ERR_SUCCESS;
        });
}

GC_ERROR GenTL::DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer)
{
    return CallOnBuffer(
        "DSQueueBuffer", hDataStream, hBuffer,
        [](State&, Module& stream, const std::shared_ptr<Buffer>& buffer) -> GC_ERROR {
            if (buffer->place != Place::Idle) return GC_ERR_RESOURCE_IN_USE;
            Queue(stream, buffer);
            return GC_ERR_SUCCESS;
        });
}

GC_ERROR GenTL::DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation)
{
    return CallOnStream(
        "DSFlushQueue", hDataStream, [&](State& state, Module& stream) { return Flush(state, stream, iOperation); },
        iOperation);
}

GC_ERROR GenTL::DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags, uint64_t iNumToAcquire)
{
    return CallOnStream(
        "DSStartAcquisition", hDataStream,
        [&](State&, Module& stream) -> GC_ERROR {
            if (iNumToAcquire == 0) return GC_ERR_INVALID_PARAMETER;
            if (stream.acquiring) return GC_ERR_RESOURCE_IN_USE;
            stream.acquiring = true;
            stream.framesToCome = iNumToAcquire;
            stream.delivered = 0;
            return GC_ERR_SUCCESS;
        },
        iStartFlags, iNumToAcquire);
}

GC_ERROR GenTL::DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags)
{
    return CallOnStream(
        "DSStopAcquisition", hDataStream,
        [](State&, Module& stream) {
            return std::exchange(stream.acquiring, false) ? GC_ERR_SUCCESS : GC_ERR_RESOURCE_IN_USE;
        },
        iStopFlags);
}

GC_ERROR GenTL::DSGetBufferID(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer)
{
    return CallOnStream(
        "DSGetBufferID", hDataStream,
        [&](State&, Module& stream) -> GC_ERROR {
            if (!phBuffer) return GC_ERR_INVALID_PARAMETER;
            if (iIndex >= stream.announced.size()) return GC_ERR_INVALID_INDEX;
            *phBuffer = stream.announced[iIndex]->handle;
            return GC_ERR_SUCCESS;
        },
        iIndex);
}

GC_ERROR GenTL::DSGetBufferInfo(
    DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
    size_t* piSize)
{
    return CallOnBuffer(
        "DSGetBufferInfo", hDataStream, hBuffer,
        [&](State& state, Module&, const std::shared_ptr<Buffer>& buffer) {
            // What the frame says itself needs no list of all answers, which long runs would feel.
            const Infos& own = buffer->frame.info;
            const Info info =
                Choose(state, "DSGetBufferInfo", own.contains(iInfoCmd) ? own : BufferInfos(*buffer), iInfoCmd);
            return AnswerInfo(info, piType, pBuffer, piSize);
        },
        iInfoCmd, Half{pBuffer});
}

GC_ERROR
GenTL::DSGetBufferChunkData(
    DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks)
{
    return CallOnBuffer(
        "DSGetBufferChunkData", hDataStream, hBuffer,
        [&](State&, Module&, const std::shared_ptr<Buffer>& buffer) -> GC_ERROR {
            const auto& chunks = buffer->frame.chunks;
            if (!piNumChunks) return GC_ERR_INVALID_PARAMETER;
            if (chunks.empty()) return GC_ERR_NO_DATA;
            if (pChunkData && *piNumChunks < chunks.size()) return GC_ERR_BUFFER_TOO_SMALL;
            if (pChunkData) std::copy(chunks.begin(), chunks.end(), pChunkData);
            *piNumChunks = chunks.size();
            return GC_ERR_SUCCESS;
        },
        Half{pChunkData});
}

GC_ERROR GenTL::DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piNumParts)
{
    return CallOnBuffer(
        "DSGetNumBufferParts", hDataStream, hBuffer,
        [&](State& state, Module&, const std::shared_ptr<Buffer>& buffer) -> GC_ERROR {
            const auto& parts = buffer->frame.parts;
            if (parts.empty() && !state.answers.counts.contains("DSGetNumBufferParts")) return GC_ERR_NO_DATA;
            return AnswerCount(state, "DSGetNumBufferParts", parts.size(), piNumParts);
        });
}

GC_ERROR GenTL::DSGetBufferPartInfo(
    DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iPartIndex, BUFFER_PART_INFO_CMD iInfoCmd,
    INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallOnBuffer(
        "DSGetBufferPartInfo", hDataStream, hBuffer,
        [&](State& state, Module&, const std::shared_ptr<Buffer>& buffer) -> GC_ERROR {
            const auto& parts = buffer->frame.parts;
            if (parts.empty()) return GC_ERR_NO_DATA;
            if (iPartIndex >= parts.size()) return GC_ERR_INVALID_INDEX;
            const Info info =
                Choose(state, "DSGetBufferPartInfo", PartInfos(*buffer, iPartIndex), iInfoCmd, iPartIndex);
            return AnswerInfo(info, piType, pBuffer, piSize);
        },
        iPartIndex, iInfoCmd, Half{pBuffer});
}

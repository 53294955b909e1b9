#include "modules/data_stream.h"

#include "capi/arguments.h"
#include "modules/buffer.h"
#include "modules/device.h"
#include <koro/data_stream.h>

#include <memory>

using namespace koro::internal;

namespace
{

// Runs `operation` with both objects; the stream's handle is checked first.
template <class Operation>
KORO_ReturnCode WithStreamAndBuffer(
    const NamedArgument<KORO_DataStreamHandle>& streamHandle, const NamedArgument<KORO_BufferHandle>& bufferHandle,
    Operation&& operation)
{
    return WithObject(streamHandle, [&](const auto& stream) {
        const auto buffer = Find(bufferHandle.value);
        if (!buffer) return InvalidHandle(bufferHandle);
        operation(*stream, buffer->Get());
        return success;
    });
}

// A buffer without a handle must not stay announced.
KORO_BufferHandle EnterAnnounced(const std::shared_ptr<DataStream>& stream, const std::shared_ptr<Buffer>& buffer)
{
    try
    {
        return Table<Buffer>().Add(buffer, stream);
    }
    catch (...)
    {
        stream->Withdraw(buffer);
        throw;
    }
}

} // namespace

KORO_ReturnCode KORO_DataStream_Destruct(KORO_DataStreamHandle dataStreamHandle)
{
    return Destruct(KORO_ARG(dataStreamHandle));
}

KORO_ReturnCode KORO_DataStream_AnnounceBuffer(
    KORO_DataStreamHandle dataStreamHandle, void* buffer, size_t bufferSize, void* userPtr,
    KORO_BufferRevocationCallback revocationCallback, void* callbackContext, KORO_BufferHandle* bufferHandle)
{
    return WithObject(KORO_ARG(dataStreamHandle), [&](const auto& stream) {
        if (!bufferHandle) return InvalidPointer(KORO_ARG(bufferHandle));
        if (!buffer) return InvalidPointer(KORO_ARG(buffer));

        const auto notify = [revocationCallback, callbackContext](GenTL::BUFFER_HANDLE, void* base, void* user) {
            if (revocationCallback) revocationCallback(base, user, callbackContext);
        };
        *bufferHandle = EnterAnnounced(stream, stream->AnnounceBuffer(buffer, bufferSize, userPtr, notify));
        return success;
    });
}

KORO_ReturnCode KORO_DataStream_AllocAndAnnounceBuffer(
    KORO_DataStreamHandle dataStreamHandle, size_t bufferSize, void* userPtr, KORO_BufferHandle* bufferHandle)
{
    return GetHandle(KORO_ARG(dataStreamHandle), KORO_ARG(bufferHandle), [&](const auto& stream) {
        return EnterAnnounced(stream, stream->AllocAndAnnounceBuffer(bufferSize, userPtr));
    });
}

KORO_ReturnCode KORO_DataStream_QueueBuffer(KORO_DataStreamHandle dataStreamHandle, KORO_BufferHandle bufferHandle)
{
    return WithStreamAndBuffer(
        KORO_ARG(dataStreamHandle), KORO_ARG(bufferHandle),
        [](DataStream& stream, const std::shared_ptr<Buffer>& buffer) { stream.QueueBuffer(buffer); });
}

KORO_ReturnCode KORO_DataStream_RevokeBuffer(KORO_DataStreamHandle dataStreamHandle, KORO_BufferHandle bufferHandle)
{
    return WithStreamAndBuffer(
        KORO_ARG(dataStreamHandle), KORO_ARG(bufferHandle),
        [&](DataStream& stream, const std::shared_ptr<Buffer>& buffer) {
            stream.RevokeBuffer(buffer); // when the producer refuses, the handle stays valid
            if (auto held = Find(bufferHandle)) EndObject(std::move(held));
        });
}

KORO_ReturnCode KORO_DataStream_WaitForFinishedBuffer(
    KORO_DataStreamHandle dataStreamHandle, uint64_t timeout_ms, KORO_BufferHandle* bufferHandle)
{
    // Returns the handle from the announcement. A buffer that was announced by other code than the library has none:
    // its handle is invalid everywhere.
    return GetHandle(KORO_ARG(dataStreamHandle), KORO_ARG(bufferHandle), [&](const auto& stream) {
        return HandleFor(stream->WaitForFinishedBuffer(timeout_ms));
    });
}

KORO_ReturnCode KORO_DataStream_KillWait(KORO_DataStreamHandle dataStreamHandle)
{
    return Perform(KORO_ARG(dataStreamHandle), &DataStream::KillWait);
}

KORO_ReturnCode KORO_DataStream_FlushPendingKillWaits(KORO_DataStreamHandle dataStreamHandle)
{
    return Perform(KORO_ARG(dataStreamHandle), &DataStream::FlushPendingKillWaits);
}

KORO_ReturnCode KORO_DataStream_StartAcquisition(
    KORO_DataStreamHandle dataStreamHandle, int32_t startMode, uint64_t numToAcquire)
{
    return Perform(KORO_ARG(dataStreamHandle), [&](auto& stream) { stream.StartAcquisition(startMode, numToAcquire); });
}

KORO_ReturnCode KORO_DataStream_StartAcquisitionInfinite(KORO_DataStreamHandle dataStreamHandle, int32_t startMode)
{
    return Perform(
        KORO_ARG(dataStreamHandle), [&](auto& stream) { stream.StartAcquisition(startMode, KORO_INFINITE); });
}

KORO_ReturnCode KORO_DataStream_StopAcquisition(KORO_DataStreamHandle dataStreamHandle, int32_t stopMode)
{
    return Perform(KORO_ARG(dataStreamHandle), [&](auto& stream) { stream.StopAcquisition(stopMode); });
}

KORO_ReturnCode KORO_DataStream_Flush(KORO_DataStreamHandle dataStreamHandle, int32_t flushMode)
{
    return Perform(KORO_ARG(dataStreamHandle), [&](auto& stream) { stream.Flush(flushMode); });
}

KORO_ReturnCode KORO_DataStream_GetKey(KORO_DataStreamHandle dataStreamHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(dataStreamHandle), KORO_ARG(key), keySize, &DataStream::Key);
}

KORO_ReturnCode KORO_DataStream_GetID(KORO_DataStreamHandle dataStreamHandle, char* id, size_t* idSize)
{
    return GetString(KORO_ARG(dataStreamHandle), KORO_ARG(id), idSize, &DataStream::ID);
}

KORO_ReturnCode KORO_DataStream_GetInfo(
    KORO_DataStreamHandle dataStreamHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(dataStreamHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_DataStream_GetTLType(KORO_DataStreamHandle dataStreamHandle, char* tlType, size_t* tlTypeSize)
{
    return GetString(KORO_ARG(dataStreamHandle), KORO_ARG(tlType), tlTypeSize, &DataStream::TLType);
}

KORO_ReturnCode KORO_DataStream_GetNumBuffersAnnounced(
    KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAnnounced)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(numBuffersAnnounced), &DataStream::NumBuffersAnnounced);
}

KORO_ReturnCode KORO_DataStream_GetNumBuffersAnnouncedMinRequired(
    KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAnnouncedMinRequired)
{
    return GetScalar(
        KORO_ARG(dataStreamHandle), KORO_ARG(numBuffersAnnouncedMinRequired),
        &DataStream::NumBuffersAnnouncedMinRequired);
}

KORO_ReturnCode KORO_DataStream_GetNumBuffersAwaitDelivery(
    KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersAwaitDelivery)
{
    return GetScalar(
        KORO_ARG(dataStreamHandle), KORO_ARG(numBuffersAwaitDelivery), &DataStream::NumBuffersAwaitDelivery);
}

KORO_ReturnCode KORO_DataStream_GetNumBuffersQueued(KORO_DataStreamHandle dataStreamHandle, size_t* numBuffersQueued)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(numBuffersQueued), &DataStream::NumBuffersQueued);
}

KORO_ReturnCode KORO_DataStream_GetNumBuffersDelivered(
    KORO_DataStreamHandle dataStreamHandle, uint64_t* numBuffersDelivered)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(numBuffersDelivered), &DataStream::NumBuffersDelivered);
}

KORO_ReturnCode KORO_DataStream_GetNumBuffersStarted(
    KORO_DataStreamHandle dataStreamHandle, uint64_t* numBuffersStarted)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(numBuffersStarted), &DataStream::NumBuffersStarted);
}

KORO_ReturnCode KORO_DataStream_GetNumUnderruns(KORO_DataStreamHandle dataStreamHandle, uint64_t* numUnderruns)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(numUnderruns), &DataStream::NumUnderruns);
}

KORO_ReturnCode KORO_DataStream_GetNumChunksPerBufferMax(
    KORO_DataStreamHandle dataStreamHandle, size_t* numChunksPerBufferMax)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(numChunksPerBufferMax), &DataStream::NumChunksPerBufferMax);
}

KORO_ReturnCode KORO_DataStream_GetBufferAlignment(KORO_DataStreamHandle dataStreamHandle, size_t* bufferAlignment)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(bufferAlignment), &DataStream::BufferAlignment);
}

KORO_ReturnCode KORO_DataStream_GetPayloadSize(KORO_DataStreamHandle dataStreamHandle, size_t* payloadSize)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(payloadSize), &DataStream::PayloadSize);
}

KORO_ReturnCode KORO_DataStream_GetDefinesPayloadSize(
    KORO_DataStreamHandle dataStreamHandle, KORO_Bool8* definesPayloadSize)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(definesPayloadSize), &DataStream::DefinesPayloadSize);
}

KORO_ReturnCode KORO_DataStream_GetIsGrabbing(KORO_DataStreamHandle dataStreamHandle, KORO_Bool8* isGrabbing)
{
    return GetScalar(KORO_ARG(dataStreamHandle), KORO_ARG(isGrabbing), &DataStream::IsGrabbing);
}

KORO_ReturnCode KORO_DataStream_GetParentDevice(KORO_DataStreamHandle dataStreamHandle, KORO_DeviceHandle* deviceHandle)
{
    return GetParent(KORO_ARG(dataStreamHandle), KORO_ARG(deviceHandle), &DataStream::ParentDevice);
}

KORO_ReturnCode KORO_DataStream_ToModule(KORO_DataStreamHandle dataStreamHandle, KORO_ModuleHandle* moduleHandle)
{
    return CastTo(KORO_ARG(dataStreamHandle), KORO_ARG(moduleHandle), &DataStream::ParentDevice);
}

KORO_ReturnCode KORO_DataStream_ToEventSupportingModule(
    KORO_DataStreamHandle dataStreamHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle)
{
    return CastTo(KORO_ARG(dataStreamHandle), KORO_ARG(eventSupportingModuleHandle), &DataStream::ParentDevice);
}

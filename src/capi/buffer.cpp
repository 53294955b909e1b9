#include "modules/buffer.h"

#include "base/exceptions.h"
#include "capi/arguments.h"
#include "modules/buffer_chunk.h"
#include "modules/buffer_part.h"
#include "modules/data_stream.h"
#include <koro/buffer.h>

#include <functional>
#include <stdexcept>

using namespace koro::internal;

namespace
{

// Returns an element of a list that the buffer stores. Text and order of the checks differ from those of other lists
// and are kept for compatibility.
template <class Element, class List>
KORO_ReturnCode GetRemembered(
    const NamedArgument<KORO_BufferHandle>& handle, std::size_t index, const NamedArgument<HandleOf<Element>*>& output,
    List&& list)
{
    return WithObject(handle, [&](const auto& buffer) {
        const auto elements = std::invoke(list, *buffer);
        if (index >= elements->size()) throw std::out_of_range("invalid vector subscript");
        if (!output.value) return InvalidPointer(output);
        *output.value = Table<Element>().Add((*elements)[index], buffer);
        return success;
    });
}

} // namespace

KORO_ReturnCode KORO_Buffer_GetBasePtr(KORO_BufferHandle bufferHandle, void** basePtr)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(basePtr), &Buffer::BasePtr);
}

KORO_ReturnCode KORO_Buffer_GetSize(KORO_BufferHandle bufferHandle, size_t* size)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(size), &Buffer::Size);
}

KORO_ReturnCode KORO_Buffer_GetUserPtr(KORO_BufferHandle bufferHandle, void** userPtr)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(userPtr), &Buffer::UserPtr);
}

KORO_ReturnCode KORO_Buffer_GetTimestamp_ticks(KORO_BufferHandle bufferHandle, uint64_t* timestamp_ticks)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(timestamp_ticks), &Buffer::Timestamp_ticks);
}

KORO_ReturnCode KORO_Buffer_GetTimestamp_ns(KORO_BufferHandle bufferHandle, uint64_t* timestamp_ns)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(timestamp_ns), &Buffer::Timestamp_ns);
}

KORO_ReturnCode KORO_Buffer_GetHasNewData(KORO_BufferHandle bufferHandle, KORO_Bool8* hasNewData)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(hasNewData), &Buffer::HasNewData);
}

KORO_ReturnCode KORO_Buffer_GetIsQueued(KORO_BufferHandle bufferHandle, KORO_Bool8* isQueued)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(isQueued), &Buffer::IsQueued);
}

KORO_ReturnCode KORO_Buffer_GetIsAcquiring(KORO_BufferHandle bufferHandle, KORO_Bool8* isAcquiring)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(isAcquiring), &Buffer::IsAcquiring);
}

KORO_ReturnCode KORO_Buffer_GetIsIncomplete(KORO_BufferHandle bufferHandle, KORO_Bool8* isIncomplete)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(isIncomplete), &Buffer::IsIncomplete);
}

KORO_ReturnCode KORO_Buffer_GetTLType(KORO_BufferHandle bufferHandle, char* tlType, size_t* tlTypeSize)
{
    return GetString(KORO_ARG(bufferHandle), KORO_ARG(tlType), tlTypeSize, &Buffer::TLType);
}

KORO_ReturnCode KORO_Buffer_GetExpectedDataSize(KORO_BufferHandle bufferHandle, size_t* expectedDataSize)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(expectedDataSize), &Buffer::ExpectedDataSize);
}

KORO_ReturnCode KORO_Buffer_GetDeliveredDataSize(KORO_BufferHandle bufferHandle, size_t* deliveredDataSize)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(deliveredDataSize), &Buffer::DeliveredDataSize);
}

KORO_ReturnCode KORO_Buffer_GetWidth(KORO_BufferHandle bufferHandle, size_t* width)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(width), &Buffer::Width);
}

KORO_ReturnCode KORO_Buffer_GetHeight(KORO_BufferHandle bufferHandle, size_t* height)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(height), &Buffer::Height);
}

KORO_ReturnCode KORO_Buffer_GetXOffset(KORO_BufferHandle bufferHandle, size_t* xOffset)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(xOffset), &Buffer::XOffset);
}

KORO_ReturnCode KORO_Buffer_GetYOffset(KORO_BufferHandle bufferHandle, size_t* yOffset)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(yOffset), &Buffer::YOffset);
}

KORO_ReturnCode KORO_Buffer_GetXPadding(KORO_BufferHandle bufferHandle, size_t* xPadding)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(xPadding), &Buffer::XPadding);
}

KORO_ReturnCode KORO_Buffer_GetYPadding(KORO_BufferHandle bufferHandle, size_t* yPadding)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(yPadding), &Buffer::YPadding);
}

KORO_ReturnCode KORO_Buffer_GetFrameID(KORO_BufferHandle bufferHandle, uint64_t* frameId)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(frameId), &Buffer::FrameID);
}

KORO_ReturnCode KORO_Buffer_GetHasImage(KORO_BufferHandle bufferHandle, KORO_Bool8* hasImage)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(hasImage), &Buffer::HasImage);
}

KORO_ReturnCode KORO_Buffer_GetImageOffset(KORO_BufferHandle bufferHandle, size_t* imageOffset)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(imageOffset), &Buffer::ImageOffset);
}

KORO_ReturnCode KORO_Buffer_GetPayloadType(KORO_BufferHandle bufferHandle, int32_t* payloadType)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(payloadType), &Buffer::PayloadType);
}

KORO_ReturnCode KORO_Buffer_GetPixelFormat(KORO_BufferHandle bufferHandle, uint64_t* pixelFormat)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(pixelFormat), &Buffer::PixelFormat);
}

KORO_ReturnCode KORO_Buffer_GetPixelFormatNamespace(KORO_BufferHandle bufferHandle, int32_t* pixelFormatNamespace)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(pixelFormatNamespace), &Buffer::PixelFormatNamespace);
}

KORO_ReturnCode KORO_Buffer_GetPixelEndianness(KORO_BufferHandle bufferHandle, int32_t* pixelEndianness)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(pixelEndianness), &Buffer::PixelEndianness);
}

KORO_ReturnCode KORO_Buffer_GetDeliveredImageHeight(KORO_BufferHandle bufferHandle, size_t* deliveredImageHeight)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(deliveredImageHeight), &Buffer::DeliveredImageHeight);
}

KORO_ReturnCode KORO_Buffer_GetDeliveredChunkPayloadSize(
    KORO_BufferHandle bufferHandle, size_t* deliveredChunkPayloadSize)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(deliveredChunkPayloadSize), &Buffer::DeliveredChunkPayloadSize);
}

KORO_ReturnCode KORO_Buffer_GetChunkLayoutID(KORO_BufferHandle bufferHandle, uint64_t* deliveredImageHeight)
{
    // The parameter is named after the delivered height; the name is kept, since messages contain it.
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(deliveredImageHeight), &Buffer::ChunkLayoutID);
}

KORO_ReturnCode KORO_Buffer_GetFileName(KORO_BufferHandle bufferHandle, char* fileName, size_t* fileNameSize)
{
    return GetString(KORO_ARG(bufferHandle), KORO_ARG(fileName), fileNameSize, &Buffer::FileName);
}

KORO_ReturnCode KORO_Buffer_GetHasChunks(KORO_BufferHandle bufferHandle, KORO_Bool8* hasChunks)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(hasChunks), &Buffer::HasChunks);
}

KORO_ReturnCode KORO_Buffer_GetHasParts(KORO_BufferHandle bufferHandle, KORO_Bool8* hasParts)
{
    return GetScalar(KORO_ARG(bufferHandle), KORO_ARG(hasParts), [](const auto& buffer) {
        try
        {
            return buffer.HasParts();
        }
        catch (const NoDataException&)
        {
            return false; // here an answer, in an update a failure
        }
    });
}

KORO_ReturnCode KORO_Buffer_UpdateChunks(KORO_BufferHandle bufferHandle)
{
    return Perform(KORO_ARG(bufferHandle), &Buffer::UpdateChunks);
}

KORO_ReturnCode KORO_Buffer_UpdateParts(KORO_BufferHandle bufferHandle)
{
    return Perform(KORO_ARG(bufferHandle), &Buffer::UpdateParts);
}

KORO_ReturnCode KORO_Buffer_GetNumChunks(KORO_BufferHandle bufferHandle, size_t* numChunks)
{
    return GetScalar(
        KORO_ARG(bufferHandle), KORO_ARG(numChunks), [](const auto& buffer) { return buffer.Chunks()->size(); });
}

KORO_ReturnCode KORO_Buffer_GetChunk(
    KORO_BufferHandle bufferHandle, size_t index, KORO_BufferChunkHandle* bufferChunkHandle)
{
    return GetRemembered<BufferChunk>(KORO_ARG(bufferHandle), index, KORO_ARG(bufferChunkHandle), &Buffer::Chunks);
}

KORO_ReturnCode KORO_Buffer_GetNumParts(KORO_BufferHandle bufferHandle, size_t* numParts)
{
    return GetScalar(
        KORO_ARG(bufferHandle), KORO_ARG(numParts), [](const auto& buffer) { return buffer.Parts()->size(); });
}

KORO_ReturnCode KORO_Buffer_GetPart(
    KORO_BufferHandle bufferHandle, size_t index, KORO_BufferPartHandle* bufferPartHandle)
{
    return GetRemembered<BufferPart>(KORO_ARG(bufferHandle), index, KORO_ARG(bufferPartHandle), &Buffer::Parts);
}

KORO_ReturnCode KORO_Buffer_GetInfo(
    KORO_BufferHandle bufferHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize)
{
    return GetRawInfo(KORO_ARG(bufferHandle), infoCommand, KORO_ARG(infoDataType), KORO_ARG(info), infoSize);
}

KORO_ReturnCode KORO_Buffer_ToModule(KORO_BufferHandle bufferHandle, KORO_ModuleHandle* moduleHandle)
{
    return CastTo(KORO_ARG(bufferHandle), KORO_ARG(moduleHandle), &Buffer::ParentStream);
}

KORO_ReturnCode KORO_Buffer_ToEventSupportingModule(
    KORO_BufferHandle bufferHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle)
{
    return CastTo(KORO_ARG(bufferHandle), KORO_ARG(eventSupportingModuleHandle), &Buffer::ParentStream);
}

/*
 * An announced buffer of a data stream: memory, and what the producer says of the data in it.
 *
 * The handle comes from the announcement and ends with KORO_DataStream_RevokeBuffer or the stream. Nothing is kept but
 * the lists of chunks and parts: each query asks the producer at that moment, and fails with KORO_RETURN_CODE_ERROR
 * where the producer or the payload has no answer; the text tells the producer's code. Any thread.
 */
#ifndef KORO_BUFFER_H
#define KORO_BUFFER_H

#include <koro/gentl_values.h>
#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Gives the start of the buffer's memory.
 * @param[out] basePtr owned by who announced or allocated it
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetBasePtr(KORO_BufferHandle bufferHandle, void** basePtr);

/**
 * Gives the announced size.
 * @param[out] size bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetSize(KORO_BufferHandle bufferHandle, size_t* size);

/** Gives the user pointer of the announcement. */
KORO_API KORO_ReturnCode KORO_Buffer_GetUserPtr(KORO_BufferHandle bufferHandle, void** userPtr);

/**
 * Gives the time stamp in ticks of the device's counter.
 * @param[out] timestamp_ticks ticks
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetTimestamp_ticks(KORO_BufferHandle bufferHandle, uint64_t* timestamp_ticks);

/**
 * Gives the time stamp in nanoseconds. A query of its own, not derived from the ticks.
 * @param[out] timestamp_ns nanoseconds
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetTimestamp_ns(KORO_BufferHandle bufferHandle, uint64_t* timestamp_ns);

/** Tells whether the buffer was filled since it was queued; 0 when it came back by a flush. */
KORO_API KORO_ReturnCode KORO_Buffer_GetHasNewData(KORO_BufferHandle bufferHandle, KORO_Bool8* hasNewData);

/** Tells whether the buffer is with the producer. */
KORO_API KORO_ReturnCode KORO_Buffer_GetIsQueued(KORO_BufferHandle bufferHandle, KORO_Bool8* isQueued);

/** Tells whether the buffer is being filled. */
KORO_API KORO_ReturnCode KORO_Buffer_GetIsAcquiring(KORO_BufferHandle bufferHandle, KORO_Bool8* isAcquiring);

/** Tells whether data is missing in the buffer. */
KORO_API KORO_ReturnCode KORO_Buffer_GetIsIncomplete(KORO_BufferHandle bufferHandle, KORO_Bool8* isIncomplete);

/** Gives the transport layer type of the buffer, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode KORO_Buffer_GetTLType(KORO_BufferHandle bufferHandle, char* tlType, size_t* tlTypeSize);

/**
 * Gives the size of the data that was meant to be delivered.
 * @param[out] expectedDataSize bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetExpectedDataSize(KORO_BufferHandle bufferHandle, size_t* expectedDataSize);

/**
 * Gives the size of the data that was delivered.
 * @param[out] deliveredDataSize bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetDeliveredDataSize(KORO_BufferHandle bufferHandle, size_t* deliveredDataSize);

/**
 * Gives the width of the image.
 * @param[out] width pixels
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetWidth(KORO_BufferHandle bufferHandle, size_t* width);

/**
 * Gives the configured height of the image.
 * @param[out] height lines
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetHeight(KORO_BufferHandle bufferHandle, size_t* height);

/**
 * Gives the horizontal offset of the image on the sensor.
 * @param[out] xOffset pixels
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetXOffset(KORO_BufferHandle bufferHandle, size_t* xOffset);

/**
 * Gives the vertical offset of the image on the sensor.
 * @param[out] yOffset lines
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetYOffset(KORO_BufferHandle bufferHandle, size_t* yOffset);

/**
 * Gives the padding behind each line.
 * @param[out] xPadding bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetXPadding(KORO_BufferHandle bufferHandle, size_t* xPadding);

/**
 * Gives the padding behind the image.
 * @param[out] yPadding bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetYPadding(KORO_BufferHandle bufferHandle, size_t* yPadding);

/** Gives the running number of the frame. Where it wraps depends on the transport layer. */
KORO_API KORO_ReturnCode KORO_Buffer_GetFrameID(KORO_BufferHandle bufferHandle, uint64_t* frameId);

/** Tells whether the buffer holds one plain image. */
KORO_API KORO_ReturnCode KORO_Buffer_GetHasImage(KORO_BufferHandle bufferHandle, KORO_Bool8* hasImage);

/**
 * Gives the place of the image in the buffer.
 * @param[out] imageOffset bytes from the base pointer
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetImageOffset(KORO_BufferHandle bufferHandle, size_t* imageOffset);

/**
 * Gives the kind of payload.
 * @param[out] payloadType KORO_PAYLOAD_TYPE_...
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetPayloadType(KORO_BufferHandle bufferHandle, int32_t* payloadType);

/**
 * Gives the format of the pixels.
 * @param[out] pixelFormat a number of the format's namespace
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetPixelFormat(KORO_BufferHandle bufferHandle, uint64_t* pixelFormat);

/**
 * Tells what the number of the pixel format means.
 * @param[out] pixelFormatNamespace KORO_PIXELFORMAT_NAMESPACE_...
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetPixelFormatNamespace(KORO_BufferHandle bufferHandle, int32_t* pixelFormatNamespace);

/**
 * Gives the byte order of pixels of several bytes.
 * @param[out] pixelEndianness KORO_PIXELENDIANNESS_...
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetPixelEndianness(KORO_BufferHandle bufferHandle, int32_t* pixelEndianness);

/**
 * Gives the number of lines that were delivered.
 * @param[out] deliveredImageHeight lines
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetDeliveredImageHeight(KORO_BufferHandle bufferHandle, size_t* deliveredImageHeight);

/**
 * Gives the size of the chunk data that was delivered.
 * @param[out] deliveredChunkPayloadSize bytes
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetDeliveredChunkPayloadSize(KORO_BufferHandle bufferHandle, size_t* deliveredChunkPayloadSize);

/**
 * Gives a number that changes with the layout of the chunks; 0 when the producer does not support it.
 * The output's name, which a null pointer's message shows, is that of the delivered height.
 * @param[out] deliveredImageHeight the layout's number
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetChunkLayoutID(KORO_BufferHandle bufferHandle, uint64_t* deliveredImageHeight);

/**
 * Gives the name of the file that the buffer holds.
 * @param[out] fileName, fileNameSize UTF-8
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetFileName(KORO_BufferHandle bufferHandle, char* fileName, size_t* fileNameSize);

/** Tells whether the buffer holds chunk data. */
KORO_API KORO_ReturnCode KORO_Buffer_GetHasChunks(KORO_BufferHandle bufferHandle, KORO_Bool8* hasChunks);

/**
 * Tells whether the buffer holds parts: several images or data blocks. 0 also when the producer has no data on that.
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetHasParts(KORO_BufferHandle bufferHandle, KORO_Bool8* hasParts);

/**
 * Reads the list of chunks anew. To be called for each image of which chunks are wanted: nothing else refreshes the
 * list, and queueing the buffer does not empty it. Handles of chunks from before stay valid and keep what they tell.
 * @return KORO_RETURN_CODE_NO_DATA when the producer says that there are none; a failure leaves the list as it was
 */
KORO_API KORO_ReturnCode KORO_Buffer_UpdateChunks(KORO_BufferHandle bufferHandle);

/**
 * Reads the number of parts anew. To be called for each image of which parts are wanted: nothing else refreshes the
 * list, and queueing the buffer does not empty it. Handles of parts from before stay valid and answer for their index.
 * @return KORO_RETURN_CODE_NO_DATA when the producer says that there are none; a failure leaves the list as it was
 */
KORO_API KORO_ReturnCode KORO_Buffer_UpdateParts(KORO_BufferHandle bufferHandle);

/** Gives the number of chunks at the last update, 0 before it. No producer call. */
KORO_API KORO_ReturnCode KORO_Buffer_GetNumChunks(KORO_BufferHandle bufferHandle, size_t* numChunks);

/**
 * Gives one chunk of the list, in the producer's order. The same handle each time until the next update. No producer
 * call.
 * @param[in]  index             0 to the number of chunks less 1
 * @param[out] bufferChunkHandle ends with KORO_BufferChunk_Destruct, or with the buffer
 * @return KORO_RETURN_CODE_ERROR for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetChunk(KORO_BufferHandle bufferHandle, size_t index, KORO_BufferChunkHandle* bufferChunkHandle);

/** Gives the number of parts at the last update, 0 before it. No producer call. */
KORO_API KORO_ReturnCode KORO_Buffer_GetNumParts(KORO_BufferHandle bufferHandle, size_t* numParts);

/**
 * Gives one part of the list, in the producer's order. The same handle each time until the next update. No producer
 * call.
 * @param[in]  index            0 to the number of parts less 1
 * @param[out] bufferPartHandle ends with KORO_BufferPart_Destruct, or with the buffer
 * @return KORO_RETURN_CODE_ERROR for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetPart(KORO_BufferHandle bufferHandle, size_t index, KORO_BufferPartHandle* bufferPartHandle);

/**
 * Gives any information of the buffer as raw bytes.
 * @param[in]  infoCommand    KORO_BUFFER_INFO_... or a number of the producer's own
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the answer; valid also when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetInfo(
    KORO_BufferHandle bufferHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/**
 * Gives the buffer as a module, for its port. The same handle each time.
 * @param[out] moduleHandle ends with the buffer's handle
 */
KORO_API KORO_ReturnCode KORO_Buffer_ToModule(KORO_BufferHandle bufferHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Gives the buffer as a module with events. The same handle each time.
 * @param[out] eventSupportingModuleHandle ends with the buffer's handle
 */
KORO_API KORO_ReturnCode KORO_Buffer_ToEventSupportingModule(
    KORO_BufferHandle bufferHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif

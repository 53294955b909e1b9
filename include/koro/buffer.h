/*
 * An announced buffer of a data stream: its memory, and the information that the producer reports about the data in it.
 *
 * The handle comes from the announcement and ends with KORO_DataStream_RevokeBuffer or with the stream. The library
 * stores only the lists of chunks and parts: each query calls the producer, and fails with KORO_RETURN_CODE_ERROR if
 * the producer or the payload does not have the information; the error text contains the producer's code. Any thread
 * may call these functions.
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
 * Returns the start of the buffer's memory.
 * @param[out] basePtr the memory belongs to the application or the producer, whichever allocated it
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetBasePtr(KORO_BufferHandle bufferHandle, void** basePtr);

/**
 * Returns the announced size.
 * @param[out] size bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetSize(KORO_BufferHandle bufferHandle, size_t* size);

/** Returns the user pointer that was passed to the announcement. */
KORO_API KORO_ReturnCode KORO_Buffer_GetUserPtr(KORO_BufferHandle bufferHandle, void** userPtr);

/**
 * Returns the timestamp in ticks of the device's counter.
 * @param[out] timestamp_ticks ticks
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetTimestamp_ticks(KORO_BufferHandle bufferHandle, uint64_t* timestamp_ticks);

/**
 * Returns the timestamp in nanoseconds, as the producer reports it; the library does not compute it from the ticks.
 * @param[out] timestamp_ns nanoseconds
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetTimestamp_ns(KORO_BufferHandle bufferHandle, uint64_t* timestamp_ns);

/** Reports whether the buffer was filled since it was queued; 0 when a flush returned it unfilled. */
KORO_API KORO_ReturnCode KORO_Buffer_GetHasNewData(KORO_BufferHandle bufferHandle, KORO_Bool8* hasNewData);

/** Reports whether the buffer is queued. */
KORO_API KORO_ReturnCode KORO_Buffer_GetIsQueued(KORO_BufferHandle bufferHandle, KORO_Bool8* isQueued);

/** Reports whether the buffer is being filled. */
KORO_API KORO_ReturnCode KORO_Buffer_GetIsAcquiring(KORO_BufferHandle bufferHandle, KORO_Bool8* isAcquiring);

/** Reports whether data is missing in the buffer. */
KORO_API KORO_ReturnCode KORO_Buffer_GetIsIncomplete(KORO_BufferHandle bufferHandle, KORO_Bool8* isIncomplete);

/** Returns the transport layer type of the buffer, such as "GEV" or "U3V". */
KORO_API KORO_ReturnCode KORO_Buffer_GetTLType(KORO_BufferHandle bufferHandle, char* tlType, size_t* tlTypeSize);

/**
 * Returns the size of the data that a complete frame has.
 * @param[out] expectedDataSize bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetExpectedDataSize(KORO_BufferHandle bufferHandle, size_t* expectedDataSize);

/**
 * Returns the size of the data that was delivered.
 * @param[out] deliveredDataSize bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetDeliveredDataSize(KORO_BufferHandle bufferHandle, size_t* deliveredDataSize);

/**
 * Returns the width of the image.
 * @param[out] width pixels
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetWidth(KORO_BufferHandle bufferHandle, size_t* width);

/**
 * Returns the configured height of the image.
 * @param[out] height lines
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetHeight(KORO_BufferHandle bufferHandle, size_t* height);

/**
 * Returns the horizontal offset of the image on the sensor.
 * @param[out] xOffset pixels
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetXOffset(KORO_BufferHandle bufferHandle, size_t* xOffset);

/**
 * Returns the vertical offset of the image on the sensor.
 * @param[out] yOffset lines
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetYOffset(KORO_BufferHandle bufferHandle, size_t* yOffset);

/**
 * Returns the padding at the end of each line.
 * @param[out] xPadding bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetXPadding(KORO_BufferHandle bufferHandle, size_t* xPadding);

/**
 * Returns the padding at the end of the image.
 * @param[out] yPadding bytes
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetYPadding(KORO_BufferHandle bufferHandle, size_t* yPadding);

/** Returns the sequence number of the frame. Where it wraps around depends on the transport layer. */
KORO_API KORO_ReturnCode KORO_Buffer_GetFrameID(KORO_BufferHandle bufferHandle, uint64_t* frameId);

/** Reports whether the buffer holds a single image. */
KORO_API KORO_ReturnCode KORO_Buffer_GetHasImage(KORO_BufferHandle bufferHandle, KORO_Bool8* hasImage);

/**
 * Returns the offset of the image in the buffer.
 * @param[out] imageOffset bytes from the base pointer
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetImageOffset(KORO_BufferHandle bufferHandle, size_t* imageOffset);

/**
 * Returns the kind of payload.
 * @param[out] payloadType KORO_PAYLOAD_TYPE_...
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetPayloadType(KORO_BufferHandle bufferHandle, int32_t* payloadType);

/**
 * Returns the pixel format.
 * @param[out] pixelFormat a number; KORO_Buffer_GetPixelFormatNamespace reports which list defines it
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetPixelFormat(KORO_BufferHandle bufferHandle, uint64_t* pixelFormat);

/**
 * Reports the namespace of the pixel format: the list that defines its number.
 * @param[out] pixelFormatNamespace KORO_PIXELFORMAT_NAMESPACE_...
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetPixelFormatNamespace(KORO_BufferHandle bufferHandle, int32_t* pixelFormatNamespace);

/**
 * Returns the byte order of pixels that take several bytes.
 * @param[out] pixelEndianness KORO_PIXELENDIANNESS_...
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetPixelEndianness(KORO_BufferHandle bufferHandle, int32_t* pixelEndianness);

/**
 * Returns the number of lines that were delivered.
 * @param[out] deliveredImageHeight lines
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetDeliveredImageHeight(KORO_BufferHandle bufferHandle, size_t* deliveredImageHeight);

/**
 * Returns the size of the chunk data that was delivered.
 * @param[out] deliveredChunkPayloadSize bytes
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetDeliveredChunkPayloadSize(KORO_BufferHandle bufferHandle, size_t* deliveredChunkPayloadSize);

/**
 * Returns a number that changes with the layout of the chunks; 0 when the producer does not support it.
 * The parameter is called deliveredImageHeight, also in the error text for a null pointer, but it is not a height.
 * @param[out] deliveredImageHeight the number of the chunk layout
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetChunkLayoutID(KORO_BufferHandle bufferHandle, uint64_t* deliveredImageHeight);

/**
 * Returns the name of the file that the buffer holds.
 * @param[out] fileName, fileNameSize UTF-8
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetFileName(KORO_BufferHandle bufferHandle, char* fileName, size_t* fileNameSize);

/** Reports whether the buffer holds chunk data. */
KORO_API KORO_ReturnCode KORO_Buffer_GetHasChunks(KORO_BufferHandle bufferHandle, KORO_Bool8* hasChunks);

/**
 * Reports whether the buffer holds parts, that is several images or data blocks; 0 also when the producer does not
 * report it.
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetHasParts(KORO_BufferHandle bufferHandle, KORO_Bool8* hasParts);

/**
 * Reads the list of chunks from the producer. Call it for each frame whose chunks you need: nothing else updates the
 * list, and queueing the buffer does not clear it. Handles of earlier chunks stay valid and keep their values.
 * @return KORO_RETURN_CODE_NO_DATA when the producer reports that there are none; a failure does not change the list
 */
KORO_API KORO_ReturnCode KORO_Buffer_UpdateChunks(KORO_BufferHandle bufferHandle);

/**
 * Reads the number of parts from the producer. Call it for each frame whose parts you need: nothing else updates the
 * list, and queueing the buffer does not clear it. Handles of earlier parts stay valid and stand for their index.
 * @return KORO_RETURN_CODE_NO_DATA when the producer reports that there are none; a failure does not change the list
 */
KORO_API KORO_ReturnCode KORO_Buffer_UpdateParts(KORO_BufferHandle bufferHandle);

/** Returns the number of chunks at the last update; 0 before the first update. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_Buffer_GetNumChunks(KORO_BufferHandle bufferHandle, size_t* numChunks);

/**
 * Returns one chunk of the list, in the producer's order. Each call returns the same handle until the next update. Does
 * not call the producer.
 * @param[in]  index             0 to the number of chunks minus 1
 * @param[out] bufferChunkHandle ends with KORO_BufferChunk_Destruct, or with the buffer
 * @return KORO_RETURN_CODE_ERROR for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetChunk(KORO_BufferHandle bufferHandle, size_t index, KORO_BufferChunkHandle* bufferChunkHandle);

/** Returns the number of parts at the last update; 0 before the first update. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_Buffer_GetNumParts(KORO_BufferHandle bufferHandle, size_t* numParts);

/**
 * Returns one part of the list, in the producer's order. Each call returns the same handle until the next update. Does
 * not call the producer.
 * @param[in]  index            0 to the number of parts minus 1
 * @param[out] bufferPartHandle ends with KORO_BufferPart_Destruct, or with the buffer
 * @return KORO_RETURN_CODE_ERROR for an index beyond the list
 */
KORO_API KORO_ReturnCode
KORO_Buffer_GetPart(KORO_BufferHandle bufferHandle, size_t index, KORO_BufferPartHandle* bufferPartHandle);

/**
 * Returns any information about the buffer as raw bytes.
 * @param[in]  infoCommand    KORO_BUFFER_INFO_... or a producer-specific number
 * @param[out] infoDataType   KORO_INFO_DATATYPE_... of the information; also set when the buffer is too small
 * @param[out] info, infoSize the bytes as the producer delivered them
 */
KORO_API KORO_ReturnCode KORO_Buffer_GetInfo(
    KORO_BufferHandle bufferHandle, int32_t infoCommand, int32_t* infoDataType, uint8_t* info, size_t* infoSize);

/**
 * Returns the buffer as a Module, which has a port and features. Each call returns the same handle.
 * @param[out] moduleHandle ends with the buffer's handle
 */
KORO_API KORO_ReturnCode KORO_Buffer_ToModule(KORO_BufferHandle bufferHandle, KORO_ModuleHandle* moduleHandle);

/**
 * Returns the buffer as an EventSupportingModule, which registers events. Each call returns the same handle.
 * @param[out] eventSupportingModuleHandle ends with the buffer's handle
 */
KORO_API KORO_ReturnCode KORO_Buffer_ToEventSupportingModule(
    KORO_BufferHandle bufferHandle, KORO_EventSupportingModuleHandle* eventSupportingModuleHandle);

#ifdef __cplusplus
}
#endif

#endif

/*
 * One chunk of a buffer: data that the camera sends together with the image, such as its exposure time.
 *
 * The handle comes from KORO_Buffer_GetChunk and ends with KORO_BufferChunk_Destruct, or with the buffer. Id, offset
 * and length are copies that KORO_Buffer_UpdateChunks made: when the buffer has been filled again, they still describe
 * the earlier frame. Any thread may call these functions.
 */
#ifndef KORO_BUFFER_CHUNK_H
#define KORO_BUFFER_CHUNK_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Ends the handle. The list of the buffer does not change: KORO_Buffer_GetChunk returns the chunk again. */
KORO_API KORO_ReturnCode KORO_BufferChunk_Destruct(KORO_BufferChunkHandle bufferChunkHandle);

/** Returns the id of the chunk; the camera's description defines its meaning. Does not call the producer. */
KORO_API KORO_ReturnCode KORO_BufferChunk_GetID(KORO_BufferChunkHandle bufferChunkHandle, uint64_t* id);

/**
 * Returns the start of the chunk: the base address of the buffer, queried now, plus the offset that the producer
 * reported. The library does not check that the result lies in the buffer.
 */
KORO_API KORO_ReturnCode KORO_BufferChunk_GetBasePtr(KORO_BufferChunkHandle bufferChunkHandle, void** basePtr);

/**
 * Returns the length of the chunk, as the producer reported it. Does not call the producer.
 * @param[out] size bytes
 */
KORO_API KORO_ReturnCode KORO_BufferChunk_GetSize(KORO_BufferChunkHandle bufferChunkHandle, size_t* size);

/**
 * Returns the buffer of the chunk.
 * @param[out] bufferHandle the existing handle from its announcement
 */
KORO_API KORO_ReturnCode
KORO_BufferChunk_GetParentBuffer(KORO_BufferChunkHandle bufferChunkHandle, KORO_BufferHandle* bufferHandle);

#ifdef __cplusplus
}
#endif

#endif

/*
 * One chunk of a buffer: data that the camera sent beside the image, such as its exposure time.
 *
 * The handle comes from KORO_Buffer_GetChunk and ends with KORO_BufferChunk_Destruct, or with the buffer. Id, place and
 * length are a copy that KORO_Buffer_UpdateChunks made: when the buffer has been filled again they tell of the former
 * image. Any thread.
 */
#ifndef KORO_BUFFER_CHUNK_H
#define KORO_BUFFER_CHUNK_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Ends the handle. The buffer's list is left as it is: KORO_Buffer_GetChunk gives the chunk again. */
KORO_API KORO_ReturnCode KORO_BufferChunk_Destruct(KORO_BufferChunkHandle bufferChunkHandle);

/** Gives the number of the chunk, whose meaning the camera's description tells. No producer call. */
KORO_API KORO_ReturnCode KORO_BufferChunk_GetID(KORO_BufferChunkHandle bufferChunkHandle, uint64_t* id);

/**
 * Gives the start of the chunk: the base of the buffer, asked now, and the offset that the producer told. The result is
 * not compared with the buffer's memory.
 */
KORO_API KORO_ReturnCode KORO_BufferChunk_GetBasePtr(KORO_BufferChunkHandle bufferChunkHandle, void** basePtr);

/**
 * Gives the length of the chunk, as the producer told it. No producer call.
 * @param[out] size bytes
 */
KORO_API KORO_ReturnCode KORO_BufferChunk_GetSize(KORO_BufferChunkHandle bufferChunkHandle, size_t* size);

/**
 * Gives the buffer of the chunk.
 * @param[out] bufferHandle the handle from the announcement: nothing new to end
 */
KORO_API KORO_ReturnCode
KORO_BufferChunk_GetParentBuffer(KORO_BufferChunkHandle bufferChunkHandle, KORO_BufferHandle* bufferHandle);

#ifdef __cplusplus
}
#endif

#endif

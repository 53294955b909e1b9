#include "modules/buffer_chunk.h"

#include "capi/arguments.h"
#include "modules/buffer.h"
#include <koro/buffer_chunk.h>

using namespace koro::internal;

KORO_ReturnCode KORO_BufferChunk_Destruct(KORO_BufferChunkHandle bufferChunkHandle)
{
    return Destruct(KORO_ARG(bufferChunkHandle));
}

KORO_ReturnCode KORO_BufferChunk_GetID(KORO_BufferChunkHandle bufferChunkHandle, uint64_t* id)
{
    return GetScalar(KORO_ARG(bufferChunkHandle), KORO_ARG(id), &BufferChunk::ID);
}

KORO_ReturnCode KORO_BufferChunk_GetBasePtr(KORO_BufferChunkHandle bufferChunkHandle, void** basePtr)
{
    return GetScalar(KORO_ARG(bufferChunkHandle), KORO_ARG(basePtr), &BufferChunk::BasePtr);
}

KORO_ReturnCode KORO_BufferChunk_GetSize(KORO_BufferChunkHandle bufferChunkHandle, size_t* size)
{
    return GetScalar(KORO_ARG(bufferChunkHandle), KORO_ARG(size), &BufferChunk::Size);
}

KORO_ReturnCode KORO_BufferChunk_GetParentBuffer(
    KORO_BufferChunkHandle bufferChunkHandle, KORO_BufferHandle* bufferHandle)
{
    return GetParent(KORO_ARG(bufferChunkHandle), KORO_ARG(bufferHandle), &BufferChunk::ParentBuffer);
}

// CChunkAdapterGeneric: chunks that the caller lists. The bytes of the buffer are not examined; the caller guarantees
// that the chunks lie inside the buffer.
#pragma once

#include <Base/GCString.h>
#include <GenApi/ChunkAdapter.h>
#include <stddef.h>

namespace GENAPI_NAMESPACE
{

typedef struct _SingleChunkData_t
{
    uint64_t ChunkID;
    ptrdiff_t ChunkOffset; // bytes from the start of the buffer
    size_t ChunkLength;    // bytes
} SingleChunkData_t;

typedef struct _SingleChunkDataStr_t
{
    GENICAM_NAMESPACE::gcstring ChunkID; // hexadecimal digits
    ptrdiff_t ChunkOffset;
    size_t ChunkLength;
} SingleChunkDataStr_t;

class GENAPI_DECL CChunkAdapterGeneric : public CChunkAdapter
{
public:
    explicit CChunkAdapterGeneric(INodeMap* pNodeMap = NULL, int64_t MaxChunkCacheSize = -1)
        : CChunkAdapter(pNodeMap, MaxChunkCacheSize)
    {}

    // Returns false: the bytes do not show where chunks are.
    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    // Throws RuntimeException, for the same reason.
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics = NULL) override;

    // Throws RuntimeException for a negative offset, or for one whose chunk would end beyond the address space.
    void AttachBuffer(
        uint8_t* pBaseAddress, SingleChunkData_t* ChunkData, int64_t NumChunks,
        AttachStatistics_t* pAttachStatistics = NULL);
    void AttachBuffer(
        uint8_t* pBaseAddress, SingleChunkDataStr_t* ChunkData, int64_t NumChunks,
        AttachStatistics_t* pAttachStatistics = NULL);
};

} // namespace GENAPI_NAMESPACE

// CChunkAdapterGEV: chunks of GigE Vision. Each chunk is data followed by a trailer, big endian.
#pragma once

#include <GenApi/ChunkAdapter.h>

namespace GENAPI_NAMESPACE
{

#pragma pack(push, 1)
struct GVCP_CHUNK_TRAILER
{
    uint32_t ChunkID;
    uint32_t ChunkLength; // bytes of data, without this trailer
};
#pragma pack(pop)

class GENAPI_DECL CChunkAdapterGEV : public CChunkAdapter
{
public:
    explicit CChunkAdapterGEV(INodeMap* pNodeMap = NULL, int64_t MaxChunkCacheSize = -1)
        : CChunkAdapter(pNodeMap, MaxChunkCacheSize)
    {}

    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics = NULL) override;
};

} // namespace GENAPI_NAMESPACE

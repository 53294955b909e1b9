// CChunkAdapterGenDC: chunks in the metadata parts of a GenDC container. Their layout inside a part is that of USB3
// Vision.
#pragma once

#include <GenApi/ChunkAdapterU3V.h>

namespace GENAPI_NAMESPACE
{

class GENAPI_DECL CChunkAdapterGenDC : public CChunkAdapterU3V
{
public:
    explicit CChunkAdapterGenDC(INodeMap* pNodeMap = NULL, int64_t MaxChunkCacheSize = -1)
        : CChunkAdapterU3V(pNodeMap, MaxChunkCacheSize)
    {}

    // The buffer must be a whole container. A container without chunk data has no chunk layout.
    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics = NULL) override;
};

} // namespace GENAPI_NAMESPACE

// CChunkAdapterDcam: chunks of IIDC cameras. Each chunk is data followed by a trailer, little endian; a checksum may
// follow the last one.
#pragma once

#include <GenApi/ChunkAdapter.h>
#include <GenApi/Compatibility.h>

namespace GENAPI_NAMESPACE
{

#pragma pack(push, 1)
struct DCAM_CHUNK_TRAILER
{
    GUID ChunkID;
    uint32_t ChunkLength; // bytes of data and of this trailer
    uint32_t InverseChunkLength;
};

struct DCAM_CHECKSUM
{
    uint32_t CRCChecksum; // only the low 16 bits are used
};
#pragma pack(pop)

class GENAPI_DECL CChunkAdapterDcam : public CChunkAdapter
{
public:
    explicit CChunkAdapterDcam(INodeMap* pNodeMap = NULL, int64_t MaxChunkCacheSize = -1)
        : CChunkAdapter(pNodeMap, MaxChunkCacheSize)
    {}

    // Both accept a buffer with a checksum, but do not verify it.
    bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
    void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics = NULL) override;

    // Examines only the last trailer.
    bool HasCRC(uint8_t* pBuffer, int64_t BufferLength);
    // Whether the checksum is right; throws RuntimeException when there is none.
    bool CheckCRC(uint8_t* pBuffer, int64_t BufferLength);
};

} // namespace GENAPI_NAMESPACE

// The derived chunk adapters. Each one implements the walk through one layout.
#include "adapters/byte_order.h"
#include "adapters/chunk_walk.h"
#include "adapters/crc16.h"
#include "adapters/gendc_walk.h"
#include "adapters/listed_walk.h"

#include <Base/GCException.h>
#include <GenApi/ChunkAdapterDcam.h>
#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterGenDC.h>
#include <GenApi/ChunkAdapterGeneric.h>
#include <GenApi/ChunkAdapterU3V.h>

namespace GENAPI_NAMESPACE
{

using runtime::ByteOrder;
using runtime::TrailerWalk;

bool CChunkAdapterGEV::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength)
{
    TrailerWalk walk(ByteOrder::Big, pBuffer, BufferLength);
    return IsGood(walk);
}

void CChunkAdapterGEV::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics)
{
    TrailerWalk walk(ByteOrder::Big, pBuffer, BufferLength);
    AttachChunks(walk, pBuffer, pAttachStatistics);
}

bool CChunkAdapterU3V::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength)
{
    TrailerWalk walk(ByteOrder::Little, pBuffer, BufferLength);
    return IsGood(walk);
}

void CChunkAdapterU3V::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics)
{
    TrailerWalk walk(ByteOrder::Little, pBuffer, BufferLength);
    AttachChunks(walk, pBuffer, pAttachStatistics);
}

bool CChunkAdapterDcam::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength)
{
    runtime::DcamWalk walk(pBuffer, BufferLength);
    return IsGood(walk);
}

void CChunkAdapterDcam::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics)
{
    runtime::DcamWalk walk(pBuffer, BufferLength);
    AttachChunks(walk, pBuffer, pAttachStatistics);
}

bool CChunkAdapterDcam::HasCRC(uint8_t* pBuffer, int64_t BufferLength)
{
    return runtime::HasDcamChecksum(pBuffer, BufferLength);
}

bool CChunkAdapterDcam::CheckCRC(uint8_t* pBuffer, int64_t BufferLength)
{
    if (!HasCRC(pBuffer, BufferLength)) throw RUNTIME_EXCEPTION("The buffer has no checksum");
    const int64_t covered = BufferLength - runtime::dcamChecksumSize;
    return runtime::Crc16(pBuffer, static_cast<size_t>(covered)) == runtime::Little16(pBuffer + covered);
}

bool CChunkAdapterGeneric::CheckBufferLayout(uint8_t*, int64_t)
{
    return false;
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t*, int64_t, AttachStatistics_t*)
{
    throw RUNTIME_EXCEPTION("The chunks of the buffer must be listed: its bytes alone do not tell where they lie");
}

void CChunkAdapterGeneric::AttachBuffer(
    uint8_t* pBaseAddress, SingleChunkData_t* ChunkData, int64_t NumChunks, AttachStatistics_t* pAttachStatistics)
{
    runtime::ListedWalk<SingleChunkData_t> walk(pBaseAddress, ChunkData, NumChunks);
    AttachChunks(walk, pBaseAddress, pAttachStatistics);
}

void CChunkAdapterGeneric::AttachBuffer(
    uint8_t* pBaseAddress, SingleChunkDataStr_t* ChunkData, int64_t NumChunks, AttachStatistics_t* pAttachStatistics)
{
    runtime::ListedWalk<SingleChunkDataStr_t> walk(pBaseAddress, ChunkData, NumChunks);
    AttachChunks(walk, pBaseAddress, pAttachStatistics);
}

bool CChunkAdapterGenDC::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength)
{
    runtime::GenDCWalk walk(pBuffer, BufferLength);
    return IsGood(walk);
}

void CChunkAdapterGenDC::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics)
{
    runtime::GenDCWalk walk(pBuffer, BufferLength);
    AttachChunks(walk, pBuffer, pAttachStatistics);
}

} // namespace GENAPI_NAMESPACE

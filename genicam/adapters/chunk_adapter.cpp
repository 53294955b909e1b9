#include "adapters/chunk_ports.h"

#include <GenApi/ChunkAdapter.h>

namespace GENAPI_NAMESPACE
{

CChunkAdapter::CChunkAdapter(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : m_MaxChunkCacheSize(MaxChunkCacheSize), ports(std::make_unique<runtime::ChunkPorts>())
{
    m_ppChunkPorts = &ports->ports;
    if (pNodeMap) AttachNodeMap(pNodeMap);
}

CChunkAdapter::~CChunkAdapter() = default;

void CChunkAdapter::AttachNodeMap(INodeMap* pNodeMap)
{
    ports->AttachMap(pNodeMap);
}

void CChunkAdapter::DetachNodeMap()
{
    ports->DetachMap();
}

void CChunkAdapter::DetachBuffer()
{
    ports->Detach();
}

void CChunkAdapter::UpdateBuffer(uint8_t* pBaseAddress)
{
    ports->Update(pBaseAddress);
}

void CChunkAdapter::ClearCaches()
{
    ports->ClearCaches();
}

void CChunkAdapter::AttachChunks(runtime::ChunkWalk& walk, uint8_t* pBuffer, AttachStatistics_t* pAttachStatistics)
{
    ports->Attach(walk, pBuffer, m_MaxChunkCacheSize, pAttachStatistics);
}

} // namespace GENAPI_NAMESPACE

#include "adapters/chunk_port_data.h"
#include "adapters/port_memory.h"
#include "nodes/errors.h"

#include <limits>
#include <string.h>
#include <utility>

namespace GENAPI_NAMESPACE
{

using runtime::CheckWithin;
using runtime::PortNode;

namespace
{

// Two registers that every chunk port has besides its data.
const int64_t baseRegister = std::numeric_limits<int64_t>::max();
const int64_t lengthRegister = baseRegister - 15;
const int64_t registerSize = 8;

} // namespace

bool CChunkPort::Data::RefreshID()
{
    const runtime::Node* const text = node->ChunkIDNode();
    const bool readable = !text || IsReadable(text->AccessMode());
    runtime::HexId now = readable ? runtime::HexId(node->GetChunkID()) : runtime::HexId();
    if (now.Width() == id.Width() && now.Canonical() == id.Canonical()) return false;
    id = std::move(now);
    return true;
}

void CChunkPort::Data::Show(uint8_t* newBase, int64_t newOffset, int64_t newLength, bool asCopy)
{
    if (asCopy) Reserve(newLength);
    base = newBase;
    offset = newOffset;
    length = newLength;
    wantsCopy = asCopy;
    copied = false;
    attached = true;
    TakeCopy();
}

void CChunkPort::Data::TakeCopy()
{
    copied = false;
    if (!wantsCopy) return;
    copy.assign(base + offset, base + offset + length);
    copied = true;
}

CChunkPort::CChunkPort(IPort* pPort) : data(std::make_unique<Data>())
{
    if (pPort) AttachPort(pPort);
}

CChunkPort::~CChunkPort()
{
    try
    {
        DetachPort();
    }
    catch (...)
    {
        // The node keeps nothing of this port, except caches that could not be discarded.
    }
}

bool CChunkPort::AttachPort(IPort* pPort)
{
    PortNode* const node = dynamic_cast<PortNode*>(pPort);
    if (!node || !node->HasChunkID()) return false;
    DetachPort();
    data->node = node;
    data->map = runtime::MapLink(node->Map());
    data->copiesAllowed = node->CacheChunkData() == Yes;
    data->turned = node->GetSwapEndianess() == Yes;
    try
    {
        data->RefreshID();
        node->SetPortImpl(this);
    }
    catch (...)
    {
        DetachPort();
        throw;
    }
    return true;
}

void CChunkPort::DetachPort()
{
    DetachChunk();
    PortNode* const node = data->Node();
    data->map = {};
    if (node) node->Release(*this, NA);
}

void CChunkPort::AttachChunk(uint8_t* pBaseAddress, int64_t ChunkOffset, int64_t Length, bool Cache)
{
    if (!pBaseAddress || ChunkOffset < 0 || Length < 0)
    {
        throw INVALID_ARGUMENT_EXCEPTION("A chunk needs a base address, and no negative offset or length");
    }
    data->Show(pBaseAddress, ChunkOffset, Length, Cache && data->copiesAllowed);
}

void CChunkPort::DetachChunk()
{
    data->attached = data->copied = false;
}

void CChunkPort::UpdateBuffer(uint8_t* pBaseAddress)
{
    if (!data->attached) return;
    if (!pBaseAddress) throw INVALID_ARGUMENT_EXCEPTION("The base address must not be NULL");
    data->base = pBaseAddress;
    data->TakeCopy();
}

void CChunkPort::ClearCache()
{
    data->copied = false;
}

void CChunkPort::InvalidateNode()
{
    if (PortNode* const node = data->Node()) node->InvalidateNode();
}

int CChunkPort::GetChunkIDLength()
{
    return static_cast<int>(data->id.Width());
}

bool CChunkPort::CheckChunkID(uint8_t* pChunkIDBuffer, int ChunkIDLength)
{
    if (!pChunkIDBuffer || ChunkIDLength < 1) return false;
    return data->id.Is(runtime::CanonicalId(pChunkIDBuffer, static_cast<size_t>(ChunkIDLength)));
}

bool CChunkPort::CheckChunkID(uint64_t ChunkID)
{
    return data->id.Is(runtime::NumberId(ChunkID).Canonical());
}

EAccessMode CChunkPort::GetAccessMode() const
{
    return data->attached ? RW : NA;
}

void CChunkPort::Read(void* pBuffer, int64_t Address, int64_t Length)
{
    const bool whole = data->attached && Length == registerSize;
    if (whole && Address == baseRegister)
    {
        const uint64_t address = reinterpret_cast<uintptr_t>(data->Bytes());
        memcpy(pBuffer, &address, sizeof address);
        return;
    }
    if (whole && Address == lengthRegister)
    {
        memcpy(pBuffer, &data->length, sizeof data->length);
        return;
    }
    CheckWithin(data->Node(), Address, Length, data->attached ? data->length : 0);
    runtime::CopyAccess(pBuffer, data->Bytes() + Address, Length, data->turned);
}

void CChunkPort::Write(const void* pBuffer, int64_t Address, int64_t Length)
{
    CheckWithin(data->Node(), Address, Length, data->attached ? data->length : 0);
    runtime::CopyAccess(data->Bytes() + Address, pBuffer, Length, data->turned);
}

void CChunkPort::SetPortImpl(IPort* pPort)
{
    DetachPort();
    if (pPort) AttachPort(pPort);
}

EYesNo CChunkPort::GetSwapEndianess()
{
    return data->turned ? Yes : No;
}

} // namespace GENAPI_NAMESPACE

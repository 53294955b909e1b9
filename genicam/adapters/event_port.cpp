#include "adapters/event_port_data.h"
#include "adapters/port_memory.h"
#include "nodes/errors.h"

namespace GENAPI_NAMESPACE
{

CEventPort::CEventPort(INode* pNode) : data(std::make_unique<Data>())
{
    if (pNode) AttachNode(pNode);
}

CEventPort::~CEventPort()
{
    try
    {
        DetachNode();
    }
    catch (...)
    {
        // The node keeps nothing of this port, except caches that could not be discarded.
    }
}

bool CEventPort::AttachNode(INode* pNode)
{
    runtime::Node* const node = dynamic_cast<runtime::Node*>(pNode);
    if (!node) return false;
    const GENICAM_NAMESPACE::gcstring id = node->GetEventID();
    if (id.empty()) return false;
    DetachNode();
    data->id = runtime::HexId(id);
    data->node = node;
    data->portNode = dynamic_cast<runtime::PortNode*>(node);
    data->map = runtime::MapLink(node->Map());
    if (!data->portNode) return true;
    try
    {
        data->turned = data->portNode->GetSwapEndianess() == Yes;
        data->portNode->SetPortImpl(this);
    }
    catch (...)
    {
        DetachNode();
        throw;
    }
    return true;
}

void CEventPort::DetachNode()
{
    DetachEvent();
    runtime::PortNode* const port = data->PortNode();
    data->map = {};
    if (port) port->Release(*this, NI);
}

void CEventPort::AttachEvent(uint8_t* pBaseAddress, int64_t Length)
{
    if (Length < 0 || (!pBaseAddress && Length > 0))
    {
        throw INVALID_ARGUMENT_EXCEPTION("An event needs bytes, and no negative length");
    }
    data->bytes.assign(pBaseAddress, pBaseAddress + Length);
    data->delivered = true;
}

void CEventPort::DetachEvent()
{
    data->delivered = false;
    data->bytes.clear();
}

void CEventPort::InvalidateNode()
{
    if (runtime::Node* const node = data->Node()) node->InvalidateNode();
}

int CEventPort::GetEventIDLength()
{
    return static_cast<int>(data->id.Width());
}

bool CEventPort::CheckEventID(uint8_t* pEventIDBuffer, int EventIDLength) const
{
    if (!pEventIDBuffer || EventIDLength < 1) return false;
    return data->id.Is(runtime::CanonicalId(pEventIDBuffer, static_cast<size_t>(EventIDLength)));
}

bool CEventPort::CheckEventID(uint64_t EventID) const
{
    return data->id.Is(runtime::NumberId(EventID).Canonical());
}

EAccessMode CEventPort::GetAccessMode() const
{
    return data->delivered ? RO : NA;
}

void CEventPort::Read(void* pBuffer, int64_t Address, int64_t Length)
{
    runtime::CheckWithin(data->PortNode(), Address, Length, static_cast<int64_t>(data->bytes.size()));
    runtime::CopyAccess(pBuffer, data->bytes.data() + Address, Length, data->turned);
}

void CEventPort::Write(const void*, int64_t, int64_t)
{
    const char* const text = "The bytes of an event cannot be written.";
    if (const runtime::PortNode* const port = data->PortNode()) throw runtime::AccessError(*port, text);
    throw ACCESS_EXCEPTION("%s", text);
}

void CEventPort::SetPortImpl(IPort* pPort)
{
    DetachNode();
    if (INode* const node = dynamic_cast<INode*>(pPort)) AttachNode(node);
}

EYesNo CEventPort::GetSwapEndianess()
{
    return data->turned ? Yes : No;
}

} // namespace GENAPI_NAMESPACE

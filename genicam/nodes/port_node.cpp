#include "nodes/port_node.h"

#include "nodes/errors.h"
#include "nodes/node_inline.h"

namespace GENAPI_NAMESPACE::runtime
{

void PortNode::Read(void* buffer, int64_t address, int64_t length)
{
    const Entry entry(*this, "Read");
    Connected().Read(buffer, address, length);
}

void PortNode::Write(const void* buffer, int64_t address, int64_t length)
{
    const Entry entry(*this, "Write");
    Connected().Write(buffer, address, length);
}

// Discards what the nodes have cached from the previous port; no callback is called.
void PortNode::SetPortImpl(IPort* pPort)
{
    const Entry entry(*this, "SetPortImpl");
    for (const NodeIndex parent : Source().parents.Of(index))
    {
        // Such a ROM would be read here; no supported bus has one.
        const bool rom = Source().nodes[parent].element == Element::ConfRom;
        if (rom && pPort) throw RuntimeError(*map.At(parent), "unsupported bus");
    }
    port = pPort;
    idleMode = NI;
    map.Announce(*this);
}

void PortNode::Release(const IPort& served, EAccessMode mode)
{
    const Entry entry(*this, "SetPortImpl");
    if (port != &served) return;
    port = nullptr;
    idleMode = mode;
    map.Announce(*this);
}

bool PortNode::HasChunkID() const
{
    return Find(Property::ChunkID) || Find(Property::pChunkID);
}

EYesNo PortNode::GetSwapEndianess()
{
    return Says(Property::SwapEndianess) ? Yes : No;
}

GENICAM_NAMESPACE::gcstring PortNode::GetChunkID() const
{
    const Entry entry(*this, "GetChunkID");
    if (Node* const text = Linked(Property::pChunkID))
    {
        return dynamic_cast<IValue&>(*text).ToString();
    }
    return TextOf(Property::ChunkID);
}

EYesNo PortNode::CacheChunkData() const
{
    return Says(Property::CacheChunkData) ? Yes : No;
}

IPort& PortNode::Connected() const
{
    if (!port) throw AccessError(*this, "The port is not connected.");
    return *port;
}

} // namespace GENAPI_NAMESPACE::runtime

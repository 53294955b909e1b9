// PortNode: a port of the description, connected to a port object of the application.
#pragma once

#include "nodes/node.h"

#include <GenApi/IChunkPort.h>
#include <GenApi/IPortConstruct.h>

namespace GENAPI_NAMESPACE::runtime
{

class PortNode : public Node, public IChunkPort, public IPortConstruct
{
public:
    using Node::Node;

    EAccessMode GetAccessMode() const override { return Node::GetAccessMode(); }
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    void SetPortImpl(IPort* pPort) override;
    EYesNo GetSwapEndianess() override;
    GENICAM_NAMESPACE::gcstring GetChunkID() const override;
    EYesNo CacheChunkData() const override;

    // The connected object; throws AccessException while there is none.
    IPort& Connected() const;

    // For the adapters; called while the lock is held.
    bool HasChunkID() const;
    // The text of the id belongs to another node and may change.
    Node* ChunkIDNode() const { return Linked(Property::pChunkID); }
    // Releases `served`, unless another object has replaced it; the port then reports `mode`. No callback is called.
    void Release(const IPort& served, EAccessMode mode);

protected:
    EAccessMode LinkedMode() const override { return port ? port->GetAccessMode() : idleMode; }

private:
    IPort* port = nullptr; // owned by the application or an adapter
    EAccessMode idleMode = NI;
};

} // namespace GENAPI_NAMESPACE::runtime

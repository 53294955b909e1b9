// INodeMap: all nodes of one description over its ports. Created by CNodeMapFactory, destroyed by IDestroy.
// Thread-safe: one recursive lock guards the map and its nodes.
#pragma once

#include <Base/GCString.h>
#include <GenApi/IPort.h>
#include <GenApi/Synch.h>
#include <GenApi/Types.h>

namespace GENAPI_NAMESPACE
{

class CNodeWriteConcatenator;

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT INodeMap
{
    // In the order in which the description first mentions them.
    virtual void GetNodes(NodeList_t & Nodes) const = 0;
    // Null when there is no such node; accepts the name with or without its namespace, "Std::Gain".
    virtual INode* GetNode(const GENICAM_NAMESPACE::gcstring& Name) const = 0;
    virtual void InvalidateNodes() const = 0;
    // Returns false when no port node has the name. The port remains owned by the caller.
    virtual bool Connect(IPort * pPort, const GENICAM_NAMESPACE::gcstring& PortName) const = 0;
    virtual bool Connect(IPort * pPort) const = 0; // the port "Device"
    virtual bool Connect(IPortStacked * pPort, const GENICAM_NAMESPACE::gcstring& PortName) = 0;
    virtual bool Connect(IPortStacked * pPort) = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDeviceName() = 0;
    // Milliseconds since the last call; discards the caches of the nodes whose polling time has expired.
    virtual void Poll(int64_t ElapsedTime) = 0;
    virtual CLock& GetLock() const = 0;
    virtual uint64_t GetNumNodes() const = 0;
    // True when every formula compiles.
    virtual bool ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) const = 0;
    virtual CNodeWriteConcatenator* NewNodeWriteConcatenator() const = 0;
    virtual bool ConcatenatedWrite(
        CNodeWriteConcatenator * pConcatenator, bool featureStreaming = true,
        GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) = 0;
    virtual void SetSuppressCallbackMode(ECallbackSuppressMode Mode) = 0;

protected:
    ~INodeMap() = default;
};

} // namespace GENAPI_NAMESPACE

// CEventPort: a node with an event id; if it is a port, its registers are the bytes of the last event. Address 0 is the
// first byte of the event, after the header of the message.
//
// Created and owned by an event adapter, which calls it while it holds the lock of the node map; other users must take
// that lock themselves. Stores a copy of the bytes. The port may outlive the node map.
#pragma once

#include <GenApi/INode.h>
#include <GenApi/IPortConstruct.h>
#include <memory>

namespace GENAPI_NAMESPACE
{

namespace runtime
{
class EventNodes;
}

class GENAPI_DECL CEventPort : public IPortConstruct
{
public:
    explicit CEventPort(INode* pNode = NULL);
    ~CEventPort() override;
    CEventPort(const CEventPort&) = delete;
    CEventPort& operator=(const CEventPort&) = delete;

    // Connects this object to a node, and to its registers if the node is a port. Returns false and does nothing
    // without an event id.
    bool AttachNode(INode* pNode);
    // Disconnects from the node; a port is then not connected.
    void DetachNode();

    // Copies the bytes of an event. Call InvalidateNode so that the nodes read them.
    void AttachEvent(uint8_t* pBaseAddress, int64_t Length);
    void DetachEvent();
    void InvalidateNode();

    // Number of bytes of the id as the description writes it.
    int GetEventIDLength();
    // Ids are numbers: leading zeros are ignored. The bytes are in the order in which the digits are written.
    bool CheckEventID(uint8_t* pEventIDBuffer, int EventIDLength) const;
    bool CheckEventID(uint64_t EventID) const;

    // NA before the first event, then RO.
    EAccessMode GetAccessMode() const override;
    // Throws RuntimeException outside of the bytes.
    void Read(void* pBuffer, int64_t Address, int64_t Length) override;
    // Throws AccessException.
    void Write(const void* pBuffer, int64_t Address, int64_t Length) override;
    // Works like AttachNode for a port node, after disconnecting from the previous node; null only disconnects.
    void SetPortImpl(IPort* pPort) override;
    EYesNo GetSwapEndianess() override;

private:
    friend class runtime::EventNodes;
    struct Data;

    std::unique_ptr<Data> data;
};

} // namespace GENAPI_NAMESPACE

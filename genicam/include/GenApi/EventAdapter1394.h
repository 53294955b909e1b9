// CEventAdapter1394: event blocks of IIDC cameras. Their layout is not public: a block is accepted or refused, and no
// node is updated.
#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE
{

struct EventData1394; // opaque

class GENAPI_DECL CEventAdapter1394 : public CEventAdapter
{
public:
    explicit CEventAdapter1394(INodeMap* pNodeMap = NULL) : CEventAdapter(pNodeMap) {}

    // Throws RuntimeException for an empty block and for one that does not begin with a zero byte.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
    void DeliverEventMessage(EventData1394& eventData, uint32_t numBytes);
};

} // namespace GENAPI_NAMESPACE

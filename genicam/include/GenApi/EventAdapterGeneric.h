// CEventAdapterGeneric: events whose id the caller passes. All bytes belong to the event.
#pragma once

#include <Base/GCString.h>
#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE
{

class GENAPI_DECL CEventAdapterGeneric : public CEventAdapter
{
public:
    explicit CEventAdapterGeneric(INodeMap* pNodeMap = NULL) : CEventAdapter(pNodeMap) {}

    // Without an id the event is delivered to no node.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
    // The id is in hexadecimal digits. Any other text matches no node.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes, const GENICAM_NAMESPACE::gcstring& EventID);
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t EventID);
};

} // namespace GENAPI_NAMESPACE

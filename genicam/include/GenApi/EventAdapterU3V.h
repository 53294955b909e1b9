// CEventAdapterU3V: event messages of USB3 Vision. All numbers are little endian.
#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE
{

#pragma pack(push, 1)
struct U3V_COMMAND_HEADER
{
    uint32_t Prefix; // 0x45563355
    uint16_t Flags;
    uint16_t CommandId; // 0x0c00
    uint16_t Length;    // bytes after this header
    uint16_t ReqId;
};

struct U3V_EVENT_DATA
{
    uint16_t Reserved;
    uint16_t EventId;
    uint64_t Timestamp; // ns
};

struct U3V_EVENT_MESSAGE
{
    U3V_COMMAND_HEADER Header;
    U3V_EVENT_DATA Event; // followed by data, according to the length in the header
};
#pragma pack(pop)

class GENAPI_DECL CEventAdapterU3V : public CEventAdapter
{
public:
    explicit CEventAdapterU3V(INodeMap* pNodeMap = NULL) : CEventAdapter(pNodeMap) {}

    // One event; its first field is ignored.
    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
    // The bytes after the header must be as many as the header states.
    void DeliverEventMessage(const U3V_EVENT_MESSAGE* pMessage);
};

} // namespace GENAPI_NAMESPACE

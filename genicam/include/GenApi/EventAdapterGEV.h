// CEventAdapterGEV: event messages of GigE Vision. All numbers are big endian.
#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE
{

#pragma pack(push, 1)
struct GVCP_REQUEST_HEADER
{
    uint8_t Magic;    // 0x42
    uint8_t Flags;    // 0x10: extended ids
    uint16_t Command; // 0x00c0: events, 0x00c2: events with data
    uint16_t Length;  // bytes after this header
    uint16_t ReqId;
};

struct GVCP_EVENT_ITEM_BASIC
{
    uint16_t ReservedOrEventSize; // bytes of the item with its data, or 0
    uint16_t EventId;
};

struct GVCP_EVENT_ITEM : GVCP_EVENT_ITEM_BASIC
{
    uint16_t StreamChannelId;
    uint16_t BlockId;
    uint32_t TimestampHigh;
    uint32_t TimestampLow;
};

struct GVCP_EVENT_ITEM_EXTENDED_ID : GVCP_EVENT_ITEM_BASIC
{
    uint16_t StreamChannelId;
    uint16_t BlockId;
    uint32_t BlockId64High;
    uint32_t BlockId64Low;
    uint32_t TimestampHigh;
    uint32_t TimestampLow;
};

// The arrays have as many elements as the length in the header allows.
struct GVCP_EVENT_REQUEST
{
    GVCP_REQUEST_HEADER Header;
    GVCP_EVENT_ITEM Items[1];
};

struct GVCP_EVENT_REQUEST_EXTENDED_ID
{
    GVCP_REQUEST_HEADER Header;
    GVCP_EVENT_ITEM_EXTENDED_ID Items[1];
};

struct GVCP_EVENTDATA_REQUEST
{
    GVCP_REQUEST_HEADER Header;
    GVCP_EVENT_ITEM Event;
    uint8_t Data[1];
};

struct GVCP_EVENTDATA_REQUEST_EXTENDED_ID
{
    GVCP_REQUEST_HEADER Header;
    GVCP_EVENT_ITEM_EXTENDED_ID Event;
    uint8_t Data[1];
};
#pragma pack(pop)

class GENAPI_DECL CEventAdapterGEV : public CEventAdapter
{
public:
    explicit CEventAdapterGEV(INodeMap* pNodeMap = NULL) : CEventAdapter(pNodeMap) {}

    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
    // The bytes after the header must be as many as the header states. Throws RuntimeException for another command than
    // that of the structure, or for the other form of ids.
    void DeliverEventMessage(const GVCP_EVENT_REQUEST* pEvent);
    void DeliverEventMessage(const GVCP_EVENTDATA_REQUEST* pEventData);
    void DeliverEventMessage(const GVCP_EVENT_REQUEST_EXTENDED_ID* pEvent);
    void DeliverEventMessage(const GVCP_EVENTDATA_REQUEST_EXTENDED_ID* pEventData);
};

} // namespace GENAPI_NAMESPACE

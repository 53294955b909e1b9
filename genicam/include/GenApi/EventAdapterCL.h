// CEventAdapterCL: event messages of Camera Link cameras that use GenCP. All numbers are big endian; the checksums are
// not verified.
#pragma once

#include <GenApi/EventAdapter.h>

namespace GENAPI_NAMESPACE
{

#pragma pack(push, 1)
struct CL_COMMAND_HEADER
{
    uint16_t Preamble; // 0x0100
    uint16_t CcdCrc16;
    uint16_t ScdCrc16;
    uint16_t ChannelId;
    uint16_t Flags;
    uint16_t CommandId; // 0x0c00
    uint16_t Length;    // bytes after this header
    uint16_t ReqId;
};

struct CL_EVENT_DATA
{
    uint16_t ReservedOrEventSize; // bytes of the event with its data; 0: the rest of the message
    uint16_t EventId;
    uint64_t Timestamp;
};

struct CL_EVENT_MESSAGE
{
    CL_COMMAND_HEADER Header;
    CL_EVENT_DATA Event;
};
#pragma pack(pop)

class GENAPI_DECL CEventAdapterCL : public CEventAdapter
{
public:
    explicit CEventAdapterCL(INodeMap* pNodeMap = NULL) : CEventAdapter(pNodeMap) {}

    void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
    // Events without the header; `length` counts all of their bytes.
    void DeliverEventData(const CL_EVENT_DATA* pEventData, uint16_t length);
};

} // namespace GENAPI_NAMESPACE

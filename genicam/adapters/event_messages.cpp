// The derived event adapters. Each one implements one message format.
#include "adapters/byte_order.h"
#include "adapters/event_items.h"
#include "adapters/event_nodes.h"
#include "adapters/hex_id.h"

#include <Base/GCException.h>
#include <GenApi/EventAdapter1394.h>
#include <GenApi/EventAdapterCL.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterGeneric.h>
#include <GenApi/EventAdapterU3V.h>

namespace GENAPI_NAMESPACE
{

namespace
{

const uint8_t* BytesOf(const void* structure)
{
    if (!structure) throw RUNTIME_EXCEPTION("Malformed message: no bytes");
    return static_cast<const uint8_t*>(structure);
}

// A message whose length is only in its header.
runtime::EventItems ReadStructure(const void* structure, uint16_t command, bool extended)
{
    const uint8_t* const message = BytesOf(structure);
    const bool hasExtended = (message[1] & runtime::gigEVisionExtendedIDs) != 0;
    if (runtime::Big16(message + 2) != command || hasExtended != extended)
    {
        throw RUNTIME_EXCEPTION("Malformed message: command or flags are not those of the structure");
    }
    const uint32_t size = sizeof(GVCP_REQUEST_HEADER) + runtime::Big16(message + 4);
    return runtime::ReadGigEVisionEvents(message, size);
}

} // namespace

void CEventAdapterGEV::DeliverMessage(const uint8_t msg[], uint32_t numBytes)
{
    DeliverItems(runtime::ReadGigEVisionEvents(msg, numBytes));
}

void CEventAdapterGEV::DeliverEventMessage(const GVCP_EVENT_REQUEST* pEvent)
{
    DeliverItems(ReadStructure(pEvent, runtime::gigEVisionEvent, false));
}

void CEventAdapterGEV::DeliverEventMessage(const GVCP_EVENTDATA_REQUEST* pEventData)
{
    DeliverItems(ReadStructure(pEventData, runtime::gigEVisionEventData, false));
}

void CEventAdapterGEV::DeliverEventMessage(const GVCP_EVENT_REQUEST_EXTENDED_ID* pEvent)
{
    DeliverItems(ReadStructure(pEvent, runtime::gigEVisionEvent, true));
}

void CEventAdapterGEV::DeliverEventMessage(const GVCP_EVENTDATA_REQUEST_EXTENDED_ID* pEventData)
{
    DeliverItems(ReadStructure(pEventData, runtime::gigEVisionEventData, true));
}

void CEventAdapterU3V::DeliverMessage(const uint8_t msg[], uint32_t numBytes)
{
    DeliverItems(runtime::ReadUSB3VisionEvent(msg, numBytes));
}

void CEventAdapterU3V::DeliverEventMessage(const U3V_EVENT_MESSAGE* pMessage)
{
    const uint8_t* const message = BytesOf(pMessage);
    const uint32_t size = sizeof(U3V_COMMAND_HEADER) + runtime::Little16(message + 8);
    DeliverItems(runtime::ReadUSB3VisionEvent(message, size));
}

void CEventAdapterCL::DeliverMessage(const uint8_t msg[], uint32_t numBytes)
{
    DeliverItems(runtime::ReadCameraLinkEvents(msg, numBytes));
}

void CEventAdapterCL::DeliverEventData(const CL_EVENT_DATA* pEventData, uint16_t length)
{
    DeliverItems(runtime::CameraLinkEvents(BytesOf(pEventData), length));
}

void CEventAdapter1394::DeliverMessage(const uint8_t msg[], uint32_t numBytes)
{
    if (!msg || numBytes == 0) throw RUNTIME_EXCEPTION("Malformed message: no bytes");
    if (msg[0] != 0) throw RUNTIME_EXCEPTION("Malformed message: corrupted");
}

void CEventAdapter1394::DeliverEventMessage(EventData1394& eventData, uint32_t numBytes)
{
    DeliverMessage(reinterpret_cast<const uint8_t*>(&eventData), numBytes);
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes)
{
    if (numBytes > 0) BytesOf(msg);
}

void CEventAdapterGeneric::DeliverMessage(
    const uint8_t msg[], uint32_t numBytes, const GENICAM_NAMESPACE::gcstring& EventID)
{
    DeliverMessage(msg, numBytes);
    const runtime::HexId id(EventID);
    if (id.IsId()) nodes->Deliver(id.Canonical(), msg, numBytes, false);
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t EventID)
{
    DeliverMessage(msg, numBytes);
    nodes->Deliver(runtime::NumberId(EventID).Canonical(), msg, numBytes, false);
}

} // namespace GENAPI_NAMESPACE

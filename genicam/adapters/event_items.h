// EventItems: the events inside one message, one after the other. The readers throw RuntimeException when the header of
// a message is malformed. An event that does not fit into a message with a valid header ends the message.
#pragma once

#include "adapters/byte_order.h"

namespace GENAPI_NAMESPACE::runtime
{

struct EventItem
{
    uint64_t id;
    const uint8_t* bytes; // with the event's own head fields
    uint32_t size;
    bool showsSize; // the first two bytes, big endian, are to show the size
};

class EventItems
{
public:
    // The layout of the events in a message.
    struct Form
    {
        ByteOrder order;
        uint32_t headSize; // bytes before the data; the first field may be the size, the second is the id
        bool readsSize;
        bool dataToTheEnd; // without a size the event has the whole rest, otherwise only its header
        bool showsSize;
    };

    EventItems(const Form& form, const uint8_t* bytes, uint32_t size) : form(form), next(bytes), rest(size) {}
    bool Next(EventItem& item);

private:
    Form form;
    const uint8_t* next;
    uint32_t rest;
};

EventItems ReadGigEVisionEvents(const uint8_t* message, uint32_t size);
EventItems ReadUSB3VisionEvent(const uint8_t* message, uint32_t size);
EventItems ReadCameraLinkEvents(const uint8_t* message, uint32_t size);
// Events without a header.
EventItems CameraLinkEvents(const uint8_t* events, uint32_t size);

// What the header of a GigE Vision message says.
const uint16_t gigEVisionEvent = 0x00c0;
const uint16_t gigEVisionEventData = 0x00c2;
const uint8_t gigEVisionExtendedIDs = 0x10; // flag

} // namespace GENAPI_NAMESPACE::runtime

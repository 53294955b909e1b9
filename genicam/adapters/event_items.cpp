#include "adapters/event_items.h"

#include <Base/GCException.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const uint32_t gigEVisionHeaderSize = 8;
const uint32_t gigEVisionItemSize = 16;
const uint32_t gigEVisionExtendedItemSize = 24;
const uint32_t usb3VisionHeaderSize = 12;
const uint32_t cameraLinkHeaderSize = 16;
const uint32_t genCPItemSize = 12;
const uint32_t maxPayload = 0xffff; // the length field has 16 bits

void Require(bool holds, const char* otherwise)
{
    if (!holds) throw RUNTIME_EXCEPTION("Malformed message: %s", otherwise);
}

void RequireHeader(const uint8_t* message, uint32_t size, uint32_t headerSize)
{
    Require(message != nullptr, "no bytes");
    Require(size >= headerSize, "too short for its header");
    Require(size - headerSize <= maxPayload, "longer than any message");
}

void RequirePayload(uint32_t length, uint32_t present)
{
    Require(length <= present, "shorter than its header says");
}

} // namespace

bool EventItems::Next(EventItem& item)
{
    if (rest < form.headSize) return false;
    const bool big = form.order == ByteOrder::Big;
    uint32_t size = 0;
    if (form.readsSize) size = big ? Big16(next) : Little16(next);
    if (size == 0) size = form.dataToTheEnd ? rest : form.headSize;
    if (size < form.headSize || size > rest) return false;
    item.id = big ? Big16(next + 2) : Little16(next + 2);
    item.bytes = next;
    item.size = size;
    item.showsSize = form.showsSize;
    next += size;
    rest -= size;
    return true;
}

EventItems ReadGigEVisionEvents(const uint8_t* message, uint32_t size)
{
    RequireHeader(message, size, gigEVisionHeaderSize);
    Require(message[0] == 0x42, "wrong magic");
    const bool extended = (message[1] & gigEVisionExtendedIDs) != 0;
    const uint16_t command = Big16(message + 2);
    Require(command == gigEVisionEvent || command == gigEVisionEventData, "unknown command");
    const uint32_t length = Big16(message + 4);
    RequirePayload(length, size - gigEVisionHeaderSize);
    const uint32_t headSize = extended ? gigEVisionExtendedItemSize : gigEVisionItemSize;
    return {
        {ByteOrder::Big, headSize, true, command == gigEVisionEventData, true}, message + gigEVisionHeaderSize, length};
}

EventItems ReadUSB3VisionEvent(const uint8_t* message, uint32_t size)
{
    RequireHeader(message, size, usb3VisionHeaderSize);
    Require(Little32(message) == 0x45563355, "wrong prefix");
    Require(Little16(message + 6) == 0x0c00, "unknown command");
    const uint32_t length = Little16(message + 8);
    RequirePayload(length, size - usb3VisionHeaderSize);
    return {{ByteOrder::Little, genCPItemSize, false, true, false}, message + usb3VisionHeaderSize, length};
}

EventItems ReadCameraLinkEvents(const uint8_t* message, uint32_t size)
{
    RequireHeader(message, size, cameraLinkHeaderSize);
    Require(Big16(message) == 0x0100, "wrong preamble");
    Require(Big16(message + 10) == 0x0c00, "unknown command");
    const uint32_t length = Big16(message + 12);
    RequirePayload(length, size - cameraLinkHeaderSize);
    return CameraLinkEvents(message + cameraLinkHeaderSize, length);
}

EventItems CameraLinkEvents(const uint8_t* events, uint32_t size)
{
    return {{ByteOrder::Big, genCPItemSize, true, true, false}, events, size};
}

} // namespace GENAPI_NAMESPACE::runtime

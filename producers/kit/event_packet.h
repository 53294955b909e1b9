// Event packets as cameras send them: head and items in the layout of each transport.
#pragma once

#include "producers/kit/register_space.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace koro::kit
{

enum class EventForm
{
    GEV,
    U3V,
    CameraLink,
    Item // as an item of U3V, without a head
};

struct PacketItem
{
    std::uint16_t id = 0;
    std::uint64_t frameId = 0;
    std::uint64_t timestamp_ns = 0;
    bool hasLines = false;
    std::uint32_t lines = 0; // levels
};

// What the event port of a description shows of a packet, from address 0 on.
struct ReceivedItem
{
    std::uint16_t id;
    std::string_view bytes; // of the packet
};

class EventPackets
{
public:
    EventPackets(EventForm packetForm, bool extendedIds) : form(packetForm), hasExtendedIds(extendedIds) {}

    static EventForm FormOf(std::string_view tlType);

    // One packet; at most maxItems of them fit into maxBytes.
    std::string Compose(std::span<const PacketItem> items, std::uint16_t requestId) const;

    // The first item. Throws GC_ERR_INVALID_PARAMETER for a block that is none of these.
    ReceivedItem First(std::string_view packet) const;

    static constexpr std::size_t maxItems = 16;
    static constexpr std::size_t maxBytes = 576; // what fits into one datagram everywhere

private:
    std::size_t HeadBytes() const noexcept;
    ByteOrder Order() const noexcept;
    std::string Item(const PacketItem& item, bool hasSize) const;
    std::string Head(std::size_t bodyBytes, bool hasData, std::uint16_t requestId) const;

    EventForm form;
    bool hasExtendedIds; // of GEV
};

} // namespace koro::kit

#include "producers/kit/event_packet.h"

#include "producers/kit/failure.h"

#include <algorithm>

namespace koro::kit
{
namespace
{

constexpr std::uint8_t gevKey = 0x42;
constexpr std::uint8_t gevExtendedIds = 0x10;
constexpr std::uint16_t gevEvent = 0x00C0;
constexpr std::uint16_t gevEventData = 0x00C2;
constexpr std::uint32_t u3vPrefix = 0x45563355;
constexpr std::uint16_t genCpPreamble = 0x0100;
constexpr std::uint16_t genCpEvent = 0x0C00;

// Collects numbers in one byte order.
class Bytes
{
public:
    explicit Bytes(ByteOrder byteOrder) : order(byteOrder) {}

    template <typename T>
    Bytes& Put(T number)
    {
        for (std::size_t index = 0; index < sizeof number; ++index)
        {
            const std::size_t place = order == ByteOrder::Little ? index : sizeof number - 1 - index;
            bytes += static_cast<char>(static_cast<std::uint64_t>(number) >> 8 * place & 0xFF);
        }
        return *this;
    }
    const std::string& Text() const noexcept { return bytes; }

private:
    ByteOrder order;
    std::string bytes;
};

std::uint16_t NumberAt(std::string_view bytes, std::size_t place, ByteOrder order)
{
    const auto first = static_cast<std::uint8_t>(bytes[place]);
    const auto second = static_cast<std::uint8_t>(bytes[place + 1]);
    return static_cast<std::uint16_t>(order == ByteOrder::Big ? first << 8 | second : second << 8 | first);
}

// Block ids of 16 bits have no 0.
std::uint16_t ShortFrameId(std::uint64_t id)
{
    return id == 0 ? std::uint16_t{0} : static_cast<std::uint16_t>((id - 1) % 65535 + 1);
}

} // namespace

EventForm EventPackets::FormOf(std::string_view tlType)
{
    if (tlType == "GEV") return EventForm::GEV;
    if (tlType == "U3V") return EventForm::U3V;
    if (tlType == "CL") return EventForm::CameraLink;
    return EventForm::Item;
}

std::size_t EventPackets::HeadBytes() const noexcept
{
    switch (form)
    {
    case EventForm::GEV:
        return 8;
    case EventForm::U3V:
        return 12;
    case EventForm::CameraLink:
        return 16;
    case EventForm::Item:
        break;
    }
    return 0;
}

ByteOrder EventPackets::Order() const noexcept
{
    return form == EventForm::GEV || form == EventForm::CameraLink ? ByteOrder::Big : ByteOrder::Little;
}

std::string EventPackets::Item(const PacketItem& item, bool hasSize) const
{
    Bytes rest(Order()); // behind the size
    rest.Put(item.id);
    if (form == EventForm::GEV)
    {
        constexpr std::uint16_t channel = 0;
        rest.Put(channel).Put(hasExtendedIds ? std::uint16_t{0} : ShortFrameId(item.frameId));
        if (hasExtendedIds) rest.Put(item.frameId);
        rest.Put(item.timestamp_ns);
    }
    else
        rest.Put(item.timestamp_ns).Put(item.frameId);
    if (item.hasLines) rest.Put(item.lines);
    const std::size_t bytes = sizeof(std::uint16_t) + rest.Text().size();
    return Bytes(Order()).Put(static_cast<std::uint16_t>(hasSize ? bytes : 0)).Text() + rest.Text();
}

std::string EventPackets::Head(std::size_t bodyBytes, bool hasData, std::uint16_t requestId) const
{
    const auto length = static_cast<std::uint16_t>(bodyBytes);
    constexpr std::uint16_t none = 0; // flags, channels and check sums that nobody looks at
    Bytes head(Order());
    switch (form)
    {
    case EventForm::GEV:
        head.Put(gevKey).Put(hasExtendedIds ? gevExtendedIds : std::uint8_t{0});
        head.Put(hasData ? gevEventData : gevEvent).Put(length).Put(requestId);
        break;
    case EventForm::U3V:
        head.Put(u3vPrefix).Put(none).Put(genCpEvent).Put(length).Put(requestId);
        break;
    case EventForm::CameraLink:
        head.Put(genCpPreamble).Put(none).Put(none).Put(none).Put(none).Put(genCpEvent).Put(length).Put(requestId);
        break;
    case EventForm::Item:
        break;
    }
    return head.Text();
}

// Items have sizes where several of them would otherwise run into one another.
std::string EventPackets::Compose(std::span<const PacketItem> items, std::uint16_t requestId) const
{
    const bool hasData = std::any_of(items.begin(), items.end(), [](const PacketItem& item) { return item.hasLines; });
    const bool hasSizes = items.size() > 1 && (hasData || form != EventForm::GEV);
    std::string body;
    for (const PacketItem& item : items)
        body += Item(item, hasSizes);
    return Head(body.size(), hasData, requestId) + body;
}

ReceivedItem EventPackets::First(std::string_view packet) const
{
    constexpr std::size_t leastItem = 12;
    if (packet.size() < HeadBytes() + leastItem || packet.size() > maxBytes)
        throw Failure(GC_ERR_INVALID_PARAMETER, "the block is none that this event delivered");
    std::string_view item = packet.substr(HeadBytes());
    const std::uint16_t size = NumberAt(item, 0, Order());
    const bool isPlain = form == EventForm::GEV && NumberAt(packet, 2, Order()) == gevEvent;
    const std::size_t plainBytes = hasExtendedIds ? 24 : 16;
    if (size >= leastItem)
        item = item.substr(0, size);
    else if (isPlain)
        item = item.substr(0, plainBytes);
    return {NumberAt(item, 2, Order()), item};
}

} // namespace koro::kit

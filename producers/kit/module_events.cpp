// The event control of local modules: their registers, and the test event that these send.
#include "producers/kit/failure.h"
#include "producers/kit/module.h"

#include <chrono>

namespace koro::kit
{
namespace
{

constexpr std::uint16_t testEventId = 0x4FFF;

} // namespace

void Module::AddEventRegisters(RegisterMap& map, const std::string& tlType)
{
    packets = EventPackets(EventPackets::FormOf(tlType), false);
    map.AddInteger(
        0x600, 4, [this]() -> std::uint64_t { return isTestNotified ? 1 : 0; },
        [this](std::uint64_t wanted) {
            if (wanted > 1) RefuseValue("the value is out of range");
            isTestNotified = wanted == 1;
        });
    map.AddAction(0x604, [this] { RaiseTestEvent(); });
}

void Module::RaiseTestEvent()
{
    if (!isTestNotified) return;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    PacketItem item;
    item.id = testEventId;
    item.timestamp_ns = static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
    const auto requestId = static_cast<std::uint16_t>(numTestEvents++ % UINT16_MAX + 1);
    RaiseEvent(EVENT_MODULE, packets.Compose({&item, 1}, requestId));
}

InfoValue Module::PacketInfo(EVENT_TYPE type, std::string_view block, EVENT_DATA_INFO_CMD command) const
{
    if (type != EVENT_MODULE) throw Failure(GC_ERR_INVALID_PARAMETER, "the module sends no such event");
    return ItemInfo(packets.First(block), command);
}

} // namespace koro::kit

#include "producers/simulator/camera/camera_events.h"

#include <algorithm>
#include <utility>

namespace koro::simulator
{

void CameraEvents::Attach(Sink packetSink)
{
    const std::lock_guard lock(mutex);
    sink = std::move(packetSink);
    pending.clear();
}

void CameraEvents::Detach() noexcept
{
    const std::lock_guard lock(mutex);
    sink = nullptr;
}

void CameraEvents::SetWanted(bool isWanted) noexcept
{
    if (isWanted) ++registration;
    wanted = isWanted;
}

void CameraEvents::Send(const Occurrence& occurrence)
{
    if (!wanted) return;
    const std::lock_guard lock(mutex);
    if (!sink) return;
    const std::uint64_t present = registration;
    if (present != pendingSince) pending.clear();
    pendingSince = present;
    const bool hasLines =
        occurrence.event == CameraEvent::Line0RisingEdge || occurrence.event == CameraEvent::Line0FallingEdge;
    const auto id = static_cast<std::uint16_t>(firstEventId + static_cast<std::uint16_t>(occurrence.event));
    pending.push_back({id, occurrence.frameId, occurrence.timestamp_ns, hasLines, occurrence.lines});
    if (pending.size() < itemsPerPacket) return;
    requestId = std::max<std::uint16_t>(static_cast<std::uint16_t>(requestId + 1), 1);
    sink(packets.Compose(pending, requestId));
    pending.clear();
}

} // namespace koro::simulator

// The registers of EventControl, and what happened since it was told last.
#include "producers/simulator/camera/camera_features.h"

#include <vector>

namespace koro::simulator
{

void CameraFeatures::AddEvents()
{
    constexpr std::size_t stepBytes = 4;
    for (std::size_t index = 0; index < numCameraEvents; ++index)
    {
        const EventSet bit = SetOf(static_cast<CameraEvent>(index));
        map.AddInteger(
            0xA00 + stepBytes * index, 4,
            [this, bit]() -> std::uint64_t { return (state.values.notifiedEvents & bit) == 0 ? 0 : 1; },
            [this, bit](std::uint64_t wanted) {
                if (wanted > 1) RefuseValue("the value is out of range");
                state.values.notifiedEvents &= ~bit;
                if (wanted == 1) state.values.notifiedEvents |= bit;
            });
    }
    if (connection.tlType == "GEV") map.AddInteger(0xA40, 4, settings.extendedEventIds ? 1 : 0);
}

void CameraFeatures::TellEvents()
{
    std::vector<Occurrence> happened;
    {
        const std::lock_guard lock(map.Lock());
        happened = state.acquisition.TakeHappened();
    }
    for (const Occurrence& occurrence : happened)
        events.Send(occurrence);
}

} // namespace koro::simulator

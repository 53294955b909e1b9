// The registers of EventControl, and the events since the last report.
#include "producers/simulator/camera/register_settings.h"

#include <vector>

namespace koro::simulator
{

void CameraFeatures::AddEvents()
{
    for (std::size_t index = 0; index < numCameraEvents; ++index)
    {
        const EventSet bit = SetOf(static_cast<CameraEvent>(index));
        AddSetting(
            registers::EventNotificationReg.At(index),
            [this, bit]() -> std::uint64_t { return (state.values.notifiedEvents & bit) == 0 ? 0 : 1; },
            [this, bit](std::uint64_t wanted) {
                state.values.notifiedEvents &= ~bit;
                if (wanted == 1) state.values.notifiedEvents |= bit;
            });
    }
    if (connection.tlType == "GEV")
        map.AddInteger(registers::GevGVSPExtendedIDModeReg, settings.extendedEventIds ? 1 : 0);
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

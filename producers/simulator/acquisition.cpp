#include "producers/simulator/acquisition.h"

namespace koro::simulator
{
namespace
{

// A camera that is triggered faster than it takes images keeps so many; what comes beyond is lost.
constexpr std::uint64_t maxPulls = 255;
constexpr std::size_t maxHappened = 64; // of one write, which cannot bring more

std::uint64_t FramesOf(const FeatureValues& values)
{
    switch (static_cast<AcquisitionMode>(values.acquisitionMode))
    {
    case AcquisitionMode::SingleFrame:
        return 1;
    case AcquisitionMode::MultiFrame:
        return values.frameCount;
    case AcquisitionMode::Continuous:
        break;
    }
    return UINT64_MAX;
}

const Trigger& TriggerOf(const FeatureValues& values, Step step)
{
    return values.triggers[static_cast<std::size_t>(step)];
}

} // namespace

void Acquisition::Start(const FeatureValues& values)
{
    active = true;
    awaitsStart = TriggerOf(values, Step::Acquisition).mode == 1;
    framesLeft = FramesOf(values);
    Restart();
    if (!awaitsStart) Count(values, CounterEvent::AcquisitionStart);
}

void Acquisition::Restart() noexcept
{
    ++run;
    frameId = 0;
    pulls = 0;
}

void Acquisition::Pull(const FeatureValues& values, Step step)
{
    if (!active || TriggerOf(values, step).mode == 0) return;
    if (step == Step::Acquisition)
    {
        if (awaitsStart) Count(values, CounterEvent::AcquisitionStart);
        awaitsStart = false;
        return;
    }
    if (awaitsStart || pulls == maxPulls) return;
    ++pulls;
    Count(values, CounterEvent::FrameTrigger);
    Note(values, CameraEvent::FrameTrigger, frameId + pulls);
}

void Acquisition::OnLine(const FeatureValues& values, bool isHigh)
{
    if (isHigh) Count(values, CounterEvent::Line0);
    Note(values, isHigh ? CameraEvent::Line0RisingEdge : CameraEvent::Line0FallingEdge, frameId);
    for (const Step step : {Step::Acquisition, Step::Frame})
    {
        const Trigger& trigger = TriggerOf(values, step);
        const bool fits = trigger.activation == 2 || (trigger.activation == 0) == isHigh;
        if (trigger.source == 1 && fits) Pull(values, step);
    }
}

bool Acquisition::AwaitsFrameTrigger(const FeatureValues& values) const noexcept
{
    return active && !awaitsStart && TriggerOf(values, Step::Frame).mode == 1 && pulls == 0;
}

std::uint64_t Acquisition::TakeFrame(const FeatureValues& values)
{
    if (TriggerOf(values, Step::Frame).mode == 1 && pulls > 0) --pulls;
    Count(values, CounterEvent::FrameStart);
    if (--framesLeft == 0) active = false;
    return ++frameId;
}

void Acquisition::Note(const FeatureValues& values, CameraEvent event, std::uint64_t eventsFrame)
{
    if ((values.notifiedEvents & SetOf(event)) == 0 || happened.size() == maxHappened) return;
    happened.push_back({event, eventsFrame, 0, static_cast<std::uint32_t>(values.LineLevels())});
}

void Acquisition::Count(const FeatureValues& values, CounterEvent event)
{
    for (std::size_t index = 0; index < counters.size(); ++index)
        if (values.counterSource[index] == static_cast<std::uint64_t>(event))
            counters[index] = (counters[index] + 1) & UINT32_MAX; // the width of its register
}

} // namespace koro::simulator

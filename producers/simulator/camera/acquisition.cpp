#include "producers/simulator/camera/acquisition.h"

#include <algorithm>

namespace koro::simulator
{
namespace
{

// An unpaced camera that is triggered faster than buffers come keeps so many; what comes beyond is lost.
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
    exposures_ns.fill(0);
    lastExposure_ns = 0;
}

void Acquisition::Pull(const FeatureValues& values, Step step, const SensorTime& time)
{
    if (!active || TriggerOf(values, step).mode == 0) return;
    if (step == Step::Acquisition)
    {
        if (awaitsStart) Count(values, CounterEvent::AcquisitionStart);
        awaitsStart = false;
        return;
    }
    if (awaitsStart || !CanBePulled(time)) return;
    const bool isFirst = lastExposure_ns == 0;
    lastExposure_ns = isFirst ? time.now_ns : std::max(time.now_ns, lastExposure_ns + time.period_ns);
    if (pulls < exposures_ns.size()) exposures_ns[pulls] = lastExposure_ns;
    ++pulls;
    Count(values, CounterEvent::FrameTrigger);
    Note(values, CameraEvent::FrameTrigger, frameId + pulls, time);
}

// Of a paced camera: the exposure of the latest trigger has begun.
bool Acquisition::CanBePulled(const SensorTime& time) const noexcept
{
    if (time.period_ns == 0) return pulls < maxPulls;
    return pulls < exposures_ns.size() && lastExposure_ns <= time.now_ns;
}

void Acquisition::OnLine(const FeatureValues& values, bool isHigh, const SensorTime& time)
{
    if (isHigh) Count(values, CounterEvent::Line0);
    Note(values, isHigh ? CameraEvent::Line0RisingEdge : CameraEvent::Line0FallingEdge, frameId, time);
    for (const Step step : {Step::Acquisition, Step::Frame})
    {
        const Trigger& trigger = TriggerOf(values, step);
        const bool fits = trigger.activation == 2 || (trigger.activation == 0) == isHigh;
        if (trigger.source == 1 && fits) Pull(values, step, time);
    }
}

bool Acquisition::AwaitsFrameTrigger(const FeatureValues& values, const SensorTime& time) const noexcept
{
    return active && !awaitsStart && TriggerOf(values, Step::Frame).mode == 1 &&
           (time.period_ns == 0 ? pulls == 0 : CanBePulled(time));
}

bool Acquisition::LacksFrameTrigger(const FeatureValues& values) const noexcept
{
    return active && !awaitsStart && TriggerOf(values, Step::Frame).mode == 1 && pulls == 0;
}

std::uint64_t Acquisition::TakeFrame(const FeatureValues& values)
{
    if (TriggerOf(values, Step::Frame).mode == 1 && pulls > 0)
    {
        --pulls;
        std::shift_left(exposures_ns.begin(), exposures_ns.end(), 1);
    }
    Count(values, CounterEvent::FrameStart);
    if (--framesLeft == 0) active = false;
    return ++frameId;
}

void Acquisition::Note(
    const FeatureValues& values, CameraEvent event, std::uint64_t eventsFrame, const SensorTime& time)
{
    if ((values.notifiedEvents & SetOf(event)) == 0 || happened.size() == maxHappened) return;
    happened.push_back({event, eventsFrame, time.now_ns, static_cast<std::uint32_t>(values.LineLevels())});
}

void Acquisition::Count(const FeatureValues& values, CounterEvent event)
{
    for (std::size_t index = 0; index < counters.size(); ++index)
        if (values.counterSource[index] == static_cast<std::uint64_t>(event))
            counters[index] = (counters[index] + 1) & UINT32_MAX; // the width of its register
}

} // namespace koro::simulator

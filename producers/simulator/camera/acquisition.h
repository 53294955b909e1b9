// Acquisition: whether a camera takes images at present, how many are left, and what it waits for. A plain value.
#pragma once

#include "producers/simulator/camera/camera_events.h"
#include "producers/simulator/camera/feature_values.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

namespace koro::simulator
{

// Numbers of CounterEventSource.
enum class CounterEvent : std::uint64_t
{
    FrameTrigger = 1,
    FrameStart,
    AcquisitionStart,
    Line0
};

// When something happens to the camera, and how fast its sensor is then.
struct SensorTime
{
    std::uint64_t now_ns;    // of the monotonic clock
    std::uint64_t period_ns; // from one exposure to the next; 0 of an unpaced camera, where nothing takes time
};

class Acquisition
{
public:
    // The number of images left, frame ids and triggers begin again.
    void Start(const FeatureValues& values);
    void Stop() noexcept { active = false; }
    // A consumer begins to listen: frame ids begin again.
    void Restart() noexcept;

    // Without effect while nothing waits for it. A frame trigger that comes before the sensor is ready is remembered;
    // one that comes while another is remembered is missed.
    void Pull(const FeatureValues& values, Step step, const SensorTime& time);
    // Line 0 changed its level.
    void OnLine(const FeatureValues& values, bool isHigh, const SensorTime& time);

    bool IsActive() const noexcept { return active; }
    bool AwaitsStart() const noexcept { return active && awaitsStart; }
    // Whether a frame trigger would be taken.
    bool AwaitsFrameTrigger(const FeatureValues& values, const SensorTime& time) const noexcept;
    bool LacksFrameTrigger(const FeatureValues& values) const noexcept;
    // When the exposure of the next triggered frame begins.
    std::uint64_t NextExposure_ns() const noexcept { return exposures_ns.front(); }
    // Changes with each start, so that a frame of the one before is not taken for one of this.
    std::uint64_t Run() const noexcept { return run; }

    // The next frame's id, counted from 1; ends the acquisition behind its last one.
    std::uint64_t TakeFrame(const FeatureValues& values);

    // Triggers and edges that the settings want to be reported, oldest first.
    std::vector<Occurrence> TakeHappened() { return std::exchange(happened, {}); }

    void ResetCounter(std::size_t index) { counters.at(index) = 0; }
    std::uint64_t Counter(std::size_t index) const { return counters.at(index); }

    template <typename Self, typename Each>
    static void ForEachField(Self& self, const Each& each)
    {
        each(self.active);
        each(self.awaitsStart);
        each(self.run);
        each(self.framesLeft);
        each(self.frameId);
        each(self.pulls);
        each(self.exposures_ns);
        each(self.lastExposure_ns);
        each(self.counters);
    }

private:
    void Count(const FeatureValues& values, CounterEvent event);
    void Note(const FeatureValues& values, CameraEvent event, std::uint64_t eventsFrame, const SensorTime& time);
    bool CanBePulled(const SensorTime& time) const noexcept;

    bool active = false;
    bool awaitsStart = false; // for a trigger of Step::Acquisition
    std::uint64_t run = 0;
    std::uint64_t framesLeft = 0;
    std::uint64_t frameId = 0;
    std::uint64_t pulls = 0; // frame triggers that no frame came of yet
    // Of the frames of these triggers, oldest first, and of the latest. A paced camera never has more of them: one
    // frame is read out, one exposed, one waits.
    std::array<std::uint64_t, 4> exposures_ns{};
    std::uint64_t lastExposure_ns = 0;
    std::array<std::uint64_t, 2> counters{};
    std::vector<Occurrence> happened; // by this process; not reported to others
};

} // namespace koro::simulator

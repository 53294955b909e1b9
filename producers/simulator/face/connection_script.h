// ConnectionScript: runs the steps that the settings list: on a thread of its own at their times or occasions, or one
// by one on request.
//
// Owned by PlugControl. Any thread; steps are performed one at a time, without a lock of this class.
#pragma once

#include "producers/simulator/settings/connection_settings.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace koro::simulator
{

class ConnectionScript
{
public:
    using Perform = std::function<void(const ConnectionStep&)>;

    // `settings` live longer.
    ConnectionScript(const ConnectionSettings& connectionSettings, Perform performStep);
    ~ConnectionScript() { Stop(); }

    // The times begin, if the script has times.
    void Start();
    // Joins the thread. Nothing starts any more afterwards.
    void Stop();

    // Occasions that the next step may wait for. The camera is about to take this frame: whether it is unplugged
    // instead, at once on the script's thread.
    bool OnFrame(const std::string& camera, std::uint64_t frame);
    // An update of the list has missed the camera, which is unplugged.
    void OnMissed(const std::string& camera);

    std::uint64_t StepsLeft() const;
    bool CanStep() const { return settings.isStepwise && StepsLeft() > 0; }
    // Performs the next one on the calling thread. GC_ERR_NOT_AVAILABLE when there is none, or the steps have times.
    void Step();

private:
    void Run();
    // With the mutex held.
    const ConnectionStep& Next() const { return settings.script[numDone % settings.script.size()]; }
    bool NextWaits(const std::string& camera) const;
    void Advance();

    const ConnectionSettings& settings;
    const Perform perform;
    const std::uint64_t numSteps; // of all rounds
    const bool hasOccasions;

    mutable std::mutex mutex; // guards all below
    std::condition_variable changed;
    std::thread thread;
    bool stopping = false;
    std::uint64_t numDone = 0;
    bool isOccasion = false;     // for the next step
    std::uint64_t numMissed = 0; // updates since the last step
};

} // namespace koro::simulator

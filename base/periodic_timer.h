// PeriodicTimer: calls its tick functions at an interval, on a thread of its own that lives from Start() to Stop().
//
// A stop takes effect within 50 ms and the length of a tick; a new interval counts for the wait that is running. Any
// thread, but Stop() and the end of the timer never on the timer's own.
#pragma once

#include "base/callback_registry.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>

namespace koro::internal
{

class PeriodicTimer
{
public:
    PeriodicTimer() = default;
    PeriodicTimer(const PeriodicTimer&) = delete;
    PeriodicTimer& operator=(const PeriodicTimer&) = delete;
    ~PeriodicTimer();

    // Tick functions run one after the other and must not throw.
    TCallbackManager<>& TickCallbacks() noexcept { return tickCallbacks; }

    std::uint64_t Interval_ms() const noexcept { return interval_ms; }
    // 0 makes a loop without a pause.
    void SetInterval_ms(std::uint64_t value) noexcept { interval_ms = value; }

    // Nothing when it runs. Throws std::system_error when there is no thread to be had; the timer counts as started
    // all the same.
    void Start();
    // Waits for the thread unless `keep` answers true; nothing when the timer is idle. Starts wait meanwhile.
    template <class Predicate>
    void StopUnless(Predicate&& keep)
    {
        const std::lock_guard lock(startMutex);
        if (started && !keep()) Join();
    }
    bool IsStarted() const noexcept { return started; }

private:
    using WallClock = std::chrono::system_clock;

    void Run();
    void WaitForInterval() const;
    void Join();

    TCallbackManager<> tickCallbacks;
    std::thread thread;
    std::atomic<bool> started{false};
    std::atomic<bool> keepRunning{false};
    std::atomic<std::uint64_t> interval_ms{1000};
    std::mutex startMutex; // from idle to running and back is one step
};

} // namespace koro::internal

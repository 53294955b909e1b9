// PeriodicTimer: calls its tick function at an interval, on its own thread, from Start() until it is stopped.
//
// A stop takes effect within 50 ms plus the length of a tick; a new interval applies to the wait that is running.
// Thread-safe, but do not stop or destroy the timer on its own thread.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace koro::internal
{

class PeriodicTimer
{
public:
    // The tick must not throw.
    explicit PeriodicTimer(std::function<void()> tickFunction) : tick(std::move(tickFunction)) {}
    PeriodicTimer(const PeriodicTimer&) = delete;
    PeriodicTimer& operator=(const PeriodicTimer&) = delete;
    ~PeriodicTimer();

    std::uint64_t Interval_ms() const noexcept { return interval_ms; }
    // 0 means ticks without a pause.
    void SetInterval_ms(std::uint64_t value) noexcept { interval_ms = value; }

    // Does nothing when the timer is running. Throws std::system_error when no thread can be started; the timer counts
    // as started nevertheless. Throws InternalErrorException after End().
    void Start();
    // Stops the timer and waits for the thread, unless `keep` returns true; does nothing when the timer is not running.
    // Calls of Start() wait meanwhile.
    template <class Predicate>
    void StopUnless(Predicate&& keep)
    {
        const std::lock_guard lock(startMutex);
        if (started && !keep()) Join();
    }
    // Stops the timer for good and waits for the thread.
    void End();
    bool IsStarted() const noexcept { return started; }

private:
    using WallClock = std::chrono::system_clock;

    void Run();
    void WaitForInterval() const;
    void Join();

    const std::function<void()> tick;
    std::thread thread;
    std::atomic<bool> started{false};
    std::atomic<bool> keepRunning{false};
    std::atomic<std::uint64_t> interval_ms{1000};
    std::mutex startMutex; // makes starting and stopping atomic
    bool hasEnded = false; // guarded by startMutex
};

} // namespace koro::internal

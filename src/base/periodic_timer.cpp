#include "base/periodic_timer.h"

#include "base/exceptions.h"
#include "base/own_threads.h"

namespace koro::internal
{

using std::chrono::milliseconds;

PeriodicTimer::~PeriodicTimer()
{
    End();
}

void PeriodicTimer::Start()
{
    const std::lock_guard lock(startMutex);
    if (started) return;
    if (hasEnded) throw InternalErrorException("Pointer has expired!");
    started = true;
    keepRunning = true;
    thread = std::thread([this] { Run(); });
}

void PeriodicTimer::End()
{
    const std::lock_guard lock(startMutex);
    hasEnded = true;
    if (started) Join();
}

void PeriodicTimer::Join()
{
    keepRunning = false;
    if (thread.joinable()) thread.join();
    started = false;
}

void PeriodicTimer::Run()
{
    const OwnThread ownThread;
    while (keepRunning)
    {
        WaitForInterval();
        if (keepRunning) tick();
    }
}

// Waits in short intervals, so that a stop or a new interval takes effect soon.
void PeriodicTimer::WaitForInterval() const
{
    constexpr std::uint64_t slice_ms = 50;
    const auto start = WallClock::now();
    while (keepRunning)
    {
        const auto elapsed_ms = std::chrono::duration_cast<milliseconds>(WallClock::now() - start).count();
        const auto interval = interval_ms.load();
        // A clock that was set back must not cause an early tick.
        if (elapsed_ms >= 0 && static_cast<std::uint64_t>(elapsed_ms) >= interval) return;
        const auto remaining_ms = elapsed_ms < 0 ? slice_ms : interval - static_cast<std::uint64_t>(elapsed_ms);
        std::this_thread::sleep_for(milliseconds(remaining_ms < slice_ms ? remaining_ms : slice_ms));
    }
}

} // namespace koro::internal

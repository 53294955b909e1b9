// Pause: a wait that an interrupt ends early. One waiting thread; one at a time for an interrupt.
#pragma once

#include "tools/koro/interrupt.h"
#include "tools/koro/producer_watch.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace koro::tool
{

class Pause
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Pause(Interrupt& watched)
        : interrupt(watched), wakeUp(watched, [this] {
              const std::lock_guard<std::mutex> lock(mutex);
              changed.notify_all();
          })
    {}

    void Until(Clock::time_point end)
    {
        const ExpectedWait wait;
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait_until(lock, end, [this] { return interrupt.IsRequested(); });
    }

private:
    Interrupt& interrupt;
    std::mutex mutex; // guards nothing but the order of request and wait
    std::condition_variable changed;
    Interrupt::WakeUp wakeUp; // last: it uses everything above
};

} // namespace koro::tool

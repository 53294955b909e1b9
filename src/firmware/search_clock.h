// SearchClock: the clock and the pauses of the search for a device. Tests replace it.
#pragma once

#include <chrono>
#include <cstdint>
#include <thread>

namespace koro::internal
{

class SearchClock
{
public:
    virtual ~SearchClock() = default;

    // Counted from any point in the past; never goes back.
    virtual std::uint64_t Now_ns() const
    {
        const std::chrono::nanoseconds now = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint64_t>(now.count());
    }
    virtual void Sleep(std::uint64_t pause_ms)
    {
        std::this_thread::sleep_for(std::chrono::duration<std::uint64_t, std::milli>(pause_ms));
    }
};

} // namespace koro::internal

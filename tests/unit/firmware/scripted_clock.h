// ScriptedClock: a clock of the test's own, so that searches take no time.
#pragma once

#include "firmware/search_clock.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace koro::test
{

// Goes on by its pauses, and by a tick each time it is read.
class ScriptedClock : public internal::SearchClock
{
public:
    std::uint64_t Now_ns() const override { return now_ns += tick_ns; }
    void Sleep(std::uint64_t pause_ms) override
    {
        pauses.push_back(pause_ms);
        now_ns += pause_ms * 1'000'000;
        if (onPause) onPause();
    }

    std::uint64_t tick_ns = 1;
    std::vector<std::uint64_t> pauses;
    std::function<void()> onPause;

private:
    mutable std::uint64_t now_ns = 1'000'000'000'000;
};

} // namespace koro::test

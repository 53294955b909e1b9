// ListTimes: the time-outs with which the lists of one search are asked. One thread.
#pragma once

#include "tools/koro/producer_watch.h"
#include "tools/koro/read_producer.h"
#include <koro/koro.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace koro::tool
{

class ListTimes
{
public:
    enum class Kind
    {
        Whole,   // one round with all the time
        Growing, // short rounds first, since many producers use all the time that they are given
    };

    explicit ListTimes(Kind kind) : round_ms(kind == Kind::Whole ? updateTimeout_ms : firstRound_ms) {}

    // Calls `update` with the time-out of this round. What it throws counts in the last round only; before, false.
    template <typename Update>
    bool Ask(const Update& update)
    {
        const auto begin = std::chrono::steady_clock::now();
        bool hasAnswered = false;
        try
        {
            update(round_ms);
            NoteProgress();
            hasAnswered = true;
        }
        catch (const Error&)
        {
            NoteTime(begin);
            if (IsLastRound()) throw;
        }
        NoteTime(begin);
        return hasAnswered;
    }

    // No list is to be asked for more than the time in all, whether it was the time-out or what the producer took.
    bool IsLastRound() const { return spent_ms + longest_ms >= updateTimeout_ms; }
    void BeginNextRound()
    {
        spent_ms += longest_ms;
        round_ms = std::min(round_ms * 2, updateTimeout_ms - std::min(spent_ms, updateTimeout_ms));
        longest_ms = round_ms;
    }

private:
    static constexpr uint64_t firstRound_ms = 50;

    void NoteTime(std::chrono::steady_clock::time_point begin)
    {
        const auto taken = std::chrono::steady_clock::now() - begin;
        const auto taken_ms = std::chrono::duration_cast<std::chrono::milliseconds>(taken).count();
        longest_ms = std::max(longest_ms, static_cast<uint64_t>(taken_ms));
    }

    uint64_t round_ms;
    uint64_t spent_ms = 0;          // in the rounds before
    uint64_t longest_ms = round_ms; // of a list in this round
};

} // namespace koro::tool

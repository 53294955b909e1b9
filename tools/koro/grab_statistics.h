// GrabStatistics: what came during a grab, and how fast. One thread at a time.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace koro::tool
{

enum class FrameState
{
    Whole,
    Incomplete, // the producer says so, it is too short for its picture, or it cannot be read
    Empty,      // a buffer without new data, or without bytes that the producer misses
};

class GrabStatistics
{
public:
    using Clock = std::chrono::steady_clock;

    uint64_t numFrames = 0; // delivered buffers, whole or not
    uint64_t numWhole = 0;
    uint64_t numIncomplete = 0;
    uint64_t numEmpty = 0;
    uint64_t numTimeouts = 0;
    uint64_t numReconnects = 0;
    double longestOutage_s = 0;    // of a lost camera, from the last frame before to the first after
    uint64_t numPointsLeftOut = 0; // beyond the range limit

    explicit GrabStatistics(Clock::time_point start = Clock::now()) : lastFrame(start) {}

    // A buffer of that many bytes has come.
    void Count(FrameState state, size_t size, Clock::time_point now = Clock::now());
    // A time-out is over, or the camera is lost: the time from the last frame to the next is an outage.
    void NoteSilence() { isSilent = true; }
    // Nothing more will come.
    void End(Clock::time_point now = Clock::now());

    double SecondsSinceLastFrame(Clock::time_point now = Clock::now()) const;
    double OutageSeconds() const { return outage.count(); }
    // Whole frames in a second, and their bytes, over the time in which frames came; 0 when it is not known.
    double Rate() const;
    double BytesPerSecond() const;

private:
    using Seconds = std::chrono::duration<double>;

    void Advance(Clock::time_point now);

    Clock::time_point lastFrame;
    bool hasBegun = false; // a frame has come
    bool isSilent = false; // since the last frame
    Seconds streaming{0};  // between frames that follow each other
    Seconds outage{0};
    // Whole frames at the end of such a time. A frame that opens one belongs to no time.
    uint64_t numTimed = 0;
    uint64_t numTimedBytes = 0;
};

} // namespace koro::tool

#include "tools/koro/grab_statistics.h"

namespace koro::tool
{

void GrabStatistics::Count(FrameState state, size_t size, Clock::time_point now)
{
    ++numFrames;
    if (state == FrameState::Empty)
    {
        ++numEmpty;
        return;
    }
    const bool follows = hasBegun && !isSilent;
    Advance(now);
    if (state == FrameState::Incomplete)
    {
        ++numIncomplete;
        return;
    }
    ++numWhole;
    if (!follows) return;
    ++numTimed;
    numTimedBytes += size;
}

void GrabStatistics::Advance(Clock::time_point now)
{
    if (isSilent)
        outage += now - lastFrame;
    else if (hasBegun)
        streaming += now - lastFrame;
    lastFrame = now;
    hasBegun = true;
    isSilent = false;
}

void GrabStatistics::End(Clock::time_point now)
{
    if (isSilent) outage += now - lastFrame;
    isSilent = false;
}

double GrabStatistics::SecondsSinceLastFrame(Clock::time_point now) const
{
    return Seconds(now - lastFrame).count();
}

double GrabStatistics::Rate() const
{
    return streaming.count() > 0 ? static_cast<double>(numTimed) / streaming.count() : 0;
}

double GrabStatistics::BytesPerSecond() const
{
    return streaming.count() > 0 ? static_cast<double>(numTimedBytes) / streaming.count() : 0;
}

} // namespace koro::tool

#include "tools/koro/grab_output.h"

#include <algorithm>
#include <cstdio>

namespace koro::tool
{

void GrabStatistics::Count(size_t size)
{
    lastFrame = Clock::now();
    if (numFrames == 0) firstFrame = lastFrame;
    ++numFrames;
    numBytes += size;
}

double GrabStatistics::Seconds() const
{
    return numFrames == 0 ? 0 : std::chrono::duration<double>(lastFrame - firstFrame).count();
}

double GrabStatistics::SecondsSinceLastFrame() const
{
    return std::chrono::duration<double>(Clock::now() - lastFrame).count();
}

void GrabOutput::NoteLoss()
{
    if (cameraIsLost) return;
    cameraIsLost = true;
    progress.Say("camera lost after " + std::to_string(numHanded) + " pictures");
}

void GrabOutput::NoteFrame(size_t size)
{
    if (cameraIsLost)
    {
        cameraIsLost = false;
        const double outage_s = statistics.SecondsSinceLastFrame();
        ++statistics.numReconnects;
        statistics.longestOutage_s = std::max(statistics.longestOutage_s, outage_s);
        char text[64];
        std::snprintf(text, sizeof text, "camera back, %.3f s without a frame", outage_s);
        progress.Say(text);
    }
    statistics.Count(size);
}

void GrabOutput::NoteProblem(const DeliveredFrame& frame)
{
    if (frame.problem.empty() || problemIsNamed) return;
    problemIsNamed = true;
    progress.Warn(
        "koro: Frame " + std::to_string(statistics.numFrames) + " cannot be read and counts as incomplete: " +
        frame.problem + (frame.hint.empty() ? "" : "\nhint: " + frame.hint));
}

} // namespace koro::tool

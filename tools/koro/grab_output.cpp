#include "tools/koro/grab_output.h"

#include "tools/koro/output.h"
#include "tools/koro/report.h"

#include <algorithm>
#include <cstdio>

namespace koro::tool
{

bool GrabOutput::IsWanted() const
{
    return !needsReader || OutputHasReader();
}

void GrabOutput::NoteLoss()
{
    if (cameraIsLost) return;
    cameraIsLost = true;
    statistics.NoteSilence();
    progress.Say("camera lost after " + CountOf(numHanded, "picture"));
}

void GrabOutput::NoteFrame(const DeliveredFrame& frame)
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
    statistics.Count(frame.state, frame.size);
}

void GrabOutput::NameProblem(const DeliveredFrame& frame)
{
    if (frame.problem.empty() || problemIsNamed) return;
    problemIsNamed = true;
    progress.Warn(
        "koro: Frame " + std::to_string(statistics.numFrames) + " cannot be read and counts as incomplete: " +
        PrintableLines(frame.problem) + (frame.hint.empty() ? "" : "\nhint: " + frame.hint));
}

} // namespace koro::tool

#include "tools/koro/step_progress.h"

#include "tools/koro/progress.h"

#include <algorithm>

namespace koro::tool
{

StepProgress::StepProgress(std::FILE* shownOn, bool onTerminal) : stream(shownOn), isTerminal(onTerminal) {}

StepProgress::~StepProgress()
{
    if (isRunning) ShowLine(line + " (not finished)");
}

void StepProgress::Begin(const std::string& step)
{
    line = step;
    isRunning = true;
    if (isTerminal) Draw(0);
}

void StepProgress::Reached(double percent)
{
    if (isTerminal && isRunning) Draw(percent);
}

void StepProgress::Finish()
{
    ShowLine(line);
}

void StepProgress::Draw(double percent) const
{
    const auto done = static_cast<uint64_t>(std::clamp(percent, 0.0, 100.0));
    std::fprintf(stream, "\r%s %s\33[K", ProgressBar(done, 100).c_str(), line.c_str());
    std::fflush(stream);
}

// In place of the bar.
void StepProgress::ShowLine(const std::string& shown)
{
    isRunning = false;
    std::fprintf(stream, "%s%s\n", isTerminal ? "\r\33[K" : "", shown.c_str());
    std::fflush(stream);
}

} // namespace koro::tool

// StepProgress: the steps of something long, one after the other. A line for each when it is done; on a terminal a bar
// while it runs. One thread at a time.
#pragma once

#include <cstdio>
#include <string>

namespace koro::tool
{

class StepProgress
{
public:
    // The stream belongs to the caller and outlives this object.
    StepProgress(std::FILE* stream, bool isTerminal);
    StepProgress(const StepProgress&) = delete;
    StepProgress& operator=(const StepProgress&) = delete;
    // Tells of a step that is not finished.
    ~StepProgress();

    void Begin(const std::string& step);
    void Reached(double percent);
    void Finish();

private:
    void Draw(double percent) const;
    void ShowLine(const std::string& line);

    std::FILE* const stream;
    const bool isTerminal;
    std::string line; // of the step that runs
    bool isRunning = false;
};

} // namespace koro::tool

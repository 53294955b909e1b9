#include "tools/koro/progress.h"
#include "tools/koro/step_progress.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace koro::tool;

// What was written to a stream of its own.
std::string Shown(bool isTerminal, const std::function<void(StepProgress& progress)>& steps)
{
    char* text = nullptr;
    size_t size = 0;
    std::FILE* stream = open_memstream(&text, &size);
    {
        StepProgress progress(stream, isTerminal);
        steps(progress);
    }
    std::fclose(stream);
    const std::string shown(text, size);
    std::free(text);
    return shown;
}

void TwoSteps(StepProgress& progress)
{
    progress.Begin("checking");
    progress.Finish();
    progress.Begin("uploading");
    progress.Reached(50);
    progress.Reached(100);
    progress.Finish();
}

std::string Bar(uint64_t percent, const std::string& step)
{
    return "\r" + ProgressBar(percent, 100) + " " + step + "\33[K";
}

const std::string clear = "\r\33[K";

TEST(StepProgress, ElsewhereThanOnATerminalEachStepHasALine)
{
    EXPECT_EQ(Shown(false, TwoSteps), "checking\nuploading\n");
}

TEST(StepProgress, OnATerminalTheLineTakesThePlaceOfTheBar)
{
    EXPECT_EQ(
        Shown(true, TwoSteps), Bar(0, "checking") + clear + "checking\n" + Bar(0, "uploading") + Bar(50, "uploading") +
                                   Bar(100, "uploading") + clear + "uploading\n");
}

TEST(StepProgress, StepThatIsNotFinishedHasALineToo)
{
    const auto fail = [](StepProgress& progress) {
        progress.Begin("uploading");
        progress.Reached(50);
    };
    EXPECT_EQ(Shown(false, fail), "uploading (not finished)\n");
    EXPECT_EQ(Shown(true, fail), Bar(0, "uploading") + Bar(50, "uploading") + clear + "uploading (not finished)\n");
}

TEST(StepProgress, PercentagesBeyondTheBarAreItsEnds)
{
    const auto wild = [](StepProgress& progress) {
        progress.Begin("x");
        progress.Reached(-1);
        progress.Reached(1e300);
        progress.Finish();
    };
    EXPECT_EQ(Shown(true, wild), Bar(0, "x") + Bar(0, "x") + Bar(100, "x") + clear + "x\n");
}

TEST(StepProgress, NothingBegunShowsNothing)
{
    const auto nothing = [](StepProgress& progress) { progress.Reached(50); };
    EXPECT_EQ(Shown(true, nothing), "");
    EXPECT_EQ(Shown(false, nothing), "");
}

} // namespace

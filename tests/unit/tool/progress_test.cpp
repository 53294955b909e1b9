#include "tools/koro/progress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace koro::tool;

// What was written to a stream of its own.
std::string Shown(bool isTerminal, uint64_t total, std::initializer_list<const char*> files)
{
    char* text = nullptr;
    size_t size = 0;
    std::FILE* stream = open_memstream(&text, &size);
    {
        Progress progress(stream, isTerminal ? ProgressForm::Bar : ProgressForm::Lines, total);
        for (const char* file : files)
            progress.Saved({file});
    }
    std::fclose(stream);
    const std::string shown(text, size);
    std::free(text);
    return shown;
}

TEST(Progress, BarFillsInProportion)
{
    EXPECT_EQ(ProgressBar(0, 10), "[" + std::string(40, '.') + "]  0/10");
    EXPECT_EQ(ProgressBar(5, 10), "[" + std::string(20, '#') + std::string(20, '.') + "]  5/10");
    EXPECT_EQ(ProgressBar(10, 10), "[" + std::string(40, '#') + "] 10/10");
    EXPECT_EQ(ProgressBar(12, 10), "[" + std::string(40, '#') + "] 12/10");
}

TEST(Progress, ElsewhereThanOnATerminalEachFileHasALine)
{
    EXPECT_EQ(Shown(false, 2, {"a.png", "b.png"}), "1/2 a.png\n2/2 b.png\n");
}

TEST(Progress, TerminalGetsABarThatEndsFull)
{
    const std::string shown = Shown(true, 2, {"a.png", "b.png"});
    EXPECT_THAT(shown, testing::EndsWith("\r" + ProgressBar(2, 2) + "\n"));
    EXPECT_THAT(shown, testing::Not(testing::HasSubstr("a.png")));
}

// What two frames of several files with remarks, and a line between them, look like.
std::string ShownWithRemarks(bool isTerminal)
{
    char* text = nullptr;
    size_t size = 0;
    std::FILE* stream = open_memstream(&text, &size);
    {
        Progress progress(stream, isTerminal ? ProgressForm::Bar : ProgressForm::Lines, 2);
        progress.Saved({"a.png", "a.ply"}, "gain 1");
        progress.Say("lost");
        progress.Saved({"b.png"}, "gain 2");
    }
    std::fclose(stream);
    const std::string shown(text, size);
    std::free(text);
    return shown;
}

TEST(Progress, RemarksStandBelowTheFilesOfTheirFrame)
{
    EXPECT_EQ(ShownWithRemarks(false), "1/2 a.png\n1/2 a.ply\n    gain 1\nlost\n2/2 b.png\n    gain 2\n");
}

TEST(Progress, OnATerminalRemarksStandAboveTheBar)
{
    const std::string clear = "\r\33[K";
    EXPECT_EQ(
        ShownWithRemarks(true), clear + "1/2 gain 1\n\r" + ProgressBar(1, 2) + clear + "lost\n\r" + ProgressBar(1, 2) +
                                    clear + "2/2 gain 2\n\r" + ProgressBar(2, 2) + "\n");
}

TEST(Progress, NothingSavedShowsNothing)
{
    EXPECT_EQ(Shown(true, 2, {}), "");
}

} // namespace

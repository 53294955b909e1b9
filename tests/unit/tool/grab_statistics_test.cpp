#include "tools/koro/grab_statistics.h"

#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;
using std::chrono::milliseconds;

// A grab of frames of 1000 bytes; times are milliseconds from its start.
class GrabStatisticsTest : public testing::Test
{
protected:
    void Count(FrameState state, int at) { statistics.Count(state, 1000, start + milliseconds(at)); }

    GrabStatistics::Clock::time_point start;
    GrabStatistics statistics{start};
};

TEST_F(GrabStatisticsTest, RateIsThatOfTheFramesBehindTheFirst)
{
    for (int at = 100; at <= 200; at += 20)
        Count(FrameState::Whole, at);
    EXPECT_DOUBLE_EQ(statistics.Rate(), 50);
    EXPECT_DOUBLE_EQ(statistics.BytesPerSecond(), 50000);
    EXPECT_EQ(statistics.OutageSeconds(), 0);
}

TEST_F(GrabStatisticsTest, EmptyBuffersCountForNoRate)
{
    Count(FrameState::Empty, 1);
    for (int at = 100; at <= 200; at += 20)
    {
        Count(FrameState::Whole, at);
        Count(FrameState::Empty, at + 10);
    }
    EXPECT_DOUBLE_EQ(statistics.Rate(), 50);
    EXPECT_EQ(statistics.numEmpty, 7u);
    EXPECT_EQ(statistics.numFrames, 13u);
}

TEST_F(GrabStatisticsTest, IncompleteFramesTakeTimeButCountForNoRate)
{
    Count(FrameState::Whole, 0);
    Count(FrameState::Incomplete, 20);
    Count(FrameState::Whole, 40);
    Count(FrameState::Incomplete, 60);
    Count(FrameState::Incomplete, 80);
    EXPECT_DOUBLE_EQ(statistics.Rate(), 12.5);
    EXPECT_DOUBLE_EQ(statistics.BytesPerSecond(), 12500);
    EXPECT_EQ(statistics.numIncomplete, 3u);
}

TEST_F(GrabStatisticsTest, OutageIsNoTimeOfTheRate)
{
    for (const int at : {0, 20, 40})
        Count(FrameState::Whole, at);
    statistics.NoteSilence();
    for (const int at : {5040, 5060, 5080})
        Count(FrameState::Whole, at);
    EXPECT_DOUBLE_EQ(statistics.Rate(), 50);
    EXPECT_DOUBLE_EQ(statistics.OutageSeconds(), 5);
}

TEST_F(GrabStatisticsTest, SilenceAtTheBeginningAndAtTheEndIsAnOutage)
{
    statistics.NoteSilence();
    Count(FrameState::Whole, 3000);
    Count(FrameState::Whole, 3020);
    statistics.NoteSilence();
    statistics.End(start + milliseconds(4020));
    statistics.End(start + milliseconds(9000));
    EXPECT_DOUBLE_EQ(statistics.OutageSeconds(), 4);
    EXPECT_DOUBLE_EQ(statistics.Rate(), 50);
}

TEST_F(GrabStatisticsTest, RateOfLessThanTwoFramesIsNotKnown)
{
    EXPECT_EQ(statistics.Rate(), 0);
    Count(FrameState::Whole, 10);
    EXPECT_EQ(statistics.Rate(), 0);
    EXPECT_EQ(statistics.BytesPerSecond(), 0);
}

} // namespace

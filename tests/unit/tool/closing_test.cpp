#include "tools/koro/closing.h"

#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>

namespace
{

using namespace koro::tool;
using std::chrono::hours;
using std::chrono::milliseconds;
using testing::ElementsAre;

constexpr const char* notice = "koro: closing, the camera does not answer\n";

TEST(Closing, WorkThatEndsSaysNothing)
{
    bool ran = false;
    testing::internal::CaptureStderr();
    EXPECT_TRUE(CloseWithin({hours(1), hours(2)}, [&] { ran = true; }));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(ran);
}

TEST(Closing, WorkThatNeverEndsIsAnnouncedAndGivenUp)
{
    // The work outlives the test's body.
    const auto gate = std::make_shared<std::promise<void>>();
    const auto ended = std::make_shared<std::promise<void>>();
    std::future<void> end = ended->get_future();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(CloseWithin({milliseconds(1), milliseconds(2)}, [gate, ended] {
        gate->get_future().wait();
        ended->set_value();
    }));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), notice);
    gate->set_value();
    end.wait();
}

TEST(Closing, FailuresOfItsStepsAreKeptInTheirOrder)
{
    ClosingReport report;
    EXPECT_FALSE(report.Attempt([] { throw std::runtime_error("first"); }));
    EXPECT_TRUE(report.Attempt([] {}));
    EXPECT_FALSE(report.Attempt([] { throw std::runtime_error("second"); }));
    EXPECT_THAT(report.Failures(), ElementsAre("first", "second"));
    report.ForgetFailures();
    EXPECT_THAT(report.Failures(), testing::IsEmpty());
}

TEST(Closing, UnderrunsOfAllSessionsAreAdded)
{
    ClosingReport report;
    EXPECT_FALSE(report.NumUnderruns().has_value());
    report.AddUnderruns(0);
    EXPECT_EQ(report.NumUnderruns(), 0u);
    report.AddUnderruns(3);
    EXPECT_EQ(report.NumUnderruns(), 3u);
}

} // namespace

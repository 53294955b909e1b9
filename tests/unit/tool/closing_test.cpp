#include "tools/koro/closing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

namespace
{

using namespace koro::tool;
using testing::ElementsAre;

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

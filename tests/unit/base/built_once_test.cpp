#include "base/built_once.h"

#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>

namespace koro::test
{

using internal::BuiltOnce;

TEST(BuiltOnce, FirstResultStays)
{
    BuiltOnce<std::string> value;
    EXPECT_EQ(value.IfBuilt(), nullptr);
    const std::string& first = value.Get([] { return std::string("first"); });
    EXPECT_EQ(first, "first");
    EXPECT_EQ(&value.Get([] { return std::string("second"); }), &first);
    EXPECT_EQ(value.IfBuilt(), &first);
}

TEST(BuiltOnce, FailureLeavesTheNextCallerToBuild)
{
    BuiltOnce<std::string> value;
    EXPECT_THROW(value.Get([]() -> std::string { throw std::runtime_error("no"); }), std::runtime_error);
    EXPECT_EQ(value.IfBuilt(), nullptr);
    EXPECT_EQ(value.Get([] { return std::string("yes"); }), "yes");
}

TEST(BuiltOnce, BuildThatIsOvertakenGivesTheResultThatWasKept)
{
    BuiltOnce<std::string> value;
    const std::string& slow = value.Get([&] {
        value.Get([] { return std::string("fast"); });
        return std::string("slow");
    });
    EXPECT_EQ(slow, "fast");
}

TEST(BuiltOnce, BuildHoldsNothingThatAnotherThreadWaitsFor)
{
    BuiltOnce<int> value;
    EXPECT_EQ(
        value.Get(
            [&] { return std::async(std::launch::async, [&] { return value.Get([] { return 1; }); }).get() + 1; }),
        1);
}

TEST(BuiltOnce, ValueEndsWithItsOwner)
{
    const auto token = std::make_shared<int>(0);
    {
        BuiltOnce<std::shared_ptr<int>> value;
        value.Get([&] { return token; });
        EXPECT_EQ(token.use_count(), 2);
    }
    EXPECT_EQ(token.use_count(), 1);
}

} // namespace koro::test

// The producer of examples/producer, as the tool sees it.
#include "tests/tool/tool_run.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::test;
using testing::HasSubstr;

ToolResult RunOnBars(Arguments arguments)
{
    const std::string folder = std::getenv("KORO_TEST_PRODUCERS");
    arguments.insert(arguments.end(), {"--producer", folder + "/example_moving_bars.cti"});
    return ToolRun(arguments).Finish();
}

TEST(ExampleProducer, IsListedByTheTool)
{
    const ToolResult result = RunOnBars({"list"});
    EXPECT_EQ(result.status, success) << result.err;
    EXPECT_THAT(result.out, HasSubstr("B-001"));
}

TEST(ExampleProducer, HasItsFeaturesInTheTool)
{
    const ToolResult result = RunOnBars({"get", "B-001", "PayloadSize", "--set", "Width=64", "--set", "Height=48"});
    EXPECT_EQ(result.status, success) << result.err;
    EXPECT_THAT(result.out, HasSubstr("3072"));
    EXPECT_EQ(RunOnBars({"set", "B-001", "Width=2000"}).status, failure);
}

TEST(ExampleProducer, IsGrabbedFromByTheTool)
{
    const ToolResult result = RunOnBars({"grab", "B-001", "--frames", "5", "--format", "none", "--json"});
    EXPECT_EQ(result.status, success) << result.err << result.out;
    EXPECT_THAT(result.out, HasSubstr("\"width\":320"));
}

} // namespace

#include "tests/tool/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::test;
using testing::HasSubstr;
using testing::Not;

TEST(CommandLine, HelpShowsEveryCommandWithALineOfHelp)
{
    const ToolResult result = RunTool({"--help"});
    EXPECT_EQ(result.status, 0);
    for (const char* command : {"list", "info", "doctor", "grab"})
    {
        EXPECT_THAT(result.out, testing::ContainsRegex(std::string("\n  ") + command + " +[A-Z]"));
    }
    EXPECT_THAT(result.out, Not(HasSubstr("probe")));
}

TEST(CommandLine, VersionIsTheLibrarys)
{
    const ToolResult result = RunTool({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "1.11.1\n");
}

TEST(CommandLine, WrongCommandLinesEndWithStatusTwo)
{
    const std::vector<Arguments> wrong = {
        {},
        {"unknown"},
        {"list", "--unknown"},
        {"info"},
        {"grab"},
        {"grab", "cam", "--frames", "2"},
        {"grab", "cam", "--output", "x"},
        {"grab", "cam", "--output", "x", "--frames", "0"},
        {"grab", "cam", "--output", "x", "--frames", "-1"},
        {"grab", "cam", "--output", "x", "--frames", "many"},
        {"grab", "cam", "--output", "x", "--frames", "2", "--format", "gif"},
        {"grab", "cam", "--output", "x", "--frames", "2", "--timeout", "0"},
        {"doctor", "--timeout", "0"},
    };
    for (const Arguments& arguments : wrong)
    {
        const ToolResult result = RunTool(arguments);
        EXPECT_EQ(result.status, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(result.err, Not(testing::IsEmpty())) << testing::PrintToString(arguments);
        EXPECT_EQ(result.out, "") << testing::PrintToString(arguments);
    }
}

TEST(CommandLine, MissingOptionIsNamed)
{
    EXPECT_THAT(RunTool({"grab", "cam", "--output", "x"}).err, HasSubstr("--frames is required"));
}

TEST(CommandLine, UnsetVariableGivesTheLibrarysTextAndAHint)
{
    for (const Arguments& arguments : {Arguments{"list"}, Arguments{"info", "cam"}})
    {
        const ToolResult result = RunTool(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(
            result.err,
            "koro: GENICAM_GENTL64_PATH environment variable not found! Please set this to the path of the CTIs.\n"
            "hint: `koro doctor` tells which producers are found and why one cannot be loaded.\n");
    }
}

} // namespace

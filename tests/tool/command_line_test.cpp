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

TEST(CommandLine, ProducerWithoutANameIsAWrongCommandLine)
{
    for (const Arguments& arguments :
         {Arguments{"list", "--producer", ""}, Arguments{"info", "cam", "--producer", ""},
          Arguments{"doctor", "--producer", ""}, Arguments{"get", "TLVendorName", "--system", ""}})
    {
        const ToolResult result = RunTool(arguments);
        EXPECT_EQ(result.status, usage) << testing::PrintToString(arguments);
        EXPECT_THAT(result.err, HasSubstr(": the name of the .cti file is empty\n"))
            << testing::PrintToString(arguments);
        EXPECT_EQ(result.out, "") << testing::PrintToString(arguments);
    }
}

// The options that take a number, each with the rest of a command line that is right.
const std::vector<Arguments> wholeNumbers = {
    {"doctor", "--timeout"},
    {"grab", "cam", "--format", "none", "--frames"},
    {"grab", "cam", "--format", "none", "--frames", "1", "--timeout"},
    {"grab", "cam", "--format", "none", "--frames", "1", "--payload-size"},
    {"grab", "cam", "--format", "none", "--frames", "1", "--buffers"},
    {"run", "cam", "Do", "--timeout"},
    {"xml", "cam", "--url"},
    {"firmware", "update", "cam", "file", "--reset-timeout"},
    {"events", "cam", "--duration"},
    {"events", "cam", "--events"},
    {"watch", "--interval"},
    {"watch", "--duration"},
    {"watch", "--changes"},
};

void ExpectRefused(Arguments arguments, const std::string& value)
{
    arguments.push_back(value);
    const ToolResult result = RunTool(arguments);
    EXPECT_EQ(result.status, 2) << testing::PrintToString(arguments);
    const std::string option = arguments[arguments.size() - 2];
    EXPECT_THAT(result.err, testing::StartsWith(option + ": \"" + value + "\" is no "))
        << testing::PrintToString(arguments);
}

TEST(CommandLine, OptionsRefuseWhatIsNoWholeNumber)
{
    // The last two are one when they are read modulo 2^64.
    const char* const wrong[] = {
        "",
        "5x",
        " 5",
        "5 ",
        "1.5",
        "1e3",
        "nan",
        "inf",
        "-1",
        "+5",
        "0x",
        "1,5",
        "many",
        "18446744073709551617",
        "-18446744073709551615",
    };
    for (const Arguments& arguments : wholeNumbers)
    {
        for (const char* const value : wrong)
            ExpectRefused(arguments, value);
    }
}

TEST(CommandLine, RangeLimitIsAFiniteDistance)
{
    for (const char* const value :
         {"nan", "-nan", "inf", "-inf", "infinity", "0", "-0", "-1", "1e400", "1e-400", "5m", "", " 5", "0x10"})
        ExpectRefused({"grab", "cam", "--format", "none", "--frames", "1", "--range-limit"}, value);
    const ToolResult result = RunTool({"grab", "cam", "--frames", "1", "--format", "none", "--range-limit", "2.5e3"});
    EXPECT_EQ(result.status, 1) << "the command line is right, and there are no producers";
}

TEST(CommandLine, WholeNumbersAreDecimalOrHexadecimal)
{
    for (const char* const value : {"100", "0100", "0x64", "0X64"})
        EXPECT_EQ(RunTool({"watch", "--interval", value}).status, 1)
            << "the command line is right, and there are no producers";
}

// The numbers behind the words are the tool's own.
TEST(CommandLine, OptionsWithWordsTakeAndShowTheWordsOnly)
{
    EXPECT_THAT(RunTool({"grab", "--help"}).out, HasSubstr("--format TEXT:{none,png,raw,tiff}\n"));
    EXPECT_THAT(RunTool({"grab", "--help"}).out, HasSubstr("Needed, except for --format none without --chunks"));
    EXPECT_THAT(RunTool({"features", "--help"}).out, HasSubstr("--visibility TEXT:{beginner,expert,guru,invisible}\n"));
    EXPECT_THAT(RunTool({"get", "--help"}).out, HasSubstr("--module TEXT:{device,interface,remote,stream,system}\n"));
    const std::vector<Arguments> numbers = {
        {"grab", "cam", "--frames", "1", "--output", "x", "--format", "2"},
        {"features", "cam", "--visibility", "1"},
        {"get", "cam", "Width", "--module", "3"},
    };
    for (const Arguments& arguments : numbers)
    {
        const ToolResult result = RunTool(arguments);
        EXPECT_EQ(result.status, 2) << arguments.front();
        EXPECT_THAT(result.err, HasSubstr(" not in {")) << arguments.front();
    }
    EXPECT_EQ(RunTool({"features", "cam", "--visibility", "Guru"}).status, 1)
        << "the command line is right, and there are no producers";
}

TEST(CommandLine, MissingOptionIsNamed)
{
    EXPECT_THAT(RunTool({"grab", "cam", "--output", "x"}).err, HasSubstr("--frames is required"));
}

TEST(CommandLine, VariableThatNamesNoDirectoryIsAnErrorWhereNoProducersCameWithTheTool)
{
    const ToolResult result = RunTool({"list"}, {{"GENICAM_GENTL64_PATH", ""}});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.err,
        "koro: GENICAM_GENTL64_PATH names no directory.\n"
        "hint: Set it to the directory of your camera maker's .cti file; `koro doctor` looks for such files.\n");
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
            "hint: `koro doctor` shows which producers are found and why one cannot be loaded.\n");
    }
}

} // namespace

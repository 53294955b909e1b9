#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;

constexpr int failure = 1;
constexpr int different = 7;
const std::string head = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";

// A camera whose settings one run leaves to the next.
class Settings : public testing::Test
{
protected:
    Settings()
    {
        json settings = OneCamera("Mono8", 64, 48);
        settings["memory"] = folder.MakeFolder("memory");
        environment = SimulatorWith(folder, settings);
    }

    ToolResult Koro(const Arguments& arguments) const { return RunTool(arguments, environment); }
    std::string File(const std::string& name) const { return folder.File(name); }
    std::string Content(const std::string& name) const
    {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::string Written(const std::string& name, const std::string& content) const
    {
        return folder.MakeFile(name, content);
    }

    TemporaryFolder folder;
    Environment environment;
};

TEST_F(Settings, SavedAndLoadedTheyAreTheSame)
{
    ASSERT_EQ(Koro({"set", "cam", "Width=32", "Height=24", "ExposureTime=5000", "Gain=3"}).status, 0);
    const ToolResult saved = Koro({"settings", "save", "cam", File("first")});
    ASSERT_EQ(saved.status, 0) << saved.err;
    EXPECT_THAT(saved.out, HasSubstr(" values in " + File("first") + "\n"));
    EXPECT_THAT(Content("first"), testing::StartsWith(head));
    EXPECT_THAT(Content("first"), HasSubstr("\nWidth\t32\n"));

    ASSERT_EQ(Koro({"set", "cam", "Width=64", "Height=48", "ExposureTime=7000", "Gain=0"}).status, 0);
    const ToolResult loaded = Koro({"settings", "load", "cam", File("first")});
    ASSERT_EQ(loaded.status, 0) << loaded.err;
    EXPECT_THAT(loaded.out, HasSubstr(" values written\n"));
    EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "32\n");
    ASSERT_EQ(Koro({"settings", "save", "cam", File("second")}).status, 0);
    EXPECT_EQ(Content("first"), Content("second"));
}

TEST_F(Settings, SaveReplacesAFileAsAWhole)
{
    Written("file", "older content");
    ASSERT_EQ(Koro({"settings", "save", "cam", File("file")}).status, 0);
    EXPECT_THAT(Content("file"), testing::StartsWith(head));
    EXPECT_FALSE(std::filesystem::exists(File(".file.part")));
    EXPECT_EQ(Koro({"settings", "save", "cam", File("missing/file")}).status, failure);
}

TEST_F(Settings, LoadNamesEveryLineThatFails)
{
    const std::string file = Written(
        "file", head + "# comment\nWidth\t32\nNothing\t1\nHeight\t5000\nDeviceModelName\tother\nOffsetX\tten\n");
    const ToolResult result = Koro({"settings", "load", "cam", file});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("line 4: Nothing=1: the camera has no such feature\n"));
    EXPECT_THAT(result.err, HasSubstr("line 5: Height=5000: "));
    EXPECT_THAT(result.err, HasSubstr("line 6: DeviceModelName=other: "));
    EXPECT_THAT(result.err, HasSubstr("line 7: OffsetX=ten: "));
    EXPECT_THAT(result.err, HasSubstr("koro: 4 of 5 values could not be written: "));
    EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "32\n");
}

TEST_F(Settings, LoadRefusesAFileWithItsLineBeforeTheCameraIsTouched)
{
    const std::string file = Written("file", head + "Width\t32\nHeight 24\n");
    const ToolResult result = Koro({"settings", "load", "cam", file});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("line 3: there is no tab behind the name of the feature."));
    EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "64\n");
}

TEST_F(Settings, CheckTellsWhatWouldChangeAndChangesNothing)
{
    const std::string file = Written("file", head + "Width\t32\nHeight\t48\nReverseX\t1\n");
    const ToolResult result = Koro({"settings", "check", "cam", file});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("line 2: Width: 64 -> 32\n"));
    EXPECT_THAT(result.out, HasSubstr("line 4: ReverseX: false -> 1\n"));
    EXPECT_THAT(result.out, HasSubstr("2 values would change, 0 cannot be written, 1 are the same\n"));
    EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "64\n");
}

TEST_F(Settings, CheckTellsWhatWouldFail)
{
    const std::string file = Written(
        "file", head + "Width\t5000\nNothing\t1\nDeviceModelName\tother\nGain\t{GainSelector=Nowhere}\t1\n"
                       "PixelFormat\tMono99\n");
    const ToolResult result = Koro({"settings", "check", "cam", file});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, HasSubstr("line 2: Width=5000: Width takes 1 to 64 pixel.\n"));
    EXPECT_THAT(result.out, HasSubstr("line 3: Nothing=1: the camera has no such feature\n"));
    EXPECT_THAT(result.out, HasSubstr("line 4: DeviceModelName=other: it cannot be written: "));
    EXPECT_THAT(result.out, HasSubstr("line 5: Gain[GainSelector=Nowhere]=1: "));
    EXPECT_THAT(result.out, HasSubstr("line 6: PixelFormat=Mono99: "));
    EXPECT_THAT(result.out, HasSubstr("0 values would change, 5 cannot be written, 0 are the same\n"));
}

TEST_F(Settings, CheckLooksAtEachEntryOfASelectorAndSetsItBack)
{
    ASSERT_EQ(Koro({"set", "cam", "LineSelector=Line0", "LineInverter=1"}).status, 0);
    const std::string file = Written(
        "file", head + "LineInverter\t{LineSelector=Line0}\t1\n"
                       "LineInverter\t{LineSelector=Line1}\t1\n");
    const ToolResult result = Koro({"settings", "check", "cam", file});
    EXPECT_THAT(result.out, HasSubstr("line 3: LineInverter[LineSelector=Line1]: false -> 1\n"));
    EXPECT_THAT(result.out, HasSubstr("1 values would change, 0 cannot be written, 1 are the same\n"));
    EXPECT_EQ(Koro({"get", "cam", "LineSelector"}).out, "Line0\n");
}

TEST_F(Settings, DiffComparesAFileWithTheCamera)
{
    ASSERT_EQ(Koro({"settings", "save", "cam", File("file")}).status, 0);
    const ToolResult same = Koro({"settings", "diff", "cam", File("file")});
    EXPECT_EQ(same.status, 0) << same.err;
    EXPECT_EQ(same.out, "");
    ASSERT_EQ(Koro({"set", "cam", "Width=32"}).status, 0);
    const ToolResult changed = Koro({"settings", "diff", "cam", File("file")});
    EXPECT_EQ(changed.status, different);
    EXPECT_THAT(changed.out, HasSubstr("- Width=64\n+ Width=32\n"));
}

TEST_F(Settings, DiffComparesTwoFiles)
{
    const std::string one = Written("one", head + "A\t1\nB\t2\n");
    const std::string other = Written("other", head + "B\t3\nC\t4\n");
    const ToolResult result = Koro({"settings", "diff", one, other});
    EXPECT_EQ(result.status, different);
    EXPECT_EQ(result.out, "- A=1\n- B=2\n+ B=3\n+ C=4\n");
    EXPECT_EQ(Koro({"settings", "diff", one, one}).status, 0);
}

} // namespace

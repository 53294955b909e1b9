#include "tests/support/file_size_limit.h"
#include "tests/tool/described_camera.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <csignal>
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

    // From the next run on.
    void Use(const json& settings) const { folder.MakeFile("simulator.json", settings.dump()); }
    ToolResult Koro(const Arguments& arguments) const { return RunTool(arguments, environment); }
    std::string File(const std::string& name) const { return folder.File(name); }
    std::string Content(const std::string& name) const
    {
        std::ifstream file(File(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool HasPendingFile() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        {
            if (entry.path().extension() == ".part") return true;
        }
        return false;
    }
    std::string Written(const std::string& name, const std::string& content) const
    {
        return folder.MakeFile(name, content);
    }

    TemporaryFolder folder;
    Environment environment;
};

TEST_F(Settings, SavedAndLoadedAfterAResetTheyAreTheSame)
{
    ASSERT_EQ(Koro({"set", "cam", "Width=32", "Height=24", "ExposureTime=5000", "Gain=3"}).status, 0);
    const ToolResult saved = Koro({"settings", "save", "cam", File("first")});
    ASSERT_EQ(saved.status, 0) << saved.err;
    EXPECT_THAT(saved.out, HasSubstr(" values in " + File("first") + "\n"));
    EXPECT_THAT(Content("first"), testing::StartsWith(head));
    EXPECT_THAT(Content("first"), HasSubstr("\nWidth\t32\n"));

    ASSERT_EQ(Koro({"run", "cam", "DeviceReset"}).status, 0);
    ASSERT_EQ(Koro({"get", "cam", "Width"}).out, "64\n");
    ASSERT_EQ(Koro({"settings", "diff", "cam", File("first")}).status, different);
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
    EXPECT_FALSE(HasPendingFile());
    EXPECT_EQ(Koro({"settings", "save", "cam", File("missing/file")}).status, failure);
}

TEST_F(Settings, SaveOnAFullDiskLeavesTheOlderFile)
{
    Written("file", "older content");
    Use(OneCamera("Mono8", 64, 48)); // whose own file would be too long as well
    {
        const FileSizeLimit disk(500);
        const ToolResult result = Koro({"settings", "save", "cam", File("file")});
        EXPECT_EQ(result.status, failure);
        EXPECT_EQ(result.out, "");
        // The library's own file is too long as well, the tool's has no other before it.
        const ToolResult whole = Koro({"settings", "save", "cam", File("new"), "--all-writable"});
        EXPECT_EQ(whole.status, failure);
        EXPECT_THAT(whole.err, HasSubstr("koro: Cannot write " + File("new") + ": File too large.\n"));
    }
    EXPECT_EQ(Content("file"), "older content");
    EXPECT_FALSE(std::filesystem::exists(File("new")));
    EXPECT_FALSE(HasPendingFile());
}

TEST_F(Settings, SaveThatLosesTheCameraLeavesTheOlderFile)
{
    Written("file", "older content");
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "GCReadPort", "GC_ERR_IO") = {
        {"function", "GCReadPort"}, {"at", 200}, {"count", "every"}, {"error", "GC_ERR_IO"}};
    Use(settings);
    const ToolResult result = Koro({"settings", "save", "cam", File("file")});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("GC_ERR_IO"));
    EXPECT_EQ(Content("file"), "older content");
    EXPECT_FALSE(HasPendingFile());
}

TEST_F(Settings, OfACameraThatAnotherProgramControlsAreNeitherSavedNorCompared)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["memory"] = folder.MakeFolder("shared");
    settings["interfaces"][0]["tlType"] = "GEV";
    settings["interfaces"][0]["cameras"][0]["rate"] = 10;
    Use(settings);
    ASSERT_EQ(Koro({"settings", "save", "cam", File("file")}).status, 0);
    const std::string before = Content("file");

    ToolRun grab({"grab", "cam", "--frames", "1000000", "--output", File("out")}, environment);
    ASSERT_TRUE(grab.AwaitOutput("\n1/1000000 "));
    for (const std::string& option : {std::string("--module=remote"), std::string("--all-writable")})
    {
        const ToolResult saved = Koro({"settings", "save", "cam", File("file"), option});
        EXPECT_EQ(saved.status, failure);
        EXPECT_EQ(saved.out, "");
        EXPECT_THAT(saved.err, HasSubstr("koro: The camera can only be opened for reading, "));
        EXPECT_THAT(saved.err, HasSubstr("\nhint: Another program may have control of the camera; "));
        const ToolResult compared = Koro({"settings", "diff", "cam", File("file"), option});
        EXPECT_EQ(compared.status, failure);
        EXPECT_EQ(compared.out, "");
        EXPECT_THAT(compared.err, HasSubstr("koro: The camera can only be opened for reading, "));
    }
    EXPECT_EQ(Content("file"), before);
    EXPECT_FALSE(HasPendingFile());
    EXPECT_EQ(Koro({"settings", "save", "cam", File("system"), "--module", "system"}).status, 0);
    grab.Signal(SIGKILL);
    grab.Finish();
}

// A camera for one test, whose values start from the beginning at each run.
class SettingsOfDescribed : public Settings
{
protected:
    SettingsOfDescribed()
    {
        json settings = OneCamera("Mono8", 64, 48);
        Describe(
            folder, settings, "Width Coarse Limited Gain Channel Name Nothing Brace",
            IntRegisterAt("Width", 0, streamable) + "<IntConverter Name=\"Coarse\">" + streamable +
                "<FormulaTo>FROM/10</FormulaTo><FormulaFrom>TO*10</FormulaFrom><pValue>CoarseReg</pValue>"
                "</IntConverter>" +
                IntRegisterAt("CoarseReg", 4) + "<Integer Name=\"Limited\">" + streamable +
                "<pValue>LimitedReg</pValue><Min>0</Min><Max>100</Max></Integer>" + IntRegisterAt("LimitedReg", 8) +
                "<Enumeration Name=\"Channel\"><EnumEntry Name=\"Red\"><Value>0</Value></EnumEntry>"
                "<EnumEntry Name=\"Blue\"><Value>4</Value></EnumEntry><pValue>ChannelReg</pValue>"
                "<pSelected>Gain</pSelected></Enumeration>" +
                IntRegisterAt("ChannelReg", 12) +
                IntRegisterAt("Gain", 16, streamable + "<pAddress>ChannelReg</pAddress>") + Text("Name", "a b") +
                Text("Nothing", "") + Text("Brace", "{b}") +
                "<Boolean Name=\"Flag\"><Value>false</Value></Boolean><Float Name=\"Tiny\"><Value>0</Value></Float>"
                "<Register Name=\"Block\"><Address>20</Address><Length>2</Length><AccessMode>RW</AccessMode>"
                "<pPort>Device</pPort></Register>");
        Use(settings);
    }

    static std::string Text(const std::string& name, const std::string& value)
    {
        return "<String Name=\"" + name + "\">" + streamable + "<Value>" + value + "</Value></String>";
    }

    static inline const std::string streamable = "<Streamable>Yes</Streamable>";
};

TEST_F(SettingsOfDescribed, SavedWithoutTheTextsThatNoFileHoldsTheyLoad)
{
    const ToolResult saved = Koro({"settings", "save", "cam", File("file")});
    EXPECT_EQ(saved.status, 0);
    EXPECT_EQ(
        saved.err, "Nothing is left out: a file holds no text that is empty, begins with a brace or has several lines\n"
                   "Brace is left out: a file holds no text that is empty, begins with a brace or has several lines\n");
    EXPECT_EQ(saved.out, "7 values in " + File("file") + "\n");
    EXPECT_THAT(
        Content("file"), testing::EndsWith("\nWidth\t0\nCoarse\t0\nLimited\t0\nGain\t{Channel=Red}\t0\n"
                                           "Gain\t{Channel=Blue}\t0\nChannel\tRed\nName\ta b\n"));
    const ToolResult loaded = Koro({"settings", "load", "cam", File("file")});
    EXPECT_EQ(loaded.status, 0) << loaded.err;
    EXPECT_EQ(loaded.out, "7 values written\n");
    const ToolResult compared = Koro({"settings", "diff", "cam", File("file")});
    EXPECT_EQ(compared.status, 0) << compared.err;
    EXPECT_EQ(compared.out, "");
}

TEST_F(SettingsOfDescribed, LoadNamesTheLinesThatTheCameraTookOtherwise)
{
    const std::string file = Written("file", head + "Width\t5\nCoarse\t57\nLimited\t300\nCoarse\t60\n");
    const ToolResult result = Koro({"settings", "load", "cam", file});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("line 3: Coarse=57: the camera has made 50 of it\n"));
    EXPECT_THAT(result.err, HasSubstr("line 4: Limited=300: Limited takes 0 to 100.\n"));
    EXPECT_THAT(result.err, testing::Not(HasSubstr("line 5")));
    EXPECT_THAT(result.err, HasSubstr("koro: 2 of 4 values could not be written: "));
}

TEST_F(SettingsOfDescribed, SelectorThatTheCameraDoesNotHaveIsPassedOver)
{
    const std::string file = Written("file", head + "Gain\t{Nowhere=1}\t5\n");
    const ToolResult checked = Koro({"settings", "check", "cam", file});
    EXPECT_EQ(checked.status, 0) << checked.err;
    EXPECT_EQ(
        checked.out, "line 2: Gain[Nowhere=1]: 0 -> 5, without the selector Nowhere, which the camera does not have\n"
                     "1 value would change, 0 cannot be written, 0 are the same\n");
    EXPECT_EQ(Koro({"settings", "load", "cam", file}).out, "1 value written\n");

    const std::string other = Written("other", head + "Depth\t1\nGain\t{Nowhere=1}\t5\nGain\t{Channel=Blue}\t6\n");
    const ToolResult loaded = Koro({"settings", "load", "cam", other});
    EXPECT_THAT(loaded.err, testing::StartsWith("line 2: Depth=1: the camera has no such feature\nkoro: 1 of 3 "));
}

TEST_F(SettingsOfDescribed, NoValueIsWrittenWhereItsSelectorCannotBeSet)
{
    const std::string file = Written("file", head + "Gain\t{Channel=Green}\t5\nGain\t{Channel=Green}\t6\nDepth\t1\n");
    const ToolResult loaded = Koro({"settings", "load", "cam", file});
    EXPECT_EQ(loaded.status, failure);
    EXPECT_THAT(loaded.err, HasSubstr("line 2: Gain[Channel=Green]=5: "));
    EXPECT_THAT(loaded.err, HasSubstr("line 3: Gain[Channel=Green]=6: "));
    EXPECT_THAT(loaded.err, HasSubstr("koro: 3 of 3 values "));
    EXPECT_THAT(
        Koro({"settings", "check", "cam", file}).out, testing::EndsWith("0 values would change, 3 cannot be written, "
                                                                        "0 are the same\n"));
}

TEST_F(SettingsOfDescribed, CheckComparesValuesAsTheyAreParsed)
{
    const std::string file = Written("file", head + "Flag\tyes\nTiny\t1e-310\nFlag\tOFF\nTiny\t+0.0\nBlock\t0000\n");
    const ToolResult checked = Koro({"settings", "check", "cam", file});
    EXPECT_EQ(checked.status, 0);
    EXPECT_EQ(
        checked.out, "line 2: Flag: false -> yes\nline 3: Tiny: 0 -> 1e-310\n"
                     "2 values would change, 0 cannot be written, 3 are the same\n");
}

TEST_F(SettingsOfDescribed, LineOf64MegabytesIsToldInAFewWords)
{
    const std::string file = Written("file", head + "Width\t" + std::string(64 << 20, '7') + "\n");
    for (const std::string part : {"load", "check"})
    {
        const ToolResult result = Koro({"settings", part, "cam", file});
        EXPECT_EQ(result.status, failure);
        EXPECT_THAT(result.err + result.out, HasSubstr("... (67108864 bytes): "));
        EXPECT_LT(result.err.size() + result.out.size(), 2000u);
    }
}

// In the file Width stands in front of the offset that is in its way.
TEST_F(Settings, LoadTriesAgainWhatALaterLineMakesPossible)
{
    ASSERT_EQ(Koro({"set", "cam", "Width=32", "OffsetX=32"}).status, 0);
    const std::string file = Written("file", head + "Width\t64\nOffsetX\t0\n");
    const ToolResult result = Koro({"settings", "load", "cam", file});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "2 values written\n");
    EXPECT_EQ(Koro({"get", "cam", "Width", "OffsetX"}).out, "Width=64\nOffsetX=0\n");
}

TEST_F(Settings, LoadNamesWhatIsLeftWhenNothingChangesAnyMore)
{
    ASSERT_EQ(Koro({"set", "cam", "Width=32", "OffsetX=32"}).status, 0);
    const std::string file = Written("file", head + "Width\t64\nOffsetX\t16\nGain\t2\n");
    const ToolResult result = Koro({"settings", "load", "cam", file});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, testing::StartsWith("line 2: Width=64: "));
    EXPECT_THAT(result.err, HasSubstr("koro: 1 of 3 values could not be written: "));
    EXPECT_EQ(Koro({"get", "cam", "Width", "OffsetX", "Gain"}).out, "Width=32\nOffsetX=16\nGain=2\n");
}

TEST_F(Settings, LastOfSeveralLinesForOneValueCounts)
{
    const std::string file = Written("file", head + "Width\t32\nNothing\t1\nWidth\t16\n");
    const ToolResult result = Koro({"settings", "load", "cam", file});
    EXPECT_THAT(result.err, testing::StartsWith("line 3: Nothing=1: the camera has no such feature\nkoro: 1 of 3 "));
    EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "16\n");
}

TEST_F(Settings, OfADescriptionThatMarksNoneAreMissedWithAHint)
{
    json settings = OneCamera("Mono8", 64, 48);
    Describe(folder, settings, "Width", IntRegisterAt("Width", 0));
    Use(settings);
    const ToolResult saved = Koro({"settings", "save", "cam", File("file")});
    EXPECT_EQ(saved.status, 0);
    EXPECT_EQ(
        saved.err, "koro: The description marks no feature as a part of the settings, so the file has no values.\n"
                   "hint: --all-writable saves every feature that can be read and written.\n");
    const ToolResult loaded = Koro({"settings", "load", "cam", File("file")});
    EXPECT_EQ(loaded.status, 0);
    EXPECT_THAT(loaded.err, HasSubstr(" has no values, so nothing is written.\nhint: "));

    const ToolResult all = Koro({"settings", "save", "cam", File("all"), "--all-writable"});
    EXPECT_EQ(all.err, "");
    EXPECT_EQ(all.out, "1 value in " + File("all") + "\n");
    EXPECT_EQ(Content("all"), head + "Width\t0\n");
    EXPECT_EQ(Koro({"settings", "diff", "cam", File("all"), "--all-writable"}).status, 0);
}

TEST_F(Settings, OfAllWritableFeaturesLoadAfterAReset)
{
    ASSERT_EQ(
        Koro({"set", "cam", "Width=32", "OffsetX=16", "ExposureTime=5000", "LineSelector=Line1", "LineInverter=1"})
            .status,
        0);
    const ToolResult saved = Koro({"settings", "save", "cam", File("all"), "--all-writable"});
    ASSERT_EQ(saved.status, 0) << saved.err;
    EXPECT_THAT(Content("all"), HasSubstr("\nLineInverter\t{LineSelector=Line1}\t1\n"));
    EXPECT_THAT(Content("all"), testing::Not(HasSubstr("TLParamsLocked")));
    EXPECT_THAT(Content("all"), HasSubstr("\nLineSelector\tLine0\n")); // set back before it was stored

    ASSERT_EQ(Koro({"run", "cam", "DeviceReset"}).status, 0);
    const ToolResult loaded = Koro({"settings", "load", "cam", File("all")});
    EXPECT_EQ(loaded.status, 0) << loaded.err;
    EXPECT_EQ(
        Koro({"get", "cam", "Width", "OffsetX", "ExposureTime", "LineInverter", "--set", "LineSelector=Line1"}).out,
        "Width=32\nOffsetX=16\nExposureTime=5000\nLineInverter=true\n");
    EXPECT_EQ(Koro({"settings", "diff", "cam", File("all"), "--all-writable"}).out, "");
}

// The entry Y can be chosen only while Outer is B, and Value depends on Switch, which is listed behind it.
TEST_F(Settings, OfAllWritableFeaturesHaveEveryCombinationOfSelectorsAndComeInOrder)
{
    json settings = OneCamera("Mono8", 64, 48);
    Describe(
        folder, settings, "Value Guarded Outer Inner Switch",
        "<Enumeration Name=\"Outer\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry Name=\"B\"><Value>4"
        "</Value></EnumEntry><pValue>OuterReg</pValue><pSelected>Inner</pSelected></Enumeration>" +
            IntRegisterAt("OuterReg", 0) +
            "<Enumeration Name=\"Inner\"><EnumEntry Name=\"X\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Y\">"
            "<pIsAvailable>IsB</pIsAvailable><Value>8</Value></EnumEntry><pValue>InnerReg</pValue>"
            "<pSelected>Value</pSelected></Enumeration>" +
            IntRegisterAt("InnerReg", 4) +
            "<IntSwissKnife Name=\"IsB\"><pVariable Name=\"O\">OuterReg</pVariable><Formula>O = 4</Formula>"
            "</IntSwissKnife>" +
            IntRegisterAt("Value", 16, "<pAddress>OuterReg</pAddress><pAddress>InnerReg</pAddress>") +
            "<Integer Name=\"Guarded\"><pIsLocked>Switch</pIsLocked><pValue>GuardedReg</pValue></Integer>" +
            IntRegisterAt("GuardedReg", 40) + IntRegisterAt("Switch", 44));
    Use(settings);
    const ToolResult saved = Koro({"settings", "save", "cam", File("all"), "--all-writable"});
    ASSERT_EQ(saved.status, 0) << saved.err;
    EXPECT_THAT(
        Content("all"), HasSubstr("Value\t{Outer=A\tInner=X}\t0\nValue\t{Outer=B\tInner=X}\t0\n"
                                  "Value\t{Outer=B\tInner=Y}\t0\n"));
    EXPECT_THAT(Content("all"), testing::ContainsRegex("\nSwitch\t0\n(.*\n)*Guarded\t0\n"));
    EXPECT_THAT(Content("all"), testing::EndsWith("\nOuter\tA\nInner\tX\n"));
    EXPECT_EQ(Koro({"settings", "load", "cam", File("all")}).status, 0);
}

TEST_F(Settings, SaveRefusesTextsThatAreLines)
{
    json settings = OneCamera("Mono8", 64, 48);
    Describe(
        folder, settings, "Name", "<String Name=\"Name\"><Streamable>Yes</Streamable><Value>a&#10;b</Value></String>");
    Use(settings);
    const ToolResult result = Koro({"settings", "save", "cam", File("file")});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(
        result.err, "koro: The camera's settings, line 5: there is no tab behind the name of the feature.\n"
                    "hint: A text with line feeds in it cannot be kept in such a file.\n");
    EXPECT_FALSE(std::filesystem::exists(File("file")));
}

TEST_F(Settings, SaveRefusesTextsWhoseLinesWouldBePassedOver)
{
    for (const std::string text : {"a&#10;#b", "a&#10;", "a&#10;# b&#9;c", "a&#10;&#10;"})
    {
        json settings = OneCamera("Mono8", 64, 48);
        Describe(
            folder, settings, "Name",
            "<String Name=\"Name\"><Streamable>Yes</Streamable><Value>" + text + "</Value></String>");
        Use(settings);
        const ToolResult result = Koro({"settings", "save", "cam", File("file")});
        EXPECT_EQ(result.status, failure) << text;
        EXPECT_EQ(
            result.err, "koro: The camera's settings, line 5: the text of Name goes on here.\n"
                        "hint: A text with line feeds in it cannot be kept in such a file.\n");
        EXPECT_FALSE(std::filesystem::exists(File("file")));
    }
}

TEST_F(Settings, ZeroByteWithTextBehindItIsRefusedWithItsLine)
{
    using namespace std::string_literals;
    const std::string file = Written("file", head + "Width\t32\n\0Height\t24\n"s);
    for (const std::string part : {"load", "check", "diff"})
    {
        const ToolResult result = Koro({"settings", part, "cam", file});
        EXPECT_EQ(result.status, failure);
        EXPECT_THAT(result.err, HasSubstr(", line 3: there is a zero byte, and text behind it."));
    }
    EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "64\n");
}

TEST_F(Settings, FileOfOtherSoftwareLoads)
{
    const std::string file = Written(
        "file", "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\r\n# GenApi persistence file (version 2.4.0)\r\n"
                "# of a camera\r\n# ----\r\nWidth\t32\r\n#\r\nLineInverter\t{LineSelector=Line1}\t1\r\n");
    const ToolResult result = Koro({"settings", "load", "cam", file});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "2 values written\n");
    EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "32\n");
}

TEST_F(Settings, BlankLinesAndLongCommentsAreNoDifference)
{
    const std::string file = Written(
        "file",
        head + "\n  \r\nWidth\t32\n#" + std::string(3000, '-') + "\nLineInverter\t{LineSelector=Line1}\t1\n\n\n");
    for (const std::string part : {"check", "load"})
    {
        const ToolResult result = Koro({"settings", part, "cam", file});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.err, "");
    }
    EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "32\n");
    EXPECT_EQ(Koro({"get", "cam", "LineInverter", "--set", "LineSelector=Line1"}).out, "true\n");
}

TEST_F(Settings, LoadThatLosesTheCameraFails)
{
    const std::string file = Written("file", head + "Width\t32\nHeight\t24\nGain\t1\n");
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "GCWritePort", "GC_ERR_IO") = {
        {"function", "GCWritePort"}, {"at", 2}, {"count", "every"}, {"error", "GC_ERR_IO"}};
    Use(settings);
    const ToolResult result = Koro({"settings", "load", "cam", file});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("line 3: Height=24: "));
    EXPECT_THAT(result.err, HasSubstr("line 4: Gain=1: "));
    EXPECT_THAT(result.err, HasSubstr("koro: 2 of 3 values could not be written: "));
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

TEST_F(Settings, LoadAndCheckExecuteNoCommand)
{
    ASSERT_EQ(Koro({"set", "cam", "Width=32"}).status, 0);
    const std::string file = Written("file", head + "DeviceReset\t1\nHeight\t24\nGain\t{DeviceReset=1}\t3\n");
    for (const std::string part : {"check", "load"})
    {
        const ToolResult result = Koro({"settings", part, "cam", file});
        EXPECT_EQ(result.status, failure);
        const std::string& listed = part == "load" ? result.err : result.out;
        EXPECT_THAT(
            listed, HasSubstr("line 2: DeviceReset=1: DeviceReset is a command, which load does not execute\n"));
        EXPECT_THAT(
            listed,
            HasSubstr("line 4: Gain[DeviceReset=1]=3: DeviceReset is a command, which load does not execute\n"));
        EXPECT_EQ(Koro({"get", "cam", "Width"}).out, "32\n") << part;
    }
    EXPECT_EQ(Koro({"get", "cam", "Height"}).out, "24\n");

    const std::string mixed = Written("mixed", head + "DeviceReset\t1\nNothing\t1\nHeight\t48\n");
    const ToolResult result = Koro({"settings", "load", "cam", mixed});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: 2 of 3 values could not be written: "));
    EXPECT_EQ(Koro({"get", "cam", "Width", "Height"}).out, "Width=32\nHeight=48\n");
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

TEST_F(Settings, CheckCountsNoFailureThatAnotherLineOfTheFileMayRemove)
{
    const std::string limit = "makes it possible: OffsetX takes 0 to 0 in steps of 2 pixel.\n";
    const std::string file = Written("file", head + "OffsetX\t16\nWidth\t32\n");
    const ToolResult result = Koro({"settings", "check", "cam", file});
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_THAT(result.out, HasSubstr("line 2: OffsetX: 0 -> 16, if the change of Width " + limit));
    EXPECT_THAT(result.out, HasSubstr("2 values would change, 0 cannot be written, 0 are the same\n"));
    EXPECT_EQ(Koro({"settings", "load", "cam", file}).status, 0);

    const std::string other = Written("other", head + "OffsetX\t16\nHeight\t24\nPayloadSize\t1\nWidth\t64\n");
    ASSERT_EQ(Koro({"set", "cam", "OffsetX=0", "Width=64"}).status, 0);
    const ToolResult failing = Koro({"settings", "check", "cam", other});
    EXPECT_EQ(failing.status, failure);
    EXPECT_THAT(failing.out, HasSubstr("line 2: OffsetX=16: OffsetX takes 0 to 0 in steps of 2 pixel.\n"));
    EXPECT_THAT(failing.out, HasSubstr("1 value would change, 2 cannot be written, 1 are the same\n"));
}

TEST_F(Settings, CheckLooksAtEachEntryOfASelectorAndSetsItBack)
{
    ASSERT_EQ(Koro({"set", "cam", "LineSelector=Line0", "LineInverter=1"}).status, 0);
    const std::string file = Written(
        "file", head + "LineInverter\t{LineSelector=Line0}\t1\n"
                       "LineInverter\t{LineSelector=Line1}\t1\n");
    const ToolResult result = Koro({"settings", "check", "cam", file});
    EXPECT_THAT(result.out, HasSubstr("line 3: LineInverter[LineSelector=Line1]: false -> 1\n"));
    EXPECT_THAT(result.out, HasSubstr("1 value would change, 0 cannot be written, 1 are the same\n"));
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

TEST_F(Settings, DiffTakesANameThatNoFileCanHaveForACamera)
{
    const ToolResult result = Koro({"settings", "diff", std::string(1000, 'x'), Written("file", head)});
    EXPECT_EQ(result.status, noSuchCamera);
    EXPECT_THAT(result.err, HasSubstr("koro: No camera is called "));
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

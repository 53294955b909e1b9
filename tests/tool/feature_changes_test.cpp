// `koro set`, `run`, `describe` and `watch`, and `grab --set`: what changes a camera, and what keeps it from changing.
#include "tests/tool/described_camera.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"
#include "tests/unit/tool/image_files.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

// The camera "cam" with these nodes, all of them features.
class DescribedCamera
{
public:
    DescribedCamera(const std::string& features, const std::string& nodes) : camera(Settings(features, nodes)) {}

    ToolResult Run(const Arguments& arguments) const { return camera.Run(arguments); }
    const Environment& Surroundings() const { return camera.Surroundings(); }

private:
    json Settings(const std::string& features, const std::string& nodes) const
    {
        json settings = OneCamera("Mono8", 64, 48);
        Describe(folder, settings, features, nodes);
        return settings;
    }

    TemporaryFolder folder;
    Camera camera;
};

TEST(Set, WritesInTheOrderGivenAndTellsWhatTheCameraMadeOfIt)
{
    const ToolResult result = Camera().Run(
        {"set", "cam", "Width=32", "OffsetX=32", "PixelFormat=Mono12p", "ExposureTime=5e3", "ReverseX=on"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "Width=32\nOffsetX=32\nPixelFormat=Mono12p\nExposureTime=5000\nReverseX=true\n");
    EXPECT_EQ(result.err, "");
}

TEST(Set, FirstFailureIsNamedWithWhatWasWrittenBefore)
{
    // The offset has no room before the width gives it.
    const ToolResult result = Camera().Run({"set", "cam", "Height=24", "OffsetX=32", "Width=32"});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.out, "Height=24\n");
    EXPECT_THAT(result.err, HasSubstr("koro: OffsetX was not set to 32: "));
    EXPECT_THAT(result.err, HasSubstr("\nWritten before it: Height\n"));
    EXPECT_THAT(result.err, HasSubstr("\nhint: OffsetX takes 0 to 0 in steps of 2 pixel.\n"));
}

TEST(Set, NothingIsWrittenWhenANameOrAValueCannotBeRight)
{
    const struct
    {
        const char* assignment;
        int status;
        const char* text;
    } cases[] = {
        {"Widht=32", noSuchFeature, "koro: The remote device has no feature \"Widht\".\n"},
        {"Width=wide", failure, "koro: \"wide\" is no value for Width, which is a whole number.\n"},
        {"Width=", failure, "koro: \"\" is no value for Width, which is a whole number.\n"},
        {"Width=1.5", failure, "koro: \"1.5\" is no value for Width, which is a whole number.\n"},
        {"Width=99999999999999999999", failure, "koro: \"99999999999999999999\" is no value for Width"},
        {"ExposureTime=long", failure, "koro: \"long\" is no value for ExposureTime, which is a number.\n"},
        {"Width=+-32", failure, "koro: \"+-32\" is no value for Width, which is a whole number.\n"},
        {"ExposureTime=nan", failure, "koro: \"nan\" is no value for ExposureTime, which is a number.\n"},
        {"ExposureTime=-nan", failure, "koro: \"-nan\" is no value for ExposureTime, which is a number.\n"},
        {"ExposureTime=+-5", failure, "koro: \"+-5\" is no value for ExposureTime, which is a number.\n"},
        {"ExposureTime=5x", failure, "koro: \"5x\" is no value for ExposureTime, which is a number.\n"},
        {"ExposureTime=1e400", failure, "koro: \"1e400\" is no value for ExposureTime, which is a number.\n"},
        {"ExposureTime=1,5", failure, "koro: \"1,5\" is no value for ExposureTime, which is a number.\n"},
        {"ReverseX=perhaps", failure, "koro: \"perhaps\" is no value for ReverseX, which is true or false.\n"},
        {"PixelFormat=Mono9", failure, "koro: \"Mono9\" is no value for PixelFormat.\nhint: It can be Mono8, "},
        {"LUTValueAll=0x12", failure, "koro: LUTValueAll has 256 bytes; the value has 1.\n"},
        {"LUTValueAll=xy", failure, "koro: \"xy\" is no value for LUTValueAll, which is bytes in hexadecimal.\n"},
        {"LUTValueAll=0x123", failure, "koro: \"0x123\" is no value for LUTValueAll, which is bytes in hexadecimal.\n"},
        {"AcquisitionStart=1", failure, "koro: AcquisitionStart is a command and has no value.\nhint: `koro run`"},
        {"ImageFormatControl=1", failure, "koro: ImageFormatControl is of the type Category and has no value.\n"},
    };
    const Camera camera;
    for (const auto& [assignment, status, text] : cases)
    {
        const ToolResult result = camera.Run({"set", "cam", "Height=24", assignment});
        EXPECT_EQ(result.status, status) << assignment;
        EXPECT_EQ(result.out, "") << assignment;
        EXPECT_THAT(result.err, HasSubstr(text));
    }
}

TEST(Set, CommandLineThatIsNoAssignmentIsRefused)
{
    const Camera camera;
    EXPECT_EQ(camera.Run({"set", "cam"}).status, usage);
    for (const char* wrong : {"Width", "=32"})
    {
        const ToolResult result = camera.Run({"set", "cam", wrong});
        EXPECT_EQ(result.status, usage);
        EXPECT_THAT(result.err, HasSubstr(" is not of the form NAME=VALUE"));
        EXPECT_EQ(camera.Run({"get", "cam", "Height", "--set", wrong}).status, usage);
    }
}

TEST(Set, EveryTypeTakesItsSpellings)
{
    const Camera camera;
    EXPECT_EQ(camera.Run({"set", "cam", "Width=0x20"}).out, "Width=32\n");
    EXPECT_EQ(
        camera.Run({"set", "cam", "TestPattern=1"}).out,
        "TestPattern=" + camera.Run({"get", "cam", "TestPattern", "--set", "TestPattern=1"}).out);
    EXPECT_EQ(camera.Run({"set", "cam", "DeviceUserID=a=b c"}).out, "DeviceUserID=a=b c\n");
    EXPECT_EQ(camera.Run({"set", "cam", "DeviceUserID="}).out, "DeviceUserID=\n");
    EXPECT_EQ(camera.Run({"set", "cam", "ReverseX=YES", "ReverseY=0"}).out, "ReverseX=true\nReverseY=false\n");
    const std::string table = "0x" + std::string(512, 'a');
    EXPECT_EQ(camera.Run({"set", "cam", "LUTValueAll=" + table}).out, "LUTValueAll=" + table + "\n");
    const DescribedCamera addresses(
        "IP", "<Integer Name=\"IP\"><Value>0</Value><Representation>IPV4Address</Representation></Integer>"
              "<Integer Name=\"MAC\"><Value>0</Value><Representation>MACAddress</Representation></Integer>");
    EXPECT_EQ(
        addresses.Run({"set", "cam", "IP=192.168.1.20", "MAC=00:1f:2A:03:04:05"}).out,
        "IP=192.168.1.20\nMAC=00:1f:2a:03:04:05\n");
    for (const char* wrong : {"IP=1.2.3", "IP=1.2.3.4.5", "IP=1.2.3.256", "MAC=00:11:22:33:44"})
        EXPECT_EQ(addresses.Run({"set", "cam", wrong}).status, failure) << wrong;
}

TEST(Set, WhatTheFeatureTakesIsTheHint)
{
    const DescribedCamera camera(
        "Listed", "<Integer Name=\"Listed\"><Value>1</Value><Max>9</Max><ValidValueSet>1;3;9</ValidValueSet></Integer>"
                  "<Integer Name=\"Zero\"><Value>0</Value></Integer>"
                  "<Enumeration Name=\"Mode\"><EnumEntry Name=\"On\"><pIsAvailable>Zero</pIsAvailable><Value>0</Value>"
                  "</EnumEntry><Value>0</Value></Enumeration>");
    EXPECT_THAT(camera.Run({"set", "cam", "Listed=20"}).err, HasSubstr("\nhint: Listed takes 1, 3, 9.\n"));
    EXPECT_THAT(
        camera.Run({"set", "cam", "Mode=Off"}).err,
        HasSubstr("koro: \"Off\" is no value for Mode.\nhint: None can be chosen at this time.\n"));
    EXPECT_THAT(
        Camera().Run({"set", "cam", "DeviceUserID=" + std::string(100, 'x')}).err,
        HasSubstr("\nhint: DeviceUserID takes a text of at most 64 bytes.\n"));
}

TEST(Set, LockedFeatureIsNotWritten)
{
    const ToolResult result = Camera().Run({"set", "cam", "TLParamsLocked=1", "Width=32"});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.out, "TLParamsLocked=1\n");
    EXPECT_THAT(result.err, HasSubstr("koro: Width was not set to 32: "));
    EXPECT_THAT(result.err, HasSubstr("\nhint: Width is locked, as TLParamsLocked is 1.\n"));
}

TEST(Set, CameraThatIsInUseGivesTheHintForIt)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFOpenDevice", "GC_ERR_RESOURCE_IN_USE");
    const ToolResult result = Camera(settings).Run({"set", "cam", "Width=32"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("hint: Another program may have opened the camera"));
}

TEST(Set, FailedTransferCarriesTheProducersText)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "GCWritePort", "GC_ERR_IO")["text"] = "cable";
    settings["misbehaviour"]["calls"].back()["count"] = "every";
    const ToolResult result = Camera(settings).Run({"set", "cam", "Width=32"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: Width was not set to 32: "));
    EXPECT_THAT(result.err, HasSubstr("GCWritePort: cable"));
}

TEST(Set, InterruptEndsItAfterTheWriteThatIsUnderWay)
{
    // Each write takes long enough for the signal to come before the last one.
    json settings = OneCamera("Mono8", 64, 48);
    json& call = FailCall(settings, "GCWritePort", "GC_ERR_SUCCESS");
    call["count"] = "every";
    call["delay_ms"] = 1500;
    const Camera camera(settings);
    ToolRun run({"set", "cam", "Height=24", "Width=32", "ExposureTime=20"}, camera.Surroundings());
    ASSERT_TRUE(run.AwaitOutput("Height="));
    run.Signal(SIGINT);
    const ToolResult result = run.Finish();
    EXPECT_EQ(result.status, interrupted);
    EXPECT_THAT(result.out, Not(HasSubstr("ExposureTime=")));
    EXPECT_EQ(result.err, "koro: stopping; once more ends at once\n");
}

TEST(Set, ModuleIsChosen)
{
    EXPECT_EQ(Camera().Run({"set", "cam", "--module", "interface", "DeviceSelector=0"}).out, "DeviceSelector=0\n");
}

TEST(Run, ExecutesAndWaits)
{
    const Camera camera;
    const ToolResult result = camera.Run({"run", "cam", "TimestampLatch"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "TimestampLatch is executed\nTimestampLatch is done\n");
    EXPECT_EQ(camera.Run({"run", "cam", "--module", "interface", "DeviceUpdateList"}).status, 0);
}

// A command that is never done: its register keeps the value.
const std::string endlessCommand =
    IntRegisterAt("GoRegister", 0, "<Cachable>NoCache</Cachable>") +
    "<Command Name=\"Go\"><pValue>GoRegister</pValue><CommandValue>1</CommandValue></Command>";

TEST(Run, CommandThatGoesOnIsTold)
{
    const DescribedCamera camera("Go", endlessCommand);
    for (const char* timeout_ms : {"0", "120"})
    {
        const ToolResult result = camera.Run({"run", "cam", "Go", "--timeout", timeout_ms});
        EXPECT_EQ(result.status, failure);
        EXPECT_EQ(
            result.err, std::string("koro: Go is not done after ") + timeout_ms +
                            " ms.\nhint: It goes on in the camera; give it more time with --timeout.\n");
    }
    EXPECT_EQ(camera.Run({"run", "cam", "Go", "--timeout", "-1"}).status, usage);
}

TEST(Run, InterruptEndsTheWait)
{
    const DescribedCamera camera("Go", endlessCommand);
    ToolRun waiting({"run", "cam", "Go", "--timeout", "3600000"}, camera.Surroundings());
    ASSERT_TRUE(waiting.AwaitOutput("Go is executed\n"));
    waiting.Signal(SIGINT);
    EXPECT_EQ(waiting.Finish().status, interrupted);
}

TEST(Run, WhatIsNoCommandOrCannotBeExecutedIsNamed)
{
    const Camera camera;
    EXPECT_EQ(
        camera.Run({"run", "cam", "Width"}).err,
        "koro: Width is no command, but of the type Integer.\nhint: `koro set` changes values.\n");
    EXPECT_EQ(camera.Run({"run", "cam", "Nothing"}).status, noSuchFeature);
    const DescribedCamera locked(
        "Go", "<Integer Name=\"Zero\"><Value>0</Value></Integer><Command Name=\"Go\"><pIsAvailable>Zero</pIsAvailable>"
              "<pValue>Zero</pValue><CommandValue>1</CommandValue></Command>");
    const ToolResult result = locked.Run({"run", "cam", "Go"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: Go was not executed: "));
    EXPECT_THAT(result.err, HasSubstr("\nhint: Go is not available, as Zero is 0.\n"));
}

TEST(Describe, TellsAllOfAFeature)
{
    const ToolResult result = Camera().Run({"describe", "cam", "Width"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, testing::StartsWith("name                Width\n"));
    EXPECT_THAT(result.out, HasSubstr("\ntype                Integer\n"));
    EXPECT_THAT(result.out, HasSubstr("\naccess              read and write\n"));
    EXPECT_THAT(result.out, HasSubstr("\nvalue               64\n"));
    EXPECT_THAT(result.out, HasSubstr("\nunit                pixel\n"));
    EXPECT_THAT(result.out, ContainsRegex("\nrange +[0-9]+\\.\\.64"));
    EXPECT_THAT(result.out, HasSubstr("\nstored in settings  yes\n"));
    EXPECT_THAT(result.out, ContainsRegex("\ninvalidated by +.*WidthReg"));
    EXPECT_THAT(Camera().Run({"describe", "cam", "GainSelector"}).out, ContainsRegex("\ninvalidates +.*Gain"));
    EXPECT_THAT(result.out, Not(HasSubstr("not writable")));
}

TEST(Describe, TellsEntriesAndSelectors)
{
    const Camera camera;
    EXPECT_THAT(
        camera.Run({"describe", "cam", "GainSelector"}).out,
        ContainsRegex("\nentries +AnalogAll \\(0\\), DigitalAll \\(1\\)\n.*"));
    EXPECT_THAT(camera.Run({"describe", "cam", "PixelFormat"}).out, ContainsRegex("\nentries +.*Mono8 \\(0x01080001\\)"));
    EXPECT_THAT(camera.Run({"describe", "cam", "GainSelector"}).out, ContainsRegex("\nselects +Gain"));
    EXPECT_THAT(camera.Run({"describe", "cam", "Gain"}).out, ContainsRegex("\nselected by +GainSelector\n"));
    EXPECT_THAT(
        camera.Run({"describe", "cam", "DeviceTemperatureReg"}).out, ContainsRegex("\npolled after +1000 ms\n"));
}

TEST(Describe, TellsCommandsAndCategories)
{
    const Camera camera;
    EXPECT_THAT(camera.Run({"describe", "cam", "TimestampLatch"}).out, HasSubstr("\ndone                yes\n"));
    EXPECT_THAT(
        camera.Run({"describe", "cam", "AnalogControl"}).out, ContainsRegex("\nfeatures +GainSelector, Gain, "));
    EXPECT_THAT(camera.Run({"describe", "cam", "DeviceUserID"}).out, ContainsRegex("\nlongest text +64 bytes\n"));
    EXPECT_THAT(
        camera.Run({"describe", "cam", "LUTValueAll"}).out, ContainsRegex("\nrange +256 bytes\naddress +1536\n"));
}

TEST(Describe, NamesTheFeatureBehindALock)
{
    // The lock itself is no feature; what a person can change stands behind it.
    const DescribedCamera camera(
        "Held Lock Other", IntRegisterAt("LockReg", 0) + IntRegisterAt("Deeper", 4) +
                               "<Integer Name=\"Held\"><pIsLocked>Formula</pIsLocked><Value>1</Value></Integer>"
                               "<IntSwissKnife Name=\"Formula\"><pVariable Name=\"A\">LockReg</pVariable>"
                               "<pVariable Name=\"B\">Deeper</pVariable><Formula>A || B</Formula></IntSwissKnife>"
                               "<Integer Name=\"Lock\"><pValue>LockReg</pValue></Integer>"
                               "<Integer Name=\"Other\"><pValue>Deeper</pValue></Integer>");
    const ToolResult result = camera.Run({"describe", "cam", "Held", "--set", "Lock=1", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(
        json::parse(result.out).at("notWritable"),
        json::array({"Held is locked, as Formula is 1 (Lock is 1, Other is 0)."}));
}

TEST(Describe, NamesTheLockAndItsValue)
{
    const Camera camera;
    const ToolResult result = camera.Run({"describe", "cam", "Width", "--set", "TLParamsLocked=1"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\naccess              read only\n"));
    EXPECT_THAT(result.out, ContainsRegex("\nnot writable +Width is locked, as TLParamsLocked is 1\\.\n"));
}

TEST(Describe, NamesWhateverKeepsAFeatureFromBeingWritten)
{
    const std::string numbers = "<Integer Name=\"Zero\"><Value>0</Value></Integer>"
                                "<Boolean Name=\"Yes\"><Value>true</Value></Boolean>";
    const auto integer = [](const std::string& name, const std::string& elements) {
        return "<Integer Name=\"" + name + "\">" + elements + "</Integer>";
    };
    const DescribedCamera camera(
        "A", numbers + integer("Absent", "<pIsImplemented>Zero</pIsImplemented><Value>1</Value>") +
                 integer("Off", "<pIsAvailable>Zero</pIsAvailable><Value>1</Value>") +
                 integer("Held", "<pIsLocked>Yes</pIsLocked><Value>1</Value>") +
                 integer("ThroughValue", "<pValue>Held</pValue>") +
                 integer("Imposed", "<ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value>") +
                 integer("Sum", "<pValue>Formula</pValue>") +
                 "<IntSwissKnife Name=\"Formula\"><Formula>1 + 1</Formula></IntSwissKnife>" +
                 "<IntReg Name=\"Fixed\"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>"
                 "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>" +
                 integer("A", "<pValue>B</pValue>") + integer("B", "<pIsLocked>Yes</pIsLocked><pValue>C</pValue>") +
                 integer("C", "<Value>1</Value>"));
    const struct
    {
        const char* feature;
        const char* reason;
    } cases[] = {
        {"Absent", "Absent is not implemented, as Zero is 0."},
        {"Off", "Off is not available, as Zero is 0."},
        {"Held", "Held is locked, as Yes is true."},
        {"ThroughValue", "Held is locked, as Yes is true."},
        {"Imposed", "Imposed is read-only by the description."},
        {"Sum", "Formula is calculated from other nodes and cannot be written."},
        {"Fixed", "Fixed is read-only by the description."},
        {"A", "B is locked, as Yes is true."},
        {"Root", "Root is a category, which only lists features."},
    };
    for (const auto& [feature, reason] : cases)
    {
        const ToolResult result = camera.Run({"describe", "cam", feature, "--json"});
        ASSERT_EQ(result.status, 0) << feature << result.err;
        EXPECT_EQ(json::parse(result.out).at("notWritable"), json::array({reason})) << feature;
    }
    EXPECT_EQ(json::parse(camera.Run({"describe", "cam", "C", "--json"}).out).at("notWritable"), json::array());
}

TEST(Describe, UnavailableFeatureThatIsReadOnlyHasBothReasons)
{
    const DescribedCamera camera(
        "Gone Imposed", "<Integer Name=\"Zero\"><Value>0</Value></Integer>"
                        "<Integer Name=\"Gone\"><pIsAvailable>Zero</pIsAvailable><pValue>Fixed</pValue></Integer>"
                        "<IntReg Name=\"Fixed\"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>"
                        "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>"
                        "<Integer Name=\"Imposed\"><ImposedAccessMode>RO</ImposedAccessMode><pValue>Off</pValue>"
                        "</Integer><Integer Name=\"Off\"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Integer>");
    const auto reasons = [&](const char* feature) {
        return json::parse(camera.Run({"describe", "cam", feature, "--json"}).out).at("notWritable");
    };
    EXPECT_EQ(
        reasons("Gone"),
        json::array({"Gone is not available, as Zero is 0.", "Fixed is read-only by the description."}));
    EXPECT_EQ(
        reasons("Imposed"),
        json::array({"Off is not available, as Zero is 0.", "Imposed is read-only by the description."}));
}

TEST(Describe, CameraThatIsInUseIsDescribedFromReading)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFOpenDevice", "GC_ERR_RESOURCE_IN_USE");
    const ToolResult result = Camera(settings).Run({"describe", "cam", "Width"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(
        result.out,
        ContainsRegex("\nnot writable +The camera could be opened for reading only: .Function: IFOpenDevice"));
    EXPECT_EQ(result.out.find("not writable"), result.out.rfind("not writable")) << result.out;
}

TEST(Describe, ZippedDescriptionTellsTheSame)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["cameras"][0]["descriptionForm"] = "zipped";
    const ToolResult result = Camera(settings).Run({"describe", "cam", "Width", "--set", "TLParamsLocked=1"});
    EXPECT_THAT(result.out, ContainsRegex("\nnot writable +Width is locked, as "));
}

TEST(Describe, UnknownFeatureIsToldAsEverywhere)
{
    EXPECT_EQ(Camera().Run({"describe", "cam", "Nothing"}).status, noSuchFeature);
}

TEST(Watch, PrintsValuesAndTheirChanges)
{
    // The camera warms up; it is queried every second.
    const ToolResult result = Camera().Run({"watch", "cam", "DeviceTemperature", "Width", "--changes", "4"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, ContainsRegex("^ +[0-9.]+  DeviceTemperature=[0-9.]+\n +[0-9.]+  Width=64\n"));
    EXPECT_THAT(result.out, ContainsRegex("DeviceTemperature=.*DeviceTemperature=.*DeviceTemperature="));
}

TEST(Watch, RefreshAsksForWhatIsNotPolled)
{
    const ToolResult result = Camera().Run(
        {"watch", "cam", "TimerValue", "--set", "TimerDuration=60000000", "--set", "TimerReset=1", "--changes", "1"});
    EXPECT_EQ(result.status, failure); // a command is not set
    const ToolResult refreshed = Camera().Run(
        {"watch", "cam", "--module", "system", "TLID", "--refresh", "--interval", "5", "--duration", "50"});
    EXPECT_EQ(refreshed.status, 0) << refreshed.err;
    EXPECT_THAT(refreshed.out, ContainsRegex("^ +[0-9.]+  TLID=[^\n]+\n$")); // once: it does not change
}

TEST(Watch, WithoutNamesWatchesAllAndPrintsChangesAlone)
{
    const ToolResult result = Camera().Run({"watch", "cam", "--changes", "1", "--json"});
    EXPECT_EQ(result.status, 0) << result.err;
    const json change = json::parse(result.out);
    EXPECT_EQ(change.at("name"), "DeviceTemperature");
    EXPECT_TRUE(change.at("seconds").is_number());
    EXPECT_TRUE(change.at("value").is_number());
}

TEST(Watch, JSONHasValuesInTheirTypesAndProblemsBesideThem)
{
    const DescribedCamera camera(
        "Whole Flag Text Broken", "<Integer Name=\"Whole\"><Value>64</Value></Integer>"
                                  "<IntSwissKnife Name=\"Broken\"><Formula>1 / 0</Formula></IntSwissKnife>"
                                  "<Boolean Name=\"Flag\"><Value>1</Value></Boolean>"
                                  "<String Name=\"Text\"><Value>a</Value></String>");
    const ToolResult result =
        camera.Run({"watch", "cam", "Whole", "Flag", "Text", "Broken", "--json", "--changes", "4"});
    EXPECT_EQ(result.status, 0) << result.err;
    std::istringstream lines(result.out);
    std::vector<json> changes;
    for (std::string line; std::getline(lines, line);)
        changes.push_back(json::parse(line));
    ASSERT_EQ(changes.size(), 4u);
    EXPECT_EQ(changes[0].at("value"), 64);
    EXPECT_EQ(changes[1].at("value"), true);
    EXPECT_EQ(changes[2].at("value"), "a");
    EXPECT_FALSE(changes[3].contains("value"));
    EXPECT_THAT(changes[3].at("problem").get<std::string>(), testing::Not(testing::IsEmpty()));
}

TEST(Watch, FeatureThatCannotBeReadIsToldOnce)
{
    const DescribedCamera camera("Broken", "<IntSwissKnife Name=\"Broken\"><Formula>1 / 0</Formula></IntSwissKnife>");
    const ToolResult result =
        camera.Run({"watch", "cam", "Broken", "--refresh", "--interval", "1", "--duration", "30"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, ContainsRegex("^ +[0-9.]+  Broken=cannot be read: [^\n]+\n$"));
}

TEST(Watch, InterruptEndsIt)
{
    const Camera camera;
    ToolRun run({"watch", "cam", "Width", "--interval", "3600000"}, camera.Surroundings());
    ASSERT_TRUE(run.AwaitOutput("Width=64\n"));
    run.Signal(SIGINT);
    EXPECT_EQ(run.Finish().status, interrupted);
}

TEST(Watch, CameraThatIsGoneEndsIt)
{
    json settings = OneCamera("Mono8", 64, 48);
    // Beyond the reads that opening takes.
    FailCall(settings, "GCReadPort", "GC_ERR_IO")["at"] = 100;
    settings["misbehaviour"]["calls"].back()["count"] = "every";
    const ToolResult result = Camera(settings).Run({"watch", "cam", "Width", "--refresh", "--interval", "1"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("GCReadPort"));
}

TEST(Watch, CameraThatIsUnpluggedEndsIt)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["connection"]["script"].push_back({{"camera", "cam"}, {"do", "unplug"}, {"after_ms", 1000}});
    for (const Arguments& names : {Arguments{}, Arguments{"Width"}, Arguments{"ExposureAuto"}})
    {
        Arguments arguments = {"watch", "cam", "--refresh", "--interval", "5", "--duration", "60000"};
        arguments.insert(arguments.begin() + 2, names.begin(), names.end());
        const ToolResult result = Camera(settings).Run(arguments);
        EXPECT_EQ(result.status, failure) << result.out;
        EXPECT_THAT(result.err, HasSubstr("koro: "));
    }
}

TEST(Watch, BadOptionsAreRefused)
{
    const Camera camera;
    EXPECT_EQ(camera.Run({"watch", "cam", "--interval", "0"}).status, usage);
    EXPECT_EQ(camera.Run({"watch", "cam", "--changes", "0"}).status, usage);
    EXPECT_EQ(camera.Run({"watch", "cam", "--duration", "soon"}).status, usage);
    EXPECT_EQ(camera.Run({"watch", "cam", "Nothing"}).status, noSuchFeature);
}

} // namespace

#include "tests/tool/expected_pictures.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"
#include "tests/unit/tool/image_files.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;

// The camera is lost at the fourth frame of each acquisition, for as many updates of the list.
json VanishingCamera(int missingUpdates)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["cameras"][0]["startWithStream"] = false;
    settings["misbehaviour"]["devices"].push_back(
        {{"camera", "cam"}, {"vanishAtFrame", 4}, {"missingUpdates", missingUpdates}});
    return settings;
}

// The camera is unplugged in place of its fourth frame, once, and plugged in again under these conditions.
json ReplugedCamera(const char* afterReplug, const json& conditions = json::object())
{
    json settings = OneCamera("Mono8", 64, 48);
    json& connection = settings["connection"];
    connection["afterReplug"] = afterReplug;
    connection["script"].push_back({{"camera", "cam"}, {"do", "unplug"}, {"atFrame", 4}});
    connection["script"].push_back({{"camera", "cam"}, {"do", "replug"}});
    connection["script"].back().update(conditions);
    return settings;
}

// A camera that takes its time is not given up.
Arguments GrabFrames(const TemporaryFolder& folder, const std::string& frames)
{
    return {"grab", "cam", "--frames", frames, "--output", folder.File("out"), "--reconnect", "--timeout", "5000"};
}

TEST(GrabReconnect, CameraThatComesBackIsOpenedAnewAndGoesOn)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool(GrabFrames(folder, "5"), SimulatorWith(folder, VanishingCamera(2)));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\ncamera lost after 3 pictures\ncamera back, "));
    EXPECT_THAT(result.out, HasSubstr(" s without a frame\n4/5 "));
    EXPECT_THAT(result.out, HasSubstr("\npictures        5\n"));
    EXPECT_THAT(result.out, HasSubstr("\nreconnects      1\nlongest outage  "));
    // The acquisition after the loss counts its frames from the beginning.
    EXPECT_EQ(DifferenceToPattern(ReadPNG(folder.File("out/cam-000003.png")), {"Mono8", "M", 8}, 3), "");
    EXPECT_EQ(DifferenceToPattern(ReadPNG(folder.File("out/cam-000004.png")), {"Mono8", "M", 8}, 1), "");
    EXPECT_FALSE(std::filesystem::exists(folder.File("out/cam-000006.png")));
}

TEST(GrabReconnect, CameraMayBeLostAgainAndAgain)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool(GrabFrames(folder, "10"), SimulatorWith(folder, VanishingCamera(1)));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nreconnects      3\n"));
}

TEST(GrabReconnect, StreamThatGoesOnByItselfIsNotOpenedAnew)
{
    const TemporaryFolder folder;
    const json settings = ReplugedCamera("resume", {{"missingUpdates", 2}});
    const ToolResult result = RunTool(GrabFrames(folder, "6"), SimulatorWith(folder, settings));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\ncamera lost after 3 pictures\ncamera back, "));
    EXPECT_THAT(result.out, HasSubstr("\npictures        6\n"));
    EXPECT_THAT(result.out, HasSubstr("\nreconnects      1\n"));
    EXPECT_THAT(result.out, HasSubstr("\ntimeouts        0\n"));
    // The fourth frame was lost with the cable, and the acquisition counts on.
    EXPECT_EQ(DifferenceToPattern(ReadPNG(folder.File("out/cam-000003.png")), {"Mono8", "M", 8}, 3), "");
    EXPECT_EQ(DifferenceToPattern(ReadPNG(folder.File("out/cam-000004.png")), {"Mono8", "M", 8}, 5), "");
    EXPECT_EQ(DifferenceToPattern(ReadPNG(folder.File("out/cam-000006.png")), {"Mono8", "M", 8}, 7), "");
}

TEST(GrabReconnect, CameraThatWasAwayBetweenTwoLooksIsOpenedAnew)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool(GrabFrames(folder, "5"), SimulatorWith(folder, ReplugedCamera("reopen")));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\ncamera lost after 3 pictures\ncamera back, "));
    EXPECT_THAT(result.out, HasSubstr("\nreconnects      1\n"));
    EXPECT_EQ(DifferenceToPattern(ReadPNG(folder.File("out/cam-000004.png")), {"Mono8", "M", 8}, 1), "");
}

TEST(GrabReconnect, CameraThatIsOpenedAnewIsNotTakenForLostWhenItIsSlow)
{
    const TemporaryFolder folder;
    json settings = ReplugedCamera("reopen", {{"missingUpdates", 1}});
    settings["interfaces"][0]["cameras"][0]["rate"] = 2; // slower than the tool looks for it
    const ToolResult result = RunTool(GrabFrames(folder, "5"), SimulatorWith(folder, settings));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nreconnects      1\n"));
}

// The list keeps the camera, and nothing reports that it was unplugged.
json SilentlyReplugged(const char* afterReplug)
{
    json settings = ReplugedCamera(afterReplug, {{"missingUpdates", 12}});
    settings["connection"]["staysListed"] = true;
    settings["connection"]["recordBytes"] = 0;
    return settings;
}

TEST(GrabReconnect, CameraThatDoesNotAnswerIsWaitedForAlthoughItIsListed)
{
    for (const char* const afterReplug : {"resume", "reopen"})
    {
        const TemporaryFolder folder;
        // More updates of the list than time-outs that end a grab: each look of the tool makes one.
        const ToolResult result = RunTool(
            {"grab", "cam", "--frames", "6", "--output", folder.File("out"), "--reconnect", "--timeout", "100"},
            SimulatorWith(folder, SilentlyReplugged(afterReplug)));
        EXPECT_EQ(result.status, 0) << afterReplug << result.err;
        EXPECT_THAT(result.out, HasSubstr("\ncamera lost after 3 pictures\ncamera back, "));
        EXPECT_THAT(result.out, HasSubstr("\npictures        6\n"));
        EXPECT_THAT(result.out, HasSubstr("\nreconnects      1\nlongest outage  "));
    }
}

TEST(GrabReconnect, ListedCameraThatDoesNotAnswerIsNamedWithoutTheOption)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool(
        {"grab", "cam", "--frames", "6", "--output", folder.File("out"), "--timeout", "100"},
        SimulatorWith(folder, ReplugedCamera("reopen", {{"missingUpdates", 1000000}})));
    EXPECT_EQ(result.status, framesMissing);
    EXPECT_THAT(
        result.err, HasSubstr("koro: No frame came within 100 ms, 3 times in a row, and the camera does not answer.\n"
                              "koro: The camera gave 3 of 6 pictures.\nhint: Check the camera's cable and power; "));
}

TEST(GrabReconnect, SettingsAreWrittenAnew)
{
    const TemporaryFolder folder;
    Arguments arguments = GrabFrames(folder, "4");
    arguments.insert(arguments.end(), {"--set", "Width=32"});
    ASSERT_EQ(RunTool(arguments, SimulatorWith(folder, VanishingCamera(1))).status, 0);
    EXPECT_EQ(ReadPNG(folder.File("out/cam-000004.png")).width, 32u);
}

TEST(GrabReconnect, WaitForACameraThatStaysAwayEndsWithAnInterrupt)
{
    const TemporaryFolder folder;
    ToolRun run(GrabFrames(folder, "5"), SimulatorWith(folder, VanishingCamera(0)));
    ASSERT_TRUE(run.AwaitOutput("camera lost after 3 pictures\n"));
    run.Signal(SIGINT);
    const ToolResult result = run.Finish();
    EXPECT_EQ(result.status, interrupted);
    EXPECT_THAT(result.out, HasSubstr("\npictures    3\n"));
}

TEST(GrabReconnect, FailureOfACameraThatIsThereIsAFailure)
{
    const TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "DSQueueBuffer", "GC_ERR_ERROR")["at"] = 12;
    const ToolResult result = RunTool(GrabFrames(folder, "20"), SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("koro: [Function: DSQueueBuffer"));
}

} // namespace

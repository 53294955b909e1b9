#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;

// "change place" of each line.
std::vector<std::string> ChangesOf(const ToolResult& result)
{
    std::vector<std::string> changes;
    std::stringstream lines(result.out);
    for (std::string line; std::getline(lines, line);)
    {
        const json change = json::parse(line);
        changes.push_back(change.at("change").get<std::string>() + " " + change.at("place").get<std::string>());
    }
    return changes;
}

// The camera goes and comes without end; the steps have times, the first after the start.
json UnpluggedCamera(bool staysListed)
{
    json settings = OneCamera("Mono8", 64, 48);
    json& connection = settings["connection"];
    connection["staysListed"] = staysListed;
    connection["repeat"] = 1000000;
    connection["script"].push_back({{"camera", "cam"}, {"do", "unplug"}, {"after_ms", 20}});
    connection["script"].push_back({{"camera", "cam"}, {"do", "replug"}, {"after_ms", 20}});
    return settings;
}

TEST(WatchTree, WhatIsThereIsFound)
{
    const TemporaryFolder folder;
    const ToolResult result =
        RunTool({"watch", "--changes", "2", "--json"}, SimulatorWith(folder, OneCamera("Mono8", 64, 48)));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(ChangesOf(result), ElementsAre("found if", "found if:SimulatedCamera_cam"));
    EXPECT_THAT(result.out, HasSubstr("serial number cam"));
}

TEST(WatchTree, EndsQuietlyWhenItIsTerminated)
{
    const TemporaryFolder folder;
    const Environment surroundings = SimulatorWith(folder, OneCamera("Mono8", 64, 48));
    for (const Arguments& arguments : {Arguments{"watch"}, Arguments{"watch", "cam", "Width"}})
    {
        ToolRun run(arguments, surroundings);
        ASSERT_TRUE(run.AwaitOutput("\n"));
        run.Signal(SIGTERM);
        const ToolResult result = run.Finish();
        EXPECT_EQ(result.status, interrupted);
        EXPECT_EQ(result.err, "koro: stopping; once more ends at once\n");
    }
}

TEST(WatchTree, EndsWithinAListThatHasMore)
{
    const TemporaryFolder folder;
    const ToolResult result =
        RunTool({"watch", "--changes", "1", "--json"}, SimulatorWith(folder, OneCamera("Mono8", 64, 48)));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(ChangesOf(result), ElementsAre("found if"));
}

TEST(WatchTree, CameraThatGoesAndComesIsReportedByItself)
{
    const TemporaryFolder folder;
    // An interval longer than the test: the list is not read again, and later lines come from notifications.
    ToolRun run({"watch", "--interval", "3600000"}, SimulatorWith(folder, UnpluggedCamera(true)));
    ASSERT_TRUE(run.AwaitOutput("disconnected  if:SimulatedCamera_cam"));
    ASSERT_TRUE(run.AwaitOutput("reconnected   if:SimulatedCamera_cam"));
    run.Signal(SIGINT);
    EXPECT_EQ(run.Finish().status, interrupted);
}

TEST(WatchTree, CameraThatLeavesTheListIsLostAndFoundAgain)
{
    const TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    settings["misbehaviour"]["devices"].push_back({{"camera", "cam"}, {"vanishAtUpdate", 2}, {"missingUpdates", 2}});
    const ToolResult result =
        RunTool({"watch", "--changes", "4", "--interval", "1", "--json"}, SimulatorWith(folder, settings));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(
        ChangesOf(result),
        ElementsAre(
            "found if", "found if:SimulatedCamera_cam", "lost if:SimulatedCamera_cam", "found if:SimulatedCamera_cam"));
}

TEST(WatchTree, FailureIsToldOnce)
{
    const TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFUpdateDeviceList", "GC_ERR_IO")["count"] = "every";
    const ToolResult result =
        RunTool({"watch", "--duration", "200", "--interval", "1", "--json"}, SimulatorWith(folder, settings));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(ChangesOf(result), ElementsAre("found if", "failed if"));
}

TEST(WatchTree, OptionsOfFeaturesNeedACamera)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"watch", "--refresh"}, SimulatorWith(folder, OneCamera("Mono8", 64, 48)));
    EXPECT_EQ(result.status, usage);
    EXPECT_THAT(result.err, HasSubstr("need a camera"));
}

} // namespace

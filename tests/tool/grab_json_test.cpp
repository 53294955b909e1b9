// What programs and measurements want of a grab: JSON, no files, a number of buffers, names that do not collide.
#include "tests/tool/played_camera.h"
#include "tests/tool/simulator_settings.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;


std::vector<json> ObjectsOf(const std::string& out)
{
    std::vector<json> objects;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);)
        objects.push_back(json::parse(line));
    return objects;
}

TEST(GrabJSON, EachFrameIsAnObjectAndASummaryCloses)
{
    const PlayedCamera camera("WBEQW");
    const ToolResult result = camera.Grab(2, {"--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const std::vector<json> objects = ObjectsOf(result.out);
    ASSERT_EQ(objects.size(), 6u);
    std::vector<std::string> states;
    for (size_t i = 0; i < 5; ++i)
    {
        EXPECT_EQ(objects[i].at("frame"), i + 1);
        states.push_back(objects[i].at("state"));
    }
    EXPECT_THAT(states, ElementsAre("whole", "incomplete", "empty", "incomplete", "whole"));
    EXPECT_EQ(objects[0].at("files"), json::array({camera.File("000001.png")}));
    EXPECT_EQ(objects[0].at("width"), 4);
    EXPECT_EQ(objects[0].at("pixelFormat"), "Mono8");
    EXPECT_EQ(objects[1].at("files"), json::array());
    EXPECT_TRUE(objects[3].at("width").is_null());
    EXPECT_THAT(std::string(objects[3].at("problem")), HasSubstr("BUFFER_INFO_WIDTH"));
    EXPECT_EQ(objects[4].at("files"), json::array({camera.File("000002.png")}));

    const json& summary = objects[5].at("summary");
    EXPECT_EQ(summary.at("pictures"), 2);
    EXPECT_EQ(summary.at("frames"), 5);
    EXPECT_EQ(summary.at("whole"), 2);
    EXPECT_EQ(summary.at("incomplete"), 2);
    EXPECT_EQ(summary.at("empty"), 1);
    EXPECT_EQ(summary.at("timeouts"), 0);
}

TEST(GrabJSON, ChunksOfAFrameAreInItsObject)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["tlType"] = "GEV";
    settings["interfaces"][0]["cameras"][0]["startWithStream"] = false;
    const TemporaryFolder folder;
    const ToolResult result = RunTool(
        {"grab", "cam", "--frames", "2", "--json", "--chunks", "--output", folder.File("out")},
        SimulatorWith(folder, settings));
    ASSERT_EQ(result.status, 0) << result.err;
    const std::vector<json> objects = ObjectsOf(result.out);
    ASSERT_EQ(objects.size(), 3u);
    EXPECT_EQ(objects[1].at("chunks").at("ChunkWidth"), "64");
}

TEST(GrabJSON, SummaryComesBehindAFailureToo)
{
    const PlayedCamera camera("WD");
    const ToolResult result = camera.Grab(2, {"--json"});
    EXPECT_EQ(result.status, 5);
    const std::vector<json> objects = ObjectsOf(result.out);
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_EQ(objects[1].at("summary").at("timeouts"), 3);
}

TEST(GrabNothing, FramesAreCountedWithoutFiles)
{
    const PlayedCamera camera("WBLEsW*");
    const ToolResult result = camera.Grab(3, {"--format", "none"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nframes      7\n"));
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  3\n"));
    EXPECT_THAT(result.out, HasSubstr("\nempty       1\n"));
    EXPECT_THAT(result.out, testing::Not(HasSubstr("pictures")));
    EXPECT_THAT(camera.FileNames(), testing::IsEmpty());
}

TEST(GrabNothing, NeedsNoFolder)
{
    const TemporaryFolder folder;
    const Environment surroundings = SimulatorWith(folder, OneCamera("Mono8", 64, 48));
    const ToolResult result = RunTool({"grab", "cam", "--frames", "3", "--format", "none", "--json"}, surroundings);
    EXPECT_EQ(result.status, 0) << result.err;
    const std::vector<json> objects = ObjectsOf(result.out);
    ASSERT_EQ(objects.size(), 4u);
    EXPECT_EQ(objects[3].at("summary").at("pictures"), 0);
    EXPECT_EQ(objects[3].at("summary").at("files"), 0);
    EXPECT_EQ(objects[3].at("summary").at("whole"), 3);
    const ToolResult without = RunTool({"grab", "cam", "--frames", "3"}, surroundings);
    EXPECT_EQ(without.status, usage);
    EXPECT_THAT(without.err, HasSubstr("--output is required"));
}

TEST(GrabBuffers, NumberIsWhatTheUserAskedFor)
{
    const TemporaryFolder folder;
    const Environment surroundings = SimulatorWith(folder, OneCamera("Mono8", 64, 48));
    const Arguments grab = {"grab", "cam", "--frames", "3", "--format", "none", "--buffers"};
    const auto run = [&](const char* number) {
        Arguments arguments = grab;
        arguments.push_back(number);
        return RunTool(arguments, surroundings);
    };
    EXPECT_THAT(run("20").out, HasSubstr(", 20 buffers of 3072 bytes\n"));
    EXPECT_EQ(run("0").status, usage);
    EXPECT_EQ(run("5000").status, usage);
}

TEST(GrabBuffers, FewerThanTheProducerNeedsAreRefused)
{
    json settings = OneCamera("Mono8", 64, 48);
    constexpr int announceMinimumInfo = 12;
    FalsifyInfo(settings, "DSGetInfo", announceMinimumInfo, 4);
    const TemporaryFolder folder;
    const ToolResult result = RunTool(
        {"grab", "cam", "--frames", "3", "--format", "none", "--buffers", "3"}, SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("koro: The producer needs at least 4 buffers.\nhint: "));
}

TEST(GrabNames, CamerasOfOneSerialNumberWriteFilesOfTheirIds)
{
    PlayedCamera camera("W*");
    camera.Set("KORO_TEST_SERIAL", "42");
    const ToolResult result = camera.Grab(1);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(camera.FileNames(), ElementsAre("if0-dev0-000001.png"));
}

TEST(GrabNames, SiblingOfTheSameSerialNumberIsNotTakenForTheCamera)
{
    PlayedCamera camera("WX..xW*");
    camera.Set("KORO_TEST_SERIAL", "42");
    const ToolResult result = camera.Grab(3, {"--reconnect"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\ncamera lost after 1 picture\ncamera back, "));
    EXPECT_THAT(result.out, HasSubstr("\nreconnects      1\n"));
}

} // namespace

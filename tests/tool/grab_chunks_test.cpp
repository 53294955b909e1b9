#include "tests/tool/described_camera.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

// One GigE Vision camera "cam" that knows chunks.
json ChunkCamera(const char* tlType = "GEV")
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["tlType"] = tlType;
    settings["interfaces"][0]["cameras"][0]["startWithStream"] = false;
    return settings;
}

class ChunkGrab
{
public:
    explicit ChunkGrab(const json& settings) : environment(SimulatorWith(folder, settings)) {}

    ToolResult Run(const Arguments& more = {}, const std::string& frames = "3") const
    {
        Arguments arguments = {"grab", "cam", "--frames", frames, "--output", folder.File("out"), "--chunks"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunTool(arguments, environment);
    }
    ToolResult Koro(const Arguments& arguments) const { return RunTool(arguments, environment); }
    // The column of that name, without its header.
    std::vector<std::string> Column(const std::string& name) const
    {
        std::ifstream file(folder.File("out/cam-chunks.csv"));
        std::vector<std::string> column;
        size_t index = 0;
        bool isHeader = true;
        for (std::string line; std::getline(file, line); isHeader = false)
        {
            std::vector<std::string> cells;
            std::stringstream stream(line + ",");
            for (std::string cell; std::getline(stream, cell, ',');)
                cells.push_back(cell);
            if (isHeader)
                index = static_cast<size_t>(std::find(cells.begin(), cells.end(), name) - cells.begin());
            else
                column.push_back(cells.at(index));
        }
        return column;
    }
    TemporaryFolder folder;

private:
    Environment environment;
};

TEST(GrabChunks, ValuesStandBesideTheFramesAndInATable)
{
    for (const char* const type : {"GEV", "U3V"})
    {
        SCOPED_TRACE(type);
        const ChunkGrab grab(ChunkCamera(type));
        const ToolResult result = grab.Run({"--set", "ExposureTime=5000"});
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(grab.Column("frame"), ElementsAre("1", "2", "3"));
        EXPECT_THAT(grab.Column("ChunkFrameID"), ElementsAre("1", "2", "3"));
        EXPECT_THAT(grab.Column("ChunkWidth"), ElementsAre("64", "64", "64"));
        EXPECT_THAT(grab.Column("ChunkHeight"), ElementsAre("48", "48", "48"));
        EXPECT_THAT(grab.Column("ChunkExposureTime"), ElementsAre("5000", "5000", "5000"));
        EXPECT_THAT(result.out, HasSubstr("\n2/3 " + grab.folder.File("out/cam-000002.png") + "\n    "));
        EXPECT_THAT(result.out, HasSubstr("ChunkFrameID=2"));
        EXPECT_THAT(result.out, HasSubstr("ChunkWidth=64"));
    }
}

TEST(GrabChunks, PicturesAreThoseWithoutChunks)
{
    const ChunkGrab with(ChunkCamera());
    ASSERT_EQ(with.Run().status, 0);
    ASSERT_EQ(with.Koro({"grab", "cam", "--frames", "3", "--output", with.folder.File("plain")}).status, 0);
    const auto bytes = [&](const char* name) {
        std::ifstream file(with.folder.File(name), std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(file), {}};
    };
    EXPECT_FALSE(bytes("out/cam-000003.png").empty());
    EXPECT_EQ(bytes("out/cam-000003.png"), bytes("plain/cam-000003.png"));
}

TEST(GrabChunks, ChunkModeIsSwitchedBack)
{
    json settings = ChunkCamera();
    const TemporaryFolder memory;
    settings["memory"] = memory.Path().string();
    const ChunkGrab grab(settings);
    ASSERT_EQ(grab.Run().status, 0);
    EXPECT_EQ(grab.Koro({"get", "cam", "ChunkModeActive"}).out, "false\n");
}

TEST(GrabChunks, BrokenChunksAreToldAndThePictureIsSaved)
{
    json settings = ChunkCamera();
    settings["misbehaviour"]["frames"].push_back({{"camera", "cam"}, {"at", 1}, {"chunks", "tooLong"}});
    const ChunkGrab grab(settings);
    const ToolResult result = grab.Run();
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("cam-000001.png\n    chunks cannot be read: "));
    EXPECT_THAT(grab.Column("frame"), ElementsAre("1", "2", "3"));
    EXPECT_THAT(grab.Column("ChunkFrameID"), ElementsAre("", "2", "3"));
}

TEST(GrabChunks, TableThatFailsTooDoesNotHideWhyTheGrabFailed)
{
    json settings = ChunkCamera();
    FailCall(settings, "DSQueueBuffer", "GC_ERR_IO")["at"] = 12;
    const ChunkGrab grab(settings);
    std::filesystem::create_directories(grab.folder.File("out/cam-chunks.csv"));
    const ToolResult result = grab.Run({}, "20");
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("cam-chunks.csv: it is a folder.\n"));
    EXPECT_THAT(result.err, HasSubstr("koro: [Function: DSQueueBuffer"));
}

TEST(GrabChunks, CameraWithoutChunksIsRefused)
{
    json settings = ChunkCamera();
    const TemporaryFolder folder;
    DescribeWhole(folder, settings, "");
    const ChunkGrab grab(settings);
    const ToolResult result = grab.Run();
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("koro: "));
    EXPECT_FALSE(std::filesystem::exists(grab.folder.File("out/cam-chunks.csv")));
}

} // namespace

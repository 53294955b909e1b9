// What one run of the tool sets the next one finds, where the cameras have a memory.
#include "tests/tool/described_camera.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"
#include "tests/unit/tool/image_files.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <variant>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;

json Remembered(json settings)
{
    settings["memory"] = "memory"; // beside the settings, so each test has its own
    return settings;
}

TEST(RememberedCamera, SetThenGrabGivesPicturesOfThatSizeAndFormat)
{
    const TemporaryFolder folder;
    const Camera camera(Remembered(OneCamera("Mono8", 800, 600)));
    const ToolResult set =
        camera.Run({"set", "cam", "Width=640", "Height=480", "PixelFormat=Mono12p", "ExposureTime=5000"});
    ASSERT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(set.out, "Width=640\nHeight=480\nPixelFormat=Mono12p\nExposureTime=5000\n");

    const ToolResult got = camera.Run({"get", "cam", "Width", "Height", "PixelFormat", "ExposureTime"});
    EXPECT_EQ(got.out, set.out);

    const Arguments grab{"grab", "cam", "--frames", "2", "--output", folder.File("png")};
    const ToolResult grabbed = camera.Run(grab);
    ASSERT_EQ(grabbed.status, 0) << grabbed.err;
    const koro::tool::Picture picture = ReadPNG(folder.File("png/cam-000002.png"));
    EXPECT_EQ(picture.width, 640U);
    EXPECT_EQ(picture.height, 480U);
    EXPECT_TRUE(std::holds_alternative<koro::tool::Samples16>(picture.samples));

    const Arguments raw{"grab", "cam", "--frames", "1", "--output", folder.File("raw"), "--format", "raw"};
    ASSERT_EQ(camera.Run(raw).status, 0);
    EXPECT_EQ(std::filesystem::file_size(folder.File("raw/cam-000001.raw")), 640U * 480U * 12U / 8U);
}

TEST(RememberedCamera, DescribeNamesTheLockWhileAnotherProcessGrabs)
{
    const TemporaryFolder folder;
    json settings = Remembered(OneCamera("Mono8", 64, 48));
    settings["interfaces"][0]["tlType"] = "GEV";
    settings["interfaces"][0]["cameras"][0]["rate"] = 10;
    const Camera camera(settings);
    const Arguments describe{"describe", "cam", "Width"};
    EXPECT_THAT(camera.Run(describe).out, HasSubstr("\naccess              read and write\n"));

    ToolRun grab({"grab", "cam", "--frames", "1000000", "--output", folder.File("out")}, camera.Surroundings());
    ASSERT_TRUE(grab.AwaitOutput("\n1/1000000 "));
    const ToolResult locked = camera.Run(describe);
    EXPECT_EQ(locked.status, 0) << locked.err;
    EXPECT_THAT(locked.out, HasSubstr("\naccess              read only\n"));
    EXPECT_THAT(locked.out, HasSubstr("Width is locked, as TLParamsLocked is 1."));
    EXPECT_THAT(camera.Run({"list"}).out, HasSubstr("ReadOnly"));
    const ToolResult refused = camera.Run({"set", "cam", "Width=32"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("another process controls the camera"));

    grab.Signal(SIGKILL);
    grab.Finish();
    EXPECT_THAT(camera.Run(describe).out, HasSubstr("\naccess              read and write\n"));
    EXPECT_EQ(camera.Run({"set", "cam", "Width=32"}).status, 0);
}

TEST(RememberedCamera, WatchSeesWhatAnotherProcessSets)
{
    const Camera camera(Remembered(OneCamera("Mono8", 64, 48)));
    ToolRun watch({"watch", "cam", "Width", "--refresh", "--interval", "20", "--changes", "2"}, camera.Surroundings());
    ASSERT_TRUE(watch.AwaitOutput("Width=64\n"));
    const ToolResult set = camera.Run({"set", "cam", "Width=32"});
    EXPECT_EQ(set.status, 0) << set.err;
    const ToolResult result = watch.Finish();
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("Width=32\n"));
}

} // namespace

#include "producers/simulator/frames/surface.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"
#include "tests/unit/tool/image_files.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace
{

using namespace koro::test;
using namespace koro::simulator;
using nlohmann::json;
using testing::HasSubstr;

constexpr size_t width = 64;
constexpr size_t height = 48;

// Two captures of a 3D camera.
class GrabParts : public testing::Test
{
protected:
    ToolResult Grab(const Arguments& more = {}) { return GrabFrom(OneCamera("Mono8", width, height), more); }
    ToolResult GrabFrom(json settings, const Arguments& more = {})
    {
        json& camera = settings["interfaces"][0]["cameras"][0];
        camera["scan3d"] = true;
        camera["source"] = "surface";
        camera["startWithStream"] = false;
        Arguments arguments = {"grab", "cam", "--frames", "2", "--output", folder.File("out")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunTool(arguments, SimulatorWith(folder, settings));
    }
    std::string File(const std::string& name) const { return folder.File("out/" + name); }
    std::vector<std::string> FileNames() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.File("out")))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    TemporaryFolder folder;
};

TEST_F(GrabParts, EachPartHasAFile)
{
    const ToolResult result = Grab();
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(
        FileNames(),
        testing::ElementsAre(
            "cam-000001-confidence.png", "cam-000001-image.png", "cam-000001-points.ply", "cam-000001-range.png",
            "cam-000002-confidence.png", "cam-000002-image.png", "cam-000002-points.ply", "cam-000002-range.png"));
    EXPECT_THAT(result.out, HasSubstr("\npictures    2\nfiles       8\nframes      2\n"));
    EXPECT_THAT(result.out, HasSubstr("\n2/2 " + File("cam-000002-range.png") + "\n"));
}

TEST_F(GrabParts, PicturesAreThoseOfTheSurface)
{
    ASSERT_EQ(Grab().status, 0);
    const auto range = std::get<koro::tool::Samples16>(ReadPNG(File("cam-000002-range.png")).samples);
    const auto image = std::get<koro::tool::Samples8>(ReadPNG(File("cam-000002-image.png")).samples);
    const auto confidence = std::get<koro::tool::Samples8>(ReadPNG(File("cam-000002-confidence.png")).samples);
    ASSERT_EQ(range.size(), width * height);
    ASSERT_EQ(image.size(), width * height);
    ASSERT_EQ(confidence.size(), width * height);
    for (size_t y = 0; y < height; ++y)
    {
        for (size_t x = 0; x < width; ++x)
        {
            ASSERT_EQ(range[y * width + x], RangeValue(x, y, 2, width, height)) << x << ", " << y;
            ASSERT_EQ(image[y * width + x], SurfaceValue(x, y, 2, width, height)) << x << ", " << y;
            ASSERT_EQ(confidence[y * width + x], ConfidenceValue(x, y, width, height)) << x << ", " << y;
        }
    }
}

TEST_F(GrabParts, PointsStandWhereTheSurfaceIs)
{
    ASSERT_EQ(Grab().status, 0);
    std::ifstream file(File("cam-000001-points.ply"), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const std::string headerEnd = "end_header\n";
    const size_t data = content.find(headerEnd) + headerEnd.size();
    constexpr size_t pointBytes = 3 * sizeof(float) + 3;

    size_t at = data;
    for (size_t y = 0; y < height; ++y)
    {
        for (size_t x = 0; x < width; ++x)
        {
            if (IsInShadow(x, y, width, height)) continue;
            ASSERT_LE(at + pointBytes, content.size());
            float point[3];
            std::memcpy(point, content.data() + at, sizeof point);
            EXPECT_NEAR(point[0], (static_cast<double>(x) - width / 2.0) * pixelPitch_mm, pixelPitch_mm);
            EXPECT_NEAR(point[1], (static_cast<double>(y) - height / 2.0) * pixelPitch_mm, pixelPitch_mm);
            const double distance = RangeValue(x, y, 1, width, height) * rangeScale_mm + rangeOffset_mm;
            EXPECT_NEAR(point[2], distance, 0.001) << x << ", " << y;
            EXPECT_EQ(static_cast<uint8_t>(content[at + sizeof point]), SurfaceValue(x, y, 1, width, height));
            at += pointBytes;
        }
    }
    EXPECT_EQ(at, content.size());
    EXPECT_THAT(content, HasSubstr("element vertex " + std::to_string((content.size() - data) / pointBytes) + "\n"));
}

TEST_F(GrabParts, OutputModeWithoutPlacesHasNoPoints)
{
    ASSERT_EQ(Grab({"--set", "Scan3dOutputMode=UncalibratedC"}).status, 0);
    EXPECT_THAT(FileNames(), testing::Not(testing::Contains(HasSubstr(".ply"))));
}

TEST_F(GrabParts, PurposeOfAPartNamesItsFile)
{
    json settings = OneCamera("Mono8", width, height);
    // The purpose of all parts, as a number of 64 bits.
    settings["misbehaviour"]["info"].push_back(
        {{"function", "DSGetBufferPartInfo"}, {"command", 13}, {"type", 8}, {"value", 8}});
    const ToolResult result = GrabFrom(settings);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(std::filesystem::exists(File("cam-000001-image-purpose8.png")));
    EXPECT_TRUE(std::filesystem::exists(File("cam-000002-points-purpose8.ply")));
}

TEST_F(GrabParts, PointsBeyondTheRangeLimitAreLeftOutAndCounted)
{
    const ToolResult result = Grab({"--range-limit", "1"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr(" points beyond the range limit\n"));
    EXPECT_THAT(result.out, HasSubstr("\npoints left out  "));
    std::ifstream file(File("cam-000001-points.ply"), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    EXPECT_THAT(content, HasSubstr("element vertex 0\n"));
}

} // namespace

// `koro xml`: the description as the camera serves it, from wherever it lies.
#include "tests/tool/described_camera.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;


// GenTL info commands that a test makes a producer forget or falsify.
constexpr int urlInfo = 0;
constexpr int registerAddressInfo = 7;
constexpr int fileSizeInfo = 8;
constexpr int schemeInfo = 9;

// The only answer about the place of the description is this text.
json CameraAt(const std::string& url)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["misbehaviour"]["info"].push_back(
        {{"function", "GCGetPortURLInfo"}, {"command", urlInfo}, {"value", url}});
    for (const int command : {registerAddressInfo, fileSizeInfo, schemeInfo})
        ForgetInfo(settings, "GCGetPortURLInfo", command);
    return settings;
}

TEST(XML, IsTheDescriptionAndNothingElse)
{
    const ToolResult result = Camera().Run({"xml", "cam"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, testing::StartsWith("<?xml "));
    EXPECT_THAT(result.out, testing::ContainsRegex("</RegisterDescription>\n?$"));
    EXPECT_THAT(Camera().Run({"xml", "cam", "--module", "system"}).out, HasSubstr("Name=\"TLPort\""));
}

TEST(XML, ComesAsAnArchiveOrExpanded)
{
    json settings = OneCamera("Mono8", 64, 48);
    const Camera plain(settings);
    settings["interfaces"][0]["cameras"][0]["descriptionForm"] = "zipped";
    const Camera zipped(settings);
    const std::string archive = zipped.Run({"xml", "cam"}).out;
    EXPECT_THAT(archive, testing::StartsWith("PK\x03\x04"));
    EXPECT_EQ(zipped.Run({"xml", "cam", "--unzip"}).out, plain.Run({"xml", "cam"}).out);
    EXPECT_EQ(plain.Run({"xml", "cam", "--unzip"}).out, plain.Run({"xml", "cam"}).out);
}

TEST(XML, BrokenArchivesAreRefused)
{
    const std::string broken[] = {
        "PK\x03\x04", std::string("PK\x03\x04") + std::string(100, 'x'),
        std::string("PK\x05\x06") + std::string(18, '\0'), std::string("PK\x05\x06") + std::string(18, '\x7f')};
    for (const std::string& bytes : broken)
    {
        json settings = OneCamera("Mono8", 64, 48);
        const TemporaryFolder folder;
        settings["interfaces"][0]["cameras"][0]["description"] = folder.MakeFile("camera.zip", bytes);
        const Camera camera(settings);
        EXPECT_EQ(camera.Run({"xml", "cam"}).out, bytes);
        const ToolResult result = camera.Run({"xml", "cam", "--unzip"});
        EXPECT_EQ(result.status, failure);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, HasSubstr("koro: The description's archive "));
    }
}

TEST(XML, ArchiveThatExpandsBeyondTheLimitIsRefused)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    settings["interfaces"][0]["cameras"][0]["description"] =
        folder.MakeFile("camera.zip", ArchiveOf(std::string(size_t{65} << 20, ' ')));
    const ToolResult result = Camera(settings).Run({"xml", "cam", "--unzip"});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "koro: The description expands beyond the limit of 64 MiB.\n");
}

TEST(XML, URLIsChosenByItsNumber)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["cameras"][0]["descriptionForm"] = "twoURLs";
    const Camera camera(settings);
    EXPECT_EQ(camera.Run({"xml", "cam", "--url", "0"}).status, 0);
    const ToolResult result = camera.Run({"xml", "cam", "--url", "2"});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.err, "koro: The module has 2 descriptions, counted from 0.\n");
}

TEST(XML, AbsurdSizeIsRefusedBeforeMemoryIsAskedFor)
{
    json settings = OneCamera("Mono8", 64, 48);
    FalsifyInfo(settings, "GCGetPortURLInfo", fileSizeInfo, int64_t{1} << 40);
    const ToolResult result = Camera(settings).Run({"xml", "cam"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr(" claims 1099511627776 bytes, which is beyond the limit.\n"));
}

TEST(XML, URLIsTakenApartWhereTheProducerDoesNot)
{
    json settings = OneCamera("Mono8", 64, 48);
    const std::string whole = Camera(settings).Run({"xml", "cam"}).out;
    for (const int command : {registerAddressInfo, fileSizeInfo, schemeInfo})
        ForgetInfo(settings, "GCGetPortURLInfo", command);
    EXPECT_EQ(Camera(settings).Run({"xml", "cam"}).out, whole);
}

TEST(XML, FileIsReadFromItsPlace)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("camera.xml", "<a file/>");
    for (const std::string& url : {"file://" + path, "File:" + path + "?SchemaVersion=1.1.0"})
    {
        const ToolResult result = Camera(CameraAt(url)).Run({"xml", "cam"});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.out, "<a file/>");
    }
}

TEST(XML, PlaceThatCannotBeReachedIsNamed)
{
    const struct
    {
        const char* url;
        const char* problem;
    } cases[] = {
        {"file:///nowhere/camera.xml", "is no file that can be read"},
        {"http://camera/camera.xml", "is not in the registers of the camera, and the tool does not fetch it"},
        {"nonsense", "is not in the registers of the camera, and the tool does not fetch it"},
        {"local:camera.xml;10000", "has no place that can be understood"},
        {"local:camera.xml;here;20", "has no place that can be understood"},
        {"local:camera.xml;10000;FFFFFFFFFFFFFFFFFF", "has no place that can be understood"},
    };
    for (const auto& [url, problem] : cases)
    {
        const ToolResult result = Camera(CameraAt(url)).Run({"xml", "cam"});
        EXPECT_EQ(result.status, failure) << url;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, std::string("koro: The description at ") + url + " " + problem + ".\n");
    }
}

TEST(XML, ArchiveWithoutADescriptionIsRefused)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    settings["interfaces"][0]["cameras"][0]["description"] =
        folder.MakeFile("camera.zip", ArchiveOf("text", "camera.txt"));
    const ToolResult result = Camera(settings).Run({"xml", "cam", "--unzip"});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.err, "koro: The description's archive holds no .xml file.\n");
}

} // namespace

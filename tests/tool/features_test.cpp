// `koro features` and `get`: what is read of a camera's features.
#include "tests/tool/described_camera.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;


TEST(Features, ShowACameraAsATree)
{
    const ToolResult result = Camera().Run({"features", "cam"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, testing::StartsWith("DeviceControl\n  DeviceType "));
    EXPECT_THAT(result.out, ContainsRegex("\n  DeviceSerialNumber  +r-  \"cam\"\n"));
    EXPECT_THAT(result.out, ContainsRegex("\n  Width  +rw  64 pixel +[0-9]+\\.\\.64"));
    EXPECT_THAT(result.out, ContainsRegex("\n  PixelFormat  +rw  Mono8  +Mono8 \\| "));
    EXPECT_THAT(result.out, ContainsRegex("\n  ExposureTime  +rw  10000 us  +10\\.\\.10000000"));
    EXPECT_THAT(result.out, ContainsRegex("\n  AcquisitionStart  +-w  \\(command\\)\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("TLParamsLocked"))); // for nobody's eyes
}

TEST(Features, AreLimitedToAVisibility)
{
    const Camera camera;
    const std::string beginner = camera.Run({"features", "cam", "--visibility", "beginner"}).out;
    EXPECT_THAT(beginner, HasSubstr("\n  Width "));
    EXPECT_THAT(beginner, Not(HasSubstr("SensorWidth")));
    EXPECT_THAT(camera.Run({"features", "cam", "--visibility", "Expert"}).out, HasSubstr("\n  SensorWidth "));
    EXPECT_THAT(camera.Run({"features", "cam", "--visibility", "invisible"}).out, HasSubstr("\n  TLParamsLocked "));
    EXPECT_EQ(camera.Run({"features", "cam", "--visibility", "everybody"}).status, usage);
}

TEST(Features, AreTheSameTreeInJSON)
{
    const ToolResult result = Camera().Run({"features", "cam", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const json all = json::parse(result.out);
    EXPECT_EQ(all.at("module"), "remote device");
    for (const json& category : all.at("features"))
    {
        if (category.at("name") != "ImageFormatControl") continue;
        EXPECT_EQ(category.at("type"), "Category");
        for (const json& feature : category.at("features"))
        {
            if (feature.at("name") != "Width") continue;
            EXPECT_EQ(feature.at("type"), "Integer");
            EXPECT_EQ(feature.at("access"), "rw");
            EXPECT_EQ(feature.at("value"), 64);
            EXPECT_EQ(feature.at("maximum"), 64);
            EXPECT_EQ(feature.at("unit"), "pixel");
            EXPECT_EQ(feature.at("visibility"), "Beginner");
            return;
        }
    }
    FAIL() << "no Width in " << result.out;
}

TEST(Features, BelongToEachModule)
{
    const Camera camera;
    const struct
    {
        const char* module;
        const char* feature;
    } cases[] = {
        {"system", "TLVendorName"},
        {"interface", "InterfaceID"},
        {"device", "DeviceAccessStatus"},
        {"stream", "StreamID"},
    };
    for (const auto& [module, feature] : cases)
    {
        const ToolResult result = camera.Run({"features", "cam", "--module", module});
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr(std::string("  ") + feature + " ")) << module;
    }
    EXPECT_EQ(camera.Run({"features", "cam", "--module", "buffer"}).status, usage);
}

TEST(Features, UnknownCameraIsToldAsEverywhere)
{
    const ToolResult result = Camera().Run({"features", "nobody"});
    EXPECT_EQ(result.status, noSuchCamera);
    EXPECT_THAT(result.err, HasSubstr("koro: No camera is called \"nobody\". There are:\n"));
}

TEST(Features, ThatCannotBeReadAreStillListed)
{
    // The register of "Gone" lies beyond the memory of the camera's port.
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    Describe(
        folder, settings, "Broken",
        "<Integer Name=\"Broken\"><pValue>Calculated</pValue></Integer>"
        "<IntSwissKnife Name=\"Calculated\"><Formula>1 / 0</Formula></IntSwissKnife>");
    const ToolResult result = Camera(settings).Run({"features", "cam"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, ContainsRegex("^Broken +r-  \\?"));
    const ToolResult read = Camera(settings).Run({"get", "cam", "Broken"});
    EXPECT_EQ(read.status, failure);
    EXPECT_THAT(read.err, HasSubstr("koro: Broken cannot be read: "));
}

TEST(Features, CategoryOfTwoOthersIsOpenedOnce)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    Describe(
        folder, settings, "A B",
        "<Category Name=\"A\"><pFeature>Both</pFeature></Category>"
        "<Category Name=\"B\"><pFeature>Both</pFeature></Category>"
        "<Category Name=\"Both\"><pFeature>Size</pFeature></Category>"
        "<Integer Name=\"Size\"><Value>7</Value></Integer>");
    const ToolResult result = Camera(settings).Run({"features", "cam"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, testing::StartsWith("A\n  Both\n    Size  rw  7"));
    EXPECT_THAT(result.out, testing::EndsWith("\nB\n  Both  (above)\n"));
}

TEST(Features, DescriptionWithoutRootHasNone)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    DescribeWhole(folder, settings, "<Integer Name=\"Size\"><Value>7</Value></Integer>");
    const Camera camera(settings);
    const ToolResult result = camera.Run({"features", "cam"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: The description has no category \"Root\""));
    EXPECT_EQ(camera.Run({"get", "cam", "Size"}).out, "7\n");
}

TEST(Features, BrokenDescriptionIsAClearError)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    settings["interfaces"][0]["cameras"][0]["description"] = folder.MakeFile("camera.xml", "<no description");
    const Camera camera(settings);
    for (const char* command : {"features", "watch"})
    {
        const ToolResult result = camera.Run({command, "cam"});
        EXPECT_EQ(result.status, failure) << command;
        EXPECT_THAT(result.err, HasSubstr("koro: ")) << command;
    }
    EXPECT_EQ(camera.Run({"xml", "cam"}).out, "<no description"); // as it is, so that one can look
}

TEST(Features, AbsentDescriptionIsAClearError)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "GCGetNumPortURLs", "GC_ERR_NOT_IMPLEMENTED")["count"] = "every";
    const ToolResult result = Camera(settings).Run({"features", "cam"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: "));
}

TEST(Features, CameraThatIsInUseIsShownFromReading)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFOpenDevice", "GC_ERR_RESOURCE_IN_USE");
    const ToolResult result = Camera(settings).Run({"features", "cam"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, ContainsRegex("\n  Width +r-  64 pixel\n"));
    EXPECT_THAT(
        result.err, testing::StartsWith("koro: The camera could be opened for reading only, so nothing is writable: "
                                        "[Function: IFOpenDevice"));
}

TEST(Features, CameraIsOpenedOnceAndForReading)
{
    // Another attempt, for control, would fail.
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFOpenDevice", "GC_ERR_ACCESS_DENIED")["at"] = 2;
    EXPECT_EQ(Camera(settings).Run({"get", "cam", "Width"}).out, "64\n");
}

TEST(Features, CameraThatCannotBeOpenedForReadingIsOpenedForControl)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFOpenDevice", "GC_ERR_NOT_IMPLEMENTED")["at"] = 1;
    EXPECT_EQ(Camera(settings).Run({"get", "cam", "Width"}).out, "64\n");
    FailCall(settings, "IFOpenDevice", "GC_ERR_RESOURCE_IN_USE")["at"] = 2;
    const ToolResult result = Camera(settings).Run({"get", "cam", "Width"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("hint: Another program may have opened the camera"));
}

TEST(Get, PrintsTheValueOfOneAlone)
{
    const Camera camera;
    EXPECT_EQ(camera.Run({"get", "cam", "Width"}).out, "64\n");
    EXPECT_EQ(camera.Run({"get", "cam", "PixelFormat"}).out, "Mono8\n");
    EXPECT_EQ(camera.Run({"get", "cam", "DeviceSerialNumber"}).out, "cam\n");
    EXPECT_EQ(camera.Run({"get", "cam", "ReverseX"}).out, "false\n");
    EXPECT_EQ(camera.Run({"get", "cam", "--module", "device", "DeviceID"}).status, 0);
}

TEST(Get, PrintsSeveralAsSetTakesThem)
{
    EXPECT_EQ(Camera().Run({"get", "cam", "Width", "ExposureTime"}).out, "Width=64\nExposureTime=10000\n");
}

TEST(Get, ReadsWhatASelectorChooses)
{
    const Camera camera;
    EXPECT_EQ(camera.Run({"get", "cam", "Gain", "--set", "GainSelector=DigitalAll", "--set", "Gain=3.5"}).out, "3.5\n");
    EXPECT_EQ(camera.Run({"get", "cam", "Gain", "--set", "GainSelector=DigitalAll"}).out, "0\n");
}

TEST(Get, WritesJSON)
{
    const ToolResult result = Camera().Run({"get", "cam", "Width", "TestPattern", "AcquisitionStart", "--json"});
    EXPECT_EQ(result.status, failure); // a command has no value
    const json all = json::parse(result.out);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].at("value"), 64);
    EXPECT_EQ(all[1].at("value"), "Off");
    EXPECT_EQ(all[1].at("entries")[0], json({{"name", "Off"}, {"value", 0}, {"available", true}}));
    EXPECT_FALSE(all[2].contains("value"));
    EXPECT_EQ(Camera().Run({"get", "cam", "Width", "--json"}).status, 0);
}

TEST(Get, UnknownFeatureSuggestsOthers)
{
    const Camera camera;
    const ToolResult result = camera.Run({"get", "cam", "Width", "exposure"});
    EXPECT_EQ(result.status, noSuchFeature);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("koro: The remote device has no feature \"exposure\".\nhint: There are "));
    EXPECT_THAT(result.err, HasSubstr("ExposureTime"));
    EXPECT_EQ(
        camera.Run({"get", "cam", "xyzzy"}).err, "koro: The remote device has no feature \"xyzzy\".\nhint: `koro "
                                                 "features --all` lists all names that can be given.\n");
}

TEST(Get, SlipOfThePenIsRecognised)
{
    const Camera camera;
    const ToolResult swapped = camera.Run({"get", "cam", "Widht"});
    EXPECT_EQ(swapped.status, noSuchFeature);
    EXPECT_THAT(swapped.err, HasSubstr("hint: There is Width."));
    EXPECT_THAT(camera.Run({"get", "cam", "ExposureTme"}).err, HasSubstr("hint: There are ExposureTime"));
}

TEST(Get, NodeInNoCategoryIsAmongTheNamesThatLookAlike)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    Describe(folder, settings, "Width", IntRegisterAt("Width", 0) + IntRegisterAt("HiddenRegister", 4));
    const Camera camera(settings);
    EXPECT_THAT(camera.Run({"get", "cam", "HidenRegister"}).err, HasSubstr("hint: There is HiddenRegister.\n"));
    EXPECT_EQ(camera.Run({"get", "cam", "HiddenRegister"}).out, "0\n");
}

TEST(Features, InNoCategoryAreListedWhenAskedFor)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    Describe(folder, settings, "Width", IntRegisterAt("Width", 0) + IntRegisterAt("HiddenRegister", 4));
    const Camera camera(settings);
    EXPECT_THAT(camera.Run({"features", "cam"}).out, Not(HasSubstr("HiddenRegister")));
    const ToolResult all = camera.Run({"features", "cam", "--all"});
    EXPECT_EQ(all.status, 0) << all.err;
    EXPECT_THAT(all.out, testing::StartsWith("Width  rw  0"));
    EXPECT_THAT(all.out, ContainsRegex("\n\\(in no category\\)\n(.*\n)*  HiddenRegister +Integer\n"));
    const json tree = json::parse(camera.Run({"features", "cam", "--all", "--json"}).out);
    EXPECT_THAT(tree.at("inNoCategory"), testing::Contains(json({{"name", "HiddenRegister"}, {"type", "Integer"}})));
    EXPECT_THAT(tree.at("inNoCategory"), Not(testing::Contains(json({{"name", "Width"}, {"type", "Integer"}}))));
}

TEST(Features, OfADescriptionWithoutRootAreListedAsNodes)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    DescribeWhole(folder, settings, IntRegisterAt("Width", 0));
    const Camera camera(settings);
    EXPECT_EQ(camera.Run({"features", "cam"}).status, failure);
    const ToolResult all = camera.Run({"features", "cam", "--all"});
    EXPECT_EQ(all.status, 0) << all.err;
    EXPECT_THAT(all.out, ContainsRegex("  Width +Integer\n"));
}

TEST(Features, LongTextOfACameraIsCut)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    const std::string text(5 << 20, 'x');
    Describe(
        folder, settings, "Name",
        "<String Name=\"Name\"><ToolTip>" + text + "</ToolTip><Value>" + text + "</Value></String>");
    const Camera camera(settings);
    const Arguments commands[] = {
        {"features", "cam"}, {"describe", "cam", "Name"}, {"watch", "cam", "Name", "--changes", "1"}};
    for (const Arguments& arguments : commands)
    {
        const ToolResult result = camera.Run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr("xxx..."));
        EXPECT_LT(result.out.size(), 20000u) << arguments.front();
    }
    EXPECT_EQ(camera.Run({"get", "cam", "Name"}).out, text + "\n"); // exact for a program
}

TEST(Get, WhatHasNoValueIsNamed)
{
    const Camera camera;
    const ToolResult command = camera.Run({"get", "cam", "AcquisitionStart"});
    EXPECT_EQ(command.status, failure);
    EXPECT_EQ(command.err, "koro: AcquisitionStart is a command and has no value.\nhint: `koro run` executes it.\n");
    EXPECT_EQ(camera.Run({"get", "cam", "Root"}).err, "koro: Root is of the type Category and has no value.\n");
}

TEST(Get, NumbersFollowTheirRepresentation)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    std::string nodes;
    for (const char* kind : {"HexNumber", "IPV4Address", "MACAddress", "PureNumber"})
    {
        nodes += std::string("<Integer Name=\"") + kind + "\"><Value>0x0A000102</Value><Representation>" + kind +
                 "</Representation></Integer>";
    }
    Describe(folder, settings, "HexNumber", nodes + "<Float Name=\"Tenth\"><Value>0.1</Value></Float>");
    EXPECT_EQ(
        Camera(settings).Run({"get", "cam", "HexNumber", "IPV4Address", "MACAddress", "PureNumber", "Tenth"}).out,
        "HexNumber=0xa000102\nIPV4Address=10.0.1.2\nMACAddress=00:00:0a:00:01:02\nPureNumber=167772418\nTenth=0.1\n");
}

// A camera with lists of many elements. Work that grows with the square of their number would not end in time.
class LongLists : public testing::Test
{
protected:
    static constexpr int count = 20000;

    static std::string Numbered(const std::string& before, const std::string& behind)
    {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += before + std::to_string(i) + behind;
        return text;
    }
    static json Settings(const TemporaryFolder& folder)
    {
        json settings = OneCamera("Mono8", 64, 48);
        const std::string last = "<Value>" + std::to_string(count - 1) + "</Value>";
        std::string entries;
        std::string numbers;
        for (int i = 0; i < count; ++i)
        {
            const std::string value = "<Value>" + std::to_string(i) + "</Value>";
            entries += "<EnumEntry Name=\"Entry" + std::to_string(i) + "\">" + value + "</EnumEntry>";
            numbers += "<Integer Name=\"Number" + std::to_string(i) + "\">" + value + "</Integer>";
        }
        Describe(
            folder, settings, "Choice Selector Numbers",
            "<Category Name=\"Numbers\">" + Numbered("<pFeature>Number", "</pFeature>") + "</Category>" +
                "<Enumeration Name=\"Choice\">" + entries + last + "</Enumeration><Integer Name=\"Selector\">" +
                "<Value>0</Value>" + Numbered("<pSelected>Number", "</pSelected>") + "</Integer>" + numbers);
        return settings;
    }

    TemporaryFolder folder;
    const Camera camera{Settings(folder)};
};

TEST_F(LongLists, AreShownWholeAsATree)
{
    const ToolResult result = camera.Run({"features", "cam"});
    ASSERT_EQ(result.status, 0) << result.err;
    std::istringstream lines(result.out);
    std::string line;
    std::getline(lines, line);
    EXPECT_TRUE(line.find("Choice ") == 0 && line.find("Entry19999 ") != line.npos) << line.substr(0, 100);
    EXPECT_EQ(std::count(line.begin(), line.end(), '|'), count - 1);
    std::getline(lines, line);
    EXPECT_EQ(line.substr(0, 9), "Selector ");
    std::getline(lines, line);
    EXPECT_EQ(line, "Numbers");
    for (int i = 0; i < count; ++i)
    {
        std::getline(lines, line);
        std::istringstream words(line);
        std::string name;
        std::string access;
        std::string value;
        words >> name >> access >> value;
        ASSERT_EQ(name, "Number" + std::to_string(i));
        ASSERT_EQ(value, std::to_string(i));
    }
    EXPECT_FALSE(std::getline(lines, line)) << line;
}

TEST_F(LongLists, AreWholeInJSON)
{
    const ToolResult result = camera.Run({"features", "cam", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const json features = json::parse(result.out).at("features");
    ASSERT_EQ(features.size(), 3u);
    EXPECT_EQ(features[0].at("value"), "Entry19999");
    ASSERT_EQ(features[0].at("entries").size(), size_t{count});
    ASSERT_EQ(features[2].at("features").size(), size_t{count});
    for (size_t i = 0; i < count; ++i)
    {
        ASSERT_EQ(features[0].at("entries")[i].at("name"), "Entry" + std::to_string(i));
        ASSERT_EQ(features[2].at("features")[i].at("value"), i);
    }
}

TEST_F(LongLists, AreDescribedWhole)
{
    const ToolResult choice = camera.Run({"describe", "cam", "Choice", "--json"});
    ASSERT_EQ(choice.status, 0) << choice.err;
    const json entries = json::parse(choice.out).at("entries");
    ASSERT_EQ(entries.size(), size_t{count});
    for (size_t i = 0; i < count; ++i)
        ASSERT_EQ(entries[i].at("value"), i);

    const ToolResult selector = camera.Run({"describe", "cam", "Selector"});
    EXPECT_EQ(selector.status, 0) << selector.err;
    for (const char* const name : {" Number0,", " Number10000,", ", Number19999\n"})
        EXPECT_TRUE(selector.out.find(name) != std::string::npos) << name;
    const ToolResult number = camera.Run({"describe", "cam", "Number19999"});
    EXPECT_EQ(number.status, 0) << number.err;
    EXPECT_THAT(number.out, ContainsRegex("\nvalue +19999\n"));
}

} // namespace

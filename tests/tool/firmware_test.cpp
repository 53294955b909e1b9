#include "tests/support/update_files.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <zlib.h>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;

// What the simulated camera takes as new firmware.
std::string Image(const std::string& version, size_t size = 100'000)
{
    const std::string content = version + "\n" + std::string(size, 'x');
    std::string image = "KOROFWIM";
    const auto sum = crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size()));
    for (const uint32_t number : {static_cast<uint32_t>(content.size()), static_cast<uint32_t>(sum)})
    {
        for (unsigned shift = 0; shift < 32; shift += 8)
            image.push_back(static_cast<char>(number >> shift & 0xFF));
    }
    return image + content;
}

std::string BytesOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Steps()
{
    return Step("FileUpload", "<DeviceFileName>Firmware</DeviceFileName><FileName>image.bin</FileName>") +
           Step("DeviceReset", "<DeviceDiscoveryDelayMs>1</DeviceDiscoveryDelayMs>");
}

class Firmware : public testing::Test
{
protected:
    Firmware()
    {
        settings["interfaces"][0]["cameras"][0]["model"] = "Acme1";
        settings["memory"] = folder.MakeFolder("memory");
        control = folder.MakeFile(
            "rules.xml",
            Control(
                Procedure(Steps()) + Update(neededEntries, "<Condition Feature=\"DeviceModelName\">Acme</Condition>")));
        image = folder.MakeFile("image.bin", Image("2.0"));
    }

    ToolResult Koro(const Arguments& arguments)
    {
        if (environment.empty()) environment = SimulatorWith(folder, settings);
        return RunTool(arguments, environment);
    }
    std::string Packed()
    {
        const std::string file = folder.File("update.guf");
        const ToolResult packed = Koro({"firmware", "pack", file, control, image});
        EXPECT_EQ(packed.status, 0) << packed.err;
        return file;
    }

    TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    Environment environment;
    std::string control;
    std::string image;
};

TEST_F(Firmware, PackedFileTellsWhatItOffers)
{
    const ToolResult result = Koro({"firmware", "info", Packed()});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "update         Better pictures\nversion        2.0\nrelease notes  -\nmore           -\n");
    EXPECT_EQ(Koro({"firmware", "info", Packed(), "--for", "cam"}).out, result.out);
}

TEST_F(Firmware, CameraWithoutANameIsNoCamera)
{
    const ToolResult result = Koro({"firmware", "info", Packed(), "--for", ""});
    EXPECT_EQ(result.status, noSuchCamera);
    EXPECT_EQ(result.out, "");
}

TEST_F(Firmware, UpdateShowsItsStepsAndTheNewVersion)
{
    const ToolResult result = Koro({"firmware", "update", "cam", Packed()});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr(": Better pictures, version 2.0\n"));
    EXPECT_THAT(
        result.out, HasSubstr("\nchecking\nunpacking\nuploading: FileUpload\nresetting: DeviceReset\ndone in "));
    EXPECT_THAT(result.out, EndsWith(" s, the camera reports version 2.0\n"));
    EXPECT_EQ(Koro({"get", "cam", "DeviceFirmwareVersion"}).out, "2.0\n");
}

TEST_F(Firmware, CameraThatNeverReturnsEndsTheUpdate)
{
    settings["interfaces"][0]["cameras"][0]["resetReturns"] = false;
    const ToolResult result = Koro({"firmware", "update", "cam", Packed(), "--reset-timeout", "10"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: Device could not be reopened within 10 ms after reset (Device Key: "));
    EXPECT_THAT(result.err, HasSubstr("\nhint: Look at the camera; update it again once `koro list` shows it."));
    EXPECT_THAT(result.out, EndsWith("\nuploading: FileUpload\nresetting: DeviceReset (not finished)\n"));
}

TEST_F(Firmware, FileForAnotherCameraIsRefused)
{
    settings["interfaces"][0]["cameras"][0]["model"] = "Other";
    const std::string file = Packed();
    EXPECT_EQ(Koro({"firmware", "info", file}).status, 0);
    EXPECT_EQ(Koro({"firmware", "info", file, "--for", "cam"}).status, failure);
    const ToolResult result = Koro({"firmware", "update", "cam", file});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: No update of " + file + " fits the camera.\n"));
}

TEST_F(Firmware, AllCamerasThatFitAreUpdated)
{
    json& cameras = settings["interfaces"][0]["cameras"];
    for (const char* const serial : {"two", "three"})
    {
        json camera = cameras[0];
        camera["serial"] = serial;
        cameras.push_back(camera);
    }
    cameras[1]["model"] = "Other";
    const ToolResult result = Koro({"firmware", "update", "*", Packed(), "--all"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\n2 cameras updated, 0 failed\n"));
    EXPECT_EQ(Koro({"get", "three", "DeviceFirmwareVersion"}).out, "2.0\n");
    EXPECT_NE(Koro({"get", "two", "DeviceFirmwareVersion"}).out, "2.0\n");
    EXPECT_EQ(Koro({"firmware", "update", "nobody*", Packed(), "--all"}).status, noSuchCamera);
}

TEST_F(Firmware, InterruptLetsTheCameraFinishAndSparesTheOthers)
{
    json& cameras = settings["interfaces"][0]["cameras"];
    cameras[0]["resetMissingUpdates"] = 1;
    cameras[0]["resetAbsence_ms"] = 2000; // in which the interrupt comes
    cameras.push_back(cameras[0]);
    cameras[1]["serial"] = "two";
    const std::string file = Packed();
    ToolRun run({"firmware", "update", "--all", "*", file}, environment);
    ASSERT_TRUE(run.AwaitOutput("\nuploading: FileUpload\n"));
    run.Signal(SIGINT);
    const ToolResult result = run.Finish();
    EXPECT_EQ(result.status, interrupted);
    EXPECT_EQ(result.err, "koro: the update of a camera is not cut off; once more ends at once\n");
    EXPECT_THAT(result.out, EndsWith(" s, the camera reports version 2.0\n1 camera updated, 0 failed\n"));
    EXPECT_EQ(Koro({"get", "cam", "DeviceFirmwareVersion"}).out, "2.0\n");
    EXPECT_EQ(Koro({"get", "two", "DeviceFirmwareVersion"}).out, "1.0.0\n");
}

TEST_F(Firmware, CameraThatFailsDoesNotKeepTheOthersFromTheirUpdate)
{
    json& cameras = settings["interfaces"][0]["cameras"];
    json camera = cameras[0];
    camera["serial"] = "lost";
    camera["resetReturns"] = false;
    cameras.insert(cameras.begin(), camera);
    const ToolResult result = Koro({"firmware", "update", "*", Packed(), "--all", "--reset-timeout", "10"});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, EndsWith("\n1 camera updated, 1 failed\n"));
    EXPECT_THAT(result.err, HasSubstr("serial number lost: Device could not be reopened within 10 ms"));
    EXPECT_EQ(Koro({"get", "cam", "DeviceFirmwareVersion"}).out, "2.0\n");
}

TEST_F(Firmware, FileThatFitsNoCameraUpdatesNone)
{
    settings["interfaces"][0]["cameras"][0]["model"] = "Other";
    const ToolResult result = Koro({"firmware", "update", "*", Packed(), "--all"});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.out, "0 cameras updated, 0 failed\n");
}

TEST_F(Firmware, CameraThatReturnsUnderAnotherIdIsAskedForItsVersion)
{
    settings["interfaces"][0]["cameras"][0]["resetChangesId"] = true;
    settings["interfaces"][0]["cameras"][0]["resetMissingUpdates"] = 1;
    const ToolResult result = Koro({"firmware", "update", "cam", Packed()});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, EndsWith(" s, the camera reports version 2.0\n"));
}

TEST_F(Firmware, CameraThatIsResetByItsLastStepIsListedAnew)
{
    settings["interfaces"][0]["cameras"][0]["resetChangesId"] = true;
    control = folder.MakeFile(
        "rules.xml",
        Control(
            Procedure(
                Step("FileUpload", "<DeviceFileName>Firmware</DeviceFileName><FileName>image.bin</FileName>") +
                Step("FeatureWrite", "<FeatureName>DeviceReset</FeatureName><Value>1</Value>")) +
            Update(neededEntries, "<Condition Feature=\"DeviceModelName\">Acme</Condition>")));
    const ToolResult result = Koro({"firmware", "update", "cam", Packed()});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, EndsWith(" s, the camera reports version 2.0\n"));
}

TEST_F(Firmware, VersionIsThatOfTheCameraWithTheSerialNumber)
{
    json& cameras = settings["interfaces"][0]["cameras"];
    json other = cameras[0];
    other["serial"] = "other";
    other["firmwareVersion"] = "9.9";
    cameras.insert(cameras.begin(), other);
    EXPECT_THAT(Koro({"firmware", "update", "cam", Packed()}).out, EndsWith(" s, the camera reports version 2.0\n"));
}

TEST_F(Firmware, OneOfSeveralUpdatesForACameraIsNotChosen)
{
    const std::string condition = "<Condition Feature=\"DeviceModelName\">Acme</Condition>";
    control = folder.MakeFile(
        "rules.xml", Control(
                         Procedure(Steps()) + Update(neededEntries, condition) +
                         Update(Entry("Version", "3.0") + Entry("Description", "More"), condition)));
    const ToolResult result = Koro({"firmware", "update", "cam", Packed()});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: 2 updates of the file fit the camera: 2.0, 3.0.\nhint: "));
    EXPECT_NE(Koro({"get", "cam", "DeviceFirmwareVersion"}).out, "2.0\n");
}

TEST_F(Firmware, SettingsAreWrittenBeforeTheUpdate)
{
    const std::string condition = "<Condition Feature=\"PixelFormat\">Mono16</Condition>";
    control = folder.MakeFile("rules.xml", Control(Procedure(Steps()) + Update(neededEntries, condition)));
    const std::string file = Packed();
    EXPECT_EQ(Koro({"firmware", "update", "cam", file}).status, failure);
    const ToolResult result = Koro({"firmware", "update", "cam", file, "--set", "PixelFormat=Mono16"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, EndsWith(" s, the camera reports version 2.0\n"));
}

TEST_F(Firmware, SettingThatCannotBeWrittenPreventsTheUpdate)
{
    const std::string file = Packed();
    for (const char* const setting : {"system:Nothing=1", "interface:Nothing=1", "Nothing=1"})
        EXPECT_EQ(Koro({"firmware", "update", "cam", file, "--set", setting}).status, noSuchFeature) << setting;
    for (const char* const setting : {"device:LinkCommandTimeout=2000", "stream:EventNotification=Off"})
        EXPECT_EQ(Koro({"firmware", "update", "cam", file, "--set", setting}).status, usage) << setting;
    EXPECT_NE(Koro({"get", "cam", "DeviceFirmwareVersion"}).out, "2.0\n");
}

TEST_F(Firmware, SettingsOfAllAreThoseOfCamerasThatFit)
{
    json& cameras = settings["interfaces"][0]["cameras"];
    cameras.push_back(cameras[0]);
    cameras[1]["serial"] = "two";
    cameras[1]["model"] = "Other";
    const ToolResult result = Koro(
        {"firmware", "update", "*", Packed(), "--all", "--set", "system:InterfaceUpdateTimeout=7", "--set",
         "Width=32"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\n1 camera updated, 0 failed\n"));
    EXPECT_NE(Koro({"get", "two", "Width"}).out, "32\n");
}

TEST_F(Firmware, ImageThatTheCameraRefusesIsAFailure)
{
    image = folder.MakeFile("image.bin", "rubbish");
    const ToolResult result = Koro({"firmware", "update", "cam", Packed()});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: "));
    EXPECT_NE(Koro({"get", "cam", "DeviceFirmwareVersion"}).out, "2.0\n");
}

TEST_F(Firmware, PackRefusesWhatTheLibraryCannotRead)
{
    const std::string file = folder.File("broken.guf");
    const ToolResult broken = Koro({"firmware", "pack", file, folder.MakeFile("bad.xml", "<nothing/>")});
    EXPECT_EQ(broken.status, failure);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(Koro({"firmware", "pack", file, folder.File("missing.xml")}).status, failure);
    const std::string twin = folder.MakeFolder("other") + "/image.bin";
    std::filesystem::copy_file(image, twin);
    const ToolResult twice = Koro({"firmware", "pack", file, control, image, twin});
    EXPECT_EQ(twice.status, failure);
    EXPECT_THAT(twice.err, HasSubstr("two files are called image.bin"));
}

TEST_F(Firmware, PackRefusesAnUpdateThatNamesAFileWhichIsNotGiven)
{
    const std::string file = Packed();
    const std::string bytes = BytesOf(file);
    const ToolResult result = Koro({"firmware", "pack", file, control});
    EXPECT_EQ(result.status, failure);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(
        result.err, HasSubstr("koro: Cannot pack: a procedure uploads the file \"image.bin\", which is not given.\n"
                              "hint: Nothing was written"));
    EXPECT_TRUE(BytesOf(file) == bytes);
}

TEST_F(Firmware, ContentBeyondTheBoundIsRefused)
{
    std::filesystem::resize_file(image, (256U << 20) + 1);
    const ToolResult result = Koro({"firmware", "pack", folder.File("update.guf"), control, image});
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("image.bin has 268435457 bytes"));
}

TEST_F(Firmware, EqualContentsArePackedToEqualFiles)
{
    const std::string first = BytesOf(Packed());
    std::filesystem::last_write_time(image, std::filesystem::file_time_type{});
    std::filesystem::permissions(image, std::filesystem::perms::owner_read);
    EXPECT_TRUE(BytesOf(Packed()) == first);
    for (const char* const zone : {"East-9", "West9"})
    {
        environment["TZ"] = zone;
        EXPECT_TRUE(BytesOf(Packed()) == first) << zone;
    }
}

TEST_F(Firmware, PackThatFailsLeavesAnOlderFile)
{
    const std::string file = Packed();
    const std::string bytes = BytesOf(file);
    const ToolResult broken = Koro({"firmware", "pack", file, image});
    EXPECT_EQ(broken.status, failure);
    EXPECT_THAT(broken.err, HasSubstr("\nhint: Nothing was written"));
    EXPECT_TRUE(BytesOf(file) == bytes);
    // A forgotten name would make the control file the one to write.
    const std::string rules = BytesOf(control);
    EXPECT_EQ(Koro({"firmware", "pack", control, image}).status, failure);
    EXPECT_EQ(BytesOf(control), rules);
    for (const std::string& content : {control, image})
    {
        const ToolResult own = Koro({"firmware", "pack", content, control, image});
        EXPECT_EQ(own.status, failure);
        EXPECT_THAT(own.err, HasSubstr("koro: Cannot pack: " + content + " is the update file to write.\n"));
    }
    EXPECT_EQ(BytesOf(control), rules);
    EXPECT_TRUE(BytesOf(image) == Image("2.0"));
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(file).parent_path()))
        EXPECT_NE(entry.path().extension(), ".part");
}

TEST_F(Firmware, ImageThatIsMostlyPaddingIsPackedSoThatItCanBeRead)
{
    image = folder.MakeFile("image.bin", Image("2.0", 8'000'000));
    const std::string file = Packed();
    EXPECT_GT(std::filesystem::file_size(file), 8'000'000U);
    EXPECT_EQ(Koro({"firmware", "update", "cam", file}).status, 0);
    EXPECT_EQ(Koro({"get", "cam", "DeviceFirmwareVersion"}).out, "2.0\n");
}

TEST_F(Firmware, OtherImagesArePackedSmallerThanTheyAre)
{
    std::string numbers;
    for (int number = 0; number < 10'000; ++number)
        numbers += std::to_string(number);
    image = folder.MakeFile("image.bin", numbers);
    EXPECT_LT(std::filesystem::file_size(Packed()), std::filesystem::file_size(image));
}

TEST_F(Firmware, FileThatIsNoneIsRefusedBeforeAnyCamera)
{
    for (const std::string& file : {image, folder.File("missing")})
    {
        const ToolResult result = Koro({"firmware", "info", file});
        EXPECT_EQ(result.status, failure);
        EXPECT_THAT(result.err, HasSubstr("koro: The update file '" + file + "'"));
        EXPECT_THAT(result.err, HasSubstr("\nhint: Update files are whole .guf files"));
        EXPECT_EQ(Koro({"firmware", "update", "nobody", file}).err, result.err);
        const ToolResult all = Koro({"firmware", "update", "*", file, "--all"});
        EXPECT_EQ(all.status, failure);
        EXPECT_EQ(all.err, result.err);
        EXPECT_EQ(all.out, "");
    }
}

} // namespace

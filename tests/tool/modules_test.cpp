// The modules of a camera's branch: their settings for one run, those above the cameras without a camera, registers,
// and the addresses that an interface knows.
#include "tests/support/temporary_folder.h"
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
using testing::ContainsRegex;
using testing::HasSubstr;

ToolResult With(const Camera& camera, Arguments arguments, const Arguments& more)
{
    arguments.insert(arguments.end(), more.begin(), more.end());
    return camera.Run(arguments);
}

TEST(ModuleSettings, ReachEveryModuleOfTheBranch)
{
    const Camera camera;
    const ToolResult result = camera.Run(
        {"set", "cam", "Width=32", "device:LinkCommandTimeout=2000", "interface:DeviceUpdateTimeout=8",
         "system:InterfaceUpdateTimeout=7", "remote:Height=24"});
    EXPECT_EQ(result.status, 0) << result.err;
    // From the system down; those of the device and the camera in the order given.
    EXPECT_EQ(
        result.out, "InterfaceUpdateTimeout=7\nDeviceUpdateTimeout=8\nWidth=32\nLinkCommandTimeout=2000\nHeight=24\n");
}

TEST(ModuleSettings, AreWrittenBeforeTheModuleBelowIsOpened)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFOpenDevice", "GC_ERR_ACCESS_DENIED")["count"] = "every";
    const ToolResult device = Camera(settings).Run(
        {"set", "cam", "Width=32", "system:InterfaceUpdateTimeout=7", "interface:DeviceUpdateTimeout=8"});
    EXPECT_EQ(device.status, failure);
    EXPECT_EQ(device.out, "InterfaceUpdateTimeout=7\nDeviceUpdateTimeout=8\n");

    settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "DevOpenDataStream", "GC_ERR_ACCESS_DENIED")["count"] = "every";
    const ToolResult stream =
        Camera(settings).Run({"set", "cam", "device:LinkCommandTimeout=2000", "stream:Nothing=1"});
    EXPECT_EQ(stream.status, failure);
    EXPECT_EQ(stream.out, "LinkCommandTimeout=2000\n");
}

TEST(ModuleSettings, OfDeviceAndCameraAreCheckedBeforeTheFirstOfBothIsWritten)
{
    const Camera camera;
    const ToolResult value = camera.Run({"set", "cam", "device:LinkCommandTimeout=2000", "Width=abc"});
    EXPECT_EQ(value.status, failure);
    EXPECT_EQ(value.out, "");
    const ToolResult name = camera.Run({"set", "cam", "Width=32", "device:Nothing=1"});
    EXPECT_EQ(name.status, noSuchFeature);
    EXPECT_EQ(name.out, "");
}

TEST(ModuleSettings, ThatWereWrittenBeforeAFailureAreNamedWithTheirModules)
{
    const Camera camera;
    const Arguments above = {"set", "cam", "system:InterfaceUpdateTimeout=7", "interface:DeviceUpdateTimeout=8"};
    const std::string names = "\nWritten before it: system:InterfaceUpdateTimeout, interface:DeviceUpdateTimeout";
    Arguments refused = above;
    refused.insert(refused.end(), {"device:LinkCommandTimeout=2000", "Height=24", "OffsetX=32"});
    EXPECT_THAT(camera.Run(refused).err, HasSubstr(names + ", device:LinkCommandTimeout, Height\n"));
    Arguments wrong = above;
    wrong.push_back("Width=abc");
    EXPECT_THAT(camera.Run(wrong).err, HasSubstr(names + "\n"));
}

TEST(ModuleSettings, ComeFirstInEveryCommandThatHasThem)
{
    const Camera camera;
    for (const std::string module : {"system", "interface", "device"})
    {
        const std::string feature = module == "system"      ? "InterfaceUpdateTimeout"
                                    : module == "interface" ? "DeviceUpdateTimeout"
                                                            : "LinkCommandTimeout";
        const std::string setting = module + ":" + feature + "=5000";
        const ToolResult got = camera.Run({"get", "cam", feature, "--module", module, "--set", setting});
        EXPECT_EQ(got.out, "5000\n") << got.err;
        EXPECT_EQ(camera.Run({"features", "cam", "--set", setting}).status, 0);
        EXPECT_EQ(camera.Run({"run", "cam", "AcquisitionStop", "--set", setting}).status, 0);
        EXPECT_EQ(camera.Run({"describe", "cam", "Width", "--set", setting}).status, 0);
        EXPECT_EQ(camera.Run({"watch", "cam", "Width", "--changes", "1", "--set", setting}).status, 0);
        // A slip is noticed, so none of them passes it over.
        const std::string wrong = module + ":Nothing=1";
        EXPECT_EQ(camera.Run({"features", "cam", "--set", wrong}).status, noSuchFeature) << module;
        EXPECT_EQ(camera.Run({"describe", "cam", "Width", "--set", wrong}).status, noSuchFeature) << module;
    }
    // Without a module they are for that of --module.
    EXPECT_EQ(
        camera.Run({"get", "cam", "DeviceUpdateTimeout", "--module", "interface", "--set", "DeviceUpdateTimeout=8"})
            .out,
        "8\n");
}

TEST(ModuleSettings, ReachEachCommandThatOpensACamera)
{
    const TemporaryFolder folder;
    const Camera camera;
    const std::string saved = folder.File("saved");
    EXPECT_EQ(camera.Run({"settings", "save", "cam", saved, "--set", "Width=32"}).status, 0);
    EXPECT_EQ(camera.Run({"settings", "diff", "cam", saved, "--set", "Width=32"}).status, 0);
    EXPECT_EQ(camera.Run({"settings", "diff", "cam", saved}).status, different);

    for (const Arguments& command :
         {Arguments{"settings", "save", "cam", folder.File("other")}, Arguments{"settings", "load", "cam", saved},
          Arguments{"settings", "check", "cam", saved}, Arguments{"files", "list", "cam"},
          Arguments{"files", "read", "cam", "FactoryData", "-"}, Arguments{"files", "delete", "cam", "UserFile"},
          Arguments{"events", "cam", "--acquire", "--events", "1"}, Arguments{"xml", "cam"}})
        for (const std::string module : {"system", "interface", "device", "stream", "remote"})
            EXPECT_EQ(With(camera, command, {"--set", module + ":Nothing=1"}).status, noSuchFeature)
                << command[0] << " " << module;
}

TEST(ModuleSettings, OfAnUnknownModuleAreRefused)
{
    const Camera camera;
    for (const Arguments& arguments :
         {Arguments{"get", "cam", "Width", "--set", "buffer:Width=1"}, Arguments{"set", "cam", "buffer:Width=1"}})
    {
        const ToolResult result = camera.Run(arguments);
        EXPECT_EQ(result.status, usage);
        EXPECT_THAT(
            result.err, HasSubstr("\"buffer\" is no module: there are system, interface, device, stream and remote"));
    }
    EXPECT_EQ(camera.Run({"set", "cam", "system:=1"}).status, usage);
    EXPECT_EQ(camera.Run({"set", "cam", "system:Width"}).status, usage);
}

TEST(ModuleSettings, ReachAGrab)
{
    const TemporaryFolder folder;
    const auto grab = [&](const json& settings, const Arguments& more) {
        Arguments arguments = {"grab", "cam", "--frames", "1", "--output", folder.File("pictures")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Camera(settings).Run(arguments);
    };
    const json settings = OneCamera("Mono8", 64, 48);
    const ToolResult good = grab(
        settings, {"--set", "system:InterfaceUpdateTimeout=7", "--set", "interface:DeviceUpdateTimeout=8", "--set",
                   "device:LinkCommandTimeout=2000", "--set", "remote:Width=32", "--set", "Height=24"});
    EXPECT_EQ(good.status, 0) << good.err;
    for (const std::string module : {"system", "interface", "device", "stream", "remote"})
        EXPECT_EQ(grab(settings, {"--set", module + ":Nothing=1"}).status, noSuchFeature) << module;

    // Each before the module below is opened.
    json closed = settings;
    FailCall(closed, "DevOpenDataStream", "GC_ERR_ACCESS_DENIED")["count"] = "every";
    EXPECT_EQ(grab(closed, {"--set", "device:Nothing=1"}).status, noSuchFeature);
    FailCall(closed, "IFOpenDevice", "GC_ERR_ACCESS_DENIED")["count"] = "every";
    EXPECT_EQ(grab(closed, {"--set", "interface:Nothing=1"}).status, noSuchFeature);
    EXPECT_EQ(grab(closed, {"--set", "device:Nothing=1"}).status, failure);
}

// A producer that lists no camera.
class WithoutCameras : public testing::Test
{
protected:
    WithoutCameras()
    {
        json settings = OneCamera("Mono8", 64, 48);
        settings["interfaces"][0]["cameras"] = json::array();
        environment = SimulatorWith(folder, settings);
    }

    ToolResult Koro(const Arguments& arguments) const { return RunTool(arguments, environment); }

    TemporaryFolder folder;
    Environment environment;
};

TEST_F(WithoutCameras, FeaturesOfAnInterfaceAreReached)
{
    const ToolResult set = Koro({"set", "--interface", "if", "DeviceUpdateTimeout=9"});
    EXPECT_EQ(set.status, 0) << set.err;
    EXPECT_EQ(set.out, "DeviceUpdateTimeout=9\n");
    EXPECT_EQ(
        Koro({"set", "--interface", "if", "DeviceUpdateTimeout=9", "system:InterfaceUpdateTimeout=3"}).out,
        "InterfaceUpdateTimeout=3\nDeviceUpdateTimeout=9\n");
    EXPECT_EQ(Koro({"get", "--interface", "i*", "InterfaceID"}).out, "if\n");
    EXPECT_EQ(
        Koro({"get", "--interface", "if", "InterfaceID", "DeviceUpdateTimeout", "--set", "DeviceUpdateTimeout=4"}).out,
        "InterfaceID=if\nDeviceUpdateTimeout=4\n");
    EXPECT_THAT(Koro({"features", "--interface", "if"}).out, HasSubstr("  InterfaceID "));
    EXPECT_EQ(Koro({"run", "--interface", "if", "DeviceUpdateList"}).status, 0);
    EXPECT_THAT(Koro({"describe", "--interface", "if", "InterfaceID"}).out, ContainsRegex("value +\"if\""));
    EXPECT_THAT(Koro({"xml", "--interface", "if"}).out, HasSubstr("<RegisterDescription"));
}

TEST_F(WithoutCameras, FeaturesOfASystemAreReached)
{
    const std::string file = SimulatorPath();
    EXPECT_EQ(Koro({"get", "--system", file, "TLVendorName"}).out, "zvr\n");
    EXPECT_EQ(Koro({"set", "--system", file, "InterfaceUpdateTimeout=3"}).out, "InterfaceUpdateTimeout=3\n");
    EXPECT_THAT(Koro({"features", "--system", file}).out, HasSubstr("  TLVendorName "));
    EXPECT_EQ(Koro({"run", "--system", file, "InterfaceUpdateList"}).status, 0);
    EXPECT_EQ(Koro({"get", "--interface", "if", "TLVendorName", "--module", "system"}).out, "zvr\n");
}

TEST(ModulesAboveCameras, SelectAmongWhatTheirListsHave)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["cameras"].push_back({{"serial", "other"}});
    settings["interfaces"].push_back({{"id", "empty"}});
    const Camera camera(settings);
    const ToolResult device = camera.Run({"get", "--interface", "if", "DeviceID", "--set", "DeviceSelector=1"});
    EXPECT_EQ(device.status, 0) << device.err;
    EXPECT_EQ(device.out, "SimulatedCamera_other\n");
    const ToolResult interface =
        camera.Run({"get", "--system", SimulatorPath(), "InterfaceID", "--set", "InterfaceSelector=1"});
    EXPECT_EQ(interface.status, 0) << interface.err;
    EXPECT_EQ(interface.out, "empty\n");
}

TEST_F(WithoutCameras, WrongNamesAndMissingWordsAreReported)
{
    const ToolResult unknown = Koro({"get", "--interface", "nobody", "InterfaceID"});
    EXPECT_EQ(unknown.status, noSuchCamera);
    EXPECT_THAT(unknown.err, HasSubstr("koro: No interface is called \"nobody\". There are:\n  if  "));
    EXPECT_EQ(Koro({"get", "--interface", "if"}).status, usage);
    EXPECT_EQ(Koro({"set", "--interface", "if"}).status, usage);
    EXPECT_EQ(Koro({"set", "--interface", "if", "word"}).status, usage);
    EXPECT_EQ(Koro({"run", "--interface", "if", "one", "two"}).status, usage);
    EXPECT_EQ(Koro({"get"}).status, usage);
    EXPECT_EQ(Koro({"features", "cam", "--interface", "if"}).status, usage);
    EXPECT_EQ(Koro({"get", "--interface", "if", "X", "--module", "stream"}).status, usage);
    EXPECT_EQ(Koro({"get", "--interface", "if", "InterfaceID", "--set", "device:X=1"}).status, usage);
    EXPECT_EQ(Koro({"get", "--system", folder.File("missing.cti"), "TLVendorName"}).status, failure);
}

TEST(Registers, OfEveryModuleAreRead)
{
    const Camera camera;
    EXPECT_EQ(camera.Run({"read", "cam", "0x1000", "2", "--module", "interface"}).out, "0x6966\n"); // "if"
    EXPECT_EQ(camera.Run({"read", "--interface", "if", "4096", "2"}).out, "0x6966\n");
    EXPECT_EQ(camera.Run({"read", "--system", SimulatorPath(), "0x164"}).status, 0);
}

TEST(Registers, AreReadBehindTheSettings)
{
    json settings = OneCamera("Mono8", 64, 48);
    const TemporaryFolder folder;
    Describe(folder, settings, "Width", IntRegisterAt("Width", 0));
    EXPECT_EQ(Camera(settings).Run({"read", "cam", "0", "--set", "Width=0x12345678"}).out, "0x78563412\n");
}

TEST(Registers, ThatAreWrittenChangeTheFeature)
{
    const TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    settings["memory"] = folder.MakeFolder("memory");
    const Environment environment = SimulatorWith(folder, settings);
    // The camera keeps its registers from one run to the next; this one is its width.
    EXPECT_EQ(RunTool({"write", "cam", "0x300", "20000000"}, environment).out, "4 bytes written\n");
    EXPECT_EQ(RunTool({"get", "cam", "Width"}, environment).out, "32\n");
    EXPECT_EQ(RunTool({"read", "cam", "0x300", "2"}, environment).out, "0x2000\n");
}

TEST(Registers, ThatCannotBeReadAreNamedByTheirAddress)
{
    const Camera camera;
    const ToolResult read = camera.Run({"read", "cam", "0xFFFFFFF0", "4", "--module", "interface"});
    EXPECT_EQ(read.status, failure);
    EXPECT_THAT(read.err, HasSubstr("koro: The registers at 0xFFFFFFF0 cannot be read: "));
    const ToolResult written = camera.Run({"write", "cam", "0xFFFFFFF0", "00", "--module", "interface"});
    EXPECT_EQ(written.status, failure);
    EXPECT_THAT(written.err, HasSubstr("koro: The registers at 0xFFFFFFF0 cannot be written: "));
    for (const Arguments& arguments :
         {Arguments{"read", "cam"}, Arguments{"read", "cam", "ten"}, Arguments{"read", "cam", "0", "0"},
          Arguments{"read", "cam", "-4"}, Arguments{"read", "cam", "0", "99999999999"}, Arguments{"write", "cam", "0"},
          Arguments{"write", "cam", "0", "123"}, Arguments{"write", "cam", "0", "0x"}})
    {
        EXPECT_EQ(camera.Run(arguments).status, usage) << arguments.back();
    }
}

TEST(Addresses, AreShownWhereTheInterfaceKnowsThem)
{
    const TemporaryFolder folder;
    const Environment environment = SimulatorWith(folder, json::object());
    const ToolResult info = RunTool({"info", "KS0001"}, environment);
    EXPECT_THAT(info.out, ContainsRegex("\nIP address +[0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_THAT(info.out, ContainsRegex("\nMAC address +([0-9a-f][0-9a-f]:)+[0-9a-f][0-9a-f]\n"));
    const json camera = json::parse(RunTool({"info", "KS0001", "--json"}, environment).out);
    EXPECT_THAT(camera.at("ipAddress").get<std::string>(), ContainsRegex("^[0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+$"));
    EXPECT_THAT(RunTool({"info", "KS0003"}, environment).out, ContainsRegex("\nIP address +-\n"));

    const std::string ip = camera.at("ipAddress").get<std::string>();
    EXPECT_THAT(RunTool({"list"}, environment).out, testing::Not(HasSubstr(ip)));
    EXPECT_THAT(RunTool({"list", "--verbose"}, environment).out, ContainsRegex("      IP address +" + ip + "\n"));
    const json listed = json::parse(RunTool({"list", "--verbose", "--json"}, environment).out);
    EXPECT_EQ(listed.at("producers")[0].at("interfaces")[0].at("cameras")[0].at("ipAddress"), ip);
}

} // namespace

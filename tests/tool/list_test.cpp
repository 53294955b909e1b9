#include "tests/support/temporary_folder.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;

const json simulatorDefaults = json::object();

// "7 cameras", by the lines that name one.
std::string CamerasIn(const std::string& tree)
{
    const std::string line = "\n    camera ";
    size_t number = 0;
    for (size_t at = tree.find(line); at != tree.npos; at = tree.find(line, at + 1))
        ++number;
    return std::to_string(number) + " cameras";
}

TEST(List, SimulatorShowsItsTreeAsJSON)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"list", "--json"}, SimulatorWith(folder, simulatorDefaults));
    ASSERT_EQ(result.status, 0) << result.err;
    const json producers = json::parse(result.out).at("producers");
    ASSERT_EQ(producers.size(), 1u);
    EXPECT_EQ(producers[0].at("genTLVersion"), "1.5");
    EXPECT_TRUE(producers[0].at("problem").is_null());

    const json& interfaces = producers[0].at("interfaces");
    ASSERT_GE(interfaces.size(), 2u);
    EXPECT_EQ(interfaces[0].at("tlType"), "GEV");
    EXPECT_EQ(interfaces[1].at("tlType"), "U3V");
    ASSERT_GE(interfaces[0].at("cameras").size(), 2u);
    const json& camera = interfaces[0].at("cameras")[0];
    EXPECT_EQ(camera.at("serialNumber"), "KS0001");
    EXPECT_EQ(camera.at("userName"), "mono");
    EXPECT_EQ(camera.at("model"), "GevMono");
    EXPECT_EQ(camera.at("access"), "ReadWrite");
    EXPECT_EQ(camera.at("accessStatus"), 1);
}

TEST(List, SimulatorShowsItsTreeAsText)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"list"}, SimulatorWith(folder, simulatorDefaults));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.find(SimulatorPath() + "\n"), 0u) << result.out;
    EXPECT_THAT(result.out, HasSubstr("\n  interface SimGEV  Simulated GigE Vision, GEV\n    camera "));
    EXPECT_THAT(
        result.out, HasSubstr("      model          zvr GevMono\n"
                              "      serial number  KS0001\n"
                              "      user name      mono\n"
                              "      access         ReadWrite\n"));
    EXPECT_THAT(result.out, testing::EndsWith("\n" + CamerasIn(result.out) + "\n"));
    EXPECT_THAT(result.out, HasSubstr("\n    camera UsbPlayer_KS0004\n"));
    EXPECT_EQ(result.err, "");
}

TEST(List, NoCameraIsSaidWithAHint)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"list"}, {{"GENICAM_GENTL64_PATH", folder.Path().string()}});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "0 cameras\nhint: `koro doctor` tells why there is none.\n");
}

TEST(List, ProducerThatCrashesCostsOneLine)
{
    const TemporaryFolder folder;
    const Environment environment = SimulatorWith(folder, simulatorDefaults);
    const std::string crashing = folder.MakeCopy(ProducerFolder() + "/tool_crashes_at_init.cti", "producers/a.cti");
    const ToolResult text = RunTool({"list"}, environment);
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.out, HasSubstr("\n" + crashing + " is left out: crashed by signal 11 (SIGSEGV)\n"));
    EXPECT_THAT(text.out, HasSubstr("\n" + CamerasIn(text.out) + "\n"));

    const json all = json::parse(RunTool({"list", "--json"}, environment).out);
    EXPECT_EQ(all.at("producers").size(), 1u);
    ASSERT_EQ(all.at("failed").size(), 1u);
    EXPECT_EQ(all.at("failed")[0].at("path"), crashing);
}

TEST(List, SingleProducerNeedsNoVariable)
{
    const ToolResult result = RunTool({"list", "--json", "--producer", ProducerFolder() + "/scripted_1_5.cti"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(json::parse(result.out).at("producers").size(), 1u);
}

// Of a producer that was named.
TEST(List, FileThatIsNotThereOrCannotBeReadIsReportedInPlainWords)
{
    const TemporaryFolder folder;
    const std::string missing = folder.File("missing.cti");
    const std::string circle = folder.MakeLink(folder.File("circle.cti"), "circle.cti");
    const std::map<std::string, std::string> reasons = {
        {missing, "does not exist"},
        {circle, "cannot be read: Too many levels of symbolic links"},
        {folder.MakeFolder("folder.cti"), "is a directory"}};
    for (const auto& [file, reason] : reasons)
    {
        const ToolResult result = RunTool({"list", "--producer", file});
        EXPECT_EQ(result.status, failure) << file;
        EXPECT_THAT(result.err, testing::StartsWith("koro: The producer " + file + " " + reason + ".\nhint: Name the "))
            << file;
        EXPECT_EQ(result.out, "") << file;
    }
    const std::vector<Arguments> commands = {
        {"list", "--json", "--producer", missing},
        {"info", "cam", "--producer", missing},
        {"watch", "--duration", "1", "--producer", missing},
        {"get", "--system", missing, "TLVendorName"},
        {"get", "--interface", "if", "InterfaceID", "--producer", missing}};
    for (const Arguments& command : commands)
    {
        const ToolResult result = RunTool(command);
        EXPECT_EQ(result.status, failure) << testing::PrintToString(command);
        EXPECT_THAT(result.err, testing::StartsWith("koro: The producer " + missing + " does not exist.\nhint: "))
            << testing::PrintToString(command);
    }
}

TEST(List, InformationThatAProducerLacksIsADash)
{
    const TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    // DEVICE_INFO: vendor, access status, user name, serial number.
    for (const int command : {1, 5, 6, 7})
    {
        ForgetInfo(settings, "IFGetDeviceInfo", command);
    }
    const ToolResult result = RunTool({"list"}, SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(
        result.out, HasSubstr("      model          - SimulatedCamera\n"
                              "      serial number  -\n"
                              "      user name      -\n"
                              "      access         -\n"));
}

TEST(List, InterfaceThatCannotBeListedSaysWhyAndTheOthersAreShown)
{
    const TemporaryFolder folder;
    json settings = simulatorDefaults;
    FailCall(settings, "IFUpdateDeviceList", "GC_ERR_IO");
    const ToolResult result = RunTool({"list"}, SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(
        result.out, HasSubstr("\n    [Function: IFUpdateDeviceList | Error-Code: -1010 (GC_ERR_IO) | Error-Text: "));
    EXPECT_THAT(result.out, HasSubstr("\n" + CamerasIn(result.out) + "\n"));
    EXPECT_THAT(result.out, HasSubstr("\n    camera UsbPlayer_KS0004\n"));
    EXPECT_THAT(result.out, testing::Not(HasSubstr("camera GevMono_KS0001")));
}

TEST(List, SystemThatCannotBeOpenedSaysWhy)
{
    const TemporaryFolder folder;
    json settings = simulatorDefaults;
    FailCall(settings, "TLOpen", "GC_ERR_RESOURCE_IN_USE");
    const json all = json::parse(RunTool({"list", "--json"}, SimulatorWith(folder, settings)).out);
    EXPECT_THAT(all.at("producers")[0].at("problem").get<std::string>(), HasSubstr("[Function: TLOpen | "));
}

} // namespace

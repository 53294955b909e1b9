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


TEST(Info, JSONTellsCameraAndStream)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"info", "cam", "--json"}, SimulatorWith(folder, OneCamera("Mono12p", 64, 48)));
    ASSERT_EQ(result.status, 0) << result.err;
    const json info = json::parse(result.out);
    EXPECT_EQ(info.at("serialNumber"), "cam");
    EXPECT_EQ(info.at("interface"), "if");
    EXPECT_EQ(info.at("producer"), SimulatorPath());
    ASSERT_EQ(info.at("opened").at("streams").size(), 1u);
    EXPECT_EQ(info.at("opened").at("streams")[0].at("payloadSize"), 64 * 48 * 12 / 8);
    EXPECT_FALSE(info.at("opened").contains("problem"));
}

TEST(Info, TextAlignsItsRows)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"info", "if:*cam"}, SimulatorWith(folder, OneCamera("Mono8", 64, 48)));
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nserial number                cam\n"));
    EXPECT_THAT(result.out, HasSubstr("\n  payload size          3072\n"));
    EXPECT_THAT(result.out, testing::ContainsRegex("\ndescription  [Ll]ocal:"));
}

TEST(Info, UnknownCameraListsWhatThereIs)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"info", "nobody"}, SimulatorWith(folder, json::object()));
    EXPECT_EQ(result.status, noSuchCamera);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("koro: No camera is called \"nobody\". There are:\n  SimGEV:"));
    EXPECT_THAT(result.err, testing::ContainsRegex("serial number KS0004, \"player\"\n(.*\n)*hint: "));
}

TEST(Info, AmbiguousNameListsWhatItFits)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"info", "KS000[12]"}, SimulatorWith(folder, json::object()));
    EXPECT_EQ(result.status, noSuchCamera);
    EXPECT_THAT(result.err, HasSubstr("koro: \"KS000[12]\" fits several cameras:\n"));
    EXPECT_THAT(result.err, HasSubstr("serial number KS0002"));
    EXPECT_THAT(result.err, testing::Not(HasSubstr("serial number KS0003")));
}

TEST(Info, CameraThatCannotBeOpenedIsStillShown)
{
    const TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "IFOpenDevice", "GC_ERR_ACCESS_DENIED");
    const ToolResult result = RunTool({"info", "cam"}, SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\nserial number                cam\n"));
    EXPECT_THAT(result.out, HasSubstr("\nnot opened: [Function: IFOpenDevice | Error-Code: -1005"));
}

TEST(Info, MissingStreamInformationIsADash)
{
    const TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    // STREAM_INFO: defines payload size 9, payload size 7, and the least number of buffers 12.
    for (const int command : {7, 9, 12})
    {
        ForgetInfo(settings, "DSGetInfo", command);
    }
    const ToolResult result = RunTool({"info", "cam"}, SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(
        result.out, HasSubstr("  defines payload size  -\n  payload size          -\n  buffers at least      -\n"));
}

} // namespace

#include "tests/tool/described_camera.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;

json EventCamera(const char* tlType = "GEV")
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["tlType"] = tlType;
    settings["interfaces"][0]["cameras"][0]["startWithStream"] = false;
    settings["interfaces"][0]["cameras"][0]["rate"] = 100;
    return settings;
}

ToolResult Events(const json& settings, const Arguments& more)
{
    const TemporaryFolder folder;
    Arguments arguments = {"events", "cam", "--acquire"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunTool(arguments, SimulatorWith(folder, settings));
}

TEST(Events, ExposuresAreTold)
{
    for (const char* const type : {"GEV", "U3V"})
    {
        SCOPED_TRACE(type);
        const ToolResult result = Events(EventCamera(type), {"--enable", "ExposureEnd", "--events", "3", "--json"});
        ASSERT_EQ(result.status, 0) << result.err;
        std::stringstream lines(result.out);
        int numLines = 0;
        for (std::string line; std::getline(lines, line); ++numLines)
        {
            const json event = json::parse(line);
            EXPECT_EQ(event.at("event"), "ExposureEnd");
            EXPECT_EQ(event.at("values").at("EventExposureEndFrameID"), std::to_string(numLines + 1));
            EXPECT_TRUE(event.at("values").contains("EventExposureEndTimestamp"));
        }
        EXPECT_EQ(numLines, 3);
    }
}

TEST(Events, LineNamesTheEventAndItsValues)
{
    const ToolResult result = Events(EventCamera(), {"--enable", "ExposureEnd", "--events", "1"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("  ExposureEnd EventExposureEnd="));
    EXPECT_THAT(result.out, HasSubstr(" EventExposureEndFrameID=1"));
}

TEST(Events, NumberThatTheProducerDoesNotTellIsLeftOut)
{
    json settings = EventCamera();
    ForgetInfo(settings, "EventGetDataInfo", 2); // EVENT_DATA_NUMID
    const ToolResult result = Events(settings, {"--enable", "ExposureEnd", "--events", "1", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const json event = json::parse(result.out);
    EXPECT_TRUE(event.at("id").is_null());
    EXPECT_EQ(event.at("values").at("EventExposureEndFrameID"), "1");
}

TEST(Events, WithoutNamesAllAreEnabled)
{
    const ToolResult result = Events(EventCamera(), {"--events", "2"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("ExposureEnd"));
}

TEST(Events, UnknownNameIsRefusedWithThoseThatAre)
{
    const ToolResult result = Events(EventCamera(), {"--enable", "Sunrise", "--events", "1"});
    EXPECT_EQ(result.status, noSuchFeature);
    EXPECT_THAT(result.err, HasSubstr("koro: EventSelector has no entry \"Sunrise\".\nhint: There are "));
    EXPECT_THAT(result.err, HasSubstr("ExposureEnd"));
}

TEST(Events, DurationEndsTheWaitWithoutEvents)
{
    const TemporaryFolder folder;
    const ToolResult result = RunTool({"events", "cam", "--duration", "50"}, SimulatorWith(folder, EventCamera()));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "");
}

TEST(Events, StreamOfASettingIsTheOneOfTheAcquisition)
{
    // The simulator, like most producers, opens a stream only once.
    const ToolResult result =
        Events(EventCamera(), {"--enable", "ExposureEnd", "--events", "1", "--set", "stream:EventNotification=Off"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("ExposureEnd"));
}

TEST(Events, PicturesThatDoNotComeDoNotHoldUpTheEnd)
{
    json settings = EventCamera();
    settings["interfaces"][0]["cameras"][0]["rate"] = 0.001;
    FailCall(settings, "EventKill", "GC_ERR_ERROR");
    EXPECT_EQ(Events(settings, {"--duration", "50"}).status, 0);
}

TEST(Events, InterruptEndsTheWait)
{
    const TemporaryFolder folder;
    ToolRun run({"events", "cam", "--acquire", "--enable", "ExposureEnd"}, SimulatorWith(folder, EventCamera()));
    ASSERT_TRUE(run.AwaitOutput("ExposureEnd"));
    run.Signal(SIGINT);
    EXPECT_EQ(run.Finish().status, interrupted);
}

TEST(Events, OfAProducerWithoutThemAreMissedInPlainWords)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "GCRegisterEvent", "GC_ERR_NOT_IMPLEMENTED")["count"] = "every";
    const ToolResult result = Camera(settings).Run({"events", "cam"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("koro: The producer delivers no events of this camera: "));
    EXPECT_THAT(result.err, HasSubstr("\nhint: `koro watch` "));
}

} // namespace

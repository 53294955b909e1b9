#include "tests/tool/expected_pictures.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"
#include "tests/unit/tool/image_files.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;


Arguments GrabForEver(const std::string& camera, const std::string& output)
{
    return {"grab", camera, "--frames", "1000000", "--output", output, "--timeout", "3600000"};
}

// Every file is whole and nothing else lies there.
void ExpectWholePictures(const std::string& folder, size_t least)
{
    size_t number = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
    {
        EXPECT_EQ(entry.path().extension(), ".png") << entry.path();
        EXPECT_EQ(ReadPNG(entry.path().string()).width, 64u);
        ++number;
    }
    EXPECT_GE(number, least);
}

TEST(Interrupt, GrabEndsCleanlyWithWholeFiles)
{
    for (const int signal : {SIGINT, SIGTERM})
    {
        const TemporaryFolder folder;
        ToolRun run(GrabForEver("cam", folder.File("out")), SimulatorWith(folder, OneCamera("Mono8", 64, 48)));
        ASSERT_TRUE(run.AwaitOutput("\n3/1000000 "));
        run.Signal(signal);
        const ToolResult result = run.Finish();
        EXPECT_EQ(result.status, interrupted);
        EXPECT_EQ(result.err, "koro: stopping; once more ends at once\n");
        EXPECT_THAT(result.out, HasSubstr("\npictures    "));
        EXPECT_THAT(result.out, HasSubstr("\ntimeouts    0\n"));
        ExpectWholePictures(folder.File("out"), 3);
    }
}

TEST(Interrupt, WaitForASilentCameraEnds)
{
    // This producer never delivers by itself, and the time-out is an hour.
    const TemporaryFolder folder;
    Arguments arguments = GrabForEver("if0-dev0", folder.File("out"));
    arguments.insert(arguments.end(), {"--producer", ProducerFolder() + "/scripted_1_5.cti"});
    ToolRun run(arguments);
    ASSERT_TRUE(run.AwaitOutput(" buffers of "));
    run.Signal(SIGINT);
    const ToolResult result = run.Finish();
    EXPECT_EQ(result.status, interrupted);
    EXPECT_THAT(result.out, HasSubstr("\npictures    0\n"));
}

TEST(Interrupt, CodeOfAKilledWaitNeedNotBeReliable)
{
    // The producer ends the wait, but then says that nothing went wrong.
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "GCGetLastError", "GC_ERR_ERROR")["count"] = "every";
    const TemporaryFolder folder;
    Arguments arguments = GrabForEver("cam", folder.File("out"));
    arguments.insert(arguments.end(), {"--set", "AcquisitionMode=SingleFrame"});
    ToolRun run(arguments, SimulatorWith(folder, settings));
    ASSERT_TRUE(run.AwaitOutput("\n1/1000000 "));
    run.Signal(SIGINT);
    EXPECT_EQ(run.Finish().status, interrupted);
}

TEST(Interrupt, SecondOneEndsAtOnce)
{
    // The stop, or the end of the wait, would take a minute.
    for (const char* function : {"DSStopAcquisition", "EventKill"})
    {
        json settings = OneCamera("Mono8", 64, 48);
        FailCall(settings, function, "GC_ERR_SUCCESS")["delay_ms"] = 60000;
        // Without connection reports nobody waits for them, and the first kill is that of the stream.
        settings["connection"]["recordBytes"] = 0;
        const TemporaryFolder folder;
        ToolRun run(GrabForEver("cam", folder.File("out")), SimulatorWith(folder, settings));
        ASSERT_TRUE(run.AwaitOutput("\n3/1000000 "));
        run.Signal(SIGINT);
        ASSERT_TRUE(run.AwaitError("koro: stopping"));
        run.Signal(SIGINT);
        const ToolResult result = run.Finish();
        EXPECT_EQ(result.status, interrupted);
        EXPECT_THAT(result.out, testing::Not(HasSubstr("\npictures    ")));
    }
}

} // namespace

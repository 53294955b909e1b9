// How a grab ends whose camera dies.
#include "tests/support/file_size_limit.h"
#include "tests/tool/played_camera.h"
#include "tests/tool/simulator_settings.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;


// What the dead camera waits at before each of its failures.
class Gate
{
public:
    explicit Gate(PlayedCamera& camera) : path(camera.Folder().File("gate"))
    {
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        camera.Set("KORO_TEST_GATE", path);
    }

    void Open() const
    {
        const int end = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        ASSERT_GE(end, 0);
        close(end);
    }

private:
    const std::string path;
};

TEST(GrabEnd, TableAndTheFirstCauseComeWhenTheCameraHasDied)
{
    const PlayedCamera camera("WWWD");
    const ToolResult result = camera.Grab(10);
    EXPECT_EQ(result.status, framesMissing);
    EXPECT_THAT(result.out, HasSubstr("\npictures    3\n"));
    EXPECT_THAT(result.out, HasSubstr("\ntimeouts    3\n"));
    EXPECT_THAT(
        result.err,
        testing::StartsWith("koro: No frame came within 20 ms, 3 times in a row, and the camera does not answer.\n"
                            "koro: The camera gave 3 of 10 pictures.\nhint: "));
    // What failed in the clean-up comes behind it.
    EXPECT_THAT(result.err, testing::ContainsRegex("\nhint: [^\n]*\nkoro: [^\n]*GCWritePort[^\n]*-1011"));
    EXPECT_THAT(camera.FileNames(), testing::SizeIs(3));
}

TEST(GrabEnd, InterruptBehindTheDeathEndsWithTheTable)
{
    const PlayedCamera camera("WWWD");
    ToolRun run(camera.GrabArguments(10, {"--timeout", "3600000"}), camera.Surroundings());
    ASSERT_TRUE(run.AwaitOutput("\n3/10 "));
    run.Signal(SIGINT);
    const ToolResult result = run.Finish();
    EXPECT_EQ(result.status, interrupted);
    EXPECT_THAT(result.out, HasSubstr("\npictures    3\n"));
    EXPECT_THAT(result.err, testing::StartsWith("koro: stopping; once more ends at once\n"));
}

TEST(GrabEnd, ClosingThatTakesLongSaysSo)
{
    PlayedCamera camera("WWWD");
    const Gate gate(camera);
    ToolRun run(camera.GrabArguments(10), camera.Surroundings());
    ASSERT_TRUE(run.AwaitError("koro: closing, the camera does not answer\n"));
    gate.Open();
    const ToolResult result = run.Finish();
    EXPECT_EQ(result.status, framesMissing);
    EXPECT_THAT(result.out, HasSubstr("\ntimeouts    3\n"));
    EXPECT_THAT(result.err, HasSubstr("koro: The camera gave 3 of 10 pictures.\n"));
    EXPECT_THAT(result.err, Not(HasSubstr("could not be closed")));
}

TEST(GrabEnd, CameraThatCannotBeClosedDoesNotKeepTheProcess)
{
    // The gate stays shut.
    PlayedCamera camera("WWWD");
    const Gate gate(camera);
    const ToolResult result = camera.Grab(10);
    EXPECT_EQ(result.status, framesMissing);
    EXPECT_THAT(result.out, HasSubstr("\npictures    3\n"));
    EXPECT_THAT(result.out, HasSubstr("\ntimeouts    3\n"));
    EXPECT_THAT(result.notices, HasSubstr("koro: closing, the camera does not answer\n"));
    EXPECT_THAT(result.err, HasSubstr("koro: The camera gave 3 of 10 pictures.\n"));
    EXPECT_THAT(result.err, HasSubstr("koro: The camera could not be closed.\n"));
    EXPECT_THAT(camera.FileNames(), testing::SizeIs(3));
}

TEST(GrabEnd, FailureInMidStreamIsToldBehindTheTable)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "DSQueueBuffer", "GC_ERR_IO")["at"] = 12;
    FailCall(settings, "DSStopAcquisition", "GC_ERR_TIMEOUT");
    const TemporaryFolder folder;
    const ToolResult result =
        RunTool({"grab", "cam", "--frames", "20", "--output", folder.File("out")}, SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, HasSubstr("\npictures    4\n"));
    EXPECT_THAT(result.err, testing::StartsWith("koro: [Function: DSQueueBuffer"));
    EXPECT_THAT(result.err, HasSubstr("\nkoro: [Function: DSStopAcquisition"));
}

TEST(GrabEnd, StopThatFailsBehindAllPicturesIsAFailureWithATable)
{
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "DSStopAcquisition", "GC_ERR_TIMEOUT");
    const TemporaryFolder folder;
    const ToolResult result =
        RunTool({"grab", "cam", "--frames", "2", "--output", folder.File("out")}, SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, HasSubstr("\npictures    2\n"));
    EXPECT_THAT(result.err, HasSubstr("koro: [Function: DSStopAcquisition"));
}

TEST(GrabEnd, PictureThatDoesNotFitOnTheDiskIsNamedOnceBehindTheTable)
{
    const TemporaryFolder folder;
    const Environment environment = SimulatorWith(folder, OneCamera("Mono8", 64, 48));
    const FileSizeLimit disk(3000);
    // More frames than may stand in line, so that the failure ends the stream and is met again at the end.
    const ToolResult result =
        RunTool({"grab", "cam", "--frames", "40", "--format", "raw", "--output", folder.File("out")}, environment);
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, HasSubstr("\npictures    0\n"));
    EXPECT_EQ(
        result.err, "koro: Cannot write " + folder.File("out/cam-000001.raw") +
                        ": File too large.\nhint: Check that the folder exists, is writable and has room.\n");
}

class GrabEndWithChunks : public testing::Test
{
protected:
    GrabEndWithChunks()
    {
        json settings = OneCamera("Mono8", 64, 48);
        settings["interfaces"][0]["tlType"] = "GEV"; // such cameras know chunks
        environment = SimulatorWith(folder, settings);
        std::filesystem::create_directory(folder.File("out"));
    }

    ToolResult Grab(const std::string& frames) const
    {
        return RunTool(
            {"grab", "cam", "--frames", frames, "--format", "none", "--chunks", "--output", folder.File("out")},
            environment);
    }

    const TemporaryFolder folder;
    const std::string table = folder.File("out/cam-chunks.csv");
    Environment environment;
};

TEST_F(GrabEndWithChunks, TableThatDoesNotFitOnTheDiskIsNamedOnceBehindTheSummary)
{
    const FileSizeLimit disk(2000);
    const ToolResult result = Grab("1000");
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, HasSubstr("\nframes      "));
    EXPECT_EQ(
        result.err, "koro: Cannot write the table of chunks: File too large.\nhint: Check that the disk has room.\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder.File("out")));
}

TEST_F(GrabEndWithChunks, TableThatDoesNotFitAtTheEndIsNamedBehindTheSummary)
{
    const FileSizeLimit disk(20);
    const ToolResult result = Grab("2");
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, HasSubstr("\nframes      2\n"));
    EXPECT_THAT(result.err, testing::StartsWith("koro: Cannot write " + table + ": File too large.\nhint: "));
}

TEST_F(GrabEndWithChunks, TableThatCannotBeBegunIsNamedBehindTheSummary)
{
    ASSERT_EQ(mkfifo(table.c_str(), 0600), 0);
    const ToolResult result = Grab("2");
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.out, HasSubstr("\nframes      0\n"));
    EXPECT_EQ(result.err, "koro: Cannot write " + table + ": it is there, and no regular file.\n");
}

TEST(GrabEnd, SilenceIsAnOutageAndEmptyBuffersHaveARow)
{
    const PlayedCamera camera("WEE..WWW");
    const ToolResult result = camera.Grab(4, {"--timeout", "1"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("\nframes      6\n"));
    EXPECT_THAT(result.out, HasSubstr("\nincomplete  0\n"));
    EXPECT_THAT(result.out, HasSubstr("\nempty       2\n"));
    EXPECT_THAT(result.out, HasSubstr("\noutage      "));
}

} // namespace

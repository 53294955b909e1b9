// What becomes of the tool's output where it cannot be written, and what a camera's texts may do to a terminal.
#include "tests/tool/described_camera.h"
#include "tests/tool/simulator_settings.h"
#include "tests/tool/tool_run.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

// The simulator's camera "cam", and runs of the tool through a shell, which sends its output elsewhere.
class Output : public testing::Test
{
protected:
    Output() : environment(SimulatorWith(folder, OneCamera("Mono8", 64, 48))) {}

    // `redirection` and what stands before in the words of a shell. Standard output of the result stays empty.
    ToolResult RunInto(
        const std::string& redirection, const std::string& arguments, const std::string& before = "") const
    {
        std::string command = before + "env";
        for (const auto& [name, value] : environment)
            command += " " + name + "='" + *value + "'";
        const std::string errors = folder.File("errors");
        command += " \"$KORO_TEST_TOOL\" " + arguments + " 2>'" + errors + "' " + redirection;
        const int status = std::system(command.c_str());
        std::ifstream file(errors);
        ToolResult result;
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        result.SortErrors({std::istreambuf_iterator<char>(file), {}});
        return result;
    }

    TemporaryFolder folder;
    Environment environment;
    const std::vector<std::string> commands = {
        "list",
        "list --json",
        "info cam",
        "doctor",
        "features cam",
        "features cam --json",
        "get cam Width",
        "set cam Width=32",
        "run cam AcquisitionStop",
        "describe cam Width",
        "xml cam",
        "watch cam Width --changes 3",
        "watch --changes 3",
        "settings save cam '" + folder.File("settings") + "'",
        "files list cam",
        "files read cam FactoryData -",
        "grab cam --frames 1 --output '" + folder.File("pictures") + "'",
        "--help",
        "--version",
    };
};

// A pipe of which nobody reads, under a number that a shell knows.
class PipeWithoutReader
{
public:
    PipeWithoutReader()
    {
        int ends[2];
        if (pipe(ends) != 0) std::abort();
        dup2(ends[1], number);
        close(ends[0]);
        if (ends[1] != number) close(ends[1]);
    }
    PipeWithoutReader(const PipeWithoutReader&) = delete;
    PipeWithoutReader& operator=(const PipeWithoutReader&) = delete;
    ~PipeWithoutReader() { close(number); }

    static constexpr int number = 9;
};

TEST_F(Output, ThatDoesNotFitOnTheDiskIsAFailureOfEveryCommand)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no /dev/full";
    for (const std::string& arguments : commands)
    {
        const ToolResult result = RunInto(">/dev/full", arguments);
        EXPECT_EQ(result.status, failure) << arguments;
        EXPECT_THAT(result.err, HasSubstr("koro: Cannot write the output: No space left on device.\nhint: "))
            << arguments;
    }
}

// The limit of the shell counts in blocks of 512 or 1024 bytes; a frame has 3072. What the commands write otherwise is
// shorter.
TEST_F(Output, IntoFilesBeyondTheLimitOfTheirSizeIsAFailureThatLeavesNoPart)
{
    const std::string pictures = folder.File("pictures");
    for (const std::string format : {"tiff", "raw"})
    {
        const ToolResult result = RunInto(
            ">/dev/null", "grab cam --frames 1 --format " + format + " --output '" + pictures + "'", "ulimit -f 1; ");
        EXPECT_EQ(result.status, failure) << format;
        EXPECT_THAT(result.err, HasSubstr("koro: Cannot write " + pictures + "/cam-000001." + format + ": ")) << format;
        EXPECT_TRUE(std::filesystem::is_empty(pictures)) << format;
    }
    const std::string written = folder.File("written");
    const ToolResult result = RunInto(">'" + written + "'", "xml cam", "ulimit -f 1; ");
    EXPECT_EQ(result.status, failure);
    EXPECT_THAT(result.err, HasSubstr("koro: Cannot write the output: File too large.\n"));
}

TEST_F(Output, IntoAClosedDescriptorIsAFailureOfEveryCommand)
{
    for (const std::string& arguments : commands)
    {
        const ToolResult result = RunInto(">&-", arguments);
        EXPECT_EQ(result.status, failure) << arguments;
        EXPECT_THAT(result.err, HasSubstr("koro: Cannot write the output: ")) << arguments;
    }
}

TEST_F(Output, OfDifferencesThatIsLostIsNoListOfDifferences)
{
    const std::string head = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";
    const std::string diff = "settings diff '" + folder.MakeFile("one", head + "A\t1\n") + "' '" +
                             folder.MakeFile("other", head + "A\t2\n") + "'";
    EXPECT_EQ(RunInto(">/dev/null", diff).status, different);
    if (std::filesystem::exists("/dev/full"))
    {
        const ToolResult full = RunInto(">/dev/full", diff);
        EXPECT_EQ(full.status, failure);
        EXPECT_THAT(full.err, HasSubstr("koro: Cannot write the output: No space left on device.\n"));
    }
    const PipeWithoutReader pipe;
    const ToolResult unread = RunInto(">&" + std::to_string(PipeWithoutReader::number), diff);
    EXPECT_EQ(unread.status, brokenPipe);
    EXPECT_EQ(unread.err, "");
}

TEST_F(Output, IntoAPipeWithoutReaderEndsQuietly)
{
    const PipeWithoutReader pipe;
    for (const std::string& arguments : commands)
    {
        const ToolResult result = RunInto(">&" + std::to_string(PipeWithoutReader::number), arguments);
        EXPECT_EQ(result.status, brokenPipe) << arguments;
        EXPECT_EQ(result.err, "") << arguments;
    }
}

TEST_F(Output, OfACommandWithoutEndEndsItWhenNobodyReads)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["tlType"] = "GEV"; // such cameras send events
    folder.MakeFile("simulator.json", settings.dump());
    const PipeWithoutReader pipe;
    const std::string into = ">&" + std::to_string(PipeWithoutReader::number);
    for (const char* const arguments :
         {"watch", "watch cam DeviceTemperature --refresh", "events cam --enable ExposureEnd --acquire"})
    {
        EXPECT_EQ(RunInto(into, arguments).status, brokenPipe) << arguments;
    }
}

TEST_F(Output, OfACommandThatHasNothingToSayEndsItWhenNobodyReads)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["tlType"] = "GEV"; // such cameras send events
    folder.MakeFile("simulator.json", settings.dump());
    const PipeWithoutReader pipe;
    const std::string into = ">&" + std::to_string(PipeWithoutReader::number);
    for (const std::string command : {"watch cam", "watch cam --interval 3600000", "events cam --enable ExposureEnd"})
    {
        // The time is for a tool that waits on.
        const ToolResult result = RunInto(into, command + " --duration 20000");
        EXPECT_EQ(result.status, brokenPipe) << command;
        EXPECT_EQ(result.err, "") << command;
    }
}

TEST_F(Output, OfAWatchEndsItWhenItsReaderGoes)
{
    // An interface and a camera are found, and nothing more.
    const std::string status = folder.File("status");
    const std::string reader = "; echo $? >'" + status + "'; } | { read line; read line; }";
    EXPECT_EQ(RunInto(reader, "watch --duration 20000", "{ ").status, 0);
    std::ifstream file(status);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), std::to_string(brokenPipe) + "\n");
}

// While frames come, while none comes, and with files.
TEST_F(Output, OfALongGrabEndsItWhenNobodyReads)
{
    const PipeWithoutReader pipe;
    const std::string into = ">&" + std::to_string(PipeWithoutReader::number);
    const std::string pictures = " --format raw --output '" + folder.File("raw") + "'";
    const std::string grabs[] = {
        " --format none --json", " --format none", pictures + " --json",
        " --format none --json --timeout 3600000 --set TriggerMode=On"};
    for (const std::string& how : grabs)
    {
        const ToolResult result = RunInto(into, "grab cam --frames 1000000" + how, "timeout 60 ");
        EXPECT_EQ(result.status, brokenPipe) << how;
        EXPECT_EQ(result.err, "") << how;
    }
}

TEST_F(Output, OfALongGrabEndsItWhenItsReaderGoes)
{
    const std::string status = folder.File("status");
    const std::string pictures = folder.File("pictures");
    const std::string reader = "; echo $? >'" + status + "'; } | { read line; }";
    const std::string grab = "grab cam --frames 1000000 --format raw --json --output '" + pictures + "'";
    EXPECT_EQ(RunInto(reader, grab, "{ timeout 60 ").status, 0);
    std::ifstream file(status);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), std::to_string(brokenPipe) + "\n");
    EXPECT_FALSE(std::filesystem::is_empty(pictures));
    for (const auto& entry : std::filesystem::directory_iterator(pictures))
        EXPECT_EQ(entry.file_size(), 64u * 48u) << entry.path();
}

// The pictures are the result.
TEST_F(Output, OfAGrabThatSavesPicturesMayBeReadByNobody)
{
    const PipeWithoutReader pipe;
    const std::string pictures = folder.File("pictures");
    const std::string into = ">&" + std::to_string(PipeWithoutReader::number);
    EXPECT_EQ(RunInto(into, "grab cam --frames 5 --format raw --output '" + pictures + "'").status, brokenPipe);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(pictures), {}), 5);
}

// What a terminal would take for an order: as an escape and as one character of 8 bits.
const std::string orders = "a\x1B[2J\xC2\x9B"
                           "31mb";

TEST(Texts, OfACameraGiveNoOrdersToTheTerminal)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["cameras"][0]["userName"] = orders;
    const Camera camera(settings);
    const Arguments runs[] = {
        {"list"},
        {"info", "cam"},
        {"get", "nobody", "Width"},
        {"watch", "--changes", "2"},
        {"doctor"},
        {"get", orders + "x", "Width"},
        {"get", "cam", orders},
    };
    for (const Arguments& arguments : runs)
    {
        const ToolResult result = camera.Run(arguments);
        for (const std::string& text : {result.out, result.err})
        {
            EXPECT_THAT(text, Not(HasSubstr("\x1B"))) << arguments.front();
            EXPECT_THAT(text, Not(HasSubstr("\xC2\x9B"))) << arguments.front();
        }
    }
    EXPECT_THAT(camera.Run({"get", "nobody", "Width"}).err, HasSubstr("\"a?[2J?31mb\""));
}

TEST(Texts, ThatAreSetAndWatchedGiveNoOrdersToTheTerminal)
{
    const Camera camera;
    const ToolResult written = camera.Run({"set", "cam", "DeviceUserID=" + orders});
    EXPECT_EQ(written.status, 0) << written.err;
    EXPECT_EQ(written.out, "DeviceUserID=a?[2J?31mb\n");
    const ToolResult watched =
        camera.Run({"watch", "cam", "DeviceUserID", "--changes", "1", "--set", "DeviceUserID=" + orders});
    EXPECT_THAT(watched.out, HasSubstr("DeviceUserID=a?[2J?31mb\n"));
    // A program gets the bytes as they are.
    EXPECT_EQ(camera.Run({"get", "cam", "DeviceUserID", "--set", "DeviceUserID=" + orders}).out, orders + "\n");
}

// Through the file that the list comes by, and without it.
TEST(Texts, ThatAreNoUTF8AreShownTheSameByAllCommands)
{
    const std::string producer = ProducerFolder() + "/wild_odd_texts.cti";
    const Arguments runs[] = {
        {"list", "--producer", producer},
        {"info", "wild0-camera", "--producer", producer},
        {"get", "nobody", "Width", "--producer", producer},
        {"watch", "--changes", "2", "--producer", producer},
    };
    for (const Arguments& arguments : runs)
    {
        const ToolResult result = RunTool(arguments);
        EXPECT_THAT(result.out + result.err, HasSubstr("na?me???of two lines")) << arguments.front();
    }
    for (const Arguments& arguments : {runs[0], runs[1], runs[3]})
    {
        Arguments withJSON = arguments;
        withJSON.push_back("--json");
        EXPECT_THAT(RunTool(withJSON).out, HasSubstr("na\xEF\xBF\xBDme\\u0007\\r\\nof two lines"))
            << arguments.front();
    }
}

// Every command that writes JSON, with the orders in names, values and files.
TEST(Texts, InJSONAreEscapedAndWhole)
{
    json settings = OneCamera("Mono8", 64, 48);
    settings["interfaces"][0]["tlType"] = "GEV"; // such cameras send events
    settings["interfaces"][0]["cameras"][0]["userName"] = orders;
    const Camera camera(settings);
    const TemporaryFolder folder;
    const Arguments runs[] = {
        {"list", "--json"},
        {"info", "cam", "--json"},
        {"features", "cam", "--json"},
        {"get", "cam", "DeviceUserID", "--json"},
        {"describe", "cam", "DeviceUserID", "--json"},
        {"watch", "--changes", "2", "--json"},
        {"watch", "cam", "DeviceUserID", "--changes", "1", "--json"},
        {"grab", "cam", "--frames", "1", "--json", "--output", folder.File(orders)},
    };
    for (const Arguments& arguments : runs)
    {
        const ToolResult result = camera.Run(arguments);
        EXPECT_EQ(result.status, 0) << arguments.front() << result.err;
        EXPECT_THAT(result.out, Not(HasSubstr("\x1B"))) << arguments.front();
        EXPECT_THAT(result.out, Not(HasSubstr("\xC2\x9B"))) << arguments.front();
        EXPECT_THAT(result.out, HasSubstr("a\\u001b[2J\\u009b31mb")) << arguments.front();
    }
    EXPECT_EQ(json::parse(camera.Run(runs[3]).out).at(0).at("value"), orders);
}

} // namespace

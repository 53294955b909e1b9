// Producers that crash, end the process, print, wait and wander, and what the tool says.
#include "tests/support/environment_variable.h"
#include "tests/tool/instructed_producer.h"
#include "tests/tool/simulator_settings.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

namespace
{

using namespace koro::test;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* camera = "if0:if0-dev0";

Environment SearchIn(const TemporaryFolder& folder)
{
    return {{"GENICAM_GENTL64_PATH", folder.Path().string()}};
}

// The tool as $0 in a line for the shell.
ToolResult RunInShell(const std::string& line, const Arguments& more = {}, const Environment& environment = {})
{
    Arguments arguments = {"-c", line, std::getenv("KORO_TEST_TOOL")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const EnvironmentVariable shell("KORO_TEST_TOOL", "/bin/sh");
    return RunTool(arguments, environment);
}

TEST(HostileProducer, CrashOfTheToolNamesProducerAndCall)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "IFOpenDevice crash");
    const ToolResult result = RunTool({"info", camera, "--producer", producer});
    EXPECT_EQ(result.status, 128 + SIGSEGV);
    EXPECT_THAT(result.err, HasSubstr("koro: " + producer + " crashed in IFOpenDevice: signal 11 (SIGSEGV).\n"));
}

TEST(HostileProducer, AbortIsReportedAsACrash)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "TLOpen abort");
    const ToolResult result = RunTool({"info", camera, "--producer", producer});
    EXPECT_EQ(result.status, 128 + SIGABRT);
    EXPECT_THAT(result.err, HasSubstr("koro: " + producer + " crashed in TLOpen: signal 6 (SIGABRT).\n"));
}

TEST(HostileProducer, ExitInTheMiddleIsAFailureThatNamesTheCall)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "IFOpenDevice exit 0");
    const ToolResult result = RunTool({"info", camera, "--producer", producer});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("koro: " + producer + " ended the process in IFOpenDevice, with status 0.\n"));
}

TEST(HostileProducer, ExitWithoutHandlersIsAFailureThatNamesTheCall)
{
    for (const std::string way : {"_exit", "_Exit"})
    {
        const TemporaryFolder folder;
        const std::string producer = MakeInstructedProducer(folder, "a.cti", "IFOpenDevice " + way + " 0");
        const ToolResult result = RunTool({"info", camera, "--producer", producer});
        EXPECT_EQ(result.status, 1) << way;
        EXPECT_EQ(result.err, "koro: " + producer + " ended the process in IFOpenDevice, with status 0.\n") << way;
    }
}

TEST(HostileProducer, QuickExitIsAFailureThatNamesTheCall)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "IFOpenDevice quick_exit 0");
    const ToolResult result = RunTool({"info", camera, "--producer", producer});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "koro: " + producer + " ended the process in IFOpenDevice.\n");
}

TEST(HostileProducer, HelpersThatEndAreNoEndOfTheTool)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "IFOpenDevice helpers");
    // A sanitizer that looks for leaks at the helper's end would miss the threads which it has not taken along.
    const char* const options = std::getenv("ASAN_OPTIONS");
    const Environment withoutLeaks{{"ASAN_OPTIONS", std::string(options ? options : "") + ":detect_leaks=0"}};
    const ToolResult result = RunTool({"info", camera, "--producer", producer}, withoutLeaks);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

TEST(HostileProducer, ProbeNamesTheCallOfACrashOrAnExit)
{
    const TemporaryFolder folder;
    const std::string a = MakeInstructedProducer(folder, "a.cti", "GCGetInfo crash");
    const std::string b = MakeInstructedProducer(folder, "b.cti", "IFUpdateDeviceList exit 0");
    const std::string c = MakeInstructedProducer(folder, "c.cti", "IFUpdateDeviceList _exit 7");
    const std::string d = MakeInstructedProducer(folder, "d.cti", "TLOpen quick_exit 8");
    const ToolResult list = RunTool({"list"}, SearchIn(folder));
    EXPECT_THAT(list.out, HasSubstr(a + " is left out: crashed in GCGetInfo by signal 11 (SIGSEGV)\n"));
    EXPECT_THAT(list.out, HasSubstr(b + " is left out: ended the process in IFUpdateDeviceList with status 0\n"));
    EXPECT_THAT(list.out, HasSubstr(c + " is left out: ended the process in IFUpdateDeviceList with status 7\n"));
    EXPECT_THAT(list.out, HasSubstr(d + " is left out: ended the process in TLOpen with status 8\n"));

    const ToolResult doctor = RunTool({"doctor"}, SearchIn(folder));
    EXPECT_THAT(doctor.out, HasSubstr("\n  crashes at load: crashed in GCGetInfo by signal 11 (SIGSEGV)\n"));
    EXPECT_THAT(doctor.out, HasSubstr("\nhint: No producer works; the lines under each say why.\n"));
}

TEST(HostileProducer, ProbesRunAtTheSameTime)
{
    const TemporaryFolder folder;
    Gate a(folder, "a");
    Gate b(folder, "b");
    MakeInstructedProducer(folder, "a.cti", "GCInitLib gate " + a.Path());
    MakeInstructedProducer(folder, "b.cti", "GCInitLib gate " + b.Path());
    ToolRun run({"list", "--json"}, SearchIn(folder));
    b.AwaitProducer();
    a.AwaitProducer();
    a.Open();
    b.Open();
    const ToolResult result = run.Finish();
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(json::parse(result.out).at("producers").size(), 2u);
}

TEST(HostileProducer, SlowProducerIsNamedWhileItIsWaitedFor)
{
    const TemporaryFolder folder;
    Gate gate(folder, "gate");
    const std::string slow = MakeInstructedProducer(folder, "slow.cti", "TLUpdateInterfaceList gate " + gate.Path());
    const std::string fast = MakeInstructedProducer(folder, "fast.cti", "");
    ToolRun run({"list"}, SearchIn(folder));
    EXPECT_TRUE(run.AwaitError("koro: waiting for " + slow + "\n"));
    gate.AwaitProducer();
    gate.Open();
    const ToolResult result = run.Finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\n8 cameras\n"));
    EXPECT_THAT(result.err, Not(HasSubstr(fast)));
}

TEST(HostileProducer, LongTextsAreCutWhereTheyAreRead)
{
    const TemporaryFolder folder;
    MakeInstructedProducer(folder, "a.cti", "TLOpen texts 15000000");
    const ToolResult result = RunTool({"list", "--json"}, SearchIn(folder));
    ASSERT_EQ(result.status, 0) << result.err;
    const json first = json::parse(result.out)["producers"][0]["interfaces"][0]["cameras"][0];
    const std::string shown = std::string(160, 'x') + "... (15000000 bytes)";
    EXPECT_EQ(first["vendor"], shown);
    EXPECT_EQ(first["displayName"], shown);
    EXPECT_THAT(RunTool({"list"}, SearchIn(folder)).out, HasSubstr(" " + shown + "\n"));
    EXPECT_EQ(first["id"], "if0-dev0");
}

TEST(HostileProducer, OrphanThatKeepsThePipeDelaysNothing)
{
    const TemporaryFolder folder;
    Gate orphan(folder, "orphan");
    MakeInstructedProducer(folder, "a.cti", "TLOpen orphan " + orphan.Path());
    const ToolResult result = RunTool({"doctor", "--timeout", "3600000"}, SearchIn(folder));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\n4 usable cameras\n"));
    orphan.AwaitProducer();
}

TEST(HostileProducer, OutputOfAProducerStaysOutOfTheResult)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "IFOpenDevice print a greeting");
    const ToolResult result = RunTool({"info", camera, "--json", "--producer", producer});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(json::parse(result.out).at("id"), "if0-dev0");
    EXPECT_THAT(result.err, HasSubstr("a greeting\na greeting\n"));
}

TEST(HostileProducer, PathsAreThoseOfTheFolderInWhichTheToolWasStarted)
{
    const TemporaryFolder folder;
    const std::string elsewhere = folder.MakeFolder("elsewhere");
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "GCInitLib chdir " + elsewhere);
    const ToolResult result = RunInShell(
        "cd \"$1\" && exec \"$0\" settings save \"$2\" saved --producer a.cti", {folder.Path().string(), camera});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(std::filesystem::exists(folder.File("saved")));
    EXPECT_FALSE(std::filesystem::exists(elsewhere + "/saved"));
}

TEST(HostileProducer, ProbesWorkWhereStandardDescriptorsAreClosed)
{
    const TemporaryFolder folder;
    MakeInstructedProducer(folder, "a.cti", "");
    const ToolResult result = RunInShell("exec \"$0\" list <&- 2>&-", {}, SearchIn(folder));
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\n4 cameras\n"));
}

TEST(HostileProducer, NamedFileThatIsNoProducerFailsTheList)
{
    const TemporaryFolder folder;
    const std::string file = folder.MakeFile("text.cti", "no producer");
    const ToolResult result = RunTool({"list", "--producer", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, HasSubstr(file + " is left out: Loading CTI " + file + " failed!"));
}

TEST(HostileProducer, NamedProducerThatThrowsIsNoMissingCamera)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "TLOpen throw no licence");
    for (const Arguments& command : {Arguments{"info", camera}, Arguments{"get", camera, "Width"}})
    {
        Arguments arguments = command;
        arguments.insert(arguments.end(), {"--producer", producer});
        const ToolResult result = RunTool(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, StartsWith("koro: no licence"));
    }
    EXPECT_EQ(RunTool({"list", "--producer", producer}).status, 1);
}

TEST(HostileProducer, NoProducerThatWorksIsSaidWhereACameraIsLookedFor)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "GCInitLib abort");
    const ToolResult result = RunTool({"info", "cam"}, SearchIn(folder));
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, HasSubstr(producer + " is left out: crashed in GCInitLib by signal 6 (SIGABRT)\n"));
    EXPECT_THAT(result.err, HasSubstr("koro: No producer works, so no camera can be found.\n"));
}

TEST(HostileProducer, RefusedBufferIsNotBlamedOnAnotherProgram)
{
    const TemporaryFolder folder;
    json settings = OneCamera("Mono8", 64, 48);
    FailCall(settings, "DSAnnounceBuffer", "GC_ERR_RESOURCE_IN_USE");
    const ToolResult result =
        RunTool({"grab", "cam", "--frames", "1", "--output", folder.File("out")}, SimulatorWith(folder, settings));
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("[Function: DSAnnounceBuffer | Error-Code: -1004"));
    EXPECT_THAT(result.err, Not(HasSubstr("nother program")));
}

// Each line of a file of calls, without the process in front.
std::vector<std::string> CallsIn(const std::string& path, std::set<std::string>& processes)
{
    std::vector<std::string> calls;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
    {
        processes.insert(line.substr(0, line.find(' ')));
        calls.push_back(line.substr(line.find(' ') + 1));
    }
    return calls;
}

// The time-outs of the first interface, in the order of the calls of `koro info` on one camera.
struct Listing
{
    std::vector<std::string> timeouts;
    size_t numProcesses;
};

Listing ListingOf(const std::string& name, const Arguments& more)
{
    const TemporaryFolder folder;
    const std::string journal = folder.File("journal");
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "TLClose journal " + journal);
    Arguments arguments = {"info", name, "--producer", producer};
    arguments.insert(arguments.end(), more.begin(), more.end());
    EXPECT_EQ(RunTool(arguments).status, 0);
    std::set<std::string> processes;
    Listing listing;
    const std::string update = "IFUpdateDeviceList(if0, ";
    for (const std::string& call : CallsIn(journal, processes))
    {
        if (call.starts_with(update)) listing.timeouts.push_back(call.substr(update.size()));
    }
    listing.numProcesses = processes.size();
    return listing;
}

TEST(Search, NamedProducerIsLoadedOnce)
{
    EXPECT_EQ(ListingOf(camera, {}).numProcesses, 1u);
}

TEST(Search, FullIdEndsTheSearchAtTheFirstShortList)
{
    EXPECT_THAT(ListingOf(camera, {}).timeouts, testing::ElementsAre("50)"));
}

TEST(Search, OtherNamesWaitUntilTwoListsAgree)
{
    EXPECT_THAT(ListingOf("if0-dev0", {}).timeouts, testing::ElementsAre("50)", "100)"));
}

TEST(Search, PatternsAskForOneSecondInAll)
{
    EXPECT_THAT(ListingOf("if0-*0", {}).timeouts, testing::ElementsAre("50)", "100)", "200)", "400)", "250)"));
}

TEST(Search, ListSpendsTheWholeTime)
{
    const TemporaryFolder folder;
    const std::string journal = folder.File("journal");
    MakeInstructedProducer(folder, "a.cti", "TLClose journal " + journal);
    EXPECT_EQ(RunTool({"list"}, SearchIn(folder)).status, 0);
    std::set<std::string> processes;
    const auto calls = CallsIn(journal, processes);
    EXPECT_THAT(calls, testing::Contains("TLUpdateInterfaceList(system, 1000)"));
    EXPECT_THAT(calls, testing::Contains("IFUpdateDeviceList(if0, 1000)").Times(1));
}

TEST(Search, HintForOneProducerTwiceNamesWhatWorks)
{
    const TemporaryFolder folder;
    const std::string first = MakeInstructedProducer(folder, "a b.cti", "");
    MakeInstructedProducer(folder, "copy.cti", "");
    const ToolResult ambiguous = RunTool({"info", "if0-dev0"}, SearchIn(folder));
    EXPECT_EQ(ambiguous.status, 3);
    const std::string hint = "hint: Name one by interface:id, the first one for instance as ";
    ASSERT_THAT(ambiguous.err, HasSubstr("\n" + hint));

    const size_t begin = ambiguous.err.find(hint) + hint.size();
    const std::string words = ambiguous.err.substr(begin, ambiguous.err.find('\n', begin) - begin);
    const ToolResult result = RunInShell("eval \"exec '$0' info $1\"", {words}, SearchIn(folder));
    EXPECT_EQ(result.status, 0) << words << result.err;
    EXPECT_THAT(result.out, HasSubstr(first));
}

TEST(ProducerThatClosesAllDescriptors, IsLeftOutWithTheCause)
{
    const TemporaryFolder folder;
    const std::string producer = MakeInstructedProducer(folder, "a.cti", "GCInitLib closefrom 0");
    const std::string cause = "has closed all descriptors of the process, so that it cannot answer";
    EXPECT_THAT(RunTool({"list"}, SearchIn(folder)).out, HasSubstr(producer + " is left out: " + cause + "\n"));
    const ToolResult doctor = RunTool({"doctor"}, SearchIn(folder));
    EXPECT_THAT(doctor.out, HasSubstr("\n  does not work at load: " + cause + "\n"));
    EXPECT_THAT(doctor.out, HasSubstr("\nhint: No producer works; the lines under each say why.\n"));
}

TEST(ProducerThatClosesAllDescriptors, FailsTheCommandThatNamesIt)
{
    const TemporaryFolder folder;
    const std::string all = MakeInstructedProducer(folder, "all.cti", "GCInitLib closefrom 0");
    EXPECT_EQ(RunTool({"info", camera, "--producer", all}).status, 1);
    const std::string allOthers = MakeInstructedProducer(folder, "others.cti", "GCInitLib closefrom 3");
    const ToolResult result = RunTool({"info", camera, "--producer", allOthers});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(
        result.err, StartsWith(
                        "koro: " + allOthers +
                        " has closed all descriptors of the process, so that nothing can be written.\nhint: "));
}

TEST(ProducerThatClosesDescriptorsInALoop, LeavesTheOutputOfTheTool)
{
    const TemporaryFolder folder;
    const std::string producer = ProducerFolder() + "/wild_closes_descriptors.cti";
    const std::string line = "ulimit -Sn 200 && exec \"$0\" info wild0-camera --json --producer \"$1\"";
    const ToolResult result = RunInShell(line, {producer}, {{"KORO_WILD_LIMIT", "200"}});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(json::parse(result.out).at("id"), "wild0-camera");
    EXPECT_EQ(result.err, "koro: " + producer + " has closed descriptors of the process; they are open again.\n");
}

// Into an output that is closed, or open for reading only, with standard input open and closed.
TEST(ProducerThatClosesDescriptorsInALoop, LetsNothingPassForOutputThatWasClosed)
{
    const std::string producer = ProducerFolder() + "/wild_closes_descriptors.cti";
    const std::vector<Arguments> commands = {
        {"get", "wild0-camera", "Width"}, {"set", "wild0-camera", "Width=32"},
        {"features", "wild0-camera"},     {"info", "wild0-camera"},
        {"xml", "wild0-camera"},          {"grab", "wild0-camera", "--frames", "1", "--format", "none"},
    };
    for (const std::string closed : {">&-", ">&- <&-", "1</dev/null"})
    {
        for (const Arguments& command : commands)
        {
            Arguments arguments = command;
            arguments.insert(arguments.end(), {"--producer", producer});
            const std::string line = "ulimit -Sn 200 && exec \"$0\" \"$@\" " + closed;
            const ToolResult result = RunInShell(line, arguments, {{"KORO_WILD_LIMIT", "200"}});
            EXPECT_EQ(result.status, failure) << command.front() << closed << result.err;
            EXPECT_THAT(
                result.err, HasSubstr(
                                "koro: " + producer + " has closed descriptors of the process; they are open again.\n" +
                                "koro: Cannot write the output: Bad file descriptor.\nhint: "))
                << command.front() << closed;
        }
    }
}

// The tool in a tree as an installation lays it down, with some producers beside it.
class Installed
{
public:
    Installed()
    {
        folder.MakeFolder("prefix");
        folder.MakeFolder("prefix/bin");
        folder.MakeCopy(std::getenv("KORO_TEST_TOOL"), "prefix/bin/koro");
        std::filesystem::create_directories(Producers());
        std::filesystem::copy(SimulatorPath(), Producers() / "zvr_koro_simulator.cti");
    }

    std::filesystem::path Producers() const
    {
        return (folder.Path() / "prefix/bin" / std::getenv("KORO_TEST_PRODUCERS_FROM_TOOL")).lexically_normal();
    }
    void AddProducer() const
    {
        std::filesystem::copy(ProducerFolder() + "/scripted_1_5.cti", Producers() / "scripted.cti");
    }
    ToolResult Run(const Arguments& arguments, const Environment& environment = {}) const
    {
        const EnvironmentVariable tool("KORO_TEST_TOOL", folder.File("prefix/bin/koro"));
        return RunTool(arguments, environment);
    }

private:
    const TemporaryFolder folder;
};

TEST(ToolWithoutTheVariable, UsesWhatCameWithItAndSaysSo)
{
    const Installed installed;
    const ToolResult result = installed.Run({"list"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\n      serial number  KS0001\n"));
    EXPECT_EQ(
        result.err, "koro: GENICAM_GENTL64_PATH is not set; these producers came with the tool: " +
                        installed.Producers().string() + "\n");
}

TEST(ToolWithoutTheVariable, SimulatedCamerasStandInForOthersOnly)
{
    const Installed installed;
    installed.AddProducer();
    const ToolResult others = installed.Run({"list"});
    EXPECT_THAT(others.out, HasSubstr("\n4 cameras\n"));
    EXPECT_THAT(others.out, Not(HasSubstr("KS0001")));

    const ToolResult all = installed.Run({"list", "--simulator"});
    EXPECT_THAT(all.out, HasSubstr("camera if0-dev0\n"));
    EXPECT_THAT(all.out, HasSubstr("KS0001"));
}

TEST(ToolWithoutTheVariable, TakesAVariableThatNamesNoDirectoryForOneThatIsNotSet)
{
    const Installed installed;
    for (const char* const value : {"", ":"})
    {
        const Environment empty = {{"GENICAM_GENTL64_PATH", value}};
        const ToolResult list = installed.Run({"list"}, empty);
        EXPECT_EQ(list.status, 0);
        EXPECT_THAT(list.out, HasSubstr("\n      serial number  KS0001\n"));
        EXPECT_EQ(
            list.err, "koro: GENICAM_GENTL64_PATH names no directory; these producers came with the tool: " +
                          installed.Producers().string() + "\n");

        const ToolResult doctor = installed.Run({"doctor"}, empty);
        EXPECT_EQ(doctor.status, 0);
        EXPECT_THAT(
            doctor.out, StartsWith(
                            "GENICAM_GENTL64_PATH names no directory, which counts as not set\n  " +
                            installed.Producers().string() + ": came with the tool\n"));
    }
}

} // namespace

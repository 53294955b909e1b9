#include "tests/support/temporary_folder.h"
#include "tests/tool/tool_run.h"

#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

namespace
{

using namespace koro::test;
using testing::HasSubstr;
using testing::Not;

ToolResult Doctor(const std::string& variable, const Arguments& more = {})
{
    Arguments arguments = {"doctor"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunTool(arguments, {{"GENICAM_GENTL64_PATH", variable}});
}

ToolResult DoctorOf(const std::string& producer, const Arguments& more = {})
{
    Arguments arguments = {"--producer", ProducerFolder() + "/" + producer + ".cti"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Doctor("", arguments);
}

TEST(Doctor, UnsetVariableIsTheFirstThingItSays)
{
    const ToolResult result = RunTool({"doctor"});
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("GENICAM_GENTL64_PATH is not set\n"));
    EXPECT_THAT(result.out, HasSubstr("hint: Set GENICAM_GENTL64_PATH"));
}

TEST(Doctor, EachDirectoryIsTold)
{
    const TemporaryFolder folder;
    const ToolResult result = Doctor(folder.File("missing") + ":" + folder.Path().string());
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("GENICAM_GENTL64_PATH is set\n"));
    EXPECT_THAT(result.out, HasSubstr("  " + folder.File("missing") + ": does not exist\n"));
    EXPECT_THAT(result.out, HasSubstr("  " + folder.Path().string() + ": ok\n"));
    EXPECT_THAT(result.out, HasSubstr("hint: None of these directories holds a .cti file."));
}

TEST(Doctor, WorkingProducerTellsItsVersionAndItsCameras)
{
    const ToolResult result = DoctorOf("scripted_1_5");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\n  loads: ZVR Scripted 1.0.0, GenTL 1.5\n"));
    EXPECT_THAT(result.out, HasSubstr("\n  cameras: 4 on 2 interfaces, 4 usable\n"));
    EXPECT_THAT(result.out, HasSubstr("\n4 usable cameras\n"));
}

TEST(Doctor, FilesThatAreNoProducersSayWhy)
{
    const TemporaryFolder folder;
    folder.MakeFile("empty.cti", "");
    folder.MakeFile("text.cti", std::string(4096, 'x'));
    folder.MakeFolder("directory.cti");
    folder.MakeLink(folder.File("nowhere"), "link.cti");
    const ToolResult result = Doctor(folder.Path().string());
    EXPECT_EQ(result.status, noUsableCamera);
    const struct
    {
        const char* file;
        const char* loader;
    } expected[] = {
        {"empty.cti", "file too short"},
        {"text.cti", "invalid ELF header"},
        {"directory.cti", "Is a directory"},
        {"link.cti", "No such file or directory"},
    };
    for (const auto& [file, loader] : expected)
    {
        EXPECT_THAT(
            result.out, testing::ContainsRegex(std::string("\n  loader: [^\n]*/") + file + ": [^\n]*" + loader + "\n"));
        EXPECT_THAT(
            result.out, HasSubstr("\n  does not work at load: Loading CTI " + folder.File(file) + " failed! Code: "));
    }
}

TEST(Doctor, MissingSymbolIsNamedInTheLoadersWords)
{
    const ToolResult result = DoctorOf("scripted_missing_symbol");
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("undefined symbol: FunctionOfALibraryThatIsNotThere\n"));
}

TEST(Doctor, MissingFunctionOfTheStandardIsNamed)
{
    const ToolResult result = DoctorOf("scripted_lacks_core");
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("undefined symbol: TLOpen\n"));
    EXPECT_THAT(result.out, HasSubstr("does not work at load: Computing address for function TLOpen of cti "));
}

TEST(Doctor, LibraryThatIsNoProducerDoesNotListAllThatItLacks)
{
    const ToolResult result = DoctorOf("scripted_not_gentl");
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("undefined symbol: GCGetInfo\n"));
    EXPECT_THAT(result.out, HasSubstr(" more of this kind\n"));
}

TEST(Doctor, FailureToStartIsTold)
{
    const ToolResult result = DoctorOf("scripted_init_fails");
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("  does not work at load: Initializing "));
    EXPECT_THAT(result.out, HasSubstr("failed! Code: -1001.\n"));
}

TEST(Doctor, CrashIsOneLineWithTheSignal)
{
    const ToolResult atInit = DoctorOf("tool_crashes_at_init");
    EXPECT_EQ(atInit.status, noUsableCamera);
    EXPECT_THAT(atInit.out, HasSubstr("\n  crashes at load: crashed by signal 11 (SIGSEGV)\n"));

    const ToolResult atLoad = DoctorOf("scripted_crashes_at_load");
    EXPECT_EQ(atLoad.status, noUsableCamera);
    EXPECT_THAT(atLoad.out, HasSubstr("\n  crashes at load: crashed by signal 6 (SIGABRT)\n"));
}

TEST(Doctor, HangEndsAtTheTimeout)
{
    const ToolResult result = DoctorOf("tool_hangs_at_load", {"--timeout", "3000"});
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("\n  hangs at load: no answer within 3000 ms\n"));
}

TEST(Doctor, BrokenProducersDoNotHideAWorkingOne)
{
    const TemporaryFolder folder;
    folder.MakeCopy(ProducerFolder() + "/tool_crashes_at_init.cti", "a.cti");
    folder.MakeCopy(ProducerFolder() + "/scripted_1_5.cti", "b.cti");
    folder.MakeFile("c.cti", "");
    const ToolResult result = Doctor(folder.Path().string());
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("\n4 usable cameras\n"));
}

TEST(Doctor, CopiesInTwoDirectoriesAreDuplicates)
{
    const TemporaryFolder folder;
    const std::string a = folder.MakeFolder("a");
    const std::string b = folder.MakeFolder("b");
    folder.MakeFile("a/same.cti", "");
    folder.MakeFile("b/same.cti", "");
    EXPECT_THAT(Doctor(a + ":" + b).out, HasSubstr("\nduplicate: same.cti lies in " + a + " and " + b + "\n"));
}

TEST(Doctor, ReasonOfAProducerThatDoesNotStartIsShown)
{
    const TemporaryFolder folder;
    const std::string settings = folder.MakeFile("settings.json", "{\"unknown\": 1}");
    const ToolResult result = RunTool({"doctor", "--producer", SimulatorPath()}, {{"KORO_SIMULATOR_CONFIG", settings}});
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("\n  the producer says: GCInitLib: settings file '" + settings + "': "));
    EXPECT_THAT(result.out, HasSubstr("\nhint: No producer works; the lines under each say why.\n"));
}

TEST(Doctor, CamerasThatAreMissingAreLookedForAtTheCables)
{
    const TemporaryFolder folder;
    const std::string settings = folder.MakeFile("settings.json", "{\"interfaces\": []}");
    const ToolResult result = RunTool({"doctor", "--producer", SimulatorPath()}, {{"KORO_SIMULATOR_CONFIG", settings}});
    EXPECT_EQ(result.status, noUsableCamera);
    EXPECT_THAT(result.out, HasSubstr("\nhint: Check the cameras' cables, power and network.\n"));
}

// In a namespace with another /opt.
TEST(Doctor, ProducersThatAreNotSearchedAreNamedWithTheLineThatAddsThem)
{
    const TemporaryFolder folder;
    folder.MakeFolder("my maker");
    folder.MakeFile("my maker/camera.cti", "");
    const std::string tool = std::getenv("KORO_TEST_TOOL");
    const auto runs = [&](const std::string& command) {
        const std::string inside = "mount --bind " + folder.Path().string() + " /opt && " + command;
        return std::system(("unshare --user --map-root-user --mount sh -c '" + inside + "' 2>/dev/null").c_str()) == 0;
    };
    if (!runs("test -x " + tool)) GTEST_SKIP() << "there is no other /opt for this test";

    const std::string searched = folder.MakeFolder("searched");
    runs("GENICAM_GENTL64_PATH=" + searched + " " + tool + " doctor >" + folder.File("output"));
    std::ifstream file(folder.File("output"));
    const std::string output(std::istreambuf_iterator<char>(file), {});
    EXPECT_THAT(output, HasSubstr("\n/opt/my maker holds .cti files and is not searched\n"));
    EXPECT_THAT(output, HasSubstr("\nto search them: export GENICAM_GENTL64_PATH='" + searched + ":/opt/my maker"));
}

TEST(Doctor, ProducerWithoutErrorsLacksAFunctionAndWorks)
{
    const ToolResult result = DoctorOf("scripted_no_last_error");
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_THAT(result.out, HasSubstr("\n  lacks: GCGetLastError, so failures have no text\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("undefined symbol")));
}

TEST(Doctor, SimulatorHasUsableCameras)
{
    const ToolResult result = Doctor("", {"--producer", SimulatorPath()});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("GenTL 1.5\n"));
}

} // namespace

// Producers that answer less than they should, or something else.
#include "tests/tool/help_text.h"
#include "tests/wild/suite.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace koro::test::wild
{

namespace
{

const std::vector<std::string> producers = {
    "tame",         "no_payload_size", "little_information", "no_url_information", "no_error_codes",
    "stale_errors", "no_error_texts",  "nothing_changed",    "no_streamable",      "same_serial_numbers",
    "odd_texts",    "open_elsewhere",  "refuses_to_start",   "strict_start",       "poisoned_threads",
};

const std::string accessDenied = "IFOpenDevice .* Error-Code: -1005";
const std::string whyNotStarted = "wild_refuses_to_start.cti.*Code: -1001";

const std::vector<Row> rows = {
    // Cameras with the same serial number are distinguished by their ids.
    {"same_serial_numbers", "list", {0, {Says("wild0-camera/left"), Says("3 cameras")}}},
    {"same_serial_numbers", "doctor", {0, {Says("3 usable cameras")}}},
    {"same_serial_numbers", "info", {0, {Says("serial number +W-one")}}},

    {"odd_texts", "list", {0, {Says("wild0-camera"), Says("model +ZVR mo.*del")}}},
    {"odd_texts", "info", {0, {Says("model +mo.*del")}}},

    // What is known without opening the camera is shown, all else is refused with the producer's code.
    {"open_elsewhere", "list", {0, {Says("access +NoAccess")}}},
    {"open_elsewhere", "list_json", {0, {Says("NoAccess")}}},
    {"open_elsewhere", "doctor", {4, {Says("no usable camera"), Says("nother program")}}},
    {"open_elsewhere", "info", {0, {Says("W-wild0-camera"), Says("not opened: .*-1005")}}},
    {"open_elsewhere", "watch", {0, {Says("found +wild0:wild0-camera")}}},
    {"open_elsewhere", "firmware_pack", {0, {Says("Better pictures")}}},
    {"open_elsewhere", "set_of_*", {0, {Says("^(ForcedAddress|StreamPacketSize)=")}}},
    {"open_elsewhere", "*", {1, {Warns(accessDenied), Warns("hint: Another program")}}},

    // The reason that the producer itself has is for the doctor, who may ask it.
    {"refuses_to_start", "list", {0, {Says(whyNotStarted), Says("0 cameras")}}},
    {"refuses_to_start", "list_json", {0, {Says(whyNotStarted)}}},
    {"refuses_to_start", "doctor", {4, {Says("line 7 of the settings has no number"), NeverSays("cables")}}},
    {"refuses_to_start", "watch", {1, {Warns(whyNotStarted), Warns("no producer that works")}}},
    {"refuses_to_start", "firmware_pack", {0, {Says("Better pictures")}}},
    {"refuses_to_start", "set_of_system", {1, {Warns(whyNotStarted)}}},
    {"refuses_to_start", "*", {3, {Warns(whyNotStarted), NeverWarns("There is no camera\\.")}}},

    {"no_streamable", "settings_save", {0, {Warns("marks no feature"), Warns("--all-writable")}}},

    // Nothing can be read behind the first failed query, so no command that opens the stream gets far.
    {"poisoned_threads", "grab*", {1, {Warns("tells the size of a frame")}}},
};

// "settings save", but not "settings", whose parts are the commands.
std::vector<std::string> CommandsOfTheTool()
{
    std::vector<std::string> commands;
    for (const std::string& command : FirstWordsUnder(RunTool({"--help"}).out, "Subcommands:"))
    {
        const auto parts = FirstWordsUnder(RunTool({command, "--help"}).out, "Subcommands:");
        for (const std::string& part : parts)
            commands.push_back(command + " " + part);
        if (parts.empty()) commands.push_back(command);
    }
    return commands;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Answers, WildProducers, testing::ValuesIn(Cases(producers, rows)), NameOf);

TEST(CommandsOfTheSuite, AreAllThatTheToolHas)
{
    const auto commands = CommandsOfTheTool();
    EXPECT_GE(commands.size(), 20u);
    for (const std::string& command : commands)
    {
        EXPECT_TRUE(std::any_of(
            Commands().begin(), Commands().end(),
            [&](const Command& row) { return (row.line + " ").starts_with(command + " "); }))
            << "koro " << command << " has no row";
    }
}

TEST(CamerasOfOneSerialNumber, AreNamedAsCandidatesByWhatTellsThemApart)
{
    const TemporaryFolder folder;
    const ToolResult result = RunAgainst("same_serial_numbers", "get W-one Width", folder);
    ExpectShown(result, {3, {Warns("wild0-camera/left"), Warns("wild0-camera/disparity")}});
}

TEST(CamerasOfOneSerialNumber, DoNotReplaceEachOthersPictures)
{
    const TemporaryFolder folder;
    for (const std::string camera : {"wild0-camera", "wild0-camera/left"})
    {
        const std::string line = "grab wild0:" + camera + " --frames 2 --output FOLDER/pictures";
        ExpectShown(RunAgainst("same_serial_numbers", line, folder), {0, {Says("pictures +2\n")}});
    }
    const std::filesystem::directory_iterator files(folder.File("pictures"));
    EXPECT_EQ(std::distance(begin(files), end(files)), 4);
}

} // namespace koro::test::wild

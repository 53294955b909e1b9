// Producers that do something to the process in which they are.
#include "tests/wild/gate.h"
#include "tests/wild/suite.h"

#include <filesystem>

namespace koro::test::wild
{

namespace
{

const std::vector<std::string> producers = {
    "prints",
    "throws",
    "throws KORO_WILD_CALL=TLOpen",
    "throws_a_number",
    "exits",
    "exits KORO_WILD_CALL=TLOpen",
    "crashes",
    "crashes KORO_WILD_CALL=TLOpen",
    "writes_null",
    "falls_over_at_exit",
    "changes_directory",
    "closes_descriptors",
    "becomes_a_daemon",
    "closes_and_ends",
    "leaves_a_thread",
};

// Nothing is saved, and the reason is named.
Expected NoPicture(int status, const std::string& reason)
{
    return {status, {Warns(reason), NeverSays("(pictures|frames) +[1-9]"), NeverSays("\"state\":\"whole\"")}};
}

// A producer that falls over while it is looked at is left out of every list, with the reason. With --system it is not
// looked at before.
std::vector<Row> LeftOut(const std::string& producer, const std::string& reason, const Expected& ofSystem)
{
    return {
        {producer, "list", {0, {Says(reason), Says("0 cameras")}}},
        {producer, "list_json", {0, {Says(reason)}}},
        {producer, "doctor", {4, {Says(reason), NeverSays("cables")}}},
        {producer, "watch", {1, {Warns(reason)}}},
        {producer, "set_of_system", ofSystem},
        {producer, "firmware_pack", {0, {Says("Better pictures")}}},
        {producer, "*", {3, {Warns(reason), NeverWarns("There is no camera\\.")}}},
    };
}

std::vector<Row> Rows()
{
    std::vector<Row> rows = {
        {"throws", "grab*", NoPicture(1, "thrown by the producer")},
        {"throws_a_number", "grab*", NoPicture(1, "Unhandled exception!")},
        {"exits", "grab*", NoPicture(1, "wild_exits.cti")},
        {"crashes", "grab*", NoPicture(128 + 11, "wild_crashes.cti")},
    };
    const auto add = [&](const std::vector<Row>& more) { rows.insert(rows.end(), more.begin(), more.end()); };
    const auto named = [](int status, const std::string& pattern) { return Expected{status, {Warns(pattern)}}; };
    add(LeftOut("throws KORO_WILD_CALL=TLOpen", "thrown by the producer", named(1, "thrown by the producer")));
    add(LeftOut(
        "exits KORO_WILD_CALL=TLOpen", "wild_exits.cti.*status 0",
        named(1, "wild_exits.cti ended the process in TLOpen, with status 0")));
    add(LeftOut(
        "crashes KORO_WILD_CALL=TLOpen", "wild_crashes.cti.*signal 11",
        named(128 + 11, "wild_crashes.cti crashed in TLOpen: signal 11")));
    add(LeftOut(
        "closes_and_ends", "wild_closes_and_ends.cti.*status 0",
        named(1, "wild_closes_and_ends.cti ended the process in GCInitLib, with status 0")));
    // No command but the probe asks it for its version.
    add(LeftOut("writes_null", "wild_writes_null.cti.*signal 11", {0, {Says("^StreamPacketSize=9000\n$")}}));
    for (const char* const closing : {"closes_descriptors", "becomes_a_daemon"})
        rows.push_back({closing, "doctor", {0, {Says("closes: descriptors"), Says("1 usable camera")}}});
    return rows;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Process, WildProducers, testing::ValuesIn(Cases(producers, Rows())), NameOf);

TEST(ProducerThatChangesTheDirectory, DoesNotMoveThePictures)
{
    const TemporaryFolder folder;
    const std::string relative = "pictures-of-this-test";
    std::filesystem::remove_all(relative);
    RunAgainst("changes_directory", "grab wild0-camera --frames 1 --output " + relative, folder);
    EXPECT_TRUE(std::filesystem::exists(relative + "/W-wild0-camera-000001.png"));
    std::filesystem::remove_all(relative);
}

TEST(StaticDestructorThatHangs, DoesNotKeepTheProcessNorItsStatus)
{
    const TemporaryFolder folder;
    const std::string named = "koro: [^\n]*wild_hangs_at_exit.cti does not let the process end\\.\n";
    ExpectShown(RunAgainst("hangs_at_exit", "get wild0-camera Width", folder), {0, {Says("^64\n$"), Warns(named)}});
    ExpectShown(RunAgainst("hangs_at_exit", "get wild0-camera NoSuchFeature", folder), {6, {Warns(named)}});
}

TEST(StaticDestructorThatExits, DoesNotChangeTheStatus)
{
    const TemporaryFolder folder;
    EXPECT_EQ(RunAgainst("exits_at_exit", "get wild0-camera Width", folder).status, 0);
    EXPECT_EQ(RunAgainst("exits_at_exit", "get wild0-camera NoSuchFeature", folder).status, 6);
}

TEST(ProducerThatForksAnOrphan, IsNotWaitedForLongerThanItsProbeLives)
{
    const TemporaryFolder folder;
    Gate gate(folder);
    const ToolResult result = RunAgainst("forks_an_orphan " + gate.Variable(), "list", folder);
    ExpectShown(result, {0, {Says("Wild camera"), NeverSays("left out")}});
    EXPECT_TRUE(gate.IsWaitedAt());
}

TEST(ProducerThatForksAnOrphan, DoesNotKeepTheOutputOpen)
{
    // The run is over when its output has ended.
    const TemporaryFolder folder;
    Gate gate(folder);
    const ToolResult result = RunAgainst("forks_an_orphan " + gate.Variable(), "info wild0-camera", folder);
    ExpectShown(result, {0, {Says("W-wild0-camera")}});
    EXPECT_TRUE(gate.IsWaitedAt());
}

TEST(ProducerThatBecomesADaemon, DoesNotTakeTheMessages)
{
    const TemporaryFolder folder;
    const ToolResult result = RunAgainst("becomes_a_daemon", "get wild0-camera Widht --producer PRODUCER", folder);
    ExpectShown(result, {6, {Warns("has no feature \"Widht\""), Warns("hint: .*Width")}});
}

// In the tool's own process, which has no other descriptor 2 for the report any more.
TEST(ProducerThatClosesDescriptorsAndEnds, IsNamedOnTheErrorsThatTheToolHadBefore)
{
    const TemporaryFolder folder;
    const std::string line = "get wild0-camera Width --producer PRODUCER";
    ExpectShown(
        RunAgainst("closes_and_ends", line, folder),
        {1, {Warns("wild_closes_and_ends.cti ended the process in GCInitLib, with status 0\\.\n")}});
    ExpectShown(
        RunAgainst("closes_and_ends KORO_WILD_SIGNAL=11", line, folder),
        {128 + 11, {Warns("wild_closes_and_ends.cti crashed in GCInitLib: signal 11 ")}});
}

TEST(ProducerThatWritesThroughTheNullBuffer, IsNamedByTheDoctorWithTheCall)
{
    const TemporaryFolder folder;
    ExpectShown(RunAgainst("writes_null", "doctor", folder), {4, {Says("GCGetInfo")}});
}

} // namespace koro::test::wild

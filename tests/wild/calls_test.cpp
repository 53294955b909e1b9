// Producers whose calls take long or never return, and a camera that dies.
#include "tests/wild/gate.h"
#include "tests/wild/suite.h"

#include <csignal>

namespace koro::test::wild
{

namespace
{

const std::string dead = "dead_camera KORO_WILD_FRAMES=0 KORO_WILD_MS=100";
const std::string dying = "dead_camera KORO_WILD_FRAMES=2";
const std::string hangs = "hangs_at_start";

const Expected tableAndReason = {5, {Says("pictures +2\n"), Says("timeouts +3\n"), Warns("-1011")}};

const std::vector<Row> dyingRows = {
    // The table comes, then what ended the grab, then what failed behind it.
    {dying, "grab", tableAndReason},
    {dying, "grab_raw", tableAndReason},
};

const std::vector<Row> deadRows = {
    // What is known without the camera is known of a dead one.
    {dead, "list", {0, {Says("W-wild0-camera")}}},
    {dead, "list_json", {0, {Says("wild0-camera")}}},
    {dead, "doctor", {0, {Says("1 usable camera")}}},
    {dead, "info", {0, {Says("W-wild0-camera")}}},
    {dead, "watch", {0, {Says("found +wild0:wild0-camera")}}},
    {dead, "grab", {5, {Says("pictures +0\n"), Says("timeouts +3\n"), Warns("No features of the camera are used")}}},
    {dead, "grab_raw", {5, {Says("pictures +0\n"), Warns("No features of the camera are used")}}},
    {dead, "xml", {1, {Warns("-1011")}}},
    {dead, "firmware_info", {1, {Warns("koro: ")}}},
    {dead, "*", {1, {Warns("no description that can be fetched|-1011")}}},
};

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Dying, WildProducers, testing::ValuesIn(Cases({dying}, {"grab", "grab_raw"}, dyingRows)), NameOf);
INSTANTIATE_TEST_SUITE_P(Dead, WildProducers, testing::ValuesIn(Cases({dead}, deadRows)), NameOf);
// Each of these is as any other, only later.
INSTANTIATE_TEST_SUITE_P(
    Slow, WildProducers, testing::ValuesIn(Cases({"slow_call", "slow_lists"}, {"info", "grab"}, {})), NameOf);

TEST(ProducerThatHangsAtItsStart, IsNamedByTheDoctorWithTheCall)
{
    const TemporaryFolder folder;
    ExpectShown(
        RunAgainst(hangs, "doctor --timeout 300", folder), {4, {Says("wild_hangs_at_start.cti"), Says("hang")}});
}

TEST(ProducerThatHangsAtItsStart, CanBeInterrupted)
{
    const TemporaryFolder folder;
    Gate gate(folder);
    WildRun run("gate KORO_WILD_CALL=GCInitLib " + gate.Variable(), "list", folder);
    gate.Await();
    run->Signal(SIGINT);
    gate.Open(); // for the child that tries the producer
    EXPECT_NE(run.Finish().status, 0);
}

TEST(CallThatDoesNotReturn, IsWaitedForAndTheGrabGoesOn)
{
    const TemporaryFolder folder;
    Gate gate(folder);
    WildRun run("gate " + gate.Variable(), "grab wild0-camera --frames 2 --output FOLDER/pictures", folder);
    gate.Await();
    gate.Open();
    ExpectShown(run.Finish(), {0, {Says("pictures +2\n")}});
}

TEST(CallThatDoesNotReturn, IsLeftBySecondInterrupt)
{
    const TemporaryFolder folder;
    Gate gate(folder);
    WildRun run("gate " + gate.Variable(), "grab wild0-camera --frames 2 --output FOLDER/pictures", folder);
    gate.Await();
    run->Signal(SIGINT);
    run->Signal(SIGTERM); // as a second one, which cannot fall together with the first
    EXPECT_EQ(run.Finish().status, 130);
}

} // namespace koro::test::wild

// Producers whose calls take long or never return, and a camera that dies.
#include "tests/wild/gate.h"
#include "tests/wild/suite.h"

#include <algorithm>
#include <csignal>
#include <deque>
#include <gmock/gmock.h>

namespace koro::test::wild
{

namespace
{

const std::string dead = "dead_camera KORO_WILD_FRAMES=0 KORO_WILD_MS=100";
const std::string deadAndSlow = "dead_camera KORO_WILD_FRAMES=0 KORO_WILD_MS=1000";
const std::string dying = "dead_camera KORO_WILD_FRAMES=2";
const std::string hangs = "hangs_at_start";

const std::string noAnswer = "hint: The camera did not answer in time";
const Expected tableAndReason = {5, {Says("pictures +2\n"), Says("timeouts +3\n"), Warns("-1011")}};

const std::vector<Row> dyingRows = {
    // The table comes, then what ended the grab, then what failed behind it.
    {dying, "grab", tableAndReason},
    {dying, "grab_raw", tableAndReason},
    {dying, "grab_none", {5, {Says("frames +2\n"), Says("timeouts +3\n"), Warns("-1011")}}},
    {dying, "grab_json", {5, {Says("\"pictures\":2,"), Says("\"timeouts\":3,"), Warns("-1011")}}},
};

// What each command shows of a camera that was dead before.
std::vector<Row> DeadRows(const std::string& producer)
{
    const std::string noFeatures = "No features of the camera are used";
    const Expected noDescription = {1, {Warns("no description that can be fetched: .*-1011"), Warns(noAnswer)}};
    return {
        // What is known without the camera is known of a dead one.
        {producer, "list", {0, {Says("W-wild0-camera")}}},
        {producer, "list_json", {0, {Says("wild0-camera")}}},
        {producer, "doctor", {0, {Says("1 usable camera")}}},
        {producer, "info", {0, {Says("W-wild0-camera")}}},
        {producer, "watch", {0, {Says("found +wild0:wild0-camera")}}},
        {producer, "grab*", {5, {Says("pictures +0\n"), Says("timeouts +3\n"), Warns(noFeatures)}}},
        {producer, "grab_none", {5, {Says("frames +0\n"), Says("timeouts +3\n"), Warns(noFeatures)}}},
        {producer, "grab_json", {5, {Says("\"pictures\":0,"), Says("\"timeouts\":3,"), Warns(noFeatures)}}},
        {producer, "set_of_interface", {0, {Says("^ForcedAddress=")}}},
        {producer, "set_of_system", {0, {Says("^StreamPacketSize=")}}},
        {producer, "firmware_pack", {0, {Says("Better pictures")}}},
        {producer, "xml", {1, {Warns("koro: .*-1011"), Warns(noAnswer), NeverWarns("trigger")}}},
        {producer, "read", {1, {Warns("cannot be read: .*-1011"), Warns(noAnswer)}}},
        {producer, "write", {1, {Warns("cannot be written: .*-1011"), Warns(noAnswer)}}},
        {producer, "grab_reconnect", noDescription},
        {producer, "*", noDescription},
    };
}

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Dying, WildProducers, testing::ValuesIn(Cases({dying}, {"grab", "grab_raw", "grab_none", "grab_json"}, dyingRows)),
    NameOf);
INSTANTIATE_TEST_SUITE_P(Dead, WildProducers, testing::ValuesIn(Cases({dead}, DeadRows(dead))), NameOf);
// Each of these is as any other, only later.
INSTANTIATE_TEST_SUITE_P(
    Slow, WildProducers, testing::ValuesIn(Cases({"slow_call KORO_WILD_MS=200", "slow_lists"}, {})), NameOf);
INSTANTIATE_TEST_SUITE_P(
    VerySlow, WildProducers, testing::ValuesIn(Cases({"slow_call"}, {"info", "grab", "grab_raw"}, {})), NameOf);

TEST(DeadCameraWhoseCallsTakeASecond, IsHandledByEachCommand)
{
    constexpr std::size_t atOnce = 14; // they wait most of the time
    const std::vector<Case> cases = Cases({deadAndSlow}, DeadRows(deadAndSlow));
    for (std::size_t begin = 0; begin < cases.size(); begin += atOnce)
    {
        std::deque<CaseRun> runs;
        for (std::size_t index = begin; index < std::min(begin + atOnce, cases.size()); ++index)
            runs.emplace_back(cases[index]);
        for (CaseRun& run : runs)
            run.ExpectHandled();
    }
}

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

// The gate stays shut, the file is named, and then the first interrupt ends the process.
void ExpectEndByOneInterrupt(const std::string& call, const std::string& line)
{
    const TemporaryFolder folder;
    Gate gate(folder);
    const std::string file = ProducerFolder() + "/wild_gate.cti";
    WildRun run("gate KORO_WILD_CALL=" + call + " " + gate.Variable(), line + " --producer " + file, folder);
    gate.Await();
    EXPECT_TRUE(run->AwaitError("koro: waiting for " + file + "\n")) << call;
    run->Signal(SIGINT);
    const ToolResult result = run.Finish();
    EXPECT_EQ(result.status, 130) << call;
    EXPECT_THAT(result.err, testing::HasSubstr("koro: " + file + " does not return from a call.\n")) << call;
}

TEST(CallThatDoesNotReturn, IsNamedAndEndedByOneInterrupt)
{
    for (const char* call : {"GCInitLib", "TLOpen", "IFOpenDevice"})
        ExpectEndByOneInterrupt(call, "features wild0-camera");
    ExpectEndByOneInterrupt("DSStartAcquisition", "grab wild0-camera --frames 2 --format none");
    ExpectEndByOneInterrupt("TLUpdateInterfaceList:2", "watch");
}

TEST(CallThatDoesNotReturn, LeavesTheTableOfAGrab)
{
    const TemporaryFolder folder;
    Gate gate(folder);
    WildRun run(
        "gate KORO_WILD_CALL=DSQueueBuffer:11 " + gate.Variable(), "grab wild0-camera --frames 9 --format none",
        folder);
    gate.Await();
    run->Signal(SIGINT);
    ExpectShown(run.Finish(), {130, {Says("frames +3\n"), Warns("wild_gate.cti does not return from a call")}});
}

TEST(CloseThatDoesNotReturn, IsNamedAndGivenUp)
{
    // Nobody interrupts.
    const TemporaryFolder folder;
    Gate gate(folder);
    const ToolResult result =
        RunAgainst("gate KORO_WILD_CALL=DevClose " + gate.Variable(), "get wild0-camera Width", folder);
    ExpectShown(result, {1, {Says("^64\n$"), Warns("wild_gate.cti cannot be closed\\.\n")}});
    EXPECT_THAT(
        result.notices,
        testing::ContainsRegex("closing, the camera does not answer\n[^\n]*waiting for [^\n]*wild_gate.cti\n"));
}

TEST(ProducerThatHangsAtItsStart, IsNotProbedOnAfterAnInterrupt)
{
    const TemporaryFolder folder;
    Gate gate(folder);
    WildRun run(
        "gate KORO_WILD_CALL=GCInitLib " + gate.Variable(), "grab wild0-camera --frames 1 --format none", folder);
    gate.Await();
    run->Signal(SIGINT);
    ExpectShown(run.Finish(), {130, {Warns("Interrupted")}});
    EXPECT_TRUE(gate.IsLeft()) << "the process that tries the producer lives on";
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

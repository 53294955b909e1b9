// Producers that deliver broken frames, none, or some of several parts.
#include "tests/wild/suite.h"

#include <fstream>
#include <iterator>

namespace koro::test::wild
{

namespace
{

const std::vector<std::string> producers = {"lost_leaders", "broken_first_frames", "silent_after_frames", "parts"};

const Expected wholeFramesOnly = {0, {Says("pictures +4\n"), Says("incomplete +[1-9]")}};
const Expected silence = {5, {Says("pictures +2\n"), Says("timeouts +3\n"), Warns("waiting for a trigger")}};

const std::vector<Row> rows = {
    // A broken frame is counted and never saved as a whole one.
    {"lost_leaders", "grab", wholeFramesOnly},
    {"lost_leaders", "grab_raw", wholeFramesOnly},
    {"lost_leaders", "grab_reconnect", wholeFramesOnly},
    {"lost_leaders", "grab_none", {0, {Says("incomplete +[1-9]")}}},
    {"lost_leaders", "grab_json", {0, {Says("\"state\":\"incomplete\""), Says("\"pictures\":4,")}}},
    {"broken_first_frames", "grab", {0, {Says("pictures +4\n"), Says("incomplete +2\n")}}},
    {"broken_first_frames", "grab_raw", {0, {Says("pictures +4\n"), Says("incomplete +2\n")}}},
    {"broken_first_frames", "grab_reconnect", {0, {Says("pictures +4\n"), Says("incomplete +2\n")}}},
    {"broken_first_frames", "grab_none", {0, {Says("frames +6\n"), Says("incomplete +2\n")}}},
    {"broken_first_frames", "grab_json", {0, {Says("\"pictures\":4,"), Says("\"incomplete\":2,")}}},

    {"parts", "grab", {0, {Says("pictures +4\n"), Says("-image"), Says("purpose4")}}},
    {"parts", "grab_raw", {0, {Says("pictures +4\n")}}},
};

const std::vector<Row> silentRows = {
    {"silent_after_frames KORO_WILD_FRAMES=2", "grab", silence},
    {"silent_after_frames KORO_WILD_FRAMES=2", "grab_raw", silence},
    {"silent_after_frames KORO_WILD_FRAMES=2", "grab_reconnect", silence},
    {"silent_after_frames KORO_WILD_FRAMES=2", "grab_none", {5, {Says("frames +2\n"), Says("timeouts +3\n")}}},
    {"silent_after_frames KORO_WILD_FRAMES=2", "grab_json", {5, {Says("\"pictures\":2,"), Says("\"timeouts\":3,")}}},
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Frames, WildProducers, testing::ValuesIn(Cases(producers, rows)), NameOf);
INSTANTIATE_TEST_SUITE_P(
    Silence, WildProducers,
    testing::ValuesIn(Cases(
        {"silent_after_frames KORO_WILD_FRAMES=2"}, {"grab", "grab_raw", "grab_none", "grab_json", "grab_reconnect"},
        silentRows)),
    NameOf);

// The packet size of the host replaces the camera's own and stands in the first bytes of each picture.
TEST(FeaturesOfTheHost, AreSetBeforeAStreamIsOpened)
{
    const TemporaryFolder folder;
    const std::string line =
        "grab wild0-camera --frames 1 --format raw --set system:StreamPacketSize=8996 --output FOLDER";
    ExpectShown(RunAgainst("tame", line, folder), {0, {Says("pictures +1\n")}});
    std::ifstream picture(folder.File("W-wild0-camera-000001.raw"), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(picture), {});
    EXPECT_EQ(bytes.substr(0, 4), std::string("\x24\x23\0\0", 4));
}

} // namespace koro::test::wild

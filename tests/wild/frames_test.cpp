// Producers that deliver broken frames, none, or some of several parts.
#include "tests/wild/suite.h"

namespace koro::test::wild
{

namespace
{

const std::vector<std::string> producers = {"broken_first_frames", "silent_after_frames", "parts"};

const Expected silence = {5, {Says("pictures +2\n"), Says("timeouts +3\n")}};

const std::vector<Row> rows = {
    // A broken frame is counted and never saved as a whole one.
    {"broken_first_frames", "grab", {0, {Says("pictures +4\n"), Says("incomplete +2\n")}}},
    {"broken_first_frames", "grab_raw", {0, {Says("pictures +4\n"), Says("incomplete +2\n")}}},

    {"parts", "grab", {0, {Says("pictures +4\n"), Says("-image")}}},
    {"parts", "grab_raw", {0, {Says("pictures +4\n")}}},
};

const std::vector<Row> silentRows = {
    {"silent_after_frames KORO_WILD_FRAMES=2", "grab", silence},
    {"silent_after_frames KORO_WILD_FRAMES=2", "grab_raw", silence},
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Frames, WildProducers, testing::ValuesIn(Cases(producers, rows)), NameOf);
INSTANTIATE_TEST_SUITE_P(
    Silence, WildProducers,
    testing::ValuesIn(Cases({"silent_after_frames KORO_WILD_FRAMES=2"}, {"grab", "grab_raw"}, silentRows)), NameOf);

} // namespace koro::test::wild

// Producers that do something to the process in which they are.
#include "tests/wild/gate.h"
#include "tests/wild/suite.h"

namespace koro::test::wild
{

namespace
{

const std::vector<std::string> producers = {
    "throws",
    "throws_a_number",
    "exits KORO_WILD_CALL=TLOpen",
    "crashes",
    "crashes KORO_WILD_CALL=TLOpen",
    "writes_null",
    "falls_over_at_exit",
    "changes_directory",
    "leaves_a_thread",
};

// Nothing is saved, and the reason is named.
Expected NoPicture(int status, const std::string& reason)
{
    return {status, {Warns(reason), NeverSays("pictures +[1-9]")}};
}

// A producer that falls over while it is looked at is left out of every list, with the reason.
std::vector<Row> LeftOut(const std::string& producer, const std::string& reason)
{
    return {
        {producer, "list", {0, {Says(reason), Says("0 cameras")}}},
        {producer, "list_json", {0, {Says(reason)}}},
        {producer, "doctor", {4, {Says(reason)}}},
        {producer, "watch", {1, {Warns(reason)}}},
        {producer, "*", {3, {Warns(reason)}}},
    };
}

std::vector<Row> Rows()
{
    std::vector<Row> rows = {
        {"throws", "grab", NoPicture(1, "thrown by the producer")},
        {"throws", "grab_raw", NoPicture(1, "thrown by the producer")},
        {"throws_a_number", "grab", NoPicture(1, "Unhandled exception!")},
        {"throws_a_number", "grab_raw", NoPicture(1, "Unhandled exception!")},
        {"crashes", "grab", {128 + 11, {NeverSays("pictures +[1-9]")}}},
        {"crashes", "grab_raw", {128 + 11, {NeverSays("pictures +[1-9]")}}},
    };
    const auto add = [&](const std::vector<Row>& more) { rows.insert(rows.end(), more.begin(), more.end()); };
    add(LeftOut("exits KORO_WILD_CALL=TLOpen", "wild_exits.cti.*status 0"));
    add(LeftOut("crashes KORO_WILD_CALL=TLOpen", "wild_crashes.cti.*signal 11"));
    add(LeftOut("writes_null", "wild_writes_null.cti.*signal 11"));
    return rows;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Process, WildProducers, testing::ValuesIn(Cases(producers, Rows())), NameOf);

TEST(ProducerThatForksAnOrphan, IsNotWaitedForLongerThanItsProbeLives)
{
    const TemporaryFolder folder;
    Gate gate(folder);
    const ToolResult result = RunAgainst("forks_an_orphan " + gate.Variable(), "list", folder);
    ExpectShown(result, {0, {Says("Wild camera"), NeverSays("left out")}});
    EXPECT_TRUE(gate.IsWaitedAt());
}

} // namespace koro::test::wild

// The suite: every command of the tool against every producer of producers/scripted/wild.
//
// A case is one run. What it must show is the row of the command in commands.h, as for a producer that behaves itself,
// unless the test program has a row of its own for this producer and command. Beyond its rows every run ends by itself
// within two minutes, says why when it fails, prints whole JSON and no control characters.
#pragma once

#include "tests/support/temporary_folder.h"
#include "tests/tool/tool_run.h"

#include <gtest/gtest.h>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace koro::test::wild
{

// A pattern (POSIX extended) that an output has, or has not.
struct Line
{
    enum Where
    {
        OnOutput,
        OnError,
        NotOnOutput,
        NotOnError,
    };
    Where where;
    std::string pattern;
};
inline Line Says(std::string pattern)
{
    return {Line::OnOutput, std::move(pattern)};
}
inline Line Warns(std::string pattern)
{
    return {Line::OnError, std::move(pattern)};
}
inline Line NeverSays(std::string pattern)
{
    return {Line::NotOnOutput, std::move(pattern)};
}
inline Line NeverWarns(std::string pattern)
{
    return {Line::NotOnError, std::move(pattern)};
}

// What a run shows.
struct Expected
{
    int status;
    std::vector<Line> lines;
};

// A command of the tool as a tame producer has it. FOLDER is a folder of the run, with the file "saved" of settings,
// the update files "update.guf", which uploads, and "write.guf", which writes a feature, and what the first is made of:
// "control.xml" and "image.bin". PRODUCER is the file of the producer.
struct Command
{
    std::string name;
    std::string line;
    Expected expected;
};
const std::vector<Command>& Commands();

// What a command shows that is not as usual. The producer may have variables behind its name, as in
// "exits KORO_WILD_CALL=TLOpen". A command that ends with "*" stands for all whose names begin so and that have no row
// which names them, or more of their names.
struct Row
{
    std::string producer;
    std::string command;
    Expected expected;
};

struct Case
{
    std::string producer;
    Command command; // with what is expected on this producer
};
void PrintTo(const Case& run, std::ostream* out);

// Each of the producers with each command, or with those named; rows that fit none of them are an error.
std::vector<Case> Cases(const std::vector<std::string>& producers, const std::vector<Row>& rows);
std::vector<Case> Cases(
    const std::vector<std::string>& producers, const std::vector<std::string>& commands, const std::vector<Row>& rows);
std::string NameOf(const testing::TestParamInfo<Case>& info);

// A run against "name VARIABLE=value ..."; `line` is split at blanks.
class WildRun
{
public:
    WildRun(const std::string& producer, const std::string& line, const TemporaryFolder& folder);
    ToolRun* operator->() { return &run; }
    // A run that does not end is killed and fails the test.
    ToolResult Finish();

private:
    ToolRun run;
};
ToolResult RunAgainst(const std::string& producer, const std::string& line, const TemporaryFolder& folder);
void ExpectShown(const ToolResult& result, const Expected& expected);

// The run of a case, begun.
class CaseRun
{
public:
    explicit CaseRun(const Case& of);
    // Blocks until the end of the run, and compares it with what is expected.
    void ExpectHandled();

private:
    const Case what;
    const TemporaryFolder folder;
    WildRun run;
};

class WildProducers : public testing::TestWithParam<Case>
{};

} // namespace koro::test::wild

#include "tests/wild/suite.h"

#include "tests/support/update_files.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <iostream>
#include <iterator>
#include <mutex>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace koro::test::wild
{

namespace
{

constexpr auto longestRun = std::chrono::minutes(2);

// Kills a run that does not end.
class Watch
{
public:
    explicit Watch(const ToolRun& run) : thread([this, &run] { Run(run); }) {}
    ~Watch() { Stop(); }

    // True when the run had to be killed.
    bool Stop()
    {
        {
            const std::lock_guard lock(mutex);
            hasEnded = true;
        }
        happened.notify_all();
        if (thread.joinable()) thread.join();
        return hasKilled;
    }

private:
    void Run(const ToolRun& run)
    {
        std::unique_lock lock(mutex);
        hasKilled = !happened.wait_for(lock, longestRun, [this] { return hasEnded; });
        if (hasKilled) run.Signal(SIGKILL);
    }

    std::mutex mutex;
    std::condition_variable happened;
    bool hasEnded = false;
    bool hasKilled = false;
    std::thread thread;
};

std::vector<std::string> Split(const std::string& line)
{
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
}

// The settings of a tame camera, and an update for it.
void FillFolder(const TemporaryFolder& folder)
{
    const std::string upload = "<DeviceFileName>Firmware</DeviceFileName><FileName>image.bin</FileName>";
    const std::string update = Update(neededEntries, "<Condition Feature=\"PixelFormat\">Mono8</Condition>");
    const std::string control = Control(Procedure(Step("FileUpload", upload)) + update);
    const std::string write = "<FeatureName>Width</FeatureName><Value>32</Value>";
    folder.MakeFile("control.xml", control);
    folder.MakeFile("image.bin", "image");
    folder.MakeFile("write.guf", Container(Package(Control(Procedure(Step("FeatureWrite", write)) + update))));
    folder.MakeFile("saved", "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n# GenApi persistence file\nWidth\t32\n");
    folder.MakeFile("update.guf", Container(Package(control, {{"image.bin", "image"}})));
}

// The folder of the producers is a folder of the run with this one in it.
Environment EnvironmentOf(const std::string& producer, const TemporaryFolder& folder)
{
    const std::vector<std::string> parts = Split(producer);
    const std::string file = "wild_" + parts.front() + ".cti";
    if (!std::filesystem::exists(folder.File("producers")))
    {
        std::filesystem::create_directory(folder.File("producers"));
        std::filesystem::create_symlink(ProducerFolder() + "/" + file, folder.File("producers/" + file));
    }
    Environment variables = {{"GENICAM_GENTL64_PATH", folder.File("producers")}};
    for (std::size_t index = 1; index < parts.size(); ++index)
    {
        const std::size_t equals = parts[index].find('=');
        variables[parts[index].substr(0, equals)] = parts[index].substr(equals + 1);
    }
    return variables;
}

Arguments ArgumentsOf(const std::string& line, const TemporaryFolder& folder)
{
    const std::string place = "FOLDER";
    Arguments arguments = Split(line);
    for (std::string& argument : arguments)
    {
        const std::size_t at = argument.find(place);
        if (at != std::string::npos) argument.replace(at, place.size(), folder.Path().string());
    }
    return arguments;
}

bool FitsRow(const Row& row, const std::string& producer, const std::string& command)
{
    return row.producer == producer && (row.command == command || row.command == "*");
}

// The row that names the command goes before the one for all.
const Row* FindRow(const std::vector<Row>& rows, const std::string& producer, const std::string& command)
{
    const Row* found = nullptr;
    for (const Row& row : rows)
    {
        if (FitsRow(row, producer, command) && (!found || row.command == command)) found = &row;
    }
    return found;
}

bool Has(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::vector<std::string> NamesOfCommands()
{
    std::vector<std::string> names;
    for (const Command& command : Commands())
        names.push_back(command.name);
    return names;
}

// Control characters of a terminal, those of two bytes too.
bool HasControls(const std::string& text)
{
    for (std::size_t index = 0; index < text.size(); ++index)
    {
        const auto byte = static_cast<unsigned char>(text[index]);
        const auto next = static_cast<unsigned char>(index + 1 < text.size() ? text[index + 1] : 'x');
        if ((byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F) return true;
        if (byte == 0xC2 && next >= 0x80 && next < 0xA0) return true;
    }
    return false;
}

bool IsUTF8(const std::string& text)
{
    constexpr auto leaveOut = nlohmann::json::error_handler_t::ignore;
    const std::string written = nlohmann::json(text).dump(-1, ' ', false, leaveOut);
    return nlohmann::json::parse(written).get<std::string>() == text;
}

void ExpectLine(const ToolResult& result, const Line& line)
{
    using testing::ContainsRegex;
    switch (line.where)
    {
    case Line::OnOutput:
        EXPECT_THAT(result.out, ContainsRegex(line.pattern));
        break;
    case Line::OnError:
        EXPECT_THAT(result.err, ContainsRegex(line.pattern));
        break;
    case Line::NotOnOutput:
        EXPECT_THAT(result.out, testing::Not(ContainsRegex(line.pattern)));
        break;
    case Line::NotOnError:
        EXPECT_THAT(result.err, testing::Not(ContainsRegex(line.pattern)));
        break;
    }
}

// What holds for every run.
void ExpectManners(const ToolResult& result, const std::string& line)
{
    const std::string all = result.out + result.err + result.notices;
    const bool isForPrograms = line.find("--json") != std::string::npos;
    EXPECT_TRUE(isForPrograms || !HasControls(all)) << "control characters";
    EXPECT_TRUE(IsUTF8(all)) << "bytes that are no text";
    EXPECT_THAT(result.out, testing::Not(testing::HasSubstr("Exception: by"))) << "the producer's own output";
    EXPECT_TRUE(result.status == 0 || !all.empty()) << "a failure without a word";
    const bool isJSON = result.out.empty() || nlohmann::json::accept(result.out);
    EXPECT_TRUE(!isForPrograms || isJSON) << "no whole JSON";
}

} // namespace

WildRun::WildRun(const std::string& producer, const std::string& line, const TemporaryFolder& folder)
    : run(ArgumentsOf(line, folder), EnvironmentOf(producer, folder))
{}

ToolResult WildRun::Finish()
{
    Watch watch(run);
    ToolResult result = run.Finish();
    EXPECT_FALSE(watch.Stop()) << "had to be killed";
    return result;
}

ToolResult RunAgainst(const std::string& producer, const std::string& line, const TemporaryFolder& folder)
{
    return WildRun(producer, line, folder).Finish();
}

void ExpectShown(const ToolResult& result, const Expected& expected)
{
    EXPECT_EQ(result.status, expected.status);
    for (const Line& line : expected.lines)
        ExpectLine(result, line);
}

std::vector<Case> Cases(const std::vector<std::string>& producers, const std::vector<Row>& rows)
{
    return Cases(producers, NamesOfCommands(), rows);
}

std::vector<Case> Cases(
    const std::vector<std::string>& producers, const std::vector<std::string>& commands, const std::vector<Row>& rows)
{
    for (const Row& row : rows)
    {
        if (!Has(producers, row.producer) || (row.command != "*" && !Has(commands, row.command)))
            throw std::logic_error("no case for the row " + row.producer + ", " + row.command);
    }
    std::vector<Case> cases;
    for (const std::string& producer : producers)
    {
        for (Command command : Commands())
        {
            if (!Has(commands, command.name)) continue;
            if (const Row* row = FindRow(rows, producer, command.name)) command.expected = row->expected;
            cases.push_back({producer, command});
        }
    }
    return cases;
}

std::string NameOf(const testing::TestParamInfo<Case>& info)
{
    std::string name = info.param.producer + "__" + info.param.command.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char character) { return std::isalnum(character) == 0; }, '_');
    return name;
}

void PrintTo(const Case& run, std::ostream* out)
{
    *out << "koro " << run.command.line << " against " << run.producer;
}

TEST_P(WildProducers, AreHandled)
{
    const Case& run = GetParam();
    FillFolder(folder);
    const ToolResult result = RunAgainst(run.producer, run.command.line, folder);
    ExpectShown(result, run.command.expected);
    ExpectManners(result, run.command.line);
    if (HasFailure())
        std::cerr << "koro " << run.command.line << "\n--- output\n"
                  << result.out << "--- error\n"
                  << result.err << result.notices;
}

} // namespace koro::test::wild

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
#include <utility>

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
const TemporaryFolder& FillFolder(const TemporaryFolder& folder)
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
    return folder;
}

std::string FileOf(const std::string& producer)
{
    return "wild_" + Split(producer).front() + ".cti";
}

// The folder of the producers is a folder of the run with this one in it.
Environment EnvironmentOf(const std::string& producer, const TemporaryFolder& folder)
{
    const std::vector<std::string> parts = Split(producer);
    const std::string file = FileOf(producer);
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

Arguments ArgumentsOf(const std::string& producer, const std::string& line, const TemporaryFolder& folder)
{
    const std::pair<std::string, std::string> places[] = {
        {"FOLDER", folder.Path().string()}, {"PRODUCER", folder.File("producers/" + FileOf(producer))}};
    Arguments arguments = Split(line);
    for (std::string& argument : arguments)
    {
        for (const auto& [place, path] : places)
        {
            const std::size_t at = argument.find(place);
            if (at != std::string::npos) argument.replace(at, place.size(), path);
        }
    }
    return arguments;
}

// `name` is that of a command, or the start of several with "*" behind.
bool Stands(const std::string& name, const std::string& command)
{
    return name.ends_with('*') ? command.starts_with(name.substr(0, name.size() - 1)) : name == command;
}

// The longest name of those that stand for the command goes first; an equally long one is the command's own.
const Row* FindRow(const std::vector<Row>& rows, const std::string& producer, const std::string& command)
{
    const Row* found = nullptr;
    for (const Row& row : rows)
    {
        if (row.producer != producer || !Stands(row.command, command)) continue;
        if (!found || row.command == command ||
            (found->command != command && row.command.size() > found->command.size()))
            found = &row;
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

// One value, or one in each line.
bool IsJSON(const std::string& text)
{
    if (nlohmann::json::accept(text)) return true;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        if (!nlohmann::json::accept(line)) return false;
    }
    return text.empty() || text.back() == '\n';
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
    EXPECT_TRUE(!isForPrograms || IsJSON(result.out)) << "no whole JSON";
}

} // namespace

WildRun::WildRun(const std::string& producer, const std::string& line, const TemporaryFolder& folder)
    : run(ArgumentsOf(producer, line, folder), EnvironmentOf(producer, folder))
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
        const auto isMeant = [&](const std::string& command) { return Stands(row.command, command); };
        if (!Has(producers, row.producer) || std::none_of(commands.begin(), commands.end(), isMeant))
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

CaseRun::CaseRun(const Case& of) : what(of), run(of.producer, of.command.line, FillFolder(folder)) {}

void CaseRun::ExpectHandled()
{
    const testing::ScopedTrace trace(__FILE__, __LINE__, testing::PrintToString(what));
    const ToolResult result = run.Finish();
    ExpectShown(result, what.command.expected);
    ExpectManners(result, what.command.line);
    if (testing::Test::HasFailure())
        std::cerr << "koro " << what.command.line << "\n--- output\n"
                  << result.out << "--- error\n"
                  << result.err << result.notices;
}

TEST_P(WildProducers, AreHandled)
{
    CaseRun(GetParam()).ExpectHandled();
}

} // namespace koro::test::wild

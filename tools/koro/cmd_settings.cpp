#include "tools/koro/commands.h"
#include "tools/koro/feature_file.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/pending_file.h"
#include "tools/koro/report.h"
#include "tools/koro/settings_plan.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <unistd.h>

namespace koro::tool
{

namespace
{

struct SettingsCommand
{
    FeatureTarget target;
    std::string file;
    std::string otherFile;
};

// The library opens and truncates what it is told, so it writes a neighbour that takes the file's place when whole.
void Save(const NodeMap& nodes, const std::filesystem::path& path)
{
    PendingFile file(path);
    nodes.StoreToFile(file.Path().string());
    file.Commit();
}

// A folder of this process alone, gone at the end.
class ScratchFolder
{
public:
    ScratchFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "koro-XXXXXX").string();
        if (!mkdtemp(pattern.data())) throw ToolError("Cannot make a folder for a moment: " + pattern + ".");
        path = pattern;
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    const std::filesystem::path& Path() const { return path; }

private:
    std::filesystem::path path;
};

std::vector<FeatureRecord> SettingsOf(const NodeMap& nodes)
{
    const ScratchFolder folder;
    const std::filesystem::path path = folder.Path() / "settings";
    nodes.StoreToFile(path.string());
    return ReadFeatureFile(path);
}

std::string Count(size_t number, const char* what)
{
    return std::to_string(number) + " " + what;
}

std::string LineOf(const PlannedRecord& plan)
{
    return "line " + std::to_string(plan.record->line) + ": " + Printable(plan.record->Title());
}

size_t PrintProblems(const std::vector<PlannedRecord>& plans, std::FILE* stream)
{
    size_t number = 0;
    for (const PlannedRecord& plan : plans)
    {
        if (plan.problem.empty()) continue;
        ++number;
        std::fprintf(
            stream, "%s=%s: %s\n", LineOf(plan).c_str(), Printable(plan.record->value).c_str(),
            Printable(plan.problem).c_str());
    }
    return number;
}

int SaveSettings(const SettingsCommand& command)
{
    const FeatureSession session(command.target, FeatureSession::Access::WriteOrRead);
    Save(session.Nodes(), command.file);
    std::printf(
        "%s in %s\n", Count(ReadFeatureFile(command.file).size(), "values").c_str(), Printable(command.file).c_str());
    return exitSuccess;
}

int LoadSettings(const SettingsCommand& command)
{
    const std::vector<FeatureRecord> records = ReadFeatureFile(command.file);
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    try
    {
        session.Nodes().LoadFromFile(command.file);
    }
    catch (const Error& error)
    {
        // The library tells the first failure only; what can be written has been.
        const auto plans = WriteSettings(session.Nodes(), session.Port(), records);
        const size_t numProblems = PrintProblems(plans, stderr);
        if (numProblems == 0) throw ToolError(error.what(), "Written line by line, all values were taken.");
        throw ToolError(
            std::to_string(numProblems) + " of " + Count(records.size(), "values") +
                " could not be written: " + error.what(),
            "`koro settings check` tells what a file would change.");
    }
    std::printf("%s written\n", Count(records.size(), "values").c_str());
    return exitSuccess;
}

int CheckSettings(const SettingsCommand& command)
{
    const std::vector<FeatureRecord> records = ReadFeatureFile(command.file);
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const auto plans = PlanSettings(session.Nodes(), session.Port(), records);
    size_t numChanges = 0;
    for (const PlannedRecord& plan : plans)
    {
        if (plan.isSame || !plan.problem.empty()) continue;
        ++numChanges;
        std::printf(
            "%s: %s -> %s\n", LineOf(plan).c_str(), plan.before.empty() ? "?" : Printable(plan.before).c_str(),
            Printable(plan.record->value).c_str());
    }
    const size_t numProblems = PrintProblems(plans, stdout);
    std::printf(
        "%zu values would change, %zu cannot be written, %zu are the same\n", numChanges, numProblems,
        plans.size() - numChanges - numProblems);
    return numProblems == 0 ? exitSuccess : exitFailure;
}

int DiffSettings(const SettingsCommand& command)
{
    // The file comes first, and may be compared with another one in place of a camera.
    const std::vector<FeatureRecord> left = ReadFeatureFile(command.file);
    std::vector<FeatureRecord> right;
    if (!command.otherFile.empty())
        right = ReadFeatureFile(command.otherFile);
    else
        right = SettingsOf(FeatureSession(command.target, FeatureSession::Access::WriteOrRead).Nodes());

    const auto differences = Differences(left, right);
    for (const FeatureDifference& difference : differences)
    {
        if (difference.left)
            std::printf("- %s=%s\n", Printable(difference.title).c_str(), Printable(difference.left->value).c_str());
        if (difference.right)
            std::printf("+ %s=%s\n", Printable(difference.title).c_str(), Printable(difference.right->value).c_str());
    }
    return differences.empty() ? exitSuccess : exitDifferent;
}

// Of "FILE FILE" and "CAMERA FILE" the first form is meant when the first name is a file.
int Diff(const SettingsCommand& command)
{
    SettingsCommand ordered = command;
    if (!std::filesystem::is_regular_file(command.target.camera)) return DiffSettings(ordered);
    ordered.file = command.target.camera;
    ordered.otherFile = command.file;
    return DiffSettings(ordered);
}

using Run = int (*)(const SettingsCommand&);

void DefinePart(
    CLI::App& parent, const char* name, const char* help, const char* fileHelp, Run run,
    const std::shared_ptr<Run>& chosen, const std::shared_ptr<SettingsCommand>& options)
{
    CLI::App* const part = parent.add_subcommand(name, help);
    DefineTarget(*part, options->target, false);
    part->add_option("file", options->file, fileHelp)->required();
    part->callback([run, chosen] { *chosen = run; });
}

} // namespace

Action DefineSettingsFiles(CLI::App& command)
{
    const auto options = std::make_shared<SettingsCommand>();
    const auto chosen = std::make_shared<Run>(nullptr);
    command.require_subcommand(1);
    DefinePart(
        command, "save", "Write the settings of a camera into a file", "Replaced if it is there", SaveSettings, chosen,
        options);
    DefinePart(
        command, "load", "Write the settings of a file to a camera", "A file of settings", LoadSettings, chosen,
        options);
    DefinePart(
        command, "check", "Tell what load would change, and what would fail", "A file of settings", CheckSettings,
        chosen, options);
    DefinePart(
        command, "diff", "Compare a file with a camera, or, in place of the camera, with another file",
        "A file of settings", Diff, chosen, options);
    return [options, chosen] { return (*chosen)(*options); };
}

} // namespace koro::tool

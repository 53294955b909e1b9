#include "tools/koro/commands.h"
#include "tools/koro/feature_file.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/path_option.h"
#include "tools/koro/pending_file.h"
#include "tools/koro/report.h"
#include "tools/koro/settings_plan.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"
#include "tools/koro/writable_features.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace koro::tool
{

namespace
{

struct SettingsCommand
{
    FeatureTarget target;
    std::string file;
    std::string otherFile;
    bool allWritable = false;
};

// A file without a place on any disk.
class MemoryFile
{
public:
    MemoryFile() : file(memfd_create("settings", MFD_CLOEXEC))
    {
        if (file < 0) Fail();
    }
    explicit MemoryFile(const std::string& content) : MemoryFile()
    {
        for (size_t size = 0; size < content.size();)
        {
            const ssize_t part = write(file, content.data() + size, content.size() - size);
            if (part <= 0) Fail();
            size += static_cast<size_t>(part);
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(file); }

    std::string Path() const { return "/proc/self/fd/" + std::to_string(file); }
    std::string Content() const
    {
        std::string content(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
        for (size_t size = 0; size < content.size();)
        {
            const ssize_t part = pread(file, &content[size], content.size() - size, static_cast<off_t>(size));
            if (part <= 0) Fail();
            size += static_cast<size_t>(part);
        }
        return content;
    }

private:
    [[noreturn]] static void Fail()
    {
        throw ToolError("Cannot keep settings in memory: " + std::generic_category().message(errno) + ".");
    }

    const int file;
};

struct CameraSettings
{
    std::string text;
    std::vector<FeatureRecord> records;
    std::vector<std::string> leftOut; // titles of what no file can hold
};

CameraSettings Store(const NodeMap& nodes)
{
    const MemoryFile file;
    nodes.StoreToFile(file.Path());
    CameraSettings settings;
    settings.text = file.Content();
    try
    {
        settings.records = ParseFeatureFile(settings.text, "The camera's settings", SettingsOf::Camera);
    }
    catch (const ToolError& error)
    {
        throw ToolError(error.what(), "A text with line feeds in it cannot be kept in such a file.");
    }
    settings.leftOut = TakeOutWhatNoFileHolds(settings.text, settings.records);
    return settings;
}

// The same of all features, streamable or not.
CameraSettings StoreAllWritable(const NodeMap& nodes)
{
    CameraSettings settings;
    for (FeatureRecord& record : WritableFeatures(nodes))
    {
        if (IsKeptByAFile(record))
            settings.records.push_back(std::move(record));
        else
            settings.leftOut.push_back(record.Title());
    }
    settings.text = FeatureFileOf(settings.records);
    return settings;
}

CameraSettings SettingsOf(const SettingsCommand& command, const NodeMap& nodes)
{
    return command.allWritable ? StoreAllWritable(nodes) : Store(nodes);
}

// A camera that is open for reading shows nothing as writable, and only what can be written is a setting.
void RequireControl(const FeatureSession& session)
{
    if (!session.WhyReadOnly()) return;
    throw ToolError(
        "The camera can only be opened for reading, which does not show its settings: " + *session.WhyReadOnly(),
        "Another program may have control of the camera; `koro list` shows its access status.");
}

// Nothing is a strange thing to save, and stranger to load.
void WarnOfNoValues(const std::string& what, const std::string& hint)
{
    std::fprintf(Errors(), "koro: %s\nhint: %s\n", what.c_str(), hint.c_str());
}

std::string LineOf(const PlannedRecord& plan)
{
    return "line " + std::to_string(plan.record->line) + ": " + PrintableStart(plan.record->Title());
}

size_t PrintProblems(const std::vector<PlannedRecord>& plans, std::FILE* stream)
{
    size_t number = 0;
    for (const PlannedRecord& plan : plans)
    {
        if (plan.problem.empty() || !plan.condition.empty()) continue;
        ++number;
        std::fprintf(
            stream, "%s=%s: %s\n", LineOf(plan).c_str(), PrintableStart(plan.record->value).c_str(),
            PrintableStart(plan.problem).c_str());
    }
    return number;
}

int SaveSettings(const SettingsCommand& command)
{
    const FeatureSession session(command.target, FeatureSession::Access::WriteOrRead);
    RequireControl(session);
    PendingFile file(command.file);
    const CameraSettings settings = SettingsOf(command, session.Nodes());
    file.Write(settings.text.data(), settings.text.size());
    file.Commit();
    for (const std::string& title : settings.leftOut)
        std::fprintf(
            Errors(), "%s is left out: a file holds no text that is empty, begins with a brace or has several lines\n",
            PrintableStart(title).c_str());
    if (settings.records.empty() && !command.allWritable)
        WarnOfNoValues(
            "The description marks no feature as a part of the settings, so the file has no values.",
            "--all-writable saves every feature that can be read and written.");
    PrintOut("%s in %s\n", CountOf(settings.records.size(), "value").c_str(), Printable(command.file).c_str());
    return exitSuccess;
}

void RefuseProblems(const std::vector<PlannedRecord>& plans, size_t numRecords, const std::string& reason)
{
    const size_t numProblems = PrintProblems(plans, Errors());
    if (numProblems == 0) return;
    throw ToolError(
        std::to_string(numProblems) + " of " + CountOf(numRecords, "value") + " could not be written: " + reason,
        "The others are written; `koro settings check` shows what a file would change.");
}

int LoadSettings(const SettingsCommand& command)
{
    const std::vector<FeatureRecord> records = ReadFeatureFile(command.file);
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    if (records.empty())
        WarnOfNoValues(
            Printable(command.file) + " has no values, so nothing is written.",
            "`koro settings save --all-writable` saves every feature that can be read and written.");
    std::vector<FeatureRecord> values;
    std::vector<FeatureRecord> commands;
    for (const FeatureRecord& record : records)
        (CommandIn(session.Nodes(), record) ? commands : values).push_back(record);
    try
    {
        session.Nodes().LoadFromFile(MemoryFile(FeatureFileOf(values)).Path());
    }
    catch (const Error& error)
    {
        // The library ends at some failures and reports one. A value may only be possible when a later line is written.
        const auto plans = WriteSettings(session.Nodes(), session.Port(), records);
        RefuseProblems(plans, records.size(), error.what());
    }
    RefuseProblems(
        PlanSettings(session.Nodes(), session.Port(), commands), records.size(), "load executes no commands.");
    PrintOut("%s written\n", CountOf(records.size(), "value").c_str());
    return exitSuccess;
}

std::string RemarkOn(const PlannedRecord& plan)
{
    std::string remark;
    if (!plan.missingSelector.empty())
        remark = ", without the selector " + PrintableStart(plan.missingSelector) + ", which the camera does not have";
    if (!plan.condition.empty())
        remark += ", if the change of " + PrintableStart(plan.condition) +
                  " makes it possible: " + PrintableStart(plan.problem);
    return remark;
}

int CheckSettings(const SettingsCommand& command)
{
    const std::vector<FeatureRecord> records = ReadFeatureFile(command.file);
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const auto plans = PlanSettings(session.Nodes(), session.Port(), records);
    size_t numChanges = 0;
    for (const PlannedRecord& plan : plans)
    {
        if (plan.isSame || (!plan.problem.empty() && plan.condition.empty())) continue;
        ++numChanges;
        PrintOut(
            "%s: %s -> %s%s\n", LineOf(plan).c_str(), plan.before.empty() ? "?" : PrintableStart(plan.before).c_str(),
            PrintableStart(plan.record->value).c_str(), RemarkOn(plan).c_str());
    }
    const size_t numProblems = PrintProblems(plans, Output());
    PrintOut(
        "%s would change, %zu cannot be written, %zu are the same\n", CountOf(numChanges, "value").c_str(), numProblems,
        plans.size() - numChanges - numProblems);
    return numProblems == 0 ? exitSuccess : exitFailure;
}

void PrintDifference(char sign, const std::string& title, const FeatureRecord& record)
{
    PrintOut("%c %s=%s\n", sign, PrintableStart(title).c_str(), PrintableStart(record.value).c_str());
}

int DiffSettings(const SettingsCommand& command)
{
    // The file comes first, and may be compared with another one in place of a camera.
    const std::vector<FeatureRecord> left = ReadFeatureFile(command.file);
    std::vector<FeatureRecord> right;
    if (!command.otherFile.empty())
        right = ReadFeatureFile(command.otherFile);
    else
    {
        const FeatureSession session(command.target, FeatureSession::Access::WriteOrRead);
        RequireControl(session);
        right = SettingsOf(command, session.Nodes()).records;
    }

    const auto differences = Differences(left, right);
    for (const FeatureDifference& difference : differences)
    {
        if (difference.left) PrintDifference('-', difference.title, *difference.left);
        if (difference.right) PrintDifference('+', difference.title, *difference.right);
    }
    return differences.empty() ? exitSuccess : exitDifferent;
}

// Of "FILE FILE" and "CAMERA FILE" the first form is meant when the first name is a file.
int Diff(const SettingsCommand& command)
{
    SettingsCommand ordered = command;
    std::error_code none;
    if (!std::filesystem::is_regular_file(command.target.camera, none)) return DiffSettings(ordered);
    ordered.file = command.target.camera;
    ordered.otherFile = command.file;
    return DiffSettings(ordered);
}

using Run = int (*)(const SettingsCommand&);

CLI::App* DefinePart(
    CLI::App& parent, const char* name, const char* help, const char* fileHelp, Run run,
    const std::shared_ptr<Run>& chosen, const std::shared_ptr<SettingsCommand>& options)
{
    CLI::App* const part = parent.add_subcommand(name, help);
    DefineTarget(*part, options->target, true);
    TakesPath(part->add_option("file", options->file, fileHelp)->required());
    part->callback([run, chosen] { *chosen = run; });
    return part;
}

} // namespace

Action DefineSettingsFiles(CLI::App& command)
{
    const auto options = std::make_shared<SettingsCommand>();
    const auto chosen = std::make_shared<Run>(nullptr);
    command.require_subcommand(1);
    CLI::App* const save = DefinePart(
        command, "save", "Write the settings of a camera into a file", "Replaced if it is there", SaveSettings, chosen,
        options);
    DefinePart(
        command, "load", "Write the settings of a file to a camera", "A file of settings", LoadSettings, chosen,
        options);
    DefinePart(
        command, "check", "Show what load would change, and what would fail", "A file of settings", CheckSettings,
        chosen, options);
    CLI::App* const diff = DefinePart(
        command, "diff", "Compare a file with a camera, or, in place of the camera, with another file",
        "A file of settings", Diff, chosen, options);
    for (CLI::App* const part : {save, diff})
        part->add_flag(
            "--all-writable", options->allWritable, "All features that can be read and written, not the settings only");
    return [options, chosen] { return (*chosen)(*options); };
}

} // namespace koro::tool

#include "tools/koro/commands.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/image_writer.h"
#include "tools/koro/local_file.h"
#include "tools/koro/path_option.h"
#include "tools/koro/output.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"
#include "tools/koro/transfer_progress.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace koro::tool
{

namespace
{

constexpr const char* standardStream = "-";

struct FilesCommand
{
    FeatureTarget target;
    std::string name;
    std::string path;
};

EnumerationNode FilesOf(const FeatureSession& session)
{
    const Node node = session.Nodes().TryNode("FileSelector");
    if (node && node.Type() == KORO_NODE_TYPE_ENUMERATION) return node.ToEnumeration();
    throw ToolError(std::string("The camera has no files that can be reached."), {}, exitNoSuchFeature);
}

// The file, selected.
FileAdapter Open(const FeatureSession& session, const std::string& name)
{
    const EnumerationNode files = FilesOf(session);
    const EnumerationEntryNode entry = files.TryEntry(name);
    if (entry)
    {
        if (!entry.Node().IsAvailable()) throw ToolError("The file " + PrintableStart(name) + " is not available now.");
        files.SetCurrentEntry(entry);
        return FileAdapter(session.Nodes(), name);
    }
    std::vector<std::string> names;
    for (const EnumerationEntryNode& known : files.Entries())
        names.push_back(known.SymbolicValue());
    throw ToolError("The camera has no file \"" + PrintableStart(name) + "\".", ThereAre(names), exitNoSuchFeature);
}

// Tells of each block: the offset is written in front of it, and its callback runs within.
class BlockWatch
{
public:
    BlockWatch(const NodeMap& nodes, TransferProgress& progress)
    {
        const Node offset = nodes.TryNode("FileAccessOffset");
        if (!offset || offset.Type() != KORO_NODE_TYPE_INTEGER) return;
        news = offset.OnChanged([&progress](const Node& node) {
            NoteProgress();
            const auto reached = IfKnown([&] { return node.ToInteger().Value(); });
            if (reached && *reached > 0) progress.Reached(static_cast<uint64_t>(*reached));
        });
    }

private:
    Registration news;
};

// The answer of the camera to the step that failed. The file is closed behind it, which has an answer too, so each is
// read as it comes.
class AnswerWatch
{
public:
    explicit AnswerWatch(const NodeMap& nodes)
    {
        const Node status = nodes.TryNode("FileOperationStatus");
        if (!status || !HasValue(status.Type())) return;
        // Runs on this thread, inside the operation.
        news = status.OnChanged([this](const Node& node) {
            const auto read = IfKnown([&] { return ReadValue(node, CachePolicy::IgnoreCache); });
            if (read && *read != "Success") answer = *read;
        });
    }
    AnswerWatch(const AnswerWatch&) = delete;
    AnswerWatch& operator=(const AnswerWatch&) = delete;

    // Runs the operation. The library says that it failed, but not what the camera answered.
    template <typename Operation>
    void Run(const std::string& file, const char* done, const Operation& operation)
    {
        try
        {
            operation();
        }
        catch (const Error& error)
        {
            if (answer.empty()) throw;
            throw ToolError(
                "The file " + PrintableStart(file) + " was not " + done + ": FileOperationStatus is " +
                PrintableStart(answer) + ". " + error.what());
        }
    }

private:
    std::string answer;
    Registration news; // last: it writes the answer
};

std::string SizeText(const std::optional<uint64_t>& size)
{
    return size ? std::to_string(*size) : "-";
}

// The available entries of what the selected file offers; empty when the camera does not tell.
std::vector<std::string> Offered(const NodeMap& nodes, const char* choice)
{
    const Node node = nodes.TryNode(choice);
    if (!node || node.Type() != KORO_NODE_TYPE_ENUMERATION) return {};
    std::vector<std::string> names;
    for (const EnumerationEntryNode& entry : node.ToEnumeration().Entries())
    {
        if (entry.Node().IsAvailable()) names.push_back(entry.SymbolicValue());
    }
    return names;
}

std::string Joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + PrintableStart(name);
    return text.empty() ? "-" : text;
}

bool IsAmong(const std::vector<std::string>& names, const char* name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The library tells neither what refuses to be opened nor what refuses to be deleted.
void RequireMode(const FeatureSession& session, const FilesCommand& command, const char* mode, const char* done)
{
    // What a file can be opened for may depend on the operation.
    IfKnown([&] { return session.Nodes().Enumeration("FileOperationSelector").SetCurrentEntry("Open"), true; });
    const auto modes = Offered(session.Nodes(), "FileOpenMode");
    if (modes.empty() || IsAmong(modes, mode)) return;
    throw ToolError(
        "The file " + PrintableStart(command.name) + " cannot be " + done + ".",
        "It can be opened for " + Joined(modes) + ".");
}

// Of the last operation; empty for success, and for a camera that does not tell.
std::string FailureOf(const FeatureSession& session)
{
    const auto status =
        IfKnown([&] { return ReadValue(session.Nodes().Node("FileOperationStatus"), CachePolicy::IgnoreCache); });
    return status && *status != "Success" ? *status : std::string();
}

int List(const FilesCommand& command)
{
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const EnumerationNode files = FilesOf(session);
    const auto before = IfKnown([&] { return files.CurrentEntry().SymbolicValue(); });
    PrintOut("%-24s %12s %12s  %s\n", "file", "bytes", "at most", "open for");
    for (const EnumerationEntryNode& entry : files.Entries())
    {
        const std::string name = entry.SymbolicValue();
        const FileAdapter file(session.Nodes(), name);
        const auto size = IfKnown([&] { return file.Size(); });
        const auto maxSize = IfKnown([&] { return file.MaxSize(); });
        const std::string modes = size ? Joined(Offered(session.Nodes(), "FileOpenMode")) : "not available";
        PrintOut(
            "%-24s %12s %12s  %s\n", PrintableStart(name).c_str(), SizeText(size).c_str(), SizeText(maxSize).c_str(),
            modes.c_str());
    }
    if (before) IfKnown([&] { return files.SetCurrentEntry(*before), true; });
    return exitSuccess;
}

int Read(const FilesCommand& command)
{
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const FileAdapter file = Open(session, command.name);
    const uint64_t size = file.Size();
    RequireMode(session, command, "Read", "read");
    TransferProgress progress(Errors(), isatty(fileno(Errors())) != 0, size);
    const BlockWatch blocks(session.Nodes(), progress);
    std::vector<uint8_t> bytes;
    AnswerWatch(session.Nodes()).Run(command.name, "read", [&] { bytes = file.Read(size); });
    if (command.path != standardStream)
        WriteRaw(bytes.data(), bytes.size(), command.path);
    else
        std::fwrite(bytes.data(), 1, bytes.size(), Output());
    if (WriteOut()) progress.Finish();
    return exitSuccess;
}

int Write(const FilesCommand& command)
{
    const std::string bytes = ReadLocalFile(command.path);
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const FileAdapter file = Open(session, command.name);
    RequireMode(session, command, "Write", "written");
    TransferProgress progress(Errors(), isatty(fileno(Errors())) != 0, bytes.size());
    const BlockWatch blocks(session.Nodes(), progress);
    // Writing need not shorten a file.
    if (IfKnown([&] { return file.Size(); }).value_or(0) > bytes.size()) IfKnown([&] { return file.Delete(), true; });
    AnswerWatch(session.Nodes()).Run(command.name, "written", [&] { file.Write(bytes.data(), bytes.size()); });
    // The last operation was the closing, whose answer the library does not tell.
    const std::string failure = FailureOf(session);
    if (!failure.empty())
        throw ToolError(
            "The camera did not keep " + PrintableStart(command.name) + ": FileOperationStatus is " +
            PrintableStart(failure) + ".");
    progress.Finish();
    // What cannot be read need not tell how long it has become.
    const auto size = IfKnown([&] { return file.Size(); });
    if (size && *size != bytes.size() && IsAmong(Offered(session.Nodes(), "FileOpenMode"), "Read"))
        throw ToolError(PrintableStart(command.name) + " has " + std::to_string(*size) + " bytes after the writing.");
    return exitSuccess;
}

int Delete(const FilesCommand& command)
{
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const FileAdapter file = Open(session, command.name);
    const std::string name = PrintableStart(command.name);
    const auto operations = Offered(session.Nodes(), "FileOperationSelector");
    if (!operations.empty() && !IsAmong(operations, "Delete"))
        throw ToolError("The file " + name + " cannot be deleted.");
    detail::Check(KORO_FileAdapter_Delete(file.Get())); // whose answer is put into words here
    // The library does not tell the camera's answer; what is deleted has no bytes left.
    const std::string failure = FailureOf(session);
    const auto left = IfKnown([&] { return file.Size(); });
    if (!failure.empty())
        throw ToolError(name + " was not deleted: FileOperationStatus is " + PrintableStart(failure) + ".");
    if (left.value_or(0) > 0)
        throw ToolError(name + " was not deleted: it still has " + std::to_string(*left) + " bytes.");
    PrintOut("%s deleted\n", name.c_str());
    return exitSuccess;
}

using Run = int (*)(const FilesCommand&);

} // namespace

Action DefineFiles(CLI::App& command)
{
    const auto options = std::make_shared<FilesCommand>();
    const auto chosen = std::make_shared<Run>(nullptr);
    command.require_subcommand(1);
    const auto define = [&](const char* name, const char* help, Run run) {
        CLI::App* const part = command.add_subcommand(name, help);
        DefineTarget(*part, options->target, true);
        part->callback([run, chosen] { *chosen = run; });
        return part;
    };
    define("list", "Show the files with their sizes", List);
    CLI::App* const read = define("read", "Copy a file of the camera", Read);
    CLI::App* const write = define("write", "Write a file of the camera", Write);
    CLI::App* const remove = define("delete", "Delete a file of the camera", Delete);
    for (CLI::App* const part : {read, write, remove})
        part->add_option("name", options->name, "An entry of FileSelector")->required();
    TakesPath(read->add_option("path", options->path, "The file to write; - is standard output")->required());
    TakesPath(write->add_option("path", options->path, "The file to read")->required());
    return [options, chosen] { return (*chosen)(*options); };
}

} // namespace koro::tool

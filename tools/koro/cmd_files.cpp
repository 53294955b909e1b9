#include "tools/koro/commands.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/if_known.h"
#include "tools/koro/image_writer.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"
#include "tools/koro/transfer_progress.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace koro::tool
{

namespace
{

constexpr uint64_t maxFileSize = uint64_t{256} << 20;
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

FileAdapter Open(const FeatureSession& session, const std::string& name)
{
    const EnumerationNode files = FilesOf(session);
    if (files.HasEntry(name)) return FileAdapter(session.Nodes(), name);
    std::string names;
    for (const EnumerationEntryNode& entry : files.Entries())
        names += (names.empty() ? "" : ", ") + Printable(entry.SymbolicValue());
    throw ToolError(
        "The camera has no file \"" + Printable(name) + "\".", "There are " + names + ".", exitNoSuchFeature);
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
            const auto reached = IfKnown([&] { return node.ToInteger().Value(); });
            if (reached && *reached > 0) progress.Reached(static_cast<uint64_t>(*reached));
        });
    }

private:
    Registration news;
};

std::string SizeText(const std::optional<uint64_t>& size)
{
    return size ? std::to_string(*size) : "-";
}

// What the selected file can be opened for, as far as the camera tells.
std::string ModesOf(const NodeMap& nodes)
{
    const Node node = nodes.TryNode("FileOpenMode");
    if (!node || node.Type() != KORO_NODE_TYPE_ENUMERATION) return "-";
    std::string modes;
    for (const EnumerationEntryNode& entry : node.ToEnumeration().Entries())
    {
        if (entry.Node().IsAvailable()) modes += (modes.empty() ? "" : ", ") + Printable(entry.SymbolicValue());
    }
    return modes.empty() ? "-" : modes;
}

int List(const FilesCommand& command)
{
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const EnumerationNode files = FilesOf(session);
    const auto before = IfKnown([&] { return files.CurrentEntry().SymbolicValue(); });
    std::printf("%-24s %12s %12s  %s\n", "file", "bytes", "at most", "open for");
    for (const EnumerationEntryNode& entry : files.Entries())
    {
        const std::string name = entry.SymbolicValue();
        const FileAdapter file(session.Nodes(), name);
        const auto size = IfKnown([&] { return file.Size(); });
        const auto maxSize = IfKnown([&] { return file.MaxSize(); });
        const std::string modes = size ? ModesOf(session.Nodes()) : "not available";
        std::printf(
            "%-24s %12s %12s  %s\n", Printable(name).c_str(), SizeText(size).c_str(), SizeText(maxSize).c_str(),
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
    TransferProgress progress(stderr, isatty(STDERR_FILENO) != 0, size);
    const BlockWatch blocks(session.Nodes(), progress);
    const std::vector<uint8_t> bytes = file.Read(size);
    if (command.path != standardStream)
        WriteRaw(bytes.data(), bytes.size(), command.path);
    else if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || std::fflush(stdout) != 0)
        throw ToolError("Cannot write: " + std::generic_category().message(errno) + ".");
    progress.Finish();
    return exitSuccess;
}

std::vector<uint8_t> ReadLocal(const std::string& path)
{
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(path, failure);
    if (failure) throw ToolError("Cannot read " + path + ": " + failure.message() + ".");
    if (size > maxFileSize) throw ToolError(path + " has " + std::to_string(size) + " bytes, which is too much.");
    std::ifstream file(path, std::ios::binary);
    std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad() || bytes.size() != size) throw ToolError("Cannot read " + path + ".");
    return bytes;
}

int Write(const FilesCommand& command)
{
    const std::vector<uint8_t> bytes = ReadLocal(command.path);
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const FileAdapter file = Open(session, command.name);
    TransferProgress progress(stderr, isatty(STDERR_FILENO) != 0, bytes.size());
    const BlockWatch blocks(session.Nodes(), progress);
    // Writing need not shorten a file.
    if (IfKnown([&] { return file.Size(); }).value_or(0) > bytes.size()) IfKnown([&] { return file.Delete(), true; });
    file.Write(bytes);
    progress.Finish();
    const auto size = IfKnown([&] { return file.Size(); });
    if (size && *size != bytes.size())
        throw ToolError(Printable(command.name) + " has " + std::to_string(*size) + " bytes after the writing.");
    return exitSuccess;
}

int Delete(const FilesCommand& command)
{
    const FeatureSession session(command.target, FeatureSession::Access::Write);
    const FileAdapter file = Open(session, command.name);
    file.Delete();
    // The library does not tell the camera's answer; what is deleted has no bytes left.
    const auto left = IfKnown([&] { return file.Size(); });
    const auto status = IfKnown([&] { return ReadValue(session.Nodes().Node("FileOperationStatus")); });
    if ((left && *left > 0) || (status && *status != "Success"))
        throw ToolError(
            Printable(command.name) + " was not deleted" +
            (status ? ": FileOperationStatus is " + Printable(*status) : std::string()) + ".");
    std::printf("%s deleted\n", Printable(command.name).c_str());
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
        DefineTarget(*part, options->target, false);
        part->callback([run, chosen] { *chosen = run; });
        return part;
    };
    define("list", "Show the files with their sizes", List);
    CLI::App* const read = define("read", "Copy a file of the camera", Read);
    CLI::App* const write = define("write", "Write a file of the camera", Write);
    CLI::App* const remove = define("delete", "Delete a file of the camera", Delete);
    for (CLI::App* const part : {read, write, remove})
        part->add_option("name", options->name, "An entry of FileSelector")->required();
    read->add_option("path", options->path, "The file to write; - is standard output")->required();
    write->add_option("path", options->path, "The file to read")->required();
    return [options, chosen] { return (*chosen)(*options); };
}

} // namespace koro::tool

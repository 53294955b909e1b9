#include "tools/koro/commands.h"
#include "tools/koro/pending_file.h"
#include "tools/koro/reference/bash_completion.h"
#include "tools/koro/reference/command_tree.h"
#include "tools/koro/reference/man_page.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace koro::tool
{

namespace
{

void Save(const std::filesystem::path& path, const std::string& text)
{
    std::filesystem::create_directories(path.parent_path());
    PendingFile file(path);
    std::fwrite(text.data(), 1, text.size(), file.Stream());
    file.Commit(); // reports what could not be written
}

int WriteReference(const CLI::App& tool, const std::filesystem::path& folder)
{
    Save(folder / "man1" / (ManPageName(tool) + ".1"), ManPage(tool));
    for (const CLI::App* command : VisibleCommands(tool))
        Save(folder / "man1" / (ManPageName(*command) + ".1"), ManPage(*command));
    Save(folder / "completions" / tool.get_name(), BashCompletion(tool));
    return exitSuccess;
}

} // namespace

Action DefineReference(CLI::App& command)
{
    const auto folder = std::make_shared<std::string>();
    command.add_option("folder", *folder)->required();
    command.group(""); // hidden: the build runs it
    return [folder, tool = command.get_parent()] { return WriteReference(*tool, *folder); };
}

} // namespace koro::tool

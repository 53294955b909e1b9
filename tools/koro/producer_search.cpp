#include "tools/koro/producer_search.h"

#include "tools/koro/tool_error.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <system_error>
#include <unistd.h>

namespace koro::tool
{

namespace fs = std::filesystem;

namespace
{

std::vector<std::string> Split(const std::string& value)
{
    std::vector<std::string> pieces;
    size_t begin = 0;
    while (begin <= value.size())
    {
        const size_t end = std::min(value.find_first_of(":;", begin), value.size());
        if (end > begin) pieces.push_back(value.substr(begin, end - begin));
        begin = end + 1;
    }
    return pieces;
}

bool NamesADirectory(const char* variable)
{
    return variable && !Split(variable).empty();
}

std::string Canonical(const fs::path& path)
{
    std::error_code failure;
    const fs::path canonical = fs::canonical(path, failure);
    return failure ? path.string() : canonical.string();
}

SearchedDirectory SearchDirectory(const std::string& path, std::vector<std::string>& candidates)
{
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (status.type() == fs::file_type::not_found) return {path, "does not exist"};
    if (failure) return {path, failure.message()};
    if (status.type() != fs::file_type::directory) return {path, "is not a directory"};

    fs::directory_iterator entry(path, failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure))
    {
        if (entry->path().extension() == ".cti") candidates.push_back(Canonical(entry->path()));
    }
    return {path, failure ? failure.message() : std::string()};
}

void SortUnique(std::vector<std::string>& texts)
{
    std::sort(texts.begin(), texts.end());
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
}

std::vector<std::string> FindDuplicates(const std::vector<std::string>& candidates)
{
    std::map<std::string, std::vector<std::string>> directoriesByName;
    for (const std::string& candidate : candidates)
    {
        const fs::path path(candidate);
        directoriesByName[path.filename().string()].push_back(path.parent_path().string());
    }

    std::vector<std::string> duplicates;
    for (const auto& [name, directories] : directoriesByName)
    {
        if (directories.size() < 2) continue;
        std::string line = name + " lies in";
        for (size_t i = 0; i < directories.size(); ++i)
            line += (i == 0 ? " " : " and ") + directories[i];
        duplicates.push_back(line);
    }
    return duplicates;
}

constexpr const char* simulatorName = "zvr_koro_simulator.cti";

fs::path OwnFolder()
{
    std::error_code failure;
    const fs::path tool = fs::read_symlink("/proc/self/exe", failure);
    return fs::path(Canonical(tool.parent_path() / KORO_PRODUCERS_FROM_TOOL));
}

ProducerSearch SearchBesideTool()
{
    ProducerSearch search;
    SearchDirectory(OwnFolder().string(), search.candidates);
    SortUnique(search.candidates);
    if (!search.candidates.empty()) search.ownFolder = OwnFolder().string();
    return search;
}

void AddSimulator(ProducerSearch& search)
{
    const fs::path simulator = OwnFolder() / simulatorName;
    std::error_code failure;
    if (!fs::exists(simulator, failure))
        throw ToolError("No simulated cameras came with this tool.", "--producer takes a simulator from elsewhere.");
    search.candidates.push_back(Canonical(simulator));
    SortUnique(search.candidates);
}

// Empty when the file can be read. A pipe is not waited for.
std::string WhyUnreadable(const std::string& path)
{
    std::error_code failure;
    if (fs::is_directory(path, failure)) return "is a directory";
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file >= 0)
    {
        close(file);
        return {};
    }
    return errno == ENOENT ? "does not exist" : "cannot be read: " + std::generic_category().message(errno);
}

} // namespace

ProducerSearch SearchProducers(const char* variable)
{
    ProducerSearch search;
    search.variableIsSet = NamesADirectory(variable);
    if (!search.variableIsSet) return search;

    for (const std::string& directory : Split(variable))
    {
        search.directories.push_back(SearchDirectory(directory, search.candidates));
    }
    SortUnique(search.candidates);
    search.duplicates = FindDuplicates(search.candidates);
    return search;
}

ProducerSearch SearchProducers(const ProducerChoice& choice)
{
    const char* const variable = std::getenv(producerPathVariable);
    if (!choice.file.empty())
    {
        ProducerSearch search;
        search.variableIsSet = NamesADirectory(variable);
        search.candidates.push_back(Canonical(choice.file));
        return search;
    }
    const bool isSet = NamesADirectory(variable);
    ProducerSearch search = isSet ? SearchProducers(variable) : SearchBesideTool();
    search.variableIsEmpty = variable && !isSet;
    if (choice.withSimulator)
        AddSimulator(search);
    else if (!isSet)
        search.standIn = Canonical(OwnFolder() / simulatorName);
    return search;
}

void RequireProducerFile(const std::string& path)
{
    const std::string reason = WhyUnreadable(path);
    if (reason.empty()) return;
    throw ToolError(
        "The producer " + path + " " + reason + ".",
        "Name the .cti file of a producer; `koro doctor` without --producer shows those that are found.");
}

} // namespace koro::tool

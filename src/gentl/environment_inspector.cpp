#include "gentl/environment_inspector.h"

#include "base/exceptions.h"
#include "base/failures.h"
#include "base/filesystem.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>

namespace koro::internal
{

namespace
{

constexpr std::size_t folderPathLimit = 258;
constexpr std::string_view producerExtension = ".cti";

bool Contains(const std::vector<std::string>& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// Sorted by the bytes of the path, without duplicates.
std::vector<std::string> FindCandidates(std::string_view variable)
{
    std::vector<std::string> candidates;
    for (const auto& folder : SplitProducerFolders(variable))
    {
        auto files = ListProducerFiles(folder);
        std::move(files.begin(), files.end(), std::back_inserter(candidates));
    }
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    return candidates;
}

// A dangling link is not detected here: computing its canonical path fails, and that error is reported.
bool IsNoPlainFile(const fs::path& path)
{
    std::error_code failure;
    const auto status = fs::status(path, failure);
    return fs::exists(status) && !fs::is_regular_file(status);
}

// One producer that does not load must not hide the others.
bool PassesTest(const EnvironmentInspector::UsabilityTest& isUsable, const std::string& path)
{
    bool passes = false;
    return Succeeds([&] { passes = isUsable(path); }) && passes;
}

} // namespace

EnvironmentInspector& EnvironmentInspector::Shared()
{
    // Never destroyed: exit handlers that were registered before the library was loaded run after its destructors.
    static auto* const shared = new EnvironmentInspector;
    return *shared;
}

void EnvironmentInspector::UpdateCTIPaths(const UsabilityTest& isUsable)
{
    const std::lock_guard lock(mutex);
    const char* const variable = std::getenv("GENICAM_GENTL64_PATH");
    if (!variable)
    {
        throw NotFoundException(
            "GENICAM_GENTL64_PATH environment variable not found! Please set this to the path of the CTIs.");
    }

    std::vector<std::string> present;
    for (const auto& candidate : FindCandidates(variable))
    {
        auto path = StoredPathForm(candidate);
        if (!Contains(ctiPaths, path) && PassesTest(isUsable, path)) ctiPaths.push_back(path);
        present.push_back(std::move(path));
    }
    std::erase_if(ctiPaths, [&](const std::string& path) { return !Contains(present, path); });
}

std::vector<std::string> EnvironmentInspector::CTIPaths() const
{
    const std::lock_guard lock(mutex);
    return ctiPaths;
}

std::vector<std::string> SplitProducerFolders(std::string_view variable)
{
    std::vector<std::string> folders;
    while (!variable.empty())
    {
        const auto end = std::min(variable.find_first_of(":;"), variable.size());
        if (end > 0) folders.emplace_back(variable.substr(0, end));
        variable.remove_prefix(std::min(end + 1, variable.size()));
    }
    return folders;
}

std::string StoredPathForm(std::string_view path)
{
    const bool keepsBoth = path.size() > 2 && path.substr(0, 2) == "//" && path[2] != '/';
    std::string stored = keepsBoth ? "/" : "";
    for (const char character : path)
    {
        const bool repeated = character == '/' && !stored.empty() && stored.back() == '/';
        const bool secondOfTwo = keepsBoth && stored == "/";
        if (!repeated || secondOfTwo) stored += character;
    }
    return stored;
}

std::vector<std::string> ListProducerFiles(const std::string& folder)
{
    std::vector<std::string> files;
    if (folder.size() >= folderPathLimit) return files;

    std::error_code failure;
    for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end; entry.increment(failure))
    {
        const std::string name = entry->path().filename().string();
        const bool hasExtension =
            name.size() >= producerExtension.size() &&
            std::string_view(name).substr(name.size() - producerExtension.size()) == producerExtension;
        if (!hasExtension || IsNoPlainFile(entry->path())) continue;
        files.push_back(fs::canonical(entry->path()).string());
    }
    return files;
}

} // namespace koro::internal

#include "tools/koro/producer_search.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <system_error>

namespace koro::tool
{

namespace fs = std::filesystem;

const char* const producerPathVariable = "GENICAM_GENTL64_PATH";

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

} // namespace

ProducerSearch SearchProducers(const char* variable)
{
    ProducerSearch search;
    if (!variable) return search;

    search.variableIsSet = true;
    for (const std::string& directory : Split(variable))
    {
        search.directories.push_back(SearchDirectory(directory, search.candidates));
    }
    SortUnique(search.candidates);
    search.duplicates = FindDuplicates(search.candidates);
    return search;
}

ProducerSearch SearchProducers(const std::string& singleProducer)
{
    if (singleProducer.empty()) return SearchProducers(std::getenv(producerPathVariable));

    ProducerSearch search;
    search.variableIsSet = std::getenv(producerPathVariable) != nullptr;
    search.candidates.push_back(Canonical(singleProducer));
    return search;
}

} // namespace koro::tool

#include "tools/koro/unsearched_places.h"

#include "tools/koro/producer_search.h"
#include "tools/koro/report.h"
#include "tools/koro/shell_word.h"

#include <filesystem>
#include <set>

namespace koro::tool
{

namespace
{

// "a, b and c"
std::string Enumerated(const std::vector<std::string>& texts)
{
    std::string all;
    for (size_t i = 0; i < texts.size(); ++i)
        all += (i == 0 ? "" : i + 1 < texts.size() ? ", " : " and ") + texts[i];
    return all;
}

// The variable has no way to name a folder with a separator in it, and the line none for what a terminal may not get.
bool CanBeNamed(const std::string& folder)
{
    return folder.find_first_of(":;") == folder.npos && Printable(folder) == folder;
}

} // namespace

std::string DescribeUnsearchedPlaces(
    const std::vector<std::string>& roots, const PlaceBounds& bounds, const std::vector<std::string>& candidates,
    const char* searched)
{
    std::set<std::string> known;
    for (const std::string& candidate : candidates)
        known.insert(std::filesystem::path(candidate).parent_path().string());
    const ProducerPlaces places = FindProducerPlaces(roots, bounds);
    std::string text;
    std::string value = searched ? searched : "";
    for (const std::string& folder : places.folders)
    {
        if (known.count(folder) > 0 || !CanBeNamed(folder)) continue;
        text += folder + " holds .cti files and is not searched\n";
        value += (value.empty() ? "" : ":") + folder;
    }
    const bool hasFolders = !text.empty();
    if (!places.isWhole) text += Enumerated(roots) + " are too large to be searched as a whole\n";
    if (hasFolders)
        text +=
            std::string("to search them: export ") + producerPathVariable + "=" + Printable(ShellWord(value)) + "\n";
    return text;
}

} // namespace koro::tool

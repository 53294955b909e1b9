#include "tools/koro/producer_places.h"

#include <filesystem>
#include <set>
#include <system_error>

namespace koro::tool
{

namespace fs = std::filesystem;

const std::vector<std::string> usualPlaces = {"/opt", "/usr/lib", "/usr/local/lib"};

ProducerPlaces FindProducerPlaces(const std::vector<std::string>& roots, const PlaceBounds& bounds)
{
    ProducerPlaces places;
    std::set<std::string> folders;
    const auto end = std::chrono::steady_clock::now() + bounds.time;
    size_t numEntries = 0;
    for (const std::string& root : roots)
    {
        std::error_code failure;
        fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied, failure);
        for (; !failure && entry != fs::recursive_directory_iterator(); entry.increment(failure))
        {
            if (++numEntries > bounds.numEntries || std::chrono::steady_clock::now() >= end)
            {
                places.isWhole = false;
                break;
            }
            if (entry->path().extension() == ".cti") folders.insert(entry->path().parent_path().string());
            if (entry.depth() >= bounds.depth) entry.disable_recursion_pending();
        }
    }
    places.folders.assign(folders.begin(), folders.end());
    return places;
}

} // namespace koro::tool

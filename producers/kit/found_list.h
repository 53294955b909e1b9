// FoundList: what the last update of a list of children found, under the ids that it had then. Any thread.
#pragma once

#include "producers/kit/failure.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace koro::kit
{

// Entry has an Id(), which may change from one update to the next.
template <typename Entry>
class FoundList
{
public:
    using Entries = std::vector<std::shared_ptr<Entry>>;

    // `plural` is what the entries are called in failures.
    explicit FoundList(const char* entriesName) : plural(entriesName) {}

    // Whether the ids differ from those of the update before.
    bool Replace(Entries found)
    {
        std::vector<std::string> foundIds;
        for (const auto& entry : found)
            foundIds.push_back(entry->Id());
        const std::lock_guard lock(mutex);
        const bool changed = foundIds != ids;
        entries = std::move(found);
        ids = std::move(foundIds);
        return changed;
    }

    std::size_t Size() const
    {
        const std::lock_guard lock(mutex);
        return entries.size();
    }

    // Null behind the end.
    std::shared_ptr<Entry> Find(std::size_t index) const
    {
        const std::lock_guard lock(mutex);
        return index < entries.size() ? entries[index] : nullptr;
    }

    // Throws GC_ERR_INVALID_INDEX behind the end.
    std::shared_ptr<Entry> At(std::size_t index) const
    {
        const std::lock_guard lock(mutex);
        if (index < entries.size()) return entries[index];
        throw Failure(GC_ERR_INVALID_INDEX, "the list has " + std::to_string(entries.size()) + " " + plural);
    }

    bool Has(const Entry& entry) const
    {
        const std::lock_guard lock(mutex);
        return std::any_of(entries.begin(), entries.end(), [&](const auto& other) { return other.get() == &entry; });
    }

private:
    const std::string plural;
    mutable std::mutex mutex;
    Entries entries;
    std::vector<std::string> ids;
};

} // namespace koro::kit

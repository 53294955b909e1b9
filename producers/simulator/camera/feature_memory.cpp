#include "producers/simulator/camera/feature_memory.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <cstring>

namespace koro::simulator
{
namespace
{

constexpr std::size_t maxPages = 16384; // 64 MiB

void CheckEnd(std::uint64_t address, std::size_t bytes)
{
    if (bytes > UINT64_MAX - address) throw Failure(GC_ERR_INVALID_ADDRESS, "the access runs over the last address");
}

} // namespace

bool FeatureMemory::MeetsDescription(std::uint64_t address, std::size_t bytes) const noexcept
{
    return bytes > 0 && address < descriptionAddress + description.size() && address + bytes > descriptionAddress;
}

void FeatureMemory::Read(std::uint64_t address, std::span<std::byte> out) const
{
    CheckEnd(address, out.size());
    const std::lock_guard lock(mutex);
    for (std::size_t at = 0; at < out.size();)
    {
        const std::uint64_t place = address + at;
        const std::size_t piece = std::min(out.size() - at, pageBytes - place % pageBytes);
        const auto page = pages.find(place / pageBytes);
        if (page == pages.end())
            std::memset(out.data() + at, 0, piece);
        else
            std::memcpy(out.data() + at, page->second.data() + place % pageBytes, piece);
        at += piece;
    }
    if (!MeetsDescription(address, out.size())) return;
    const std::uint64_t first = std::max(address, descriptionAddress);
    const std::uint64_t end = std::min(address + out.size(), descriptionAddress + description.size());
    std::memcpy(out.data() + (first - address), description.data() + (first - descriptionAddress), end - first);
}

// All pages of a write exist before any byte changes.
void FeatureMemory::ReserveLocked(std::uint64_t address, std::size_t bytes)
{
    const std::uint64_t first = address / pageBytes;
    const std::uint64_t last = (address + bytes - 1) / pageBytes;
    if (last - first >= maxPages) throw Failure(GC_ERR_RESOURCE_EXHAUSTED, "the write is too long");
    std::size_t missing = 0;
    for (std::uint64_t page = first; page <= last; ++page)
        missing += pages.count(page) == 0 ? 1U : 0U;
    if (missing > maxPages - pages.size()) throw Failure(GC_ERR_RESOURCE_EXHAUSTED, "the memory is full");
    for (std::uint64_t page = first; page <= last; ++page)
        pages.try_emplace(page);
}

void FeatureMemory::Write(std::uint64_t address, std::span<const std::byte> in)
{
    CheckEnd(address, in.size());
    if (in.empty()) return;
    if (MeetsDescription(address, in.size())) throw Failure(GC_ERR_ACCESS_DENIED, "the description is read-only");
    const std::lock_guard lock(mutex);
    if (address == resetAddress) return pages.clear();
    ReserveLocked(address, in.size());
    for (std::size_t at = 0; at < in.size();)
    {
        const std::uint64_t place = address + at;
        const std::size_t piece = std::min(in.size() - at, pageBytes - place % pageBytes);
        std::memcpy(pages.at(place / pageBytes).data() + place % pageBytes, in.data() + at, piece);
        at += piece;
    }
}

} // namespace koro::simulator

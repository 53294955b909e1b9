#include "producers/simulator/register_map.h"

#include "producers/simulator/failure.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace koro::simulator
{

void RegisterMap::Add(std::uint64_t address, Region region)
{
    const auto next = regions.lower_bound(address);
    const bool meetsNext = next != regions.end() && next->first - address < region.bytes.size();
    const bool meetsPrevious =
        next != regions.begin() && address - std::prev(next)->first < std::prev(next)->second.bytes.size();
    if (meetsNext || meetsPrevious) throw std::logic_error("two registers overlap");
    regions.emplace(address, std::move(region));
}

void RegisterMap::AddText(std::uint64_t address, std::size_t capacity, std::string_view text, RegisterAccess access)
{
    Region region{std::vector<std::byte>(capacity), access, {}};
    std::memcpy(region.bytes.data(), text.data(), std::min(text.size(), capacity));
    Add(address, std::move(region));
}

void RegisterMap::AddUnsigned(
    std::uint64_t address, std::size_t bytes, std::uint64_t value, RegisterAccess access, Validator validator)
{
    Region region{std::vector<std::byte>(bytes), access, std::move(validator)};
    for (std::byte& byte : region.bytes)
    {
        byte = static_cast<std::byte>(value & 0xFF);
        value >>= 8;
    }
    Add(address, std::move(region));
}

void RegisterMap::AddBytes(std::uint64_t address, std::string_view bytes)
{
    AddText(address, bytes.size(), bytes, RegisterAccess::ReadOnly);
}

std::vector<RegisterMap::Piece> RegisterMap::Locate(
    std::uint64_t address, std::size_t length, RegisterAccess forbidden) const
{
    std::vector<Piece> pieces;
    auto region = regions.upper_bound(address);
    if (region != regions.begin()) --region;
    for (; length > 0; ++region)
    {
        if (region == regions.end() || address < region->first ||
            address - region->first >= region->second.bytes.size())
            throw Failure(GC_ERR_INVALID_ADDRESS, "there is no register at address " + std::to_string(address));
        if (region->second.access == forbidden)
            throw Failure(
                GC_ERR_ACCESS_DENIED, "the register at address " + std::to_string(address) + " does not allow it");
        const std::size_t offset = address - region->first;
        const std::size_t piece = std::min(length, region->second.bytes.size() - offset);
        pieces.push_back({region->first, offset, piece});
        address += piece;
        length -= piece;
    }
    return pieces;
}

void RegisterMap::Read(std::uint64_t address, std::span<std::byte> out) const
{
    const auto pieces = Locate(address, out.size(), RegisterAccess::WriteOnly);
    const std::lock_guard lock(mutex);
    for (const Piece& piece : pieces)
    {
        std::memcpy(out.data(), regions.at(piece.start).bytes.data() + piece.offset, piece.length);
        out = out.subspan(piece.length);
    }
}

void RegisterMap::Write(std::uint64_t address, std::span<const std::byte> in)
{
    const auto pieces = Locate(address, in.size(), RegisterAccess::ReadOnly);
    const std::lock_guard lock(mutex);
    std::vector<std::vector<std::byte>> changed; // of each touched region, validated before any is replaced
    for (const Piece& piece : pieces)
    {
        const Region& region = regions.at(piece.start);
        std::vector<std::byte>& bytes = changed.emplace_back(region.bytes);
        std::memcpy(bytes.data() + piece.offset, in.data(), piece.length);
        in = in.subspan(piece.length);
        if (region.validator && !region.validator(bytes))
            throw Failure(
                GC_ERR_INVALID_VALUE, "the register at address " + std::to_string(address) + " refuses the value");
    }
    for (std::size_t index = 0; index < pieces.size(); ++index)
        regions.at(pieces[index].start).bytes = std::move(changed[index]);
}

} // namespace koro::simulator

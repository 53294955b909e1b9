#include "producers/kit/register_map.h"

#include "producers/kit/failure.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace koro::kit
{
namespace
{

constexpr std::size_t commandBytes = 4;

void Encode(std::uint64_t value, std::span<std::byte> bytes, ByteOrder order)
{
    for (std::size_t index = 0; index < bytes.size(); ++index, value >>= 8)
        bytes[order == ByteOrder::Little ? index : bytes.size() - 1 - index] = static_cast<std::byte>(value & 0xFF);
}

std::uint64_t Decode(std::span<const std::byte> bytes, ByteOrder order)
{
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < bytes.size(); ++index)
        value =
            value << 8 | static_cast<std::uint64_t>(bytes[order == ByteOrder::Big ? index : bytes.size() - 1 - index]);
    return value;
}

double DecodeFloat(std::uint64_t bits, std::size_t bytes)
{
    return bytes == sizeof(float) ? std::bit_cast<float>(static_cast<std::uint32_t>(bits))
                                  : std::bit_cast<double>(bits);
}

std::uint64_t EncodeFloat(double value, std::size_t bytes)
{
    return bytes == sizeof(float) ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                                  : std::bit_cast<std::uint64_t>(value);
}

void CopyText(const std::string& text, std::span<std::byte> out)
{
    std::fill(out.begin(), out.end(), std::byte{0});
    std::memcpy(out.data(), text.data(), std::min(text.size(), out.size()));
}

} // namespace

void RefuseValue(const std::string& why)
{
    throw Failure(GC_ERR_INVALID_VALUE, why);
}

void RegisterMap::Add(std::uint64_t address, Region region)
{
    const auto next = regions.lower_bound(address);
    const bool meetsNext = next != regions.end() && next->first - address < region.size;
    const bool meetsPrevious =
        next != regions.begin() && address - std::prev(next)->first < std::prev(next)->second.size;
    if (meetsNext || meetsPrevious) throw std::logic_error("two registers overlap at " + std::to_string(address));
    regions.emplace(address, std::move(region));
}

void RegisterMap::AddText(std::uint64_t address, std::size_t capacity, Getter<std::string> get, Setter<std::string> set)
{
    Region region;
    region.size = capacity;
    region.read = [get = std::move(get)](std::span<std::byte> out) { CopyText(get(), out); };
    if (set)
        region.write = [set = std::move(set)](std::span<const std::byte> in) {
            const auto end = std::find(in.begin(), in.end(), std::byte{0});
            set({reinterpret_cast<const char*>(in.data()), static_cast<std::size_t>(end - in.begin())});
        };
    Add(address, std::move(region));
}

void RegisterMap::AddText(std::uint64_t address, std::size_t capacity, std::string constant)
{
    AddText(address, capacity, [text = std::move(constant)] { return text; });
}

void RegisterMap::AddInteger(
    std::uint64_t address, std::size_t bytes, Getter<std::uint64_t> get, Setter<std::uint64_t> set)
{
    Region region;
    region.size = bytes;
    region.isWriteOnly = !get;
    if (get)
        region.read = [get = std::move(get), byteOrder = order](std::span<std::byte> out) {
            Encode(get(), out, byteOrder);
        };
    if (set)
        region.write = [set = std::move(set), byteOrder = order](std::span<const std::byte> in) {
            set(Decode(in, byteOrder));
        };
    Add(address, std::move(region));
}

void RegisterMap::AddInteger(std::uint64_t address, std::size_t bytes, std::uint64_t constant)
{
    AddInteger(address, bytes, [constant] { return constant; });
}

void RegisterMap::AddFloat(std::uint64_t address, std::size_t bytes, Getter<double> get, Setter<double> set)
{
    Setter<std::uint64_t> setBits;
    if (set) setBits = [set = std::move(set), bytes](std::uint64_t bits) { set(DecodeFloat(bits, bytes)); };
    AddInteger(
        address, bytes, [get = std::move(get), bytes] { return EncodeFloat(get(), bytes); }, std::move(setBits));
}

void RegisterMap::AddCommand(std::uint64_t address, Action command)
{
    AddInteger(address, commandBytes, {}, [command = std::move(command)](std::uint64_t value) {
        if (value != 1) RefuseValue("a command takes 1");
        command();
    });
}

void RegisterMap::AddAction(std::uint64_t address, Action action)
{
    AddCommand(address, [] {});
    regions.at(address).action = std::move(action);
}

void RegisterMap::AddBlock(std::uint64_t address, std::string_view constant)
{
    Region region;
    region.size = constant.size();
    region.constant = constant;
    Add(address, std::move(region));
}

void RegisterMap::AddBlock(
    std::uint64_t address, std::size_t bytes, Getter<std::vector<std::byte>> get,
    Setter<std::span<const std::byte>> set)
{
    Region region;
    region.size = bytes;
    region.read = [get = std::move(get)](std::span<std::byte> out) {
        const std::vector<std::byte> content = get();
        std::copy_n(content.begin(), std::min(content.size(), out.size()), out.begin());
    };
    region.write = std::move(set);
    Add(address, std::move(region));
}

void RegisterMap::AddMemory(
    std::uint64_t address, std::size_t bytes, std::function<void(std::size_t, std::span<std::byte>)> read,
    std::function<void(std::size_t, std::span<const std::byte>)> write)
{
    Region region;
    region.size = bytes;
    region.readAt = std::move(read);
    region.writeAt = std::move(write);
    Add(address, std::move(region));
}

std::vector<RegisterMap::Piece> RegisterMap::Locate(std::uint64_t address, std::size_t length, bool write) const
{
    std::vector<Piece> pieces;
    auto found = regions.upper_bound(address);
    if (found != regions.begin()) --found;
    for (; length > 0; ++found)
    {
        if (found == regions.end() || address < found->first || address - found->first >= found->second.size)
            throw Failure(GC_ERR_INVALID_ADDRESS, "there is no register at address " + std::to_string(address));
        const Region& region = found->second;
        if (write ? !region.write && !region.writeAt : region.isWriteOnly)
            throw Failure(
                GC_ERR_ACCESS_DENIED,
                "the register at address " + std::to_string(address) + (write ? " is read-only" : " is write-only"));
        const std::size_t offset = address - found->first;
        const std::size_t piece = std::min(length, region.size - offset);
        pieces.push_back({&region, offset, piece});
        address += piece;
        length -= piece;
    }
    return pieces;
}

void RegisterMap::ReadPiece(const Piece& piece, std::span<std::byte> out)
{
    const Region& region = *piece.region;
    if (region.readAt)
        region.readAt(piece.offset, out);
    else if (!region.read)
        std::memcpy(out.data(), region.constant.data() + piece.offset, piece.length);
    else if (piece.length == region.size)
        region.read(out);
    else
    {
        std::vector<std::byte> whole(region.size);
        region.read(whole);
        std::memcpy(out.data(), whole.data() + piece.offset, piece.length);
    }
}

// The transport's alignment is hidden: what an access leaves out of a register stays.
void RegisterMap::WritePiece(const Piece& piece, std::span<const std::byte> in)
{
    const Region& region = *piece.region;
    if (region.writeAt) return region.writeAt(piece.offset, in);
    if (piece.length == region.size) return region.write(in);
    std::vector<std::byte> whole(region.size);
    if (region.read) region.read(whole);
    std::memcpy(whole.data() + piece.offset, in.data(), piece.length);
    region.write(whole);
}

void RegisterMap::Read(std::uint64_t address, std::span<std::byte> out) const
{
    const auto pieces = Locate(address, out.size(), false);
    // A failure half way must leave nothing behind, and a read is rarely of more than one register.
    std::vector<std::byte> gathered(pieces.size() > 1 ? out.size() : 0);
    const std::span<std::byte> target = pieces.size() > 1 ? std::span<std::byte>(gathered) : out;
    {
        const std::lock_guard held(lock);
        std::size_t at = 0;
        for (const Piece& piece : pieces)
        {
            ReadPiece(piece, target.subspan(at, piece.length));
            at += piece.length;
        }
    }
    if (pieces.size() > 1) std::memcpy(out.data(), gathered.data(), gathered.size());
}

void RegisterMap::Write(std::uint64_t address, std::span<const std::byte> in)
{
    const auto pieces = Locate(address, in.size(), true);
    {
        const std::lock_guard held(lock);
        const Action undo = pieces.size() > 1 && snapshot ? snapshot() : Action();
        try
        {
            std::size_t at = 0;
            for (const Piece& piece : pieces)
            {
                WritePiece(piece, in.subspan(at, piece.length));
                at += piece.length;
            }
            lock.Save();
        }
        catch (...)
        {
            if (undo) undo();
            throw;
        }
    }
    for (const Piece& piece : pieces)
        if (piece.region->action) piece.region->action();
}

} // namespace koro::kit

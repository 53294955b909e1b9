// RegisterMap: the byte-addressed memory behind one port. Any thread.
//
// Regions do not overlap. An access may run over adjacent regions, but it happens as a whole or not at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace koro::simulator
{

enum class RegisterAccess
{
    ReadOnly,
    ReadWrite,
    WriteOnly
};

class RegisterMap
{
public:
    // Asked before a write is done, under the map's lock, with what the region shall hold; false: GC_ERR_INVALID_VALUE.
    using Validator = std::function<bool(std::span<const std::byte>)>;

    // A text of at most `capacity` bytes, padded with zeros.
    void AddText(std::uint64_t address, std::size_t capacity, std::string_view text, RegisterAccess access);
    // Little-endian.
    void AddUnsigned(
        std::uint64_t address, std::size_t bytes, std::uint64_t value, RegisterAccess access, Validator validator = {});
    void AddBytes(std::uint64_t address, std::string_view bytes);

    // GC_ERR_INVALID_ADDRESS outside the regions, GC_ERR_ACCESS_DENIED where the access does not allow it.
    void Read(std::uint64_t address, std::span<std::byte> out) const;
    void Write(std::uint64_t address, std::span<const std::byte> in);

private:
    struct Region
    {
        std::vector<std::byte> bytes;
        RegisterAccess access;
        Validator validator;
    };
    // A piece of one region that an access touches.
    struct Piece
    {
        std::uint64_t start; // of its region
        std::size_t offset;
        std::size_t length;
    };

    void Add(std::uint64_t address, Region region);
    std::vector<Piece> Locate(std::uint64_t address, std::size_t length, RegisterAccess forbidden) const;

    std::map<std::uint64_t, Region> regions; // the map itself is constant once the module is open
    mutable std::mutex mutex;                // guards the bytes
};

} // namespace koro::simulator

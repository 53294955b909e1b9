// RegisterMap: the registers of a module or a camera. Any thread.
//
// Most registers are live: a read asks a function, a write calls one. Functions run with the map's lock held; only
// actions run behind it. What a register has no function for it does not allow (GC_ERR_ACCESS_DENIED); an address that
// belongs to none is GC_ERR_INVALID_ADDRESS. A setter refuses a value by GC_ERR_INVALID_VALUE, or says why not now.
//
// Registers do not overlap. An access may run over adjacent ones.
#pragma once

#include "producers/kit/register_lock.h"
#include "producers/kit/register_space.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace koro::kit
{

// Refuses a register's new value.
[[noreturn]] void RefuseValue(const std::string& why);

// Where a register lies, and how long it is.
struct RegisterPlace
{
    std::uint64_t address;
    std::size_t bytes;
    std::uint64_t distance; // from one element to the next, when the register is the first one of an array

    // The place of element `index` of the array.
    constexpr RegisterPlace At(std::uint64_t index) const { return {address + index * distance, bytes, distance}; }
};

class RegisterMap final : public RegisterSpace
{
public:
    template <typename T>
    using Getter = std::function<T()>;
    template <typename T>
    using Setter = std::function<void(T)>;
    using Action = std::function<void()>;

    explicit RegisterMap(ByteOrder byteOrder = ByteOrder::Little) : order(byteOrder) {}

    // Registers are added before anyone else sees the map.

    // Padded with zeros, cut at the first zero when written.
    void AddText(std::uint64_t address, std::size_t capacity, Getter<std::string> get, Setter<std::string> set = {});
    void AddText(std::uint64_t address, std::size_t capacity, std::string constant);
    // Zero-extended: a signed register's setter casts.
    void AddInteger(
        std::uint64_t address, std::size_t bytes, Getter<std::uint64_t> get, Setter<std::uint64_t> set = {});
    void AddInteger(std::uint64_t address, std::size_t bytes, std::uint64_t constant);
    // IEEE 754 of four or eight bytes.
    void AddFloat(std::uint64_t address, std::size_t bytes, Getter<double> get, Setter<double> set = {});
    // Four bytes; takes 1. The command runs with the lock held.
    void AddCommand(std::uint64_t address, Action command);
    // The same, but runs behind the lock.
    void AddAction(std::uint64_t address, Action action);
    // Plain memory of another owner; `set` gets the whole new content.
    void AddBlock(std::uint64_t address, std::string_view constant);
    void AddBlock(
        std::uint64_t address, std::size_t bytes, Getter<std::vector<std::byte>> get,
        Setter<std::span<const std::byte>> set);

    // The same, by the position of the bytes in it.
    void AddMemory(
        std::uint64_t address, std::size_t bytes, std::function<void(std::size_t, std::span<std::byte>)> read,
        std::function<void(std::size_t, std::span<const std::byte>)> write);

    // The same at a place.
    void AddText(RegisterPlace place, Getter<std::string> get, Setter<std::string> set = {})
    {
        AddText(place.address, place.bytes, std::move(get), std::move(set));
    }
    void AddText(RegisterPlace place, std::string constant)
    {
        AddText(place.address, place.bytes, std::move(constant));
    }
    void AddInteger(RegisterPlace place, Getter<std::uint64_t> get, Setter<std::uint64_t> set = {})
    {
        AddInteger(place.address, place.bytes, std::move(get), std::move(set));
    }
    void AddInteger(RegisterPlace place, std::uint64_t constant) { AddInteger(place.address, place.bytes, constant); }
    void AddFloat(RegisterPlace place, Getter<double> get, Setter<double> set = {})
    {
        AddFloat(place.address, place.bytes, std::move(get), std::move(set));
    }
    void AddBlock(RegisterPlace place, Getter<std::vector<std::byte>> get, Setter<std::span<const std::byte>> set)
    {
        AddBlock(place.address, place.bytes, std::move(get), std::move(set));
    }
    void AddCommand(RegisterPlace place, Action command) { AddCommand(place.address, std::move(command)); }
    void AddAction(RegisterPlace place, Action action) { AddAction(place.address, std::move(action)); }

    // `snapshot` makes what takes back all that setters changed since; used when an access over several registers fails
    // half way.
    void SetSnapshot(std::function<Action()> makeUndo) { snapshot = std::move(makeUndo); }

    void Read(std::uint64_t address, std::span<std::byte> out) const override;
    void Write(std::uint64_t address, std::span<const std::byte> in) override;

    RegisterLock& Lock() const noexcept { return lock; }

private:
    struct Region
    {
        std::size_t size = 0;
        std::string_view constant; // when there is no `read`; the bytes live as long as the map
        std::function<void(std::span<std::byte>)> read;
        std::function<void(std::span<const std::byte>)> write;
        // Of memory, in place of the two: from that byte on.
        std::function<void(std::size_t, std::span<std::byte>)> readAt;
        std::function<void(std::size_t, std::span<const std::byte>)> writeAt;
        Action action;
        bool isWriteOnly = false;
    };
    // A piece of one region that an access touches.
    struct Piece
    {
        const Region* region;
        std::size_t offset;
        std::size_t length;
    };

    void Add(std::uint64_t address, Region region);
    std::vector<Piece> Locate(std::uint64_t address, std::size_t length, bool write) const;
    static void ReadPiece(const Piece& piece, std::span<std::byte> out);
    static void WritePiece(const Piece& piece, std::span<const std::byte> in);

    const ByteOrder order;
    std::map<std::uint64_t, Region> regions;
    std::function<Action()> snapshot;
    mutable RegisterLock lock;
};

} // namespace koro::kit

// RegisterSpace: what lies behind a port: bytes at addresses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace koro::kit
{

enum class ByteOrder
{
    Little,
    Big
};

class RegisterSpace
{
public:
    RegisterSpace() = default;
    RegisterSpace(const RegisterSpace&) = delete;
    RegisterSpace& operator=(const RegisterSpace&) = delete;
    virtual ~RegisterSpace() = default;

    // Any thread, any alignment; as a whole or not at all. Failures carry the code of the standard.
    virtual void Read(std::uint64_t address, std::span<std::byte> out) const = 0;
    virtual void Write(std::uint64_t address, std::span<const std::byte> in) = 0;
};

} // namespace koro::kit

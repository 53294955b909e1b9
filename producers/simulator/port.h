// Port: the register access of a module: who it is, its register map, its description.
//
// Owned by its module, constant once made but for the registers. Any thread.
#pragma once

#include "producers/simulator/description.h"
#include "producers/simulator/info_value.h"
#include "producers/simulator/register_map.h"

#include <functional>
#include <string>

namespace koro::simulator
{

// Where the common registers and the description lie in every map.
inline constexpr std::uint64_t idRegister = 0x00;
inline constexpr std::uint64_t vendorRegister = 0x40;
inline constexpr std::uint64_t modelRegister = 0x80;
inline constexpr std::uint64_t versionRegister = 0xC0;
inline constexpr std::size_t textRegisterBytes = 64;
inline constexpr std::uint64_t descriptionAddress = 0x10000;

struct PortFacts
{
    std::string id;
    std::string vendor;
    std::string model;
    std::string tlType;
    std::string module; // "TLSystem"
    std::string name;   // "TLPort"
    std::string version;
};

class Port
{
public:
    // Throws what reading or writing shall fail with at present.
    using Gate = std::function<void(bool write)>;

    // Without a description there is no port: registers answer GC_ERR_NOT_IMPLEMENTED.
    Port(PortFacts facts, const Description* description, Gate gate = {});

    RegisterMap& Registers() noexcept { return registers; }

    void Read(std::uint64_t address, std::span<std::byte> out) const;
    void Write(std::uint64_t address, std::span<const std::byte> in);
    InfoValue Info(PORT_INFO_CMD command) const;

    std::uint32_t NumURLs() const;
    std::string URL() const;
    InfoValue URLInfo(std::uint32_t index, URL_INFO_CMD command) const;

private:
    void RequirePort() const;
    bool Allows(bool write) const noexcept;

    const PortFacts facts;
    const Description* const description;
    const Gate gate;
    RegisterMap registers;
};

} // namespace koro::simulator

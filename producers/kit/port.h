// Port: the register access of a module: who it is, its registers, where its descriptions are.
//
// Owned by its module, constant once made. Any thread.
#pragma once

#include "producers/kit/description.h"
#include "producers/kit/info_value.h"
#include "producers/kit/register_map.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace koro::kit
{

// Where the common registers and the description lie in every map of this producer.
inline constexpr std::uint64_t vendorRegister = 0x40;
inline constexpr std::uint64_t modelRegister = 0x80;
inline constexpr std::uint64_t versionRegister = 0xC0;
inline constexpr std::uint64_t idRegister = 0x1000;
inline constexpr std::size_t textRegisterBytes = 64;
inline constexpr std::size_t idRegisterBytes = 256;
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

// One way to a description.
struct DescriptionURL
{
    URL_SCHEME_ID scheme = URL_SCHEME_LOCAL;
    std::string file; // name; with its path for URL_SCHEME_FILE
    std::uint64_t address = 0;
    std::uint64_t size = 0; // bytes in the registers
    bool isOurs = false;    // versions and hash are known
    std::array<unsigned char, 20> sha1{};

    std::string Text() const;
};

DescriptionURL LocalURL(const Description& description);
DescriptionURL FileURL(const Description& description, const std::string& path);

// What a port leads to.
struct PortRegisters
{
    std::shared_ptr<RegisterSpace> space;
    std::vector<DescriptionURL> urls;
    ByteOrder order = ByteOrder::Little;
};

// The registers that every map of this producer has, and a description.
void AddCommonRegisters(RegisterMap& map, const PortFacts& facts, const Description& description);

class Port
{
public:
    // Throws what reading or writing shall fail with at present.
    using Gate = std::function<void(bool write)>;

    // Without registers there is no port: accesses answer GC_ERR_NOT_IMPLEMENTED.
    explicit Port(PortFacts facts, PortRegisters registers = {}, Gate gate = {});

    void Read(std::uint64_t address, std::span<std::byte> out) const;
    void Write(std::uint64_t address, std::span<const std::byte> in);
    InfoValue Info(PORT_INFO_CMD command) const;

    std::uint32_t NumURLs() const;
    // As GCGetPortURL lists it: the only form that carries the schema version.
    std::string URLList() const;
    InfoValue URLInfo(std::uint32_t index, URL_INFO_CMD command) const;

private:
    void RequirePort() const;
    bool Allows(bool write) const noexcept;

    const PortFacts facts;
    const PortRegisters registers;
    const Gate gate;
};

} // namespace koro::kit

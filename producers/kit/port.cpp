#include "producers/kit/port.h"

#include "producers/kit/failure.h"

#include <cstdio>
#include <utility>

namespace koro::kit
{

std::string DescriptionURL::Text() const
{
    if (scheme == URL_SCHEME_FILE) return "file://" + file;
    char place[64];
    std::snprintf(
        place, sizeof place, ";%llX;%llX", static_cast<unsigned long long>(address),
        static_cast<unsigned long long>(size));
    return "local:" + file + place;
}

DescriptionURL LocalURL(const Description& description)
{
    return {URL_SCHEME_LOCAL, std::string(description.fileName), descriptionAddress, description.text.size(), true,
            description.sha1};
}

DescriptionURL FileURL(const Description& description, const std::string& path)
{
    return {URL_SCHEME_FILE, path, 0, 0, true, description.sha1};
}

void AddCommonRegisters(RegisterMap& map, const PortFacts& facts, const Description& description)
{
    map.AddText(idRegister, idRegisterBytes, facts.id);
    map.AddText(vendorRegister, textRegisterBytes, facts.vendor);
    map.AddText(modelRegister, textRegisterBytes, facts.model);
    map.AddText(versionRegister, textRegisterBytes, facts.version);
    map.AddBlock(descriptionAddress, description.text);
}

Port::Port(PortFacts facts, PortRegisters registers, Gate gate)
    : facts(std::move(facts)), registers(std::move(registers)), gate(std::move(gate))
{}

void Port::RequirePort() const
{
    if (registers.space == nullptr) throw Failure(GC_ERR_NOT_IMPLEMENTED, "the module has no port");
}

bool Port::Allows(bool write) const noexcept
{
    if (registers.space == nullptr) return false;
    try
    {
        if (gate) gate(write);
        return true;
    }
    catch (const Failure&)
    {
        return false;
    }
}

void Port::Read(std::uint64_t address, std::span<std::byte> out) const
{
    RequirePort();
    if (gate) gate(false);
    registers.space->Read(address, out);
}

void Port::Write(std::uint64_t address, std::span<const std::byte> in)
{
    RequirePort();
    if (gate) gate(true);
    registers.space->Write(address, in);
}

InfoValue Port::Info(PORT_INFO_CMD command) const
{
    switch (command)
    {
    case PORT_INFO_ID:
        return InfoValue::Text(facts.id);
    case PORT_INFO_VENDOR:
        return InfoValue::Text(facts.vendor);
    case PORT_INFO_MODEL:
        return InfoValue::Text(facts.model);
    case PORT_INFO_TLTYPE:
        return InfoValue::Text(facts.tlType);
    case PORT_INFO_MODULE:
        return InfoValue::Text(facts.module);
    case PORT_INFO_LITTLE_ENDIAN:
        return InfoValue::Bool(registers.order == ByteOrder::Little);
    case PORT_INFO_BIG_ENDIAN:
        return InfoValue::Bool(registers.order == ByteOrder::Big);
    case PORT_INFO_ACCESS_READ:
        return InfoValue::Bool(Allows(false));
    case PORT_INFO_ACCESS_WRITE:
        return InfoValue::Bool(Allows(true));
    case PORT_INFO_ACCESS_NA:
        return InfoValue::Bool(registers.space != nullptr && !Allows(false));
    case PORT_INFO_ACCESS_NI:
        return InfoValue::Bool(registers.space == nullptr);
    case PORT_INFO_VERSION:
        return InfoValue::Text(facts.version);
    case PORT_INFO_PORTNAME:
        return InfoValue::Text(facts.name);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown port information");
    }
}

std::uint32_t Port::NumURLs() const
{
    RequirePort();
    return static_cast<std::uint32_t>(registers.urls.size());
}

std::string Port::URLList() const
{
    RequirePort();
    std::string list;
    for (const DescriptionURL& url : registers.urls)
        list += url.Text() + (url.isOurs ? "?SchemaVersion=1.1.0" : "") + '\0';
    return list + '\0';
}

InfoValue Port::URLInfo(std::uint32_t index, URL_INFO_CMD command) const
{
    if (index >= NumURLs()) throw Failure(GC_ERR_INVALID_INDEX, "the port has " + std::to_string(NumURLs()) + " URLs");
    const DescriptionURL& url = registers.urls[index];
    const auto ifOurs = [&url](const InfoValue& value) {
        if (!url.isOurs)
            throw Failure(GC_ERR_NOT_AVAILABLE, "of a description from the settings only the place is known");
        return value;
    };
    const auto ifLocal = [&url](std::uint64_t value) {
        if (url.scheme != URL_SCHEME_LOCAL) throw Failure(GC_ERR_NOT_AVAILABLE, "the file is not in the registers");
        return InfoValue::UInt64(value);
    };
    switch (command)
    {
    case URL_INFO_URL:
        return InfoValue::Text(url.Text());
    case URL_INFO_SCHEMA_VER_MAJOR:
    case URL_INFO_SCHEMA_VER_MINOR:
    case URL_INFO_FILE_VER_MAJOR:
        return ifOurs(InfoValue::Int32(1));
    case URL_INFO_FILE_VER_MINOR:
    case URL_INFO_FILE_VER_SUBMINOR:
        return ifOurs(InfoValue::Int32(0));
    case URL_INFO_FILE_SHA1_HASH:
        return ifOurs(InfoValue::Bytes({reinterpret_cast<const char*>(url.sha1.data()), url.sha1.size()}));
    case URL_INFO_FILE_REGISTER_ADDRESS:
        return ifLocal(url.address);
    case URL_INFO_FILE_SIZE:
        return ifLocal(url.size);
    case URL_INFO_SCHEME:
        return InfoValue::Int32(url.scheme);
    case URL_INFO_FILENAME:
        return InfoValue::Text(url.file);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown URL information");
    }
}

} // namespace koro::kit

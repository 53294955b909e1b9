#include "producers/simulator/port.h"

#include "producers/simulator/failure.h"

#include <cstdio>
#include <utility>

namespace koro::simulator
{

Port::Port(PortFacts portFacts, const Description* portDescription, Gate portGate)
    : facts(std::move(portFacts)), description(portDescription), gate(std::move(portGate))
{
    if (description == nullptr) return;
    registers.AddText(idRegister, textRegisterBytes, facts.id, RegisterAccess::ReadOnly);
    registers.AddText(vendorRegister, textRegisterBytes, facts.vendor, RegisterAccess::ReadOnly);
    registers.AddText(modelRegister, textRegisterBytes, facts.model, RegisterAccess::ReadOnly);
    registers.AddText(versionRegister, textRegisterBytes, facts.version, RegisterAccess::ReadOnly);
    registers.AddBytes(descriptionAddress, description->text);
}

void Port::RequirePort() const
{
    if (description == nullptr) throw Failure(GC_ERR_NOT_IMPLEMENTED, "the module has no port");
}

bool Port::Allows(bool write) const noexcept
{
    if (description == nullptr) return false;
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
    registers.Read(address, out);
}

void Port::Write(std::uint64_t address, std::span<const std::byte> in)
{
    RequirePort();
    if (gate) gate(true);
    registers.Write(address, in);
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
        return InfoValue::Bool(true);
    case PORT_INFO_BIG_ENDIAN:
        return InfoValue::Bool(false);
    case PORT_INFO_ACCESS_READ:
        return InfoValue::Bool(Allows(false));
    case PORT_INFO_ACCESS_WRITE:
        return InfoValue::Bool(Allows(true));
    case PORT_INFO_ACCESS_NA:
        return InfoValue::Bool(description != nullptr && !Allows(false));
    case PORT_INFO_ACCESS_NI:
        return InfoValue::Bool(description == nullptr);
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
    return 1;
}

std::string Port::URL() const
{
    RequirePort();
    char place[64];
    std::snprintf(
        place, sizeof place, ";%llX;%zX", static_cast<unsigned long long>(descriptionAddress),
        description->text.size());
    return "local:" + std::string(description->fileName) + place;
}

InfoValue Port::URLInfo(std::uint32_t index, URL_INFO_CMD command) const
{
    if (index >= NumURLs()) throw Failure(GC_ERR_INVALID_INDEX, "the port has one URL");
    switch (command)
    {
    case URL_INFO_URL:
        return InfoValue::Text(URL());
    case URL_INFO_SCHEMA_VER_MAJOR:
        return InfoValue::Int32(1);
    case URL_INFO_SCHEMA_VER_MINOR:
        return InfoValue::Int32(1);
    case URL_INFO_FILE_VER_MAJOR:
        return InfoValue::Int32(1);
    case URL_INFO_FILE_VER_MINOR:
        return InfoValue::Int32(0);
    case URL_INFO_FILE_VER_SUBMINOR:
        return InfoValue::Int32(0);
    case URL_INFO_FILE_SHA1_HASH:
        return InfoValue::Bytes({reinterpret_cast<const char*>(description->sha1.data()), description->sha1.size()});
    case URL_INFO_FILE_REGISTER_ADDRESS:
        return InfoValue::UInt64(descriptionAddress);
    case URL_INFO_FILE_SIZE:
        return InfoValue::UInt64(description->text.size());
    case URL_INFO_SCHEME:
        return InfoValue::Int32(URL_SCHEME_LOCAL);
    case URL_INFO_FILENAME:
        return InfoValue::Text(description->fileName);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown URL information");
    }
}

} // namespace koro::simulator

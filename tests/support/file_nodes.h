// Nodes of the file access features, over registers of eight bytes at the port Device.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

inline std::string FileRegister(const std::string& name, std::uint64_t address, const std::string& mode)
{
    return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>8</Length><AccessMode>" + mode +
           "</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Signed</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

inline std::string FileNumber(
    const std::string& name, std::uint64_t address, const std::string& mode, const std::string& limits = "")
{
    return "<Integer Name=\"" + name + "\"><pValue>" + name + "Reg</pValue>" + limits + "</Integer>" +
           FileRegister(name + "Reg", address, mode);
}

// An entry, with the text before its value.
struct FileEntry
{
    FileEntry(const char* entry, std::string conditions = "") : name(entry), elements(std::move(conditions)) {}

    std::string name;
    std::string elements;
};

// The entries are numbered from 0.
inline std::string FileChoice(
    const std::string& name, std::uint64_t address, const std::vector<FileEntry>& entries, const std::string& mode)
{
    std::string text = "<Enumeration Name=\"" + name + "\">";
    for (std::size_t number = 0; number < entries.size(); ++number)
    {
        text += "<EnumEntry Name=\"" + entries[number].name + "\">" + entries[number].elements + "<Value>" +
                std::to_string(number) + "</Value></EnumEntry>";
    }
    return text + "<pValue>" + name + "Reg</pValue></Enumeration>" + FileRegister(name + "Reg", address, mode);
}

inline std::string FileCommand(const std::string& name, std::uint64_t address)
{
    return "<Command Name=\"" + name + "\"><pValue>" + name + "Reg</pValue><CommandValue>1</CommandValue></Command>" +
           FileRegister(name + "Reg", address, "RW");
}

} // namespace koro::test

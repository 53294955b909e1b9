#include "tests/support/elf_file.h"

#include <cstddef>
#include <elf.h>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace koro::test
{

namespace
{

std::string Read(const std::string& path)
{
    std::string content(std::filesystem::file_size(path), '\0');
    std::ifstream stream(path, std::ios::binary);
    if (!stream.read(content.data(), static_cast<std::streamsize>(content.size())))
    {
        throw std::runtime_error("Reading " + path + " failed");
    }
    return content;
}

void Write(const std::string& path, const std::string& content)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << content;
    if (!stream.flush()) throw std::runtime_error("Writing " + path + " failed");
}

// A record of the file, to be changed in place.
template <class Record>
Record& At(std::string& content, std::size_t offset)
{
    if (offset > content.size() || content.size() - offset < sizeof(Record))
    {
        throw std::runtime_error("The ELF file ends early");
    }
    return reinterpret_cast<Record&>(content[offset]);
}

Elf64_Shdr& Section(std::string& content, std::size_t index)
{
    const auto& header = At<Elf64_Ehdr>(content, 0);
    return At<Elf64_Shdr>(content, header.e_shoff + index * sizeof(Elf64_Shdr));
}

Elf64_Shdr& DynamicSymbols(std::string& content)
{
    const std::size_t count = At<Elf64_Ehdr>(content, 0).e_shnum;
    for (std::size_t index = 0; index < count; ++index)
    {
        Elf64_Shdr& section = Section(content, index);
        if (section.sh_type == SHT_DYNSYM) return section;
    }
    throw std::runtime_error("The ELF file has no dynamic symbols");
}

} // namespace

void RemoveExport(const std::string& path, const std::string& function)
{
    std::string content = Read(path);
    const Elf64_Shdr symbols = DynamicSymbols(content);
    const std::size_t names = Section(content, symbols.sh_link).sh_offset;
    for (std::size_t offset = 0; offset < symbols.sh_size; offset += sizeof(Elf64_Sym))
    {
        auto& symbol = At<Elf64_Sym>(content, symbols.sh_offset + offset);
        if (function != &At<char>(content, names + symbol.st_name)) continue;
        symbol.st_value = 0;
        symbol.st_shndx = SHN_UNDEF;
        Write(path, content);
        return;
    }
    throw std::runtime_error(path + " does not export " + function);
}

void SetMachine(const std::string& path, std::uint16_t machine)
{
    std::string content = Read(path);
    At<Elf64_Ehdr>(content, 0).e_machine = machine;
    Write(path, content);
}

} // namespace koro::test

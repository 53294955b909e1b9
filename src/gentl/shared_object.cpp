#include "gentl/shared_object.h"

#include "base/exceptions.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <fstream>
#include <link.h>
#include <sys/stat.h>
#include <vector>

namespace koro::internal
{

namespace
{

// The loader does not set an error number for each of its failures.
std::string ErrorNumberText(int number)
{
    return number == 0 ? "<not available>" : std::to_string(number);
}

// The loader would wait until another process writes.
bool IsPipeOrDevice(const std::string& path)
{
    struct stat status
    {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

bool ReachesBeyond(std::uint64_t fileSize, const Elf64_Phdr& segment)
{
    if (segment.p_type != PT_LOAD) return false;
    return segment.p_offset > fileSize || segment.p_filesz > fileSize - segment.p_offset;
}

// A file that was copied only in part. The loader would map the missing part and the process would end by a signal, so
// the file is not loaded. A file that is not ELF at all is left to the loader to refuse.
bool IsCutShort(const std::string& path)
{
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const auto fileSize = static_cast<std::uint64_t>(std::max<std::streamoff>(file.tellg(), 0));
    Elf64_Ehdr header{};
    file.seekg(0).read(reinterpret_cast<char*>(&header), sizeof header);
    if (!file || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64)
    {
        return false;
    }
    std::vector<Elf64_Phdr> segments(header.e_phnum);
    const auto tableSize = static_cast<std::streamsize>(segments.size() * sizeof(Elf64_Phdr));
    file.seekg(static_cast<std::streamoff>(header.e_phoff)).read(reinterpret_cast<char*>(segments.data()), tableSize);
    return !file || std::any_of(segments.begin(), segments.end(), [&](const Elf64_Phdr& segment) {
        return ReachesBeyond(fileSize, segment);
    });
}

// Local scope, since all producers export the same names; no deep binding, which sanitizers cannot follow.
void* Load(const std::string& path)
{
    const bool hasFolder = path.find('/') != std::string::npos;
    return dlopen(hasFolder ? path.c_str() : ("./" + path).c_str(), RTLD_NOW | RTLD_LOCAL);
}

} // namespace

SharedObject::SharedObject(const std::string& path)
{
    const bool isKeptFromTheLoader = IsPipeOrDevice(path) || IsCutShort(path);
    errno = 0;
    handle = isKeptFromTheLoader ? nullptr : Load(path);
    const int number = errno;
    if (!handle)
    {
        throw CTILoadingException("Loading CTI " + path + " failed! Code: " + ErrorNumberText(number) + ".");
    }
}

SharedObject::~SharedObject()
{
    dlclose(handle);
}

SharedObject::FoundSymbol SharedObject::Symbol(const char* name) const
{
    errno = 0;
    void* const address = dlsym(handle, name);
    const int number = errno;
    if (address) return {address, {}};
    return {nullptr, ErrorNumberText(number)};
}

// The file is named as the loader knows it, so that a file which has replaced it on the disk meanwhile is not mistaken
// for it.
void SharedObject::KeepMapped() const noexcept
{
    const link_map* loaded = nullptr;
    if (dlinfo(handle, RTLD_DI_LINKMAP, &loaded) != 0) return;
    void* const same = dlopen(loaded->l_name, RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD | RTLD_NODELETE);
    if (same) dlclose(same);
}

} // namespace koro::internal

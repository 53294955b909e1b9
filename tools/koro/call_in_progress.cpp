#include "tools/koro/call_in_progress.h"

#include "gentl/api/function_names.h"

#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <unwind.h>

namespace koro::tool
{

namespace
{

// The dynamic section as far as it names the functions that a file exports. Nothing here takes a lock or memory.
struct ExportedFunctions
{
    const ElfW(Sym) * symbols = nullptr;
    const char* names = nullptr;
    const uint32_t* hashTable = nullptr;

    explicit ExportedFunctions(const link_map& file)
    {
        for (const ElfW(Dyn)* entry = file.l_ld; entry && entry->d_tag != DT_NULL; ++entry)
        {
            const void* const address = reinterpret_cast<const void*>(entry->d_un.d_ptr);
            if (entry->d_tag == DT_SYMTAB) symbols = static_cast<const ElfW(Sym)*>(address);
            if (entry->d_tag == DT_STRTAB) names = static_cast<const char*>(address);
            if (entry->d_tag == DT_GNU_HASH) hashTable = static_cast<const uint32_t*>(address);
        }
    }

    // The one that contains the address, relative to where the file is loaded; null when none does.
    const char* NameAt(uintptr_t address) const
    {
        if (!symbols || !names || !hashTable) return nullptr;
        // Number of buckets, index of the first exported symbol, number of words of the filter, a shift; then the
        // filter, the buckets, and for each symbol a word whose lowest bit ends its bucket.
        const uint32_t numBuckets = hashTable[0];
        const uint32_t first = hashTable[1];
        const uint32_t* const buckets = hashTable + 4 + size_t{hashTable[2]} * (sizeof(ElfW(Addr)) / sizeof(uint32_t));
        const uint32_t* const ends = buckets + numBuckets;
        for (uint32_t bucket = 0; bucket < numBuckets; ++bucket)
        {
            for (uint32_t index = buckets[bucket]; index >= first; ++index)
            {
                const ElfW(Sym)& symbol = symbols[index];
                if (address >= symbol.st_value && address - symbol.st_value < symbol.st_size)
                    return names + symbol.st_name;
                if ((ends[index - first] & 1) != 0) break;
            }
        }
        return nullptr;
    }
};

template <size_t size>
bool IsAmong(const char* const (&names)[size], const char* name)
{
    for (const char* const known : names)
    {
        if (std::strcmp(known, name) == 0) return true;
    }
    return false;
}

bool IsFunctionOfTheStandard(const char* name)
{
    return IsAmong(GenTL::mandatoryFunctions, name) || IsAmong(GenTL::laterFunctions, name);
}

bool EndsWith(const char* text, const char* end)
{
    const size_t size = std::strlen(text);
    const size_t endSize = std::strlen(end);
    return size >= endSize && std::strcmp(text + size - endSize, end) == 0;
}

// From the innermost frame to the outermost: the last one that fits is the call that the library made.
_Unwind_Reason_Code Visit(_Unwind_Context* frame, void* found)
{
    auto& call = *static_cast<CallInProgress*>(found);
    int isBeforeInstruction = 0;
    uintptr_t address = _Unwind_GetIPInfo(frame, &isBeforeInstruction);
    // A return address lies behind its call, maybe in the next function.
    if (isBeforeInstruction == 0) --address;

    dl_find_object object;
    if (_dl_find_object(reinterpret_cast<void*>(address), &object) != 0) return _URC_NO_REASON;
    const link_map& file = *object.dlfo_link_map;
    const char* const name = ExportedFunctions(file).NameAt(address - file.l_addr);
    if (name && IsFunctionOfTheStandard(name))
    {
        call.producer = file.l_name;
        call.function = name;
    }
    else if (!call.function && EndsWith(file.l_name, ".cti"))
    {
        call.producer = file.l_name;
    }
    else if (name && std::strncmp(name, "KORO_", 5) == 0)
    {
        call.libraryFunction = name;
    }
    return _URC_NO_REASON;
}

} // namespace

CallInProgress FindCallInProgress() noexcept
{
    CallInProgress call;
    _Unwind_Backtrace(Visit, &call);
    return call;
}

} // namespace koro::tool

// Port access: registers, information, URLs.
#include "producers/kit/call.h"
#include "producers/kit/module.h"

#include <limits>
#include <string>

namespace GenTL
{

using namespace koro::kit; // NOLINT(google-build-using-namespace): entry points are thin wrappers over it

namespace
{

constexpr size_t maxAccessBytes = size_t{1} << 30;

size_t RequireLength(size_t bytes)
{
    if (bytes > maxAccessBytes) throw Failure(GC_ERR_INVALID_PARAMETER, "the access is too long");
    return bytes;
}

void Read(Port& port, uint64_t address, void* buffer, size_t bytes)
{
    RequirePointer(buffer, "pBuffer");
    port.Read(address, {static_cast<std::byte*>(buffer), RequireLength(bytes)});
}

void Write(Port& port, uint64_t address, const void* buffer, size_t bytes)
{
    RequirePointer(buffer, "pBuffer");
    const size_t limit = Runtime::Instance().TheProducer()->PortWriteLimit();
    if (limit > 0 && bytes > limit)
        throw Failure(GC_ERR_INVALID_PARAMETER, "at most " + std::to_string(limit) + " bytes can be written at once");
    port.Write(address, {static_cast<const std::byte*>(buffer), RequireLength(bytes)});
}

// One entry after the other; the count says how many were done, also after a failure.
template <typename Access>
void AccessStacked(PORT_REGISTER_STACK_ENTRY* entries, size_t* number, const Access& access)
{
    RequirePointer(entries, "pEntries");
    RequirePointer(number, "piNumEntries");
    const size_t wanted = *number;
    for (*number = 0; *number < wanted; ++*number)
    {
        const PORT_REGISTER_STACK_ENTRY entry = entries[*number];
        access(entry);
    }
}

} // namespace

GC_ERROR GCReadPort(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=] {
        const auto module = Find<Module>(hPort);
        RequirePointer(piSize, "piSize");
        Read(module->ModulePort(), iAddress, pBuffer, *piSize);
    });
}

GC_ERROR GCWritePort(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=] {
        const auto module = Find<Module>(hPort);
        RequirePointer(piSize, "piSize");
        Write(module->ModulePort(), iAddress, pBuffer, *piSize);
    });
}

GC_ERROR GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piNumEntries)
{
    return CallSince({1, 1}, __func__, [=] {
        const auto module = Find<Module>(hPort);
        AccessStacked(pEntries, piNumEntries, [&](const PORT_REGISTER_STACK_ENTRY& entry) {
            Read(module->ModulePort(), entry.Address, entry.pBuffer, entry.Size);
        });
    });
}

GC_ERROR GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piNumEntries)
{
    return CallSince({1, 1}, __func__, [=] {
        const auto module = Find<Module>(hPort);
        AccessStacked(pEntries, piNumEntries, [&](const PORT_REGISTER_STACK_ENTRY& entry) {
            Write(module->ModulePort(), entry.Address, entry.pBuffer, entry.Size);
        });
    });
}

GC_ERROR GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto module = Find<Module>(hPort);
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, [&] { return module->ModulePort().Info(iInfoCmd); });
    });
}

GC_ERROR GCGetPortURL(PORT_HANDLE hPort, char* sURL, size_t* piSize)
{
    return Call(__func__, [=] {
        const auto module = Find<Module>(hPort);
        RequirePointer(piSize, "piSize");
        CopyOut(module->ModulePort().URLList(), sURL, piSize);
    });
}

GC_ERROR GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* piNumURLs)
{
    return CallSince({1, 1}, __func__, [=] {
        const auto module = Find<Module>(hPort);
        RequirePointer(piNumURLs, "piNumURLs");
        *piNumURLs = module->ModulePort().NumURLs();
    });
}

GC_ERROR GCGetPortURLInfo(
    PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallSince({1, 1}, __func__, [=, function = __func__] {
        const auto module = Find<Module>(hPort);
        const auto info = [&] { return module->ModulePort().URLInfo(iURLIndex, iInfoCmd); };
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, info);
    });
}

} // namespace GenTL

// Entry points of ports.
#define GENTL_PRODUCER
#include "producers/scripted/call.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

using namespace GenTL;
using namespace scripted;

namespace
{

// A function of any port: `behaviour` is GC_ERROR(State&, Port&).
template <class Behaviour, class... Arguments>
GC_ERROR CallOnPort(const char* function, PORT_HANDLE handle, const Behaviour& behaviour, const Arguments&... arguments)
{
    const auto onPort = [&](State& state, Lock&) -> GC_ERROR {
        Module* module = state.live.FindModule(handle);
        return module ? behaviour(state, state.live.PortOf(*module)) : GC_ERR_INVALID_HANDLE;
    };
    return Call(function, onPort, handle, arguments...);
}

// The registers at `address`; null if not all of them exist.
char* RegistersAt(Port& port, std::uint64_t address, std::size_t size)
{
    auto area = port.registers.upper_bound(address);
    if (area == port.registers.begin()) return nullptr;
    auto& [start, bytes] = *std::prev(area);
    const std::uint64_t offset = address - start;
    if (offset > bytes.size() || size > bytes.size() - offset) return nullptr;
    return bytes.data() + offset;
}

GC_ERROR Read(Port& port, std::uint64_t address, void* buffer, std::size_t size)
{
    if (const char* registers = RegistersAt(port, address, size))
    {
        std::memcpy(buffer, registers, size);
        return GC_ERR_SUCCESS;
    }
    if (!port.unwritten) return GC_ERR_INVALID_ADDRESS;
    for (std::size_t offset = 0; offset < size; ++offset)
    {
        const char* byte = RegistersAt(port, address + offset, 1);
        static_cast<char*>(buffer)[offset] = byte ? *byte : port.unwritten(address + offset);
    }
    return GC_ERR_SUCCESS;
}

GC_ERROR Write(Port& port, std::uint64_t address, const void* buffer, std::size_t size)
{
    char* registers = RegistersAt(port, address, size);
    if (!registers) return GC_ERR_INVALID_ADDRESS;
    std::memcpy(registers, buffer, size);
    return port.written ? port.written(port, address) : GC_ERR_SUCCESS;
}

// One after the other up to the first failure; the count then is the number of finished transfers.
template <class Transfer>
GC_ERROR TransferStacked(
    Port& port, const PORT_REGISTER_STACK_ENTRY* entries, std::size_t* count, const Transfer& transfer)
{
    if (!entries || !count) return GC_ERR_INVALID_PARAMETER;
    for (std::size_t index = 0; index < *count; ++index)
    {
        const PORT_REGISTER_STACK_ENTRY& entry = entries[index];
        if (const GC_ERROR result = transfer(port, entry.Address, entry.pBuffer, entry.Size))
        {
            *count = index;
            return result;
        }
    }
    return GC_ERR_SUCCESS;
}

// The bytes of one transfer: the requested size, or less if the test has set a count, which is then reported.
std::size_t TransferSize(const State& state, const char* function, std::size_t* size)
{
    const auto set = state.answers.counts.find(function);
    if (set != state.answers.counts.end()) *size = std::min<std::size_t>(*size, set->second);
    return *size;
}

std::string SayCount(const std::size_t* count)
{
    return count ? std::to_string(*count) : "null";
}

Infos BufferPortInfos(const Buffer& buffer)
{
    char address[32];
    std::snprintf(address, sizeof address, "%zX", reinterpret_cast<std::size_t>(buffer.base));
    return {
        {PORT_INFO_ID, Text(address)},
        {PORT_INFO_MODULE, Text("TLBuffer")},
        {PORT_INFO_ACCESS_NI, Bool8(true)},
    };
}

} // namespace

GC_ERROR GenTL::GCReadPort(PORT_HANDLE hPort, uint64_t iAddress, void* pBuffer, size_t* piSize)
{
    return CallOnPort(
        "GCReadPort", hPort,
        [&](State& state, Port& port) -> GC_ERROR {
            if (!pBuffer || !piSize) return GC_ERR_INVALID_PARAMETER;
            return Read(port, iAddress, pBuffer, TransferSize(state, "GCReadPort", piSize));
        },
        iAddress, SayCount(piSize).c_str());
}

GC_ERROR GenTL::GCWritePort(PORT_HANDLE hPort, uint64_t iAddress, const void* pBuffer, size_t* piSize)
{
    return CallOnPort(
        "GCWritePort", hPort,
        [&](State& state, Port& port) -> GC_ERROR {
            if (!pBuffer || !piSize) return GC_ERR_INVALID_PARAMETER;
            return Write(port, iAddress, pBuffer, TransferSize(state, "GCWritePort", piSize));
        },
        iAddress, SayCount(piSize).c_str());
}

GC_ERROR GenTL::GCReadPortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piNumEntries)
{
    return CallOnPort(
        "GCReadPortStacked", hPort,
        [&](State&, Port& port) { return TransferStacked(port, pEntries, piNumEntries, Read); },
        SayCount(piNumEntries).c_str());
}

GC_ERROR GenTL::GCWritePortStacked(PORT_HANDLE hPort, PORT_REGISTER_STACK_ENTRY* pEntries, size_t* piNumEntries)
{
    return CallOnPort(
        "GCWritePortStacked", hPort,
        [&](State&, Port& port) { return TransferStacked(port, pEntries, piNumEntries, Write); },
        SayCount(piNumEntries).c_str());
}

GC_ERROR
GenTL::GCGetPortInfo(PORT_HANDLE hPort, PORT_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(
        "GCGetPortInfo",
        [&](State& state, Lock&) -> GC_ERROR {
            Module* module = state.live.FindModule(hPort);
            const auto buffer = state.live.FindBuffer(hPort);
            if (!module && !buffer) return GC_ERR_INVALID_HANDLE;
            const Infos infos = module ? state.live.PortOf(*module).info : BufferPortInfos(*buffer);
            return AnswerInfo(Choose(state, "GCGetPortInfo", infos, iInfoCmd), piType, pBuffer, piSize);
        },
        hPort, iInfoCmd, Half{pBuffer});
}

GC_ERROR GenTL::GCGetPortURL(PORT_HANDLE hPort, char* sURL, size_t* piSize)
{
    return CallOnPort(
        "GCGetPortURL", hPort,
        [&](State& state, Port& port) -> GC_ERROR {
            std::string list; // each text terminated, one more zero at the end
            for (const Infos& url : port.urls)
            {
                if (url.contains(URL_INFO_URL)) list += url.at(URL_INFO_URL).bytes;
            }
            const Infos infos = {{0, Bytes(INFO_DATATYPE_STRINGLIST, list + '\0')}};
            return AnswerInfo(Choose(state, "GCGetPortURL", infos, 0), nullptr, sURL, piSize);
        },
        Half{sURL});
}

GC_ERROR GenTL::GCGetNumPortURLs(PORT_HANDLE hPort, uint32_t* piNumURLs)
{
    return CallOnPort("GCGetNumPortURLs", hPort, [&](State& state, Port& port) {
        return AnswerCount(state, "GCGetNumPortURLs", port.urls.size(), piNumURLs);
    });
}

GC_ERROR GenTL::GCGetPortURLInfo(
    PORT_HANDLE hPort, uint32_t iURLIndex, URL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallOnPort(
        "GCGetPortURLInfo", hPort,
        [&](State& state, Port& port) -> GC_ERROR {
            if (iURLIndex >= port.urls.size()) return GC_ERR_INVALID_INDEX;
            const Info info = Choose(state, "GCGetPortURLInfo", port.urls[iURLIndex], iInfoCmd, iURLIndex);
            return AnswerInfo(info, piType, pBuffer, piSize);
        },
        iURLIndex, iInfoCmd, Half{pBuffer});
}

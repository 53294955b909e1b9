#include "producers/kit/buffer.h"

#include <cstdio>
#include <utility>

namespace koro::kit
{
namespace
{

// A buffer is named by its address, and its port is none.
PortFacts NameByAddress(PortFacts facts, const void* memory)
{
    char address[32];
    std::snprintf(
        address, sizeof address, "%llX", static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(memory)));
    facts.id = address;
    return facts;
}

} // namespace

Buffer::Buffer(void* consumersMemory, std::size_t bytes, void* privatePointer, PortFacts portFacts)
    : memory(static_cast<std::byte*>(consumersMemory), bytes), userPointer(privatePointer),
      port(NameByAddress(std::move(portFacts), consumersMemory))
{}

Buffer::Buffer(std::size_t bytes, void* privatePointer, PortFacts portFacts)
    : ownMemory(std::make_unique<std::byte[]>(bytes)), memory(ownMemory.get(), bytes), userPointer(privatePointer),
      port(NameByAddress(std::move(portFacts), ownMemory.get()))
{}

} // namespace koro::kit

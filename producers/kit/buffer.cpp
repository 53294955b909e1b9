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

Buffer::Buffer(void* memory, std::size_t bytes, void* userPointer, PortFacts portFacts)
    : memory(static_cast<std::byte*>(memory), bytes), userPointer(userPointer),
      port(NameByAddress(std::move(portFacts), memory))
{}

Buffer::Buffer(std::size_t bytes, void* userPointer, PortFacts portFacts)
    : ownMemory(std::make_unique<std::byte[]>(bytes)), memory(ownMemory.get(), bytes), userPointer(userPointer),
      port(NameByAddress(std::move(portFacts), ownMemory.get()))
{}

} // namespace koro::kit

#include "tests/unit/genicam/counted_new.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

std::atomic<std::size_t> calls{0};
std::atomic<std::size_t> bytes{0};

void* Allocate(std::size_t size) noexcept
{
    ++calls;
    bytes += size;
    return std::malloc(size ? size : 1);
}

} // namespace

koro::test::Allocations koro::test::AllocationsSoFar() noexcept
{
    return {calls, bytes};
}

// The forms for arrays end in these.
void* operator new(std::size_t size)
{
    if (void* const memory = Allocate(size)) return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Allocate(size);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

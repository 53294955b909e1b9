// Replaces operator new of the program that links counted_new.cpp by one that counts.
#pragma once

#include <cstddef>

namespace koro::test
{

struct Allocations
{
    std::size_t calls;
    std::size_t bytes;
};

// All since the program began, by any thread.
Allocations AllocationsSoFar() noexcept;

} // namespace koro::test

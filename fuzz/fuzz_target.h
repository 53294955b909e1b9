// The function that a fuzz target defines and the one that it uses: the entry that libFuzzer or the replay driver
// calls, and a check that ends the process in every build type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace koro::fuzz
{

inline void Require(bool holds, const char* what)
{
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

} // namespace koro::fuzz

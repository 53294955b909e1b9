// The registers of the zero-cost producer's cameras that have a meaning; all others are plain memory.
#pragma once

#include <cstdint>

namespace koro::bench
{

// A byte that is not 0: each frame has a chunk layout of its own.
inline constexpr std::uint64_t layoutsChangeRegister = 4000;
// Text of a chunk id, which is read when a buffer is attached and at no other time.
inline constexpr std::uint64_t chunkIDRegister = 4008;
// How often that was, 8 bytes.
inline constexpr std::uint64_t attachesRegister = 4016;

} // namespace koro::bench

// The registers of the zero-cost producer's cameras that have a meaning; all others are plain memory.
#pragma once

#include <cstdint>

namespace koro::bench
{

// A byte; if it is not 0, each frame has a different chunk layout.
inline constexpr std::uint64_t layoutsChangeRegister = 4000;
// The text of a chunk id, which is read only when a buffer is attached.
inline constexpr std::uint64_t chunkIDRegister = 4008;
// The number of attachments, 8 bytes.
inline constexpr std::uint64_t attachesRegister = 4016;

} // namespace koro::bench

// Bounds for what a producer claims. A claim beyond them ends in an InternalErrorException that names the bound.
#pragma once

#include <cstddef>
#include <cstdint>

namespace koro::internal
{

struct ClaimBound
{
    const char* name; // as messages print it
    std::uint64_t limit;
};

inline constexpr ClaimBound informationBound{"information bytes", 16u << 20};
inline constexpr ClaimBound textBound{"text bytes", 16u << 20};
inline constexpr ClaimBound eventBlockBound{"event block bytes", 256u << 20};
inline constexpr ClaimBound descriptionBound{"description bytes", 256u << 20};
inline constexpr ClaimBound chunksBound{"chunks of one buffer", 65536};
inline constexpr ClaimBound partsBound{"parts of one buffer", 65536};
inline constexpr ClaimBound childrenBound{"children of one module", 65536};

// Throws when `claimed` exceeds the bound; `function` is the GenTL function that returned it.
void CheckClaim(const ClaimBound& bound, std::uint64_t claimed, const char* function);

} // namespace koro::internal

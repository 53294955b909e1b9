// CachePolicy: whether a read may use a cached value.
#pragma once

#include <cstdint>

namespace koro::internal
{

// Comes from applications; any other number means UseCache.
enum class CachePolicy : std::int32_t
{
    UseCache = 0,
    IgnoreCache = 1
};

constexpr bool IgnoresCache(CachePolicy policy) noexcept
{
    return policy == CachePolicy::IgnoreCache;
}

} // namespace koro::internal

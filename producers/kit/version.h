// GenTLVersion: a version of the GenTL standard, and which functions came with which.
#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace koro::kit
{

struct GenTLVersion
{
    std::uint32_t major = 1;
    std::uint32_t minor = 0;

    std::string Text() const { return std::to_string(major) + "." + std::to_string(minor); }
    auto operator<=>(const GenTLVersion&) const = default;
};

inline constexpr GenTLVersion newestVersion{1, 6};

} // namespace koro::kit

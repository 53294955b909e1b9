// What a description states about a register. The build makes the values from the descriptions, see
// cmake/RegisterNames.cmake; a register without a constant range is a FeatureRegister only.
#pragma once

#include "producers/kit/register_map.h"

#include <cstdint>

namespace koro::simulator
{

struct FeatureRegister : kit::RegisterPlace
{
    bool isLocked; // while TLParamsLocked is 1

    constexpr FeatureRegister At(std::uint64_t index) const { return {RegisterPlace::At(index), isLocked}; }
};

// A register whose feature allows the values from `least` to `most`, in steps of `increment`.
template <typename T>
struct RangedRegister : FeatureRegister
{
    T least;
    T most;
    std::uint64_t increment;

    constexpr bool Allows(T value) const
    {
        if (!(value >= least && value <= most)) return false; // neither does a value that is no number
        return increment <= 1 || static_cast<std::uint64_t>(value - least) % increment == 0;
    }
    constexpr RangedRegister At(std::uint64_t index) const
    {
        return {FeatureRegister::At(index), least, most, increment};
    }
};

using NumberRegister = RangedRegister<std::uint64_t>;
using RealRegister = RangedRegister<double>;

} // namespace koro::simulator

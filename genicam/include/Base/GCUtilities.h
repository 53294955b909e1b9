// GCUtilities.h: number casts that detect a loss of value, and small macros.
#pragma once

#include <Base/GCException.h>

#define GC_COUNTOF(array) (sizeof(array) / sizeof((array)[0]))
#define GC_UNUSED(name) static_cast<void>(name)
#define GENICAM_UNUSED(name) static_cast<void>(name)
#define GENICAM_DEPRECATED(declaration) __attribute__((deprecated)) declaration

namespace GENICAM_NAMESPACE
{

// Converts a number; throws RuntimeException when the value changes, including its sign.
template <typename Td, typename Ts>
inline Td INTEGRAL_CAST2(Ts value)
{
    const Td result = static_cast<Td>(value);
    if (static_cast<Ts>(result) != value || (result < Td()) != (value < Ts()))
        throw RUNTIME_EXCEPTION("INTEGRAL_CAST failed");
    return result;
}

template <typename T>
inline T INTEGRAL_CAST(int64_t value)
{
    return INTEGRAL_CAST2<T, int64_t>(value);
}

} // namespace GENICAM_NAMESPACE

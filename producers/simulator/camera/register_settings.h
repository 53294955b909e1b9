// How the registers of settings refuse what their description does not allow. For the files that add registers.
#pragma once

#include "producers/simulator/camera/camera_features.h"

#include <camera_register_names.h>
#include <concepts>
#include <utility>

namespace koro::simulator
{

template <typename T>
void RequireAllowed(const RangedRegister<T>& place, T value)
{
    if (!place.Allows(value)) RefuseValue("the value is out of range");
}

template <typename Register>
void CameraFeatures::AddSetting(
    const Register& place, std::function<std::uint64_t()> get, std::function<void(std::uint64_t)> set)
{
    map.AddInteger(place, std::move(get), [this, place, set = std::move(set)](std::uint64_t wanted) {
        if (place.isLocked) RequireUnlocked();
        if constexpr (std::same_as<Register, NumberRegister>) RequireAllowed(place, wanted);
        set(wanted);
    });
}

} // namespace koro::simulator

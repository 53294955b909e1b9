// What the producer calls itself.
#pragma once

namespace koro::simulator
{

inline constexpr const char* vendorName = "zvr";
inline constexpr const char* modelName = "koro simulator";
inline constexpr const char* producerVersion = "1.0.0";

// Of the naming conventions that the descriptions follow.
inline constexpr unsigned sfncVersionMajor = 1; // of GenTL modules
inline constexpr unsigned sfncVersionMinor = 1;

} // namespace koro::simulator

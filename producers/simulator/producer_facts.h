// What the producer calls itself.
#pragma once

namespace koro::simulator
{

inline constexpr const char* vendorName = "zvr";
inline constexpr const char* modelName = "koro simulator";
inline constexpr const char* producerVersion = "1.0.0";

} // namespace koro::simulator

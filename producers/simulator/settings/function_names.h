// The functions that this producer exports, by name: what a fault may be set on.
#pragma once

#include <string_view>

namespace koro::simulator
{

bool IsGenTLFunction(std::string_view name) noexcept;

} // namespace koro::simulator

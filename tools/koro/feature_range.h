// What a feature takes, in words. Limits are read from the camera; what cannot be read is left out. Any thread.
#pragma once

#include <koro/koro.hpp>

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace koro::tool
{

// "Width takes 4 to 640 in steps of 4 pixel."; empty for a node without limits.
std::string RangeSentence(const Node& node);
// Adds what the node tells of its limits: unit, minimum, maximum, increment, validValues, entries, maximumLength,
// length, address.
void AddRange(nlohmann::json& feature, const Node& node);
// "4..640 by 4" from what AddRange added; empty for nothing.
std::string RangeText(const nlohmann::json& feature);

} // namespace koro::tool

// Keys that several objects of the settings file have.
#pragma once

#include "producers/simulator/settings/fault_plan.h"
#include "producers/simulator/settings/json_reader.h"

#include <string>

namespace koro::simulator
{

// `at` and `count`.
void ReadOccurrences(JsonObject& object, Occurrences& occurrences);
// `camera`, a serial number or "*".
std::string ReadCameraName(JsonObject& object);

} // namespace koro::simulator

// What the settings say of the files of a camera.
#pragma once

#include "producers/simulator/settings/fault_plan.h"
#include "producers/simulator/settings/json_reader.h"
#include "producers/simulator/settings/settings.h"

#include <string>

namespace koro::simulator
{

void ReadFileSettings(JsonObject& object, CameraSettings& camera);
FileFault ReadFileFault(const nlohmann::json& value, const std::string& place);

} // namespace koro::simulator

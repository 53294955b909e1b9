// What the settings say of a camera's resets, and of the commands that its absence makes a consumer repeat.
#pragma once

#include "producers/simulator/settings/json_reader.h"
#include "producers/simulator/settings/settings.h"

namespace koro::simulator
{

void ReadResetSettings(JsonObject& object, Absence& reset);
void ReadRetrySettings(JsonObject& object, CommandRetries& retries);

} // namespace koro::simulator

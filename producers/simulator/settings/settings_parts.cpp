#include "producers/simulator/settings/settings_parts.h"

namespace koro::simulator
{

void ReadOccurrences(JsonObject& object, Occurrences& occurrences)
{
    object.Read("at", occurrences.first, 1, INT64_MAX);
    const nlohmann::json* count = object.Take("count");
    if (count != nullptr && *count == "every")
        occurrences.count = everyTime;
    else
        object.Read("count", occurrences.count, 1, INT64_MAX);
}

std::string ReadCameraName(JsonObject& object)
{
    std::string camera;
    object.Read("camera", camera);
    if (camera.empty()) object.Refuse("camera", "must be a serial number or *");
    return camera;
}

} // namespace koro::simulator

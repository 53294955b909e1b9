// The camera tree as JSON, for `koro list --json` and for the pipe between a probing process and its parent.
#pragma once

#include "tools/koro/camera_tree.h"

#include <nlohmann/json_fwd.hpp>

namespace koro::tool
{

// Missing texts become null.
nlohmann::json ToJSON(const CameraRecord& camera);
nlohmann::json ToJSON(const ProducerRecord& producer);

// Throws nlohmann::json::exception for anything that ToJSON cannot have written.
ProducerRecord ProducerFromJSON(const nlohmann::json& json);

// JSON is UTF-8; producers' texts need not be: what is none is replaced.
std::string Dump(const nlohmann::json& json, int indent = -1);

} // namespace koro::tool

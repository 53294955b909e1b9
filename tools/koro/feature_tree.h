// Features as JSON values, for output as JSON and, by the commands, as text. One thread at a time.
//
// A feature is an object with name, displayName, type, visibility, access ("rw", "r-", "-w", "--"), what AddRange adds,
// value and text (the value for people) when it can be read, else problem. A category has features.
#pragma once

#include <koro/koro.hpp>

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace koro::tool
{

std::string AccessText(KORO_NodeAccessStatus status);
const char* VisibilityName(KORO_NodeVisibility visibility);

// The value as JSON has it: numbers and booleans as such, all else as a text. Throws as ReadValue.
nlohmann::json ValueAsJSON(const Node& node);
// One feature and its value, without the features of a category.
nlohmann::json BriefOf(const Node& node);

// The features below the category "Root", those that are not implemented or meant for a narrower circle than
// `visibility` left out, and categories that are empty then. Each category is opened once; where it is met again it
// has the key "seen". Ends early, with what it has, when `isEnded` says so.
nlohmann::json FeatureTree(const NodeMap& nodes, KORO_NodeVisibility visibility, const std::function<bool()>& isEnded);

// Name and type of each node that the tree does not reach at any visibility. Reads nothing of the camera.
nlohmann::json NodesInNoCategory(const NodeMap& nodes);

} // namespace koro::tool

// Camera selection: which camera a name means. Pure functions over the camera tree. Any thread.
#pragma once

#include "tools/koro/camera_tree.h"

#include <string>
#include <vector>

namespace koro::tool
{

// A camera and the way to it. Points into the tree that was searched, which must outlive it.
struct CameraChoice
{
    const ProducerRecord* producer;
    const InterfaceRecord* interfaceRecord;
    const CameraRecord* camera;
};

std::vector<CameraChoice> AllCameras(const std::vector<ProducerRecord>& producers);

// The cameras that a name or a pattern means, at least one. Throws ToolError (exit status 3) that lists the candidates.
std::vector<CameraChoice> SelectCameras(const std::vector<ProducerRecord>& producers, const std::string& name);

// `name` is a serial number, a user name, an id, "interface:id", or a glob over one of these. "interface:id" comes
// before the other names, and exact matches before globs. Throws ToolError (exit status 3) that lists the candidates when it fits none or several.
CameraChoice SelectCamera(const std::vector<ProducerRecord>& producers, const std::string& name);

// An interface and the way to it.
struct InterfaceChoice
{
    const ProducerRecord* producer;
    const InterfaceRecord* interfaceRecord;
};

// The interface of that id or display name, or the only one that a pattern over these fits. Throws ToolError (exit
// status 3) that lists the candidates when it fits none or several.
InterfaceChoice SelectInterface(const std::vector<ProducerRecord>& producers, const std::string& name);

// Whether a producer whose lists are read again and again need not be asked any longer for the camera called `wanted`:
// "interface:id" is there, or another of its names is and the same cameras were there `before`. A pattern is never.
bool IsSearchOver(
    const std::vector<InterfaceRecord>& before, const std::vector<InterfaceRecord>& now, const std::string& wanted);

// One line for a person: "interface:id  vendor model, serial number, user name".
std::string DescribeCamera(const CameraChoice& choice);

} // namespace koro::tool

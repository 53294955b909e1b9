// CameraRoad: cameras of a scripted producer that have the target's descriptions, opened through the exports.
//
// Created once per process and never closed: no buffer is announced at the beginning and the end of an input.
#pragma once

#include "producers/scripted/script.h"
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace koro::fuzz
{

// Ends the process when a call fails that only prepares.
void RequireSuccess(KORO_ReturnCode code);

struct RoadNode
{
    KORO_NodeHandle node;
    KORO_IntegerNodeHandle integer;
};

struct RoadCamera
{
    std::string id;
    KORO_DeviceHandle device;
    KORO_NodeMapHandle map;
    KORO_DataStreamHandle stream;
    KORO_EventControllerHandle controller; // of the events of the camera

    mutable std::map<std::string, RoadNode> nodes; // the nodes that were looked up

    // An integer.
    const RoadNode& Node(const std::string& name) const;
};

class CameraRoad
{
public:
    // One camera for each transport layer, at most four; their description contains these nodes.
    CameraRoad(const std::vector<std::string>& tlTypes, const std::string& nodes);

    scripted::Script& Producer() const { return *script; }
    const std::vector<RoadCamera>& Cameras() const { return cameras; }

    // The next bytes of an input that is read from its front.
    static std::size_t Number(const std::uint8_t*& data, std::size_t& size, std::size_t bytes);
    static std::vector<std::uint8_t> Piece(const std::uint8_t*& data, std::size_t& size);

private:
    scripted::Script* script = nullptr;
    std::vector<RoadCamera> cameras;
};

} // namespace koro::fuzz

// Settings of the simulator for one run of the tool, in a file of the test's own.
#pragma once

#include "tests/support/temporary_folder.h"
#include "tests/tool/tool_run.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace koro::test
{

// One camera "cam" of that format, unpaced, on the interface "if".
inline nlohmann::json OneCamera(const std::string& pixelFormat, size_t width, size_t height)
{
    nlohmann::json camera;
    camera["serial"] = "cam";
    camera["width"] = width;
    camera["height"] = height;
    camera["rate"] = 0;
    camera["pixelFormat"] = pixelFormat;
    nlohmann::json cameraInterface;
    cameraInterface["id"] = "if";
    cameraInterface["cameras"].push_back(camera);
    nlohmann::json settings;
    settings["interfaces"].push_back(cameraInterface);
    return settings;
}

// The first call of a function fails. More keys can follow in the object that comes back.
inline nlohmann::json& FailCall(nlohmann::json& settings, const std::string& function, const std::string& error)
{
    nlohmann::json& calls = settings["misbehaviour"]["calls"];
    calls.push_back({{"function", function}, {"error", error}});
    return calls.back();
}

// An info command is unknown to the producer.
inline void ForgetInfo(nlohmann::json& settings, const std::string& function, int command)
{
    settings["misbehaviour"]["info"].push_back(
        {{"function", function}, {"command", command}, {"error", "GC_ERR_NOT_IMPLEMENTED"}});
}

// An info command answers this number, in the width that it has by the standard.
inline void FalsifyInfo(nlohmann::json& settings, const std::string& function, int command, int64_t number)
{
    settings["misbehaviour"]["info"].push_back({{"function", function}, {"command", command}, {"value", number}});
}

// The run's surroundings: the simulator as the only producer, with these settings.
inline Environment SimulatorWith(const TemporaryFolder& folder, const nlohmann::json& settings)
{
    const std::string search = folder.MakeFolder("producers");
    folder.MakeLink(SimulatorPath(), "producers/simulator.cti");
    return {
        {"GENICAM_GENTL64_PATH", search},
        {"KORO_SIMULATOR_CONFIG", folder.MakeFile("simulator.json", settings.dump())},
    };
}

} // namespace koro::test

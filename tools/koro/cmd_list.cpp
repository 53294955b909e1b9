#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/discovery.h"
#include "tools/koro/report.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace koro::tool
{

namespace
{

struct ListSettings
{
    std::string producer;
    bool json = false;
};

void PrintCamera(const CameraRecord& camera)
{
    std::printf("    camera %s\n", Printable(camera.id).c_str());
    PrintRows(
        {
            {"model", OrDash(camera.vendor) + " " + OrDash(camera.model)},
            {"serial number", OrDash(camera.serialNumber)},
            {"user name", OrDash(camera.userName)},
            {"access", camera.accessStatus ? AccessStatusName(*camera.accessStatus) : "-"},
        },
        "      ");
}

void PrintInterface(const InterfaceRecord& record)
{
    std::printf(
        "  interface %s  %s, %s\n", Printable(record.id).c_str(), OrDash(record.displayName).c_str(),
        OrDash(record.tlType).c_str());
    if (record.problem) std::printf("    %s\n", Printable(*record.problem).c_str());
    for (const CameraRecord& camera : record.cameras)
        PrintCamera(camera);
}

void PrintProducer(const ProducerRecord& producer)
{
    std::printf(
        "%s\n  %s %s %s, GenTL %s, %s\n", Printable(producer.path).c_str(), OrDash(producer.vendor).c_str(),
        OrDash(producer.model).c_str(), OrDash(producer.version).c_str(), OrDash(producer.genTLVersion).c_str(),
        OrDash(producer.tlType).c_str());
    if (producer.problem) std::printf("  %s\n", Printable(*producer.problem).c_str());
    for (const InterfaceRecord& record : producer.interfaces)
        PrintInterface(record);
}

void PrintText(const Discovery& discovery)
{
    for (const ProducerRecord& producer : discovery.producers)
        PrintProducer(producer);
    for (const ProbeResult& failed : discovery.failed)
        std::printf("%s\n", DescribeFailure(failed).c_str());
    const size_t numCameras = AllCameras(discovery.producers).size();
    std::printf("%zu %s\n", numCameras, numCameras == 1 ? "camera" : "cameras");
    if (numCameras == 0) std::printf("hint: `koro doctor` tells why there is none.\n");
}

void PrintJSON(const Discovery& discovery)
{
    nlohmann::json producers = nlohmann::json::array();
    for (const ProducerRecord& producer : discovery.producers)
        producers.push_back(ToJSON(producer));
    nlohmann::json failed = nlohmann::json::array();
    for (const ProbeResult& result : discovery.failed)
    {
        failed.push_back({{"path", result.path}, {"problem", result.text}});
    }
    std::printf("%s\n", Dump({{"producers", producers}, {"failed", failed}}, 2).c_str());
}

int List(const ListSettings& settings)
{
    const Discovery discovery = Discover(settings.producer);
    if (settings.json)
    {
        PrintJSON(discovery);
    }
    else
    {
        PrintText(discovery);
    }
    return exitSuccess;
}

} // namespace

Action DefineList(CLI::App& command)
{
    const auto settings = std::make_shared<ListSettings>();
    command.add_option("--producer", settings->producer, "Use this .cti file alone, not the environment");
    command.add_flag("--json", settings->json, "Write JSON");
    return [settings] { return List(*settings); };
}

} // namespace koro::tool

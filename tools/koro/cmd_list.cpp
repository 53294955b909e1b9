#include "tools/koro/camera_addresses.h"
#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/discovery.h"
#include "tools/koro/if_known.h"
#include "tools/koro/module_connection.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace koro::tool
{

namespace
{

struct ListSettings
{
    ProducerChoice producer;
    bool json = false;
    bool verbose = false;
};

// Asked in this process, of producers that have just worked in theirs. What does not answer stays unknown.
void AddAddresses(Discovery& discovery)
{
    for (ProducerRecord& producer : discovery.producers)
    {
        for (InterfaceRecord& record : producer.interfaces)
        {
            if (record.cameras.empty()) continue;
            auto addresses = IfKnown([&] {
                const ModuleConnection connection(producer.path, record.id, {});
                return ReadAddresses(connection.Interface());
            });
            for (CameraRecord& camera : record.cameras)
            {
                if (!addresses) continue;
                camera.ipAddress = (*addresses)[camera.id].ip;
                camera.macAddress = (*addresses)[camera.id].mac;
            }
        }
    }
}

void PrintCamera(const CameraRecord& camera, bool verbose)
{
    PrintOut("    camera %s\n", PrintableStart(camera.id).c_str());
    Rows rows = {
        {"model", OrDash(camera.vendor) + " " + OrDash(camera.model)},
        {"serial number", OrDash(camera.serialNumber)},
        {"user name", OrDash(camera.userName)},
        {"access", camera.accessStatus ? AccessStatusName(*camera.accessStatus) : "-"},
    };
    if (verbose)
    {
        rows.emplace_back("version", OrDash(camera.version));
        rows.emplace_back("transport", OrDash(camera.tlType));
        rows.emplace_back("IP address", OrDash(camera.ipAddress));
        rows.emplace_back("MAC address", OrDash(camera.macAddress));
    }
    PrintRows(rows, "      ");
}

void PrintInterface(const InterfaceRecord& record, bool verbose)
{
    PrintOut(
        "  interface %s  %s, %s\n", PrintableStart(record.id).c_str(), OrDash(record.displayName).c_str(),
        OrDash(record.tlType).c_str());
    if (record.problem) PrintOut("    %s\n", PrintableStart(*record.problem, 4096).c_str());
    for (const CameraRecord& camera : record.cameras)
        PrintCamera(camera, verbose);
}

void PrintProducer(const ProducerRecord& producer, bool verbose)
{
    PrintOut(
        "%s\n  %s %s %s, GenTL %s, %s\n", Printable(producer.path).c_str(), OrDash(producer.vendor).c_str(),
        OrDash(producer.model).c_str(), OrDash(producer.version).c_str(), OrDash(producer.genTLVersion).c_str(),
        OrDash(producer.tlType).c_str());
    if (producer.problem) PrintOut("  %s\n", PrintableStart(*producer.problem, 4096).c_str());
    for (const InterfaceRecord& record : producer.interfaces)
        PrintInterface(record, verbose);
}

void PrintText(const Discovery& discovery, bool verbose)
{
    for (const ProducerRecord& producer : discovery.producers)
        PrintProducer(producer, verbose);
    for (const ProbeResult& failed : discovery.failed)
        PrintOut("%s\n", DescribeFailure(failed).c_str());
    const size_t numCameras = AllCameras(discovery.producers).size();
    PrintOut("%zu %s\n", numCameras, numCameras == 1 ? "camera" : "cameras");
    if (numCameras == 0) PrintOut("hint: `koro doctor` tells why there is none.\n");
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
    PrintOut("%s\n", Dump({{"producers", producers}, {"failed", failed}}, 2).c_str());
}

int List(const ListSettings& settings)
{
    Discovery discovery = Discover(settings.producer);
    // What was named and cannot be listed is a failure; one of many is a line in the list.
    const bool named = !settings.producer.file.empty();
    const bool works = std::all_of(
        discovery.producers.begin(), discovery.producers.end(), [](const auto& producer) { return !producer.problem; });
    if (settings.verbose) AddAddresses(discovery);
    if (settings.json)
    {
        PrintJSON(discovery);
    }
    else
    {
        PrintText(discovery, settings.verbose);
    }
    return named && !(discovery.failed.empty() && works) ? exitFailure : exitSuccess;
}

} // namespace

Action DefineList(CLI::App& command)
{
    const auto settings = std::make_shared<ListSettings>();
    DefineProducer(command, settings->producer);
    command.add_flag("--verbose", settings->verbose, "Also version, transport and addresses of each camera");
    command.add_flag("--json", settings->json, "Write JSON");
    return [settings] { return List(*settings); };
}

} // namespace koro::tool

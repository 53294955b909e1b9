#include "tools/koro/camera_addresses.h"
#include "tools/koro/camera_connection.h"
#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/discovery.h"
#include "tools/koro/if_known.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace koro::tool
{

namespace
{

using nlohmann::json;

struct InfoSettings
{
    std::string camera;
    ProducerChoice producer;
    bool json = false;
};

template <typename Read>
json ValueOrNull(const Read& read)
{
    const auto value = IfKnown(read);
    return value ? json(*value) : json();
}

json ReadPort(const Port& port)
{
    json urls = json::array();
    const auto known = IfKnown([&] { return port.URLs(); });
    for (const PortURL& url : known.value_or(std::vector<PortURL>()))
    {
        urls.push_back(ValueOrNull([&] { return url.URL(); }));
    }
    return {
        {"name", ValueOrNull([&] { return port.Name(); })},
        {"vendor", ValueOrNull([&] { return port.VendorName(); })},
        {"model", ValueOrNull([&] { return port.ModelName(); })},
        {"version", ValueOrNull([&] { return port.Version(); })},
        {"descriptions", urls},
    };
}

json ReadStream(const DataStreamDescriptor& descriptor)
{
    const DataStream stream = descriptor.OpenDataStream();
    const ClosingMark mark;
    return {
        {"id", stream.ID()},
        {"tlType", ValueOrNull([&] { return stream.TLType(); })},
        {"definesPayloadSize", ValueOrNull([&] { return stream.DefinesPayloadSize(); })},
        {"payloadSize", ValueOrNull([&] { return stream.PayloadSize(); })},
        {"buffersMinimum", ValueOrNull([&] { return stream.NumBuffersAnnouncedMinRequired(); })},
        {"bufferAlignment", ValueOrNull([&] { return stream.BufferAlignment(); })},
    };
}

// Opens the camera, for reading if the producer knows the difference, and asks what only an open one answers.
json ReadOpened(const DeviceDescriptor& descriptor)
{
    json opened = {{"timestampTickFrequency", ValueOrNull([&] { return descriptor.TimestampTickFrequency(); })}};
    try
    {
        const Device device = descriptor.OpenDevice(AccessType::ReadOnly);
        const ClosingMark mark;
        opened["camera"] = ReadPort(device.RemoteDevice().Port());
        opened["streams"] = json::array();
        for (const DataStreamDescriptor& stream : device.DataStreams())
            opened["streams"].push_back(ReadStream(stream));
    }
    catch (const Error& error)
    {
        opened["problem"] = error.what();
    }
    return opened;
}

std::string TextOf(const json& value)
{
    if (value.is_null()) return "-";
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    return value.is_string() ? OrDash(value.get<std::string>()) : Dump(value);
}

void PrintStreams(const json& opened)
{
    if (!opened.contains("streams")) return;
    for (const json& stream : opened.at("streams"))
    {
        PrintOut("\nstream %s\n", TextOf(stream.at("id")).c_str());
        PrintRows(
            {
                {"transport", TextOf(stream.at("tlType"))},
                {"defines payload size", TextOf(stream.at("definesPayloadSize"))},
                {"payload size", TextOf(stream.at("payloadSize"))},
                {"buffers at least", TextOf(stream.at("buffersMinimum"))},
                {"buffer alignment", TextOf(stream.at("bufferAlignment"))},
            },
            "  ");
    }
}

void PrintText(const CameraChoice& choice, const CameraAddresses& addresses, const json& opened)
{
    const CameraRecord& camera = *choice.camera;
    PrintRows({
        {"camera", PrintableStart(camera.id)},
        {"display name", OrDash(camera.displayName)},
        {"vendor", OrDash(camera.vendor)},
        {"model", OrDash(camera.model)},
        {"version", OrDash(camera.version)},
        {"serial number", OrDash(camera.serialNumber)},
        {"user name", OrDash(camera.userName)},
        {"transport", OrDash(camera.tlType)},
        {"IP address", OrDash(addresses.ip)},
        {"MAC address", OrDash(addresses.mac)},
        {"access", camera.accessStatus ? AccessStatusName(*camera.accessStatus) : "-"},
        {"time stamp ticks per second", TextOf(opened.at("timestampTickFrequency"))},
        {"interface", PrintableStart(choice.interfaceRecord->id) + "  " + OrDash(choice.interfaceRecord->displayName)},
        {"producer", Printable(choice.producer->path)},
        {"producer version", OrDash(choice.producer->version) + ", GenTL " + OrDash(choice.producer->genTLVersion)},
    });
    if (opened.contains("camera"))
    {
        for (const json& url : opened.at("camera").at("descriptions"))
        {
            PrintOut("description  %s\n", TextOf(url).c_str());
        }
    }
    PrintStreams(opened);
    if (opened.contains("problem")) PrintOut("\nnot opened: %s\n", TextOf(opened.at("problem")).c_str());
}

int Info(const InfoSettings& settings)
{
    const Discovery discovery = DiscoverFor(settings.producer, settings.camera);
    const CameraChoice choice = FindCamera(discovery, settings.camera);
    const CameraConnection connection(discovery, choice);
    // While the camera is closed: some interfaces do not answer for one that is in use.
    const CameraAddresses addresses = ReadAddresses(connection.Interface())[choice.camera->id];
    const json opened = ReadOpened(connection.Descriptor());
    ProducerWatch::OfProcess().Call(choice.producer->path);
    if (!settings.json)
    {
        PrintText(choice, addresses, opened);
        return exitSuccess;
    }

    CameraRecord camera = *choice.camera;
    camera.ipAddress = addresses.ip;
    camera.macAddress = addresses.mac;
    json all = ToJSON(camera);
    all["interface"] = choice.interfaceRecord->id;
    all["producer"] = choice.producer->path;
    all["opened"] = opened;
    PrintOut("%s\n", Dump(all, 2).c_str());
    return exitSuccess;
}

} // namespace

Action DefineInfo(CLI::App& command)
{
    const auto settings = std::make_shared<InfoSettings>();
    command.add_option("camera", settings->camera, "Serial number, user name, id, interface:id, or a pattern with *")
        ->required();
    DefineProducer(command, settings->producer);
    command.add_flag("--json", settings->json, "Write JSON");
    return [settings] { return Info(*settings); };
}

} // namespace koro::tool

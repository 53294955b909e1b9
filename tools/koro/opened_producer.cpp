#include "tools/koro/opened_producer.h"

#include "tools/koro/accidents.h"
#include "tools/koro/camera_selection.h"
#include "tools/koro/if_known.h"
#include "tools/koro/list_times.h"
#include "tools/koro/report.h"
#include "tools/koro/short_text.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <cstdio>
#include <utility>

namespace koro::tool
{

namespace
{

CameraRecord ReadCamera(const DeviceDescriptor& device)
{
    NoteProgress();
    CameraRecord record;
    record.id = device.ID();
    record.displayName = IfKnown([&] { return ShortText(device.DisplayName()); });
    record.vendor = IfKnown([&] { return ShortText(device.VendorName()); });
    record.model = IfKnown([&] { return ShortText(device.ModelName()); });
    record.version = IfKnown([&] { return ShortText(device.Version()); });
    record.serialNumber = IfKnown([&] { return device.SerialNumber(); });
    record.userName = IfKnown([&] { return device.UserDefinedName(); });
    record.tlType = IfKnown([&] { return ShortText(device.TLType()); });
    record.accessStatus = IfKnown([&] { return static_cast<int32_t>(device.AccessStatus()); });
    return record;
}

// Some producers close all descriptors of the process when they are started, as a daemon does.
void CheckDescriptors(const std::string& path)
{
    const Descriptors found = RestoreDescriptors();
    if (found == Descriptors::Lost)
        throw ToolError(
            Printable(path) + " has closed all descriptors of the process, so that nothing can be written.",
            "The producer cannot be used from the tool; ask its maker for another version.");
    if (found == Descriptors::Restored)
        std::fprintf(
            Errors(), "koro: %s has closed descriptors of the process; they are open again.\n",
            Printable(path).c_str());
}

} // namespace

ProducerLibrary LoadProducer(const std::string& path)
{
    ProducerWatch::OfProcess().Call(path);
    NoteProducer(path);
    try
    {
        ProducerLibrary producer(path);
        NoteProducer(path);
        CheckDescriptors(path);
        return producer;
    }
    catch (const Error&)
    {
        CheckDescriptors(path);
        throw;
    }
}

OpenedProducer::OpenedProducer(const std::string& ctiPath)
    : path(ctiPath), library(Library::Initialize()), producer(LoadProducer(ctiPath))
{}

ProducerRecord OpenedProducer::Describe() const
{
    const SystemDescriptor descriptor = producer.System();
    ProducerRecord record;
    record.path = path;
    record.id = IfKnown([&] { return ShortText(descriptor.ID()); });
    record.displayName = IfKnown([&] { return ShortText(descriptor.DisplayName()); });
    record.vendor = IfKnown([&] { return ShortText(descriptor.VendorName()); });
    record.model = IfKnown([&] { return ShortText(descriptor.ModelName()); });
    record.version = IfKnown([&] { return ShortText(descriptor.Version()); });
    record.tlType = IfKnown([&] { return ShortText(descriptor.TLType()); });
    record.genTLVersion = IfKnown([&] {
        return std::to_string(descriptor.GenTLVersionMajor()) + "." + std::to_string(descriptor.GenTLVersionMinor());
    });
    return record;
}

void OpenedProducer::Open()
{
    NoteProgress();
    system = producer.System().OpenSystem();
    NoteProgress();
}

void OpenedProducer::List(ProducerRecord& record, const std::string& wanted)
{
    ListTimes times(wanted.empty() ? ListTimes::Kind::Whole : ListTimes::Kind::Growing);
    for (;;)
    {
        const std::vector<InterfaceRecord> before = std::move(record.interfaces);
        times.Ask([&](uint64_t timeout_ms) { system.UpdateInterfaces(timeout_ms); });
        record.interfaces = ReadInterfaces(times);
        if (times.IsLastRound() || IsSearchOver(before, record.interfaces, wanted)) return;
        times.BeginNextRound();
    }
}

std::vector<InterfaceRecord> OpenedProducer::ReadInterfaces(ListTimes& times)
{
    std::vector<InterfaceRecord> records;
    for (const InterfaceDescriptor& descriptor : system.Interfaces())
        records.push_back(ReadInterface(descriptor, times));
    return records;
}

InterfaceRecord OpenedProducer::ReadInterface(const InterfaceDescriptor& descriptor, ListTimes& times)
{
    NoteProgress();
    InterfaceRecord record;
    record.id = descriptor.ID();
    record.displayName = IfKnown([&] { return ShortText(descriptor.DisplayName()); });
    record.tlType = IfKnown([&] { return ShortText(descriptor.TLType()); });
    try
    {
        const koro::Interface& opened = Open(descriptor, record.id);
        times.Ask([&](uint64_t timeout_ms) { opened.UpdateDevices(timeout_ms); });
        for (const DeviceDescriptor& device : opened.Devices())
            record.cameras.push_back(ReadCamera(device));
    }
    catch (const Error& error)
    {
        record.problem = error.what();
    }
    return record;
}

const koro::Interface& OpenedProducer::Open(const InterfaceDescriptor& descriptor, const std::string& id)
{
    const auto known = interfaces.find(id);
    if (known != interfaces.end()) return known->second;
    return interfaces.emplace(id, descriptor.OpenInterface()).first->second;
}

DeviceDescriptor OpenedProducer::Camera(
    const std::string& interfaceID, const std::string& id, const std::function<void(const koro::Interface&)>& atOpen)
{
    std::erase_if(interfaces, [&](const auto& opened) { return opened.first != interfaceID; });
    if (const auto known = FindCamera(interfaceID, id, atOpen, nullptr)) return *known;
    ListTimes times(ListTimes::Kind::Growing);
    for (;;)
    {
        times.Ask([&](uint64_t timeout_ms) { system.UpdateInterfaces(timeout_ms); });
        if (const auto found = FindCamera(interfaceID, id, atOpen, &times)) return *found;
        if (times.IsLastRound()) break;
        times.BeginNextRound();
    }
    throw ToolError(
        interfaceID + ":" + id + " has gone since it was listed.",
        "Check its cable and power, then look at `koro list`.");
}

// Without `times` nothing is asked that was not read before.
std::optional<DeviceDescriptor> OpenedProducer::FindCamera(
    const std::string& interfaceID, const std::string& id, const std::function<void(const koro::Interface&)>& atOpen,
    ListTimes* times)
{
    for (const InterfaceDescriptor& descriptor : system.Interfaces())
    {
        if (descriptor.ID() != interfaceID || (!times && !interfaces.contains(interfaceID))) continue;
        const koro::Interface& opened = Open(descriptor, interfaceID);
        atOpen(opened);
        if (times) times->Ask([&](uint64_t timeout_ms) { opened.UpdateDevices(timeout_ms); });
        for (const DeviceDescriptor& device : opened.Devices())
        {
            if (device.ID() == id) return device;
        }
    }
    return std::nullopt;
}

} // namespace koro::tool

#include "tools/koro/read_producer.h"

#include "tools/koro/if_known.h"
#include <koro/koro.hpp>

namespace koro::tool
{

namespace
{

CameraRecord ReadCamera(const DeviceDescriptor& device)
{
    CameraRecord record;
    record.id = device.ID();
    record.displayName = IfKnown([&] { return device.DisplayName(); });
    record.vendor = IfKnown([&] { return device.VendorName(); });
    record.model = IfKnown([&] { return device.ModelName(); });
    record.version = IfKnown([&] { return device.Version(); });
    record.serialNumber = IfKnown([&] { return device.SerialNumber(); });
    record.userName = IfKnown([&] { return device.UserDefinedName(); });
    record.tlType = IfKnown([&] { return device.TLType(); });
    record.accessStatus = IfKnown([&] { return device.AccessStatus(); });
    return record;
}

InterfaceRecord ReadInterface(const InterfaceDescriptor& descriptor)
{
    InterfaceRecord record;
    record.id = descriptor.ID();
    record.displayName = IfKnown([&] { return descriptor.DisplayName(); });
    record.tlType = IfKnown([&] { return descriptor.TLType(); });
    try
    {
        const Interface opened = descriptor.OpenInterface();
        opened.UpdateDevices(updateTimeout_ms);
        for (const DeviceDescriptor& device : opened.Devices())
            record.cameras.push_back(ReadCamera(device));
    }
    catch (const Error& error)
    {
        record.problem = error.what();
    }
    return record;
}

ProducerRecord ReadDescription(const std::string& path, const SystemDescriptor& system)
{
    ProducerRecord record;
    record.path = path;
    record.id = IfKnown([&] { return system.ID(); });
    record.displayName = IfKnown([&] { return system.DisplayName(); });
    record.vendor = IfKnown([&] { return system.VendorName(); });
    record.model = IfKnown([&] { return system.ModelName(); });
    record.version = IfKnown([&] { return system.Version(); });
    record.tlType = IfKnown([&] { return system.TLType(); });
    record.genTLVersion = IfKnown(
        [&] { return std::to_string(system.GenTLVersionMajor()) + "." + std::to_string(system.GenTLVersionMinor()); });
    return record;
}

} // namespace

ProducerRecord ReadProducer(const std::string& path, const std::function<void(const char*)>& atStage)
{
    atStage("load");
    const ProducerLibrary library(path);
    const SystemDescriptor descriptor = library.System();
    ProducerRecord record = ReadDescription(path, descriptor);
    try
    {
        atStage("open");
        const System system = descriptor.OpenSystem();
        atStage("list");
        system.UpdateInterfaces(updateTimeout_ms);
        for (const InterfaceDescriptor& oneInterface : system.Interfaces())
        {
            record.interfaces.push_back(ReadInterface(oneInterface));
        }
    }
    catch (const Error& error)
    {
        record.problem = error.what();
    }
    return record;
}

} // namespace koro::tool

#include "fuzz/camera_road.h"

#include "fuzz/fuzz_target.h"

#include <algorithm>
#include <cstdio>
#include <dlfcn.h>

namespace koro::fuzz
{

namespace
{

scripted::Port& RemotePort(scripted::Tree& tree, std::size_t index)
{
    return tree.interfaces[index / 2]->devices[index % 2]->remotePort;
}

void Describe(scripted::Port& port, const std::string& tlType, const std::string& nodes)
{
    const std::uint64_t address = 0x20000;
    const std::string text = "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" "
                             "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
                             "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"p\" "
                             "VersionGuid=\"v\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
                             nodes + "<Port Name=\"Device\"/></RegisterDescription>";
    port.info[GenTL::PORT_INFO_TLTYPE] = scripted::Text(tlType);
    port.registers[address] = text;
    char url[64];
    std::snprintf(url, sizeof url, "local:road.xml;%llX;%zX", 0ULL + address, text.size());
    port.urls.assign(1, {{GenTL::URL_INFO_URL, scripted::Text(url)}});
}

} // namespace

void RequireSuccess(KORO_ReturnCode code)
{
    if (code == KORO_RETURN_CODE_SUCCESS) return;
    char text[1024] = "";
    std::size_t size = sizeof text;
    KORO_Library_GetLastError(&code, text, &size);
    Require(false, text);
}

const RoadNode& RoadCamera::Node(const std::string& name) const
{
    const auto [entry, isNew] = nodes.try_emplace(name);
    if (isNew)
    {
        RequireSuccess(KORO_NodeMap_FindNode(map, name.c_str(), name.size() + 1, &entry->second.node));
        RequireSuccess(KORO_Node_ToIntegerNode(entry->second.node, &entry->second.integer));
    }
    return entry->second;
}

CameraRoad::CameraRoad(const std::vector<std::string>& tlTypes, const std::string& nodes)
{
    void* const library = dlopen(ROAD_PRODUCER, RTLD_NOW | RTLD_LOCAL);
    Require(library != nullptr, library ? "" : dlerror());
    script = reinterpret_cast<scripted::GetScript>(dlsym(library, scripted::getScriptName))();
    script->Edit([&](scripted::Tree& tree) {
        for (std::size_t index = 0; index < tlTypes.size(); ++index)
            Describe(RemotePort(tree, index), tlTypes[index], nodes);
    });

    KORO_ProducerLibraryHandle producer = nullptr;
    KORO_SystemDescriptorHandle systemDescriptor = nullptr;
    KORO_SystemHandle system = nullptr;
    RequireSuccess(KORO_Library_Initialize());
    RequireSuccess(KORO_ProducerLibrary_Construct(ROAD_PRODUCER, sizeof ROAD_PRODUCER, &producer));
    RequireSuccess(KORO_ProducerLibrary_GetSystem(producer, &systemDescriptor));
    RequireSuccess(KORO_SystemDescriptor_OpenSystem(systemDescriptor, &system));
    RequireSuccess(KORO_System_UpdateInterfaces(system, 0));
    KORO_InterfaceHandle interface = nullptr;
    for (std::size_t index = 0; index < tlTypes.size(); ++index)
    {
        if (index % 2 == 0)
        {
            KORO_InterfaceDescriptorHandle interfaceDescriptor = nullptr;
            RequireSuccess(KORO_System_GetInterface(system, index / 2, &interfaceDescriptor));
            RequireSuccess(KORO_InterfaceDescriptor_OpenInterface(interfaceDescriptor, &interface));
            RequireSuccess(KORO_Interface_UpdateDevices(interface, 0));
        }
        RoadCamera camera{};
        camera.id = "if" + std::to_string(index / 2) + "-dev" + std::to_string(index % 2);
        KORO_DeviceDescriptorHandle deviceDescriptor = nullptr;
        KORO_RemoteDeviceHandle remoteDevice = nullptr;
        KORO_ModuleHandle module = nullptr;
        KORO_DataStreamDescriptorHandle streamDescriptor = nullptr;
        KORO_EventSupportingModuleHandle events = nullptr;
        RequireSuccess(KORO_Interface_GetDevice(interface, index % 2, &deviceDescriptor));
        RequireSuccess(
            KORO_DeviceDescriptor_OpenDevice(deviceDescriptor, GenTL::DEVICE_ACCESS_EXCLUSIVE, &camera.device));
        RequireSuccess(KORO_Device_GetRemoteDevice(camera.device, &remoteDevice));
        RequireSuccess(KORO_RemoteDevice_ToModule(remoteDevice, &module));
        RequireSuccess(KORO_Module_GetNodeMap(module, 0, &camera.map));
        RequireSuccess(KORO_Device_GetDataStream(camera.device, 0, &streamDescriptor));
        RequireSuccess(KORO_DataStreamDescriptor_OpenDataStream(streamDescriptor, &camera.stream));
        RequireSuccess(KORO_DataStream_StartAcquisitionInfinite(camera.stream, GenTL::ACQ_START_FLAGS_DEFAULT));
        RequireSuccess(KORO_Device_ToEventSupportingModule(camera.device, &events));
        RequireSuccess(KORO_EventSupportingModule_EnableEvents(events, GenTL::EVENT_REMOTE_DEVICE, &camera.controller));
        cameras.push_back(camera);
    }
    script->KeepJournal(false);
}

std::size_t CameraRoad::Number(const std::uint8_t*& data, std::size_t& size, std::size_t bytes)
{
    std::size_t number = 0;
    for (std::size_t i = 0; i < bytes && size > 0; ++i, --size)
        number |= static_cast<std::size_t>(*data++) << (8 * i);
    return number;
}

std::vector<std::uint8_t> CameraRoad::Piece(const std::uint8_t*& data, std::size_t& size)
{
    const std::size_t wanted = Number(data, size, 2);
    const std::size_t length = std::min(wanted, size);
    const std::vector<std::uint8_t> piece(data, data + length);
    data += length;
    size -= length;
    return piece;
}

} // namespace koro::fuzz

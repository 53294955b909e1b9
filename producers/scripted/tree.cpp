#include "producers/scripted/tree.h"

#include <cstdio>

namespace scripted
{

using namespace GenTL;

namespace
{

constexpr std::uint64_t descriptionAddress = 0x10000;

std::string Description(const std::string& nodes, const std::string& portName)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<RegisterDescription ModelName=\"Scripted\" VendorName=\"ZVR\" ToolTip=\"\" StandardNameSpace=\"None\" "
           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" "
           "MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"\" VersionGuid=\"\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
           "  " +
           nodes + "\n  <Port Name=\"" + portName + "\"/>\n</RegisterDescription>\n";
}

std::string LocalURL(std::size_t size)
{
    char url[64];
    std::snprintf(url, sizeof url, "local:scripted.xml;%llX;%zX", 0ULL + descriptionAddress, size);
    return url;
}

Port MakePort(const std::string& id, const std::string& module, const std::string& portName)
{
    Port port;
    port.info = {
        {PORT_INFO_ID, Text(id)},
        {PORT_INFO_VENDOR, Text("ZVR")},
        {PORT_INFO_MODEL, Text("Scripted")},
        {PORT_INFO_TLTYPE, Text("GEV")},
        {PORT_INFO_MODULE, Text(module)},
        {PORT_INFO_LITTLE_ENDIAN, Bool8(true)},
        {PORT_INFO_BIG_ENDIAN, Bool8(false)},
        {PORT_INFO_ACCESS_READ, Bool8(true)},
        {PORT_INFO_ACCESS_WRITE, Bool8(true)},
        {PORT_INFO_ACCESS_NA, Bool8(false)},
        {PORT_INFO_ACCESS_NI, Bool8(false)},
        {PORT_INFO_VERSION, Text("1.0.0")},
        {PORT_INFO_PORTNAME, Text(portName)},
    };
    port.registers = {{0, std::string(64, '\0')}};
    Describe(port, "<Category Name=\"Root\"/>");
    return port;
}

} // namespace

void Describe(Port& port, const std::string& nodes)
{
    const std::string portName = port.info.at(PORT_INFO_PORTNAME).bytes.c_str();
    const std::string description = Description(nodes, portName);
    port.urls.assign(
        1, {
               {URL_INFO_URL, Text(LocalURL(description.size()))},
               {URL_INFO_SCHEMA_VER_MAJOR, Int32(1)},
               {URL_INFO_SCHEMA_VER_MINOR, Int32(1)},
               {URL_INFO_FILE_VER_MAJOR, Int32(1)},
               {URL_INFO_FILE_VER_MINOR, Int32(0)},
               {URL_INFO_FILE_VER_SUBMINOR, Int32(0)},
               {URL_INFO_FILE_SHA1_HASH, Bytes(INFO_DATATYPE_BUFFER, std::string(20, '\x5a'))},
               {URL_INFO_FILE_REGISTER_ADDRESS, UInt64(descriptionAddress)},
               {URL_INFO_FILE_SIZE, UInt64(description.size())},
               {URL_INFO_SCHEME, Int32(URL_SCHEME_LOCAL)},
               {URL_INFO_FILENAME, Text("scripted.xml")},
           });
    port.registers[descriptionAddress] = description;
}

std::shared_ptr<Stream> MakeStream(const std::string& id)
{
    auto stream = std::make_shared<Stream>();
    stream->id = id;
    stream->info = {
        {STREAM_INFO_ID, Text(id)},
        {STREAM_INFO_PAYLOAD_SIZE, Size(Frame().bytes.size())},
        {STREAM_INFO_DEFINES_PAYLOADSIZE, Bool8(true)},
        {STREAM_INFO_TLTYPE, Text("GEV")},
        {STREAM_INFO_NUM_CHUNKS_MAX, Size(8)},
        {STREAM_INFO_BUF_ANNOUNCE_MIN, Size(1)},
        {STREAM_INFO_BUF_ALIGNMENT, Size(1)},
    };
    stream->port = MakePort(id, "TLDataStream", "StreamPort");
    return stream;
}

std::shared_ptr<Device> MakeDevice(const std::string& id)
{
    auto device = std::make_shared<Device>();
    device->id = id;
    device->info = {
        {DEVICE_INFO_ID, Text(id)},
        {DEVICE_INFO_VENDOR, Text("ZVR")},
        {DEVICE_INFO_MODEL, Text("Scripted camera")},
        {DEVICE_INFO_TLTYPE, Text("GEV")},
        {DEVICE_INFO_DISPLAYNAME, Text("ZVR Scripted camera (" + id + ")")},
        {DEVICE_INFO_ACCESS_STATUS, Int32(DEVICE_ACCESS_STATUS_READWRITE)},
        {DEVICE_INFO_USER_DEFINED_NAME, Text("user of " + id)},
        {DEVICE_INFO_SERIAL_NUMBER, Text("serial of " + id)},
        {DEVICE_INFO_VERSION, Text("1.0.0")},
        {DEVICE_INFO_TIMESTAMP_FREQUENCY, UInt64(1'000'000'000)},
    };
    device->port = MakePort(id, "TLDevice", "DevicePort");
    device->remotePort = MakePort(id, "Device", "Device");
    device->streams.push_back(MakeStream(id + "-stream0"));
    return device;
}

std::shared_ptr<Interface> MakeInterface(const std::string& id, std::size_t deviceCount)
{
    auto interface = std::make_shared<Interface>();
    interface->id = id;
    interface->info = {
        {INTERFACE_INFO_ID, Text(id)},
        {INTERFACE_INFO_DISPLAYNAME, Text("Scripted interface (" + id + ")")},
        {INTERFACE_INFO_TLTYPE, Text("GEV")},
    };
    interface->port = MakePort(id, "TLInterface", "InterfacePort");
    for (std::size_t index = 0; index < deviceCount; ++index)
    {
        interface->devices.push_back(MakeDevice(id + "-dev" + std::to_string(index)));
    }
    return interface;
}

Tree MakeTree()
{
    Tree tree;
    tree.info = {
        {TL_INFO_ID, Text("scripted producer")},
        {TL_INFO_VENDOR, Text("ZVR")},
        {TL_INFO_MODEL, Text("Scripted")},
        {TL_INFO_VERSION, Text("1.0.0")},
        {TL_INFO_TLTYPE, Text("Mixed")},
        {TL_INFO_DISPLAYNAME, Text("ZVR scripted producer")},
        {TL_INFO_CHAR_ENCODING, Int32(TL_CHAR_ENCODING_ASCII)},
    };
    tree.port = MakePort(tree.id, "TLSystem", "TLPort");
    tree.interfaces = {MakeInterface("if0"), MakeInterface("if1")};
    return tree;
}

} // namespace scripted

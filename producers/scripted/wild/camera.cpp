#include "producers/scripted/wild/camera.h"

#include <cstring>
#include <vector>

namespace scripted::wild
{

using namespace GenTL;

namespace
{

constexpr std::uint64_t registers = 0x1000;
constexpr std::uint64_t widthAddress = registers;
constexpr std::uint64_t heightAddress = registers + 0x04;
constexpr std::uint64_t pixelFormatAddress = registers + 0x08;
constexpr std::uint64_t startAddress = registers + 0x0C;
constexpr std::uint64_t stopAddress = registers + 0x10;
constexpr std::uint64_t packetSizeAddress = registers + 0x14;
constexpr std::uint64_t exposureAddress = registers + 0x18;
constexpr std::uint64_t fileOperationAddress = registers + 0x20;
constexpr std::uint64_t fileAddress = registers + 0x28;
constexpr char fileContent[] = "the file"; // eight bytes
constexpr std::uint32_t mono8 = 0x01080001;
constexpr std::uint32_t firstPacketSize = 1500;

template <class T>
T Get(const Port& port, std::uint64_t address)
{
    T value;
    std::memcpy(&value, port.registers.at(registers).data() + (address - registers), sizeof value);
    return value;
}

template <class T>
void Set(Port& port, std::uint64_t address, T value)
{
    std::memcpy(port.registers.at(registers).data() + (address - registers), &value, sizeof value);
}

// A register of four bytes under the name of the feature that stands on it, with "Reg" behind.
std::string Register(
    const std::string& feature, std::uint64_t address, const std::string& port, const std::string& access = "RW")
{
    return "<IntReg Name=\"" + feature + "Reg\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>" + access + "</AccessMode><pPort>" + port +
           "</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

std::string Integer(
    const std::string& name, std::uint64_t address, const std::string& range, const std::string& port = "Device")
{
    return "<Integer Name=\"" + name + "\"><Streamable>Yes</Streamable><pValue>" + name + "Reg</pValue>" + range +
           "</Integer>" + Register(name, address, port);
}

std::string Command(const std::string& name, std::uint64_t address, const std::string& port = "Device")
{
    return "<Command Name=\"" + name + "\"><pValue>" + name + "Reg</pValue><CommandValue>1</CommandValue></Command>" +
           Register(name, address, port);
}

std::string Range(int minimum, int maximum, int increment)
{
    return "<Min>" + std::to_string(minimum) + "</Min><Max>" + std::to_string(maximum) + "</Max><Inc>" +
           std::to_string(increment) + "</Inc>";
}

// A number that the camera knows without a register.
std::string Constant(const std::string& name, int value)
{
    return "<Integer Name=\"" + name + "\"><ImposedAccessMode>RO</ImposedAccessMode><Value>" + std::to_string(value) +
           "</Value>" + Range(0, value, 1) + "</Integer>";
}

// The entries have the values 0, 1, ...; the choice is the host's only.
std::string Choice(const std::string& name, const std::vector<std::string>& entries, const std::string& access = "RW")
{
    std::string nodes = "<Enumeration Name=\"" + name + "\"><ImposedAccessMode>" + access + "</ImposedAccessMode>";
    for (std::size_t value = 0; value < entries.size(); ++value)
        nodes += "<EnumEntry Name=\"" + entries[value] + "\"><Value>" + std::to_string(value) + "</Value></EnumEntry>";
    return nodes + "<Value>0</Value></Enumeration>";
}

// One file, which can be read as a whole, and where each operation succeeds at once.
std::string FileNodes()
{
    constexpr int size = sizeof fileContent - 1;
    return "<Category Name=\"FileAccessControl\"><pFeature>FileSelector</pFeature>"
           "<pFeature>FileOperationSelector</pFeature><pFeature>FileOperationExecute</pFeature>"
           "<pFeature>FileOpenMode</pFeature><pFeature>FileAccessBuffer</pFeature>"
           "<pFeature>FileAccessOffset</pFeature><pFeature>FileAccessLength</pFeature>"
           "<pFeature>FileOperationStatus</pFeature><pFeature>FileOperationResult</pFeature>"
           "<pFeature>FileSize</pFeature></Category>" +
           Choice("FileSelector", {"Notes"}) + Choice("FileOperationSelector", {"Open", "Close", "Read"}) +
           Choice("FileOpenMode", {"Read"}) + Choice("FileOperationStatus", {"Success"}, "RO") +
           "<Integer Name=\"FileAccessOffset\"><Value>0</Value></Integer>"
           "<Integer Name=\"FileAccessLength\"><Value>0</Value></Integer>" +
           Constant("FileOperationResult", size) + Constant("FileSize", size) +
           "<Register Name=\"FileAccessBuffer\"><Address>" + std::to_string(fileAddress) + "</Address><Length>" +
           std::to_string(size) +
           "</Length><AccessMode>RO</AccessMode><pPort>Device</pPort></Register>"
           "<Command Name=\"FileOperationExecute\"><pValue>FileOperationExecuteReg</pValue>"
           "<CommandValue>1</CommandValue></Command>" +
           Register("FileOperationExecute", fileOperationAddress, "Device", "WO");
}

std::string CameraNodes()
{
    return "<Category Name=\"Root\"><pFeature>ImageFormatControl</pFeature><pFeature>AcquisitionControl</pFeature>"
           "<pFeature>TransportLayerControl</pFeature><pFeature>FileAccessControl</pFeature></Category>"
           "<Category Name=\"ImageFormatControl\"><pFeature>Width</pFeature><pFeature>Height</pFeature>"
           "<pFeature>PixelFormat</pFeature></Category>"
           "<Category Name=\"AcquisitionControl\"><pFeature>AcquisitionStart</pFeature>"
           "<pFeature>AcquisitionStop</pFeature><pFeature>ExposureTime</pFeature></Category>"
           "<Category Name=\"TransportLayerControl\"><pFeature>PayloadSize</pFeature>"
           "<pFeature>TLParamsLocked</pFeature><pFeature>GevSCPSPacketSize</pFeature></Category>" +
           Integer("Width", widthAddress, Range(8, 64, 8)) + Integer("Height", heightAddress, Range(2, 48, 2)) +
           "<Enumeration Name=\"PixelFormat\"><Streamable>Yes</Streamable>"
           "<EnumEntry Name=\"Mono8\"><Value>0x01080001</Value></EnumEntry><pValue>PixelFormatReg</pValue>"
           "</Enumeration>" +
           Register("PixelFormat", pixelFormatAddress, "Device") + Command("AcquisitionStart", startAddress) +
           Command("AcquisitionStop", stopAddress) +
           "<Float Name=\"ExposureTime\"><Streamable>Yes</Streamable><pValue>ExposureTimeReg</pValue><Min>10</Min>"
           "<Max>100000</Max><Unit>us</Unit></Float>"
           "<FloatReg Name=\"ExposureTimeReg\"><Address>" +
           std::to_string(exposureAddress) +
           "</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
           "<Endianess>LittleEndian</Endianess></FloatReg>"
           "<IntSwissKnife Name=\"PayloadSize\"><pVariable Name=\"W\">WidthReg</pVariable>"
           "<pVariable Name=\"H\">HeightReg</pVariable><Formula>W * H</Formula></IntSwissKnife>"
           "<Integer Name=\"TLParamsLocked\"><Value>0</Value><Min>0</Min><Max>1</Max></Integer>" +
           Integer("GevSCPSPacketSize", packetSizeAddress, Range(576, 9000, 4)) + FileNodes();
}

// One feature of a host module, in its category.
void DescribeBy(Port& port, const std::string& feature, const std::string& nodes)
{
    port.registers[registers] = std::string(64, '\0');
    Describe(
        port, "<Category Name=\"Root\"><pFeature>HostControl</pFeature></Category><Category Name=\"HostControl\">"
              "<pFeature>" +
                  feature + "</pFeature></Category>" + nodes);
}

// What a write has changed; runs under the script's lock.
void TakeOver(Camera& camera, Port& port, Stream& stream)
{
    camera.width = Get<std::uint32_t>(port, widthAddress);
    camera.height = Get<std::uint32_t>(port, heightAddress);
    camera.packetSize = Get<std::uint32_t>(port, packetSizeAddress);
    stream.info[STREAM_INFO_PAYLOAD_SIZE] = Size(std::size_t{camera.width} * camera.height);
    if (Get<std::uint32_t>(port, startAddress) != 0) camera.isStarted = true;
    if (Get<std::uint32_t>(port, stopAddress) != 0) camera.isStarted = false;
    Set(port, startAddress, std::uint32_t{0});
    Set(port, stopAddress, std::uint32_t{0});
}

void SetFirstValues(const Camera& camera, Port& port)
{
    port.registers[registers] = std::string(64, '\0');
    Set(port, widthAddress, camera.width.load());
    Set(port, heightAddress, camera.height.load());
    Set(port, pixelFormatAddress, mono8);
    Set(port, packetSizeAddress, camera.packetSize.load());
    Set(port, exposureAddress, 5000.0);
    std::memcpy(port.registers[registers].data() + (fileAddress - registers), fileContent, sizeof fileContent - 1);
}

} // namespace

Frame Camera::Picture() const
{
    const std::size_t columns = width;
    const std::size_t lines = height;
    Frame frame;
    frame.bytes.resize(columns * lines);
    for (std::size_t pixel = 0; pixel < frame.bytes.size(); ++pixel)
        frame.bytes[pixel] = static_cast<char>(pixel % columns + pixel / columns + pictures);
    const std::uint32_t size = packetSize;
    std::memcpy(frame.bytes.data(), &size, sizeof size);
    frame.info = {
        {BUFFER_INFO_WIDTH, Size(columns)},
        {BUFFER_INFO_HEIGHT, Size(lines)},
        {BUFFER_INFO_DELIVERED_IMAGEHEIGHT, Size(lines)},
    };
    return frame;
}

std::shared_ptr<Device> MakeCameraDevice(Camera& camera, const std::function<void()>& changed)
{
    auto device = MakeDevice(camera.id);
    device->info[DEVICE_INFO_MODEL] = Text("Wild camera");
    device->info[DEVICE_INFO_SERIAL_NUMBER] = Text("W-" + camera.id);
    device->info[DEVICE_INFO_USER_DEFINED_NAME] = Text("wild " + camera.id);
    Stream& stream = *device->streams.front(); // lives as long as the device, which has the port
    stream.info[STREAM_INFO_PAYLOAD_SIZE] = Size(std::size_t{camera.width} * camera.height);
    SetFirstValues(camera, device->remotePort);
    Describe(device->remotePort, CameraNodes());
    device->remotePort.written = [&camera, &stream, changed](Port& port, std::uint64_t) -> GC_ERROR {
        TakeOver(camera, port, stream);
        changed();
        return GC_ERR_SUCCESS;
    };
    DescribeBy(device->port, "LinkTimeout", Integer("LinkTimeout", registers, Range(0, 10000, 1), "DevicePort"));
    DescribeBy(stream.port, "ResendLimit", Integer("ResendLimit", registers, Range(0, 1000, 1), "StreamPort"));
    return device;
}

void DescribeHost(Tree& tree)
{
    DescribeBy(tree.port, "StreamPacketSize", Integer("StreamPacketSize", registers, Range(576, 9000, 4), "TLPort"));
    Set(tree.port, registers, firstPacketSize);
    for (const auto& interface : tree.interfaces)
    {
        DescribeBy(
            interface->port, "ForcedAddress",
            Integer("ForcedAddress", registers, "<Representation>IPV4Address</Representation>", "InterfacePort"));
    }
}

std::uint32_t TakeHostPacketSize(Tree& tree)
{
    const auto size = Get<std::uint32_t>(tree.port, registers);
    for (const auto& interface : tree.interfaces)
    {
        for (const auto& device : interface->devices)
            Set(device->remotePort, packetSizeAddress, size);
    }
    return size;
}

} // namespace scripted::wild

// The firmware features of a scripted camera, over registers in plain memory, and update files that fit it.
//
// A file operation is done as soon as it is started, with the status that the register contains: all written bytes are
// accepted, and the last written block stays in the buffer.
#pragma once

#include "producers/scripted/script.h"
#include "tests/boundary/described_camera.h"
#include "tests/support/update_files.h"

#include <cstdint>
#include <string>
#include <vector>

namespace koro::test::firmware
{

constexpr std::uint64_t vendorAddress = 0x200;
constexpr std::uint64_t versionAddress = 0x240;
constexpr std::uint64_t gainAddress = 0x280;
constexpr std::uint64_t resetAddress = 0x284;
constexpr std::uint64_t selectorAddress = 0x290;
constexpr std::uint64_t operationAddress = 0x294;
constexpr std::uint64_t openModeAddress = 0x298;
constexpr std::uint64_t executeAddress = 0x29c;
constexpr std::uint64_t offsetAddress = 0x2a0;
constexpr std::uint64_t lengthAddress = 0x2a4;
constexpr std::uint64_t statusAddress = 0x2a8;
constexpr std::uint64_t bufferAddress = 0x300;
constexpr std::size_t bufferLength = 64;
constexpr std::uint64_t areaEnd = bufferAddress + bufferLength;

inline std::string Place(std::uint64_t address, std::size_t length, const std::string& mode)
{
    return "<Address>" + std::to_string(address) + "</Address><Length>" + std::to_string(length) +
           "</Length><AccessMode>" + mode + "</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>";
}

inline std::string Number(const std::string& name, std::uint64_t address, const std::string& mode = "RW")
{
    return "<IntReg Name=\"" + name + "\">" + Place(address, 4, mode) +
           "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

inline std::string Text(const std::string& name, std::uint64_t address)
{
    return "<StringReg Name=\"" + name + "\">" + Place(address, 64, "RO") + "</StringReg>";
}

inline std::string Choice(const std::string& name, std::uint64_t address, const std::vector<std::string>& entries)
{
    std::string text = "<Enumeration Name=\"" + name + "\">";
    for (std::size_t index = 0; index < entries.size(); ++index)
        text += "<EnumEntry Name=\"" + entries[index] + "\"><Value>" + std::to_string(index) + "</Value></EnumEntry>";
    return text + "<pValue>" + name + "Reg</pValue></Enumeration>" + Number(name + "Reg", address);
}

// A command over a register that cannot be read, so that it is done at once.
inline std::string Command(const std::string& name, std::uint64_t address)
{
    return "<Command Name=\"" + name + "\"><pValue>" + name + "Reg</pValue><CommandValue>1</CommandValue></Command>" +
           Number(name + "Reg", address, "WO");
}

inline std::string CameraNodes()
{
    return Text("DeviceVendorName", vendorAddress) + Text("DeviceFirmwareVersion", versionAddress) +
           Number("Gain", gainAddress) + Command("DeviceReset", resetAddress) +
           Choice("FileSelector", selectorAddress, {"UserFile", "Firmware"}) +
           Choice("FileOperationSelector", operationAddress, {"Open", "Close", "Read", "Write", "Delete"}) +
           Choice("FileOpenMode", openModeAddress, {"Read", "Write", "ReadWrite"}) +
           Choice("FileOperationStatus", statusAddress, {"Success", "Failure"}) +
           Number("FileAccessOffset", offsetAddress) + Number("FileAccessLength", lengthAddress) +
           Number("FileOperationResult", lengthAddress, "RO") + Command("FileOperationExecute", executeAddress) +
           "<Register Name=\"FileAccessBuffer\">" + Place(bufferAddress, bufferLength, "RW") + "</Register>";
}

// A node of the transport layer over the register 0 of the device's own port.
inline std::string RetriesNode(int maximum, const std::string& mode = "RW")
{
    return "<Integer Name=\"ControlChannelNumRetriesOnTimeout\"><pValue>RetriesReg</pValue><Min>0</Min><Max>" +
           std::to_string(maximum) +
           "</Max></Integer><IntReg Name=\"RetriesReg\"><Address>0</Address><Length>4</Length><AccessMode>" + mode +
           "</AccessMode><pPort>DevicePort</pPort><Cachable>NoCache</Cachable><Sign>Unsigned</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

inline void SetText(scripted::Port& port, std::uint64_t address, const std::string& text)
{
    std::string padded = text;
    padded.resize(64, '\0');
    port.registers.at(vendorAddress).replace(address - vendorAddress, padded.size(), padded);
}

inline void MakeUpdatable(scripted::Device& device, const std::string& nodes = CameraNodes())
{
    DescribePort(device.remotePort, DescriptionOf(nodes));
    device.remotePort.registers[vendorAddress] = std::string(areaEnd - vendorAddress, '\0');
    SetText(device.remotePort, vendorAddress, "Acme Vision");
    SetText(device.remotePort, versionAddress, "V1.2");
}

inline std::uint32_t RegisterOf(const scripted::Port& port, std::uint64_t address)
{
    const std::uint64_t start = address < vendorAddress ? 0 : vendorAddress;
    std::uint32_t value = 0;
    for (std::size_t byte = 0; byte < sizeof value; ++byte)
    {
        value |= std::uint32_t{static_cast<std::uint8_t>(port.registers.at(start).at(address - start + byte))}
                 << (8 * byte);
    }
    return value;
}

// Steps of a procedure.
inline std::string WriteGain(const std::string& value)
{
    return Step("FeatureWrite", "<FeatureName>Gain</FeatureName><Value>" + value + "</Value>");
}

inline std::string UploadStep(const std::string& file, const std::string& deviceFile = "Firmware")
{
    return Step("FileUpload", "<DeviceFileName>" + deviceFile + "</DeviceFileName><FileName>" + file + "</FileName>");
}

inline std::string ResetStep(const std::string& delay_ms = "0")
{
    return Step("DeviceReset", "<DeviceDiscoveryDelayMs>" + delay_ms + "</DeviceDiscoveryDelayMs>");
}

// The line of the journal for a write to a register of the camera.
inline std::string Written(std::uint64_t address, std::size_t size = 4, const std::string& device = "if0-dev0")
{
    return "GCWritePort(" + device + "-remote, " + std::to_string(address) + ", " + std::to_string(size) + ")";
}

} // namespace koro::test::firmware

// DescribedCamera: an open tree whose remote device has the description that the test writes, over registers of the
// test's.
#pragma once

#include "tests/boundary/tree_test.h"
#include "tests/support/journal.h"

#include <cstdint>
#include <string>
#include <vector>

namespace koro::test
{

// A whole description around the nodes that a test is about; the port is that of a remote device.
inline std::string DescriptionOf(const std::string& nodes, const std::string& portName = "Device")
{
    return "<RegisterDescription ModelName=\"Test\" VendorName=\"ZVR\" ToolTip=\"\" StandardNameSpace=\"None\" "
           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" "
           "MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"\" VersionGuid=\"\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">" +
           nodes + "<Port Name=\"" + portName + "\"/></RegisterDescription>";
}

// An integer over four bytes at `address`, which the producer keeps.
inline std::string IntRegister(const std::string& name, std::uint64_t address, const std::string& elements = "")
{
    return "<IntReg Name=\"" + name + "\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>" + elements +
           "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

// One node of each principal interface, named by it; the enumeration's entry is called "On".
inline const std::string oneOfEach =
    "<Category Name=\"Category\"><pFeature>Integer</pFeature></Category>"
    "<Integer Name=\"Integer\"><Value>1</Value></Integer>"
    "<Boolean Name=\"Boolean\"><Value>true</Value></Boolean>"
    "<Command Name=\"Command\"><pValue>Integer</pValue><CommandValue>1</CommandValue></Command>"
    "<Float Name=\"Float\"><Value>1.5</Value><Inc>0.5</Inc></Float>"
    "<StringReg Name=\"String\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort></StringReg>"
    "<Register Name=\"Register\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort></Register>"
    "<Enumeration Name=\"Enumeration\"><EnumEntry Name=\"On\"><Value>1</Value></EnumEntry><Value>1</Value>"
    "</Enumeration>"
    "<Node Name=\"Plain\"/>";

// One URL, which contains the address and the size of the description.
inline void DescribePort(
    scripted::Port& port, const std::string& description, const std::string& fileName = "test.xml",
    std::uint64_t descriptionAddress = 0x20000)
{
    port.registers[descriptionAddress] = description;
    port.urls.assign(
        1, {{GenTL::URL_INFO_URL, scripted::Text("local:" + fileName + ";20000;0")},
            {GenTL::URL_INFO_SCHEME, scripted::Int32(GenTL::URL_SCHEME_LOCAL)},
            {GenTL::URL_INFO_FILE_REGISTER_ADDRESS, scripted::UInt64(descriptionAddress)},
            {GenTL::URL_INFO_FILE_SIZE, scripted::UInt64(description.size())},
            {GenTL::URL_INFO_FILENAME, scripted::Text(fileName)}});
}

class DescribedCamera : public TreeTest
{
protected:
    static constexpr std::uint64_t descriptionAddress = 0x20000;

    // The port of the first camera, as the producer has it.
    static scripted::Port& RemotePort(scripted::Tree& edited) { return edited.interfaces[0]->devices[0]->remotePort; }

    // Opens the camera again with one URL: a description of these nodes, or any bytes.
    KORO_NodeMapHandle Describe(const std::string& nodes)
    {
        DescribeBy(DescriptionOf(nodes));
        return NodeMapOf(tree.remoteDevice);
    }
    void DescribeBy(const std::string& description, const std::string& fileName = "test.xml")
    {
        producer->Edit([&](scripted::Tree& edited) { DescribePort(RemotePort(edited), description, fileName); });
        Reopen();
    }

    // Opens the camera again, which fetches the descriptions. Everything that was open below it has ended.
    void Reopen()
    {
        Require(KORO_Device_Destruct(tree.device));
        Open();
    }

    void Open()
    {
        tree.device =
            Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, OpenTree::exclusiveAccess);
        tree.remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);
    }

    // The transfers since the journal was cleared.
    std::vector<std::string> Reads() const { return CallsOf(producer->Journal(), {"GCReadPort"}); }

    // A register of four bytes, least significant one first.
    void SetRegister(std::uint64_t address, std::uint32_t value) const
    {
        producer->Edit([&](scripted::Tree& edited) {
            std::string& bytes = RemotePort(edited).registers[0];
            for (std::size_t byte = 0; byte < sizeof value; ++byte)
                bytes.at(address + byte) = static_cast<char>(value >> (8 * byte));
        });
    }

    static KORO_NodeMapHandle NodeMapOf(KORO_RemoteDeviceHandle remoteDevice, std::size_t index = 0)
    {
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, remoteDevice);
        return Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, index);
    }

    static KORO_NodeHandle Find(KORO_NodeMapHandle map, const std::string& name)
    {
        return Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, name.c_str(), name.size() + 1);
    }
};

} // namespace koro::test

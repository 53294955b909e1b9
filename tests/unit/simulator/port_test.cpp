// Ports: registers, information, URLs.
#include "tests/unit/simulator/producer.h"

#include <cstring>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace koro::simulator::test
{
namespace
{

constexpr std::uint64_t modelRegister = 0x80;
constexpr std::uint64_t userNameRegister = 0x240;
constexpr std::uint64_t widthRegister = 0x300;
constexpr std::uint64_t paramsLockedRegister = 0x318;
constexpr std::uint64_t descriptionAddress = 0x10000;

// The registers of a GigE Vision camera are big-endian.
std::uint32_t Swapped(std::uint32_t value)
{
    return __builtin_bswap32(value);
}

TEST(SimulatorPort, EveryModuleHasADescriptionThatTheURLLeadsTo)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const std::pair<void*, const char*> modules[] = {
        {tree.system, "system"}, {tree.interface, "interface"}, {tree.device, "device"}, {tree.stream, "stream"}};
    for (const auto& [handle, name] : modules)
    {
        std::uint32_t number = 0;
        ASSERT_EQ(producer.GCGetNumPortURLs(handle, &number), GC_ERR_SUCCESS);
        EXPECT_EQ(number, 1U);
        std::size_t size = producer.Get<std::uint64_t>(producer.GCGetPortURLInfo, handle, 0U, URL_INFO_FILE_SIZE);
        const auto address =
            producer.Get<std::uint64_t>(producer.GCGetPortURLInfo, handle, 0U, URL_INFO_FILE_REGISTER_ADDRESS);
        std::string text(size, '\0');
        ASSERT_EQ(producer.GCReadPort(handle, address, text.data(), &size), GC_ERR_SUCCESS);
        std::stringstream file;
        file << std::ifstream(std::string(KORO_SIMULATOR_DESCRIPTIONS) + "/koro_simulator_" + name + ".xml").rdbuf();
        EXPECT_EQ(text, file.str());
        EXPECT_FALSE(text.empty());
    }
}

TEST(SimulatorPort, URLNamesFileAddressAndLengthInHexadecimal)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const auto size = producer.Get<std::uint64_t>(producer.GCGetPortURLInfo, tree.system, 0U, URL_INFO_FILE_SIZE);
    std::ostringstream expected;
    expected << "local:koro_simulator_system.xml;10000;" << std::uppercase << std::hex << size;
    EXPECT_EQ(producer.Get(producer.GCGetPortURLInfo, tree.system, 0U, URL_INFO_URL), expected.str());
    char list[256] = {};
    std::size_t bytes = sizeof list;
    ASSERT_EQ(producer.GCGetPortURL(tree.system, list, &bytes), GC_ERR_SUCCESS);
    EXPECT_EQ(list, expected.str() + "?SchemaVersion=1.1.0");
    EXPECT_EQ(bytes, std::strlen(list) + 2);
}

TEST(SimulatorPort, URLInformationIsComplete)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const auto number = [&](URL_INFO_CMD command) {
        return producer.Get<std::int32_t>(producer.GCGetPortURLInfo, tree.remote, 0U, command);
    };
    EXPECT_EQ(number(URL_INFO_SCHEMA_VER_MAJOR), 1);
    EXPECT_EQ(number(URL_INFO_SCHEMA_VER_MINOR), 1);
    EXPECT_EQ(number(URL_INFO_FILE_VER_MAJOR), 1);
    EXPECT_EQ(number(URL_INFO_FILE_VER_MINOR), 0);
    EXPECT_EQ(number(URL_INFO_FILE_VER_SUBMINOR), 0);
    EXPECT_EQ(number(URL_INFO_SCHEME), URL_SCHEME_LOCAL);
    EXPECT_EQ(producer.Get(producer.GCGetPortURLInfo, tree.remote, 0U, URL_INFO_FILENAME), "koro_simulator_gev.xml");
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    std::size_t size = 0;
    ASSERT_EQ(
        producer.GCGetPortURLInfo(tree.remote, 0, URL_INFO_FILE_SHA1_HASH, &type, nullptr, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(type, INFO_DATATYPE_BUFFER);
    EXPECT_EQ(size, 20U);
    EXPECT_EQ(producer.Result(producer.GCGetPortURLInfo, tree.remote, 1U, URL_INFO_URL), GC_ERR_INVALID_INDEX);
}

TEST(SimulatorPort, InformationNamesModuleAndPort)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const auto text = [&](void* handle, PORT_INFO_CMD command) {
        return producer.Get(producer.GCGetPortInfo, handle, command);
    };
    EXPECT_EQ(text(tree.system, PORT_INFO_MODULE), "TLSystem");
    EXPECT_EQ(text(tree.interface, PORT_INFO_MODULE), "TLInterface");
    EXPECT_EQ(text(tree.device, PORT_INFO_MODULE), "TLDevice");
    EXPECT_EQ(text(tree.stream, PORT_INFO_MODULE), "TLDataStream");
    EXPECT_EQ(text(tree.remote, PORT_INFO_MODULE), "Device");
    EXPECT_EQ(text(tree.system, PORT_INFO_PORTNAME), "TLPort");
    EXPECT_EQ(text(tree.interface, PORT_INFO_PORTNAME), "InterfacePort");
    EXPECT_EQ(text(tree.device, PORT_INFO_PORTNAME), "DevicePort");
    EXPECT_EQ(text(tree.stream, PORT_INFO_PORTNAME), "StreamPort");
    EXPECT_EQ(text(tree.remote, PORT_INFO_PORTNAME), "Device");
    EXPECT_EQ(text(tree.remote, PORT_INFO_ID), text(tree.device, PORT_INFO_ID));
    EXPECT_EQ(text(tree.remote, PORT_INFO_TLTYPE), "GEV");
}

TEST(SimulatorPort, BufferHasNoPortButSaysWhoItIs)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce(false);
    std::ostringstream address;
    address << std::uppercase << std::hex
            << reinterpret_cast<std::uintptr_t>(tree.BufferInfo<void*>(buffer, BUFFER_INFO_BASE));
    EXPECT_EQ(producer.Get(producer.GCGetPortInfo, buffer, PORT_INFO_ID), address.str());
    EXPECT_EQ(producer.Get<bool8_t>(producer.GCGetPortInfo, buffer, PORT_INFO_ACCESS_NI), 1);
    EXPECT_EQ(producer.Get<bool8_t>(producer.GCGetPortInfo, tree.remote, PORT_INFO_ACCESS_NI), 0);
    std::uint32_t number = 0;
    std::size_t size = 1;
    char byte = 0;
    EXPECT_EQ(producer.GCGetNumPortURLs(buffer, &number), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(producer.GCReadPort(buffer, 0, &byte, &size), GC_ERR_NOT_IMPLEMENTED);
}

TEST(SimulatorPort, RegistersAreReadAtAnyAlignmentAndAcrossRegions)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    char text[6] = {};
    std::size_t size = 5;
    ASSERT_EQ(producer.GCReadPort(tree.remote, modelRegister + 1, text, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "imula");
    std::uint32_t shape[2] = {};
    size = sizeof shape;
    ASSERT_EQ(producer.GCReadPort(tree.remote, widthRegister, shape, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(shape[0], Swapped(16));
    EXPECT_EQ(shape[1], Swapped(4));
}

TEST(SimulatorPort, WritesGoWhereTheyMayAndRefusalsNameTheReason)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    char name[] = "right";
    std::size_t size = sizeof name;
    ASSERT_EQ(producer.GCWritePort(tree.remote, userNameRegister, name, &size), GC_ERR_SUCCESS);
    char read[sizeof name] = {};
    ASSERT_EQ(producer.GCReadPort(tree.remote, userNameRegister, read, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(read, name);
    EXPECT_EQ(producer.GCWritePort(tree.remote, modelRegister, name, &size), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(producer.GCWritePort(tree.remote, 0x7000, name, &size), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(producer.GCReadPort(tree.remote, UINT64_MAX, read, &size), GC_ERR_INVALID_ADDRESS);
    const std::uint32_t two = Swapped(2);
    size = sizeof two;
    EXPECT_EQ(producer.GCWritePort(tree.remote, paramsLockedRegister, &two, &size), GC_ERR_INVALID_VALUE);
}

TEST(SimulatorPort, AccessThatEndsOutsideReadsAndWritesNothing)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    // Behind the user name's 64 bytes comes a register that is read-only, behind the description nothing.
    std::vector<char> bytes(65, 'x');
    std::size_t size = bytes.size();
    EXPECT_EQ(producer.GCWritePort(tree.remote, userNameRegister, bytes.data(), &size), GC_ERR_ACCESS_DENIED);
    size = 4096;
    bytes.assign(size, 'x');
    EXPECT_EQ(producer.GCReadPort(tree.remote, 0xC0, bytes.data(), &size), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(bytes[0], 'x');
    char first = 0;
    size = 1;
    ASSERT_EQ(producer.GCReadPort(tree.remote, userNameRegister, &first, &size), GC_ERR_SUCCESS);
    EXPECT_EQ(first, 'l');
}

TEST(SimulatorPort, ZeroBytesSucceedAndNullBufferDoesNot)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    char byte = 0;
    std::size_t size = 0;
    EXPECT_EQ(producer.GCReadPort(tree.remote, 0, &byte, &size), GC_ERR_SUCCESS);
    size = 1;
    EXPECT_EQ(producer.GCReadPort(tree.remote, 0, nullptr, &size), GC_ERR_INVALID_PARAMETER);
    EXPECT_EQ(producer.GCReadPort(tree.remote, 0, &byte, nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST(SimulatorPort, StackedAccessStopsAtTheFirstFailureAndTellsHowFarItCame)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    PORT_REGISTER_STACK_ENTRY entries[] = {
        {widthRegister, &width, 4}, {descriptionAddress - 4, &height, 4}, {widthRegister + 4, &height, 4}};
    std::size_t number = 3;
    EXPECT_EQ(producer.GCReadPortStacked(tree.remote, entries, &number), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(number, 1U);
    EXPECT_EQ(width, Swapped(16));
    EXPECT_EQ(height, 0U);
    std::uint32_t locked = Swapped(1);
    PORT_REGISTER_STACK_ENTRY write[] = {{paramsLockedRegister, &locked, 4}, {widthRegister, &locked, 4}};
    number = 2;
    EXPECT_EQ(producer.GCWritePortStacked(tree.remote, write, &number), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(number, 1U);
}

TEST(SimulatorPort, ReadOnlyDeviceRefusesWrites)
{
    const Producer producer(OneCamera());
    const Tree tree(producer);
    ASSERT_EQ(producer.DevClose(tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(producer.IFOpenDevice(tree.interface, "A", DEVICE_ACCESS_READONLY, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    std::uint32_t locked = 1;
    std::size_t size = sizeof locked;
    EXPECT_EQ(producer.GCWritePort(remote, paramsLockedRegister, &locked, &size), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(producer.Get<bool8_t>(producer.GCGetPortInfo, remote, PORT_INFO_ACCESS_WRITE), 0);
    EXPECT_EQ(producer.Get<bool8_t>(producer.GCGetPortInfo, remote, PORT_INFO_ACCESS_READ), 1);
}

} // namespace
} // namespace koro::simulator::test

#include "tests/boundary/tree_test.h"
#include "tests/support/journal.h"

#include <cstdint>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

class RemoteDevice : public TreeTest
{
protected:
    KORO_ModuleHandle Module() const { return Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice); }
};

} // namespace

TEST_F(RemoteDevice, LocalDeviceIsTheDeviceByItsHandle)
{
    EXPECT_EQ(Get<KORO_DeviceHandle>(KORO_RemoteDevice_GetLocalDevice, tree.remoteDevice), tree.device);
    EXPECT_EQ(Outcome(KORO_RemoteDevice_GetLocalDevice(tree.remoteDevice, nullptr)), NullPointer("deviceHandle"));
}

TEST_F(RemoteDevice, PortIsTheOneThatTheDeviceHandsOut)
{
    const auto port = Get<KORO_PortHandle>(KORO_Module_GetPort, Module());
    producer->ClearJournal();

    EXPECT_EQ(GetText(KORO_Port_GetName, port), "Device");
    EXPECT_EQ(GetText(KORO_Port_GetModuleName, port), "Device");
    EXPECT_EQ(
        producer->Journal().front(),
        "GCGetPortInfo(if0-dev0-remote, " + std::to_string(GenTL::PORT_INFO_PORTNAME) + ", size)");
}

TEST_F(RemoteDevice, ModuleTwiceIsTheSameHandle)
{
    EXPECT_EQ(Module(), Module());
    EXPECT_EQ(Outcome(KORO_RemoteDevice_ToModule(tree.remoteDevice, nullptr)), NullPointer("moduleHandle"));
}

TEST_F(RemoteDevice, HandlesEndWithTheDevice)
{
    const auto module = Module();
    const auto port = Get<KORO_PortHandle>(KORO_Module_GetPort, module);
    Require(KORO_Device_Destruct(tree.device));

    KORO_DeviceHandle device = nullptr;
    KORO_ModuleHandle again = nullptr;
    KORO_PortHandle portAgain = nullptr;
    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_RemoteDevice_GetLocalDevice(tree.remoteDevice, &device)), InvalidHandle("remoteDeviceHandle"));
    EXPECT_EQ(Outcome(KORO_RemoteDevice_ToModule(tree.remoteDevice, &again)), InvalidHandle("remoteDeviceHandle"));
    EXPECT_EQ(Outcome(KORO_Module_GetPort(module, &portAgain)), InvalidHandle("moduleHandle"));
    EXPECT_EQ(Outcome(KORO_Port_GetName(port, nullptr, &size)), InvalidHandle("portHandle"));
}

TEST_F(RemoteDevice, HandlesEndWithTheInterfaceTogetherWithTheDevice)
{
    const auto module = Module();
    Require(KORO_Interface_Destruct(tree.interface));

    KORO_DeviceHandle device = nullptr;
    KORO_PortHandle port = nullptr;
    EXPECT_EQ(
        Outcome(KORO_RemoteDevice_GetLocalDevice(tree.remoteDevice, &device)), InvalidHandle("remoteDeviceHandle"));
    EXPECT_EQ(Outcome(KORO_Module_GetPort(module, &port)), InvalidHandle("moduleHandle"));
}

TEST_F(RemoteDevice, NothingOfItIsClosed)
{
    producer->ClearJournal();
    Require(KORO_DataStream_Destruct(tree.stream));
    Require(KORO_Device_Destruct(tree.device));

    EXPECT_EQ(
        CallsOf(producer->Journal(), {"DevClose", "IFClose", "TLClose"}),
        std::vector<std::string>{"DevClose(if0-dev0)"});
}

} // namespace koro::test

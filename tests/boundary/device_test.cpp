#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"

#include <future>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

class Device : public TreeTest
{
protected:
    Device() { producer->ClearJournal(); }

    // A device whose streams nobody has listed.
    KORO_DeviceHandle ReopenDevice()
    {
        Require(KORO_Device_Destruct(tree.device));
        tree.device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, 4u);
        producer->ClearJournal();
        return tree.device;
    }

    KORO_DataStreamDescriptorHandle Stream(std::size_t index) const
    {
        return Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, tree.device, index);
    }
};

} // namespace

TEST_F(Device, TextsComeFromTheDevicesInformation)
{
    ExpectTextGetters(
        producer, "DevGetInfo", tree.device,
        {{1, "DEVICE_INFO_VENDOR", "vendorName", KORO_Device_GetVendorName},
         {2, "DEVICE_INFO_MODEL", "modelName", KORO_Device_GetModelName},
         {3, "DEVICE_INFO_TLTYPE", "tlType", KORO_Device_GetTLType},
         {4, "DEVICE_INFO_DISPLAYNAME", "displayName", KORO_Device_GetDisplayName},
         {6, "DEVICE_INFO_USER_DEFINED_NAME", "userDefinedName", KORO_Device_GetUserDefinedName},
         {7, "DEVICE_INFO_SERIAL_NUMBER", "serialNumber", KORO_Device_GetSerialNumber},
         {8, "DEVICE_INFO_VERSION", "version", KORO_Device_GetVersion}});
}

TEST_F(Device, NumbersComeFromTheDevicesInformation)
{
    ExpectNumberGetter<KORO_DeviceHandle, std::int32_t>(
        producer, {"DevGetInfo", 5, "DEVICE_INFO_ACCESS_STATUS"}, scripted::Int32(-7), "5 (INFO_DATATYPE_INT32)",
        "accessStatus", -7, KORO_Device_GetAccessStatus, tree.device);
    ExpectNumberGetter<KORO_DeviceHandle, std::uint64_t>(
        producer, {"DevGetInfo", 9, "DEVICE_INFO_TIMESTAMP_FREQUENCY"}, scripted::UInt64(0xFEDCBA9876543210),
        "8 (INFO_DATATYPE_UINT64)", "timestampTickFrequency", 0xFEDCBA9876543210, KORO_Device_GetTimestampTickFrequency,
        tree.device);
}

TEST_F(Device, RawInformationComesFromTheDevicesInformation)
{
    ExpectRawInfo(producer, "DevGetInfo", KORO_Device_GetInfo, tree.device);
}

TEST_F(Device, AccessStatusOfDeviceAndDescriptorAreAskedOnTheirOwnRoads)
{
    producer->SetInfo("DevGetInfo", 5, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_OPEN_READWRITE));
    producer->SetInfo("IFGetDeviceInfo", 5, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_BUSY));

    EXPECT_EQ(Get<std::int32_t>(KORO_Device_GetAccessStatus, tree.device), 5);
    EXPECT_EQ(Get<std::int32_t>(KORO_DeviceDescriptor_GetAccessStatus, tree.deviceDescriptor), 4);
}

TEST_F(Device, KeyAndIDAreStored)
{
    ExpectTextOut("key", producer.Path() + "|scripted producer|if0|if0-dev0", KORO_Device_GetKey, tree.device);
    ExpectTextOut("id", "if0-dev0", KORO_Device_GetID, tree.device);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(Device, ParentIsTheInterface)
{
    EXPECT_EQ(Get<KORO_InterfaceHandle>(KORO_Device_GetParentInterface, tree.device), tree.interface);
    EXPECT_EQ(Outcome(KORO_Device_GetParentInterface(tree.device, nullptr)), NullPointer("interfaceHandle"));
}

TEST_F(Device, StreamsAreReadFromTheProducerOnce)
{
    ReopenDevice();
    EXPECT_EQ(producer->Journal(), Strings{});
    ExpectScalarOut<KORO_DeviceHandle, std::size_t>("numDataStreams", 1, KORO_Device_GetNumDataStreams, tree.device);
    EXPECT_EQ(
        producer->Journal(), (Strings{
                                 "DevGetNumDataStreams(if0-dev0)", "DevGetDataStreamID(if0-dev0, 0, size)",
                                 "DevGetDataStreamID(if0-dev0, 0, data)"}));

    producer->ClearJournal();
    Stream(0);
    EXPECT_EQ(Get<std::size_t>(KORO_Device_GetNumDataStreams, tree.device), 1u);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(Device, NumberOfStreamsThatChangesLaterIsNeverSeen)
{
    ReopenDevice();
    EXPECT_EQ(Get<std::size_t>(KORO_Device_GetNumDataStreams, tree.device), 1u);
    producer->Edit([](scripted::Tree& edited) {
        edited.interfaces[0]->devices[0]->streams.push_back(scripted::MakeStream("second"));
    });
    EXPECT_EQ(Get<std::size_t>(KORO_Device_GetNumDataStreams, tree.device), 1u);

    ReopenDevice();
    EXPECT_EQ(Get<std::size_t>(KORO_Device_GetNumDataStreams, tree.device), 2u);
}

TEST_F(Device, ListingOfStreamsThatFailedIsTriedAgain)
{
    ReopenDevice();
    producer->AnswerOnce("DevGetNumDataStreams", GenTL::GC_ERR_BUSY);
    std::size_t count = 0;

    EXPECT_EQ(
        Outcome(KORO_Device_GetNumDataStreams(tree.device, &count)),
        CallFailure("DevGetNumDataStreams", ProducerErrorOf(GenTL::GC_ERR_BUSY)));
    EXPECT_EQ(Outcome(KORO_Device_GetNumDataStreams(tree.device, &count)), Error{});
    EXPECT_EQ(count, 1u);
}

TEST_F(Device, StreamAtTheCountIsOutOfRange)
{
    KORO_DataStreamDescriptorHandle stream = nullptr;
    EXPECT_EQ(Outcome(KORO_Device_GetDataStream(tree.device, 1, &stream)), outOfRange);
    EXPECT_EQ(Outcome(KORO_Device_GetDataStream(tree.device, SIZE_MAX, &stream)), outOfRange);
    EXPECT_EQ(stream, nullptr);
    EXPECT_EQ(Outcome(KORO_Device_GetDataStream(tree.device, 1, nullptr)), NullPointer("dataStreamDescriptorHandle"));
}

TEST_F(Device, StreamTwiceIsTheSameHandle)
{
    EXPECT_EQ(Stream(0), tree.streamDescriptor);
}

TEST_F(Device, DeadDeviceIsCalledAnInterfaceByTheStreamGetterAlone)
{
    Require(KORO_Device_Destruct(tree.device));
    KORO_DataStreamDescriptorHandle stream = nullptr;
    std::size_t count = 0;

    EXPECT_EQ(Outcome(KORO_Device_GetDataStream(tree.device, 0, &stream)), InvalidHandle("interfaceHandle"));
    EXPECT_EQ(Outcome(KORO_Device_GetNumDataStreams(tree.device, &count)), InvalidHandle("deviceHandle"));
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), InvalidHandle("deviceHandle"));
}

TEST_F(Device, RemoteDeviceTwiceIsOneCallOneObjectAndOneHandle)
{
    ReopenDevice();
    const auto first = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);
    const auto second = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device);

    EXPECT_EQ(first, second);
    EXPECT_EQ(producer->Journal(), Strings{}); // the opening has made the call
}

TEST_F(Device, ConcurrentRequestsGiveOneRemoteDevice)
{
    ReopenDevice();
    const auto request = [&] { return Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device); };
    auto first = std::async(std::launch::async, request);
    auto second = std::async(std::launch::async, request);

    EXPECT_EQ(first.get(), second.get());
}

TEST_F(Device, RemoteDeviceTestsHandleAndPointer)
{
    EXPECT_EQ(Outcome(KORO_Device_GetRemoteDevice(nullptr, nullptr)), InvalidHandle("deviceHandle"));
    EXPECT_EQ(Outcome(KORO_Device_GetRemoteDevice(tree.device, nullptr)), NullPointer("remoteDeviceHandle"));
}

TEST_F(Device, DeviceLostByItsInterfaceStaysWithItsRemoteDeviceAndStreams)
{
    producer->Edit([](scripted::Tree& edited) { edited.interfaces[0]->devices.clear(); });
    Require(KORO_Interface_UpdateDevices(tree.interface, 0));

    EXPECT_EQ(GetText(KORO_Device_GetID, tree.device), "if0-dev0");
    EXPECT_EQ(Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device), tree.remoteDevice);
    EXPECT_EQ(Stream(0), tree.streamDescriptor);
    producer->Answer("DevGetInfo", GenTL::GC_ERR_IO);
    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_Device_GetModelName(tree.device, nullptr, &size)),
        InfoFailure({"DevGetInfo", 2, "DEVICE_INFO_MODEL"}, ProducerErrorOf(GenTL::GC_ERR_IO)));
}

TEST_F(Device, InterfaceThatGoesDuringACallHasExpired)
{
    producer->OnEntry("DevGetInfo", [this] { KORO_Interface_Destruct(tree.interface); });
    std::size_t size = 0;

    EXPECT_EQ(Outcome(KORO_Device_GetModelName(tree.device, nullptr, &size)), parentExpired);
    EXPECT_EQ(Outcome(KORO_Device_GetModelName(tree.device, nullptr, &size)), InvalidHandle("deviceHandle"));
}

} // namespace koro::test

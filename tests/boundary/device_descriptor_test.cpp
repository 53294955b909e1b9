#include "tests/boundary/info_getters.h"
#include "tests/boundary/tree_test.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;
using RawString = KORO_ReturnCode (*)(KORO_DeviceDescriptorHandle, char*, std::size_t*);

class DeviceDescriptor : public TreeTest
{
protected:
    DeviceDescriptor() { producer->ClearJournal(); }

    void SetStatus(std::int32_t status) const
    {
        producer->SetInfo("IFGetDeviceInfo", GenTL::DEVICE_INFO_ACCESS_STATUS, scripted::Int32(status));
    }

    bool IsOpenable(std::uint32_t accessType) const
    {
        return Get<KORO_Bool8>(KORO_DeviceDescriptor_GetIsOpenable, tree.deviceDescriptor, accessType) != 0;
    }

    void CloseDevice() const
    {
        Require(KORO_Device_Destruct(tree.device));
        producer->ClearJournal();
    }
};

struct RawStringExport
{
    std::int32_t command;
    const char* commandName;
    const char* parameter;
    RawString function;
};

constexpr RawStringExport rawStrings[] = {
    {1, "DEVICE_INFO_VENDOR", "vendorName", KORO_DeviceDescriptor_GetVendorName},
    {2, "DEVICE_INFO_MODEL", "modelName", KORO_DeviceDescriptor_GetModelName},
    {3, "DEVICE_INFO_TLTYPE", "tlType", KORO_DeviceDescriptor_GetTLType},
    {4, "DEVICE_INFO_DISPLAYNAME", "displayName", KORO_DeviceDescriptor_GetDisplayName},
    {6, "DEVICE_INFO_USER_DEFINED_NAME", "userDefinedName", KORO_DeviceDescriptor_GetUserDefinedName},
    {7, "DEVICE_INFO_SERIAL_NUMBER", "serialNumber", KORO_DeviceDescriptor_GetSerialNumber},
    {8, "DEVICE_INFO_VERSION", "version", KORO_DeviceDescriptor_GetVersion},
};

} // namespace

TEST_F(DeviceDescriptor, RawStringIsOneQueryOfTheProducerIntoTheCallersBuffer)
{
    for (const auto& [command, commandName, parameter, function] : rawStrings)
    {
        SCOPED_TRACE(commandName);
        producer->SetInfo("IFGetDeviceInfo", command, scripted::Text("text"));
        const std::string call = "IFGetDeviceInfo(if0, if0-dev0, " + std::to_string(command) + ", ";
        producer->ClearJournal();

        std::size_t size = 0;
        EXPECT_EQ(Outcome(function(tree.deviceDescriptor, nullptr, &size)), Error{});
        EXPECT_EQ(size, 5u);
        EXPECT_EQ(producer->Journal(), Strings{call + "size)"});

        std::string text(8, '#');
        size = text.size();
        EXPECT_EQ(Outcome(function(tree.deviceDescriptor, text.data(), &size)), Error{});
        EXPECT_EQ(size, 5u);
        EXPECT_EQ(text, std::string("text\0###", 8));
        EXPECT_EQ(producer->Journal(), (Strings{call + "size)", call + "data)"}));
    }
}

TEST_F(DeviceDescriptor, RawStringFailuresCarryTheNameOfTheOperation)
{
    for (const auto& [command, commandName, parameter, function] : rawStrings)
    {
        const InfoQuery query{"IFGetDeviceInfo", command, commandName, "RawStringInfo"};
        for (const auto& error : producerErrors)
        {
            std::size_t size = 0;
            producer->AnswerOnce("IFGetDeviceInfo", error.code);
            EXPECT_EQ(Outcome(function(tree.deviceDescriptor, nullptr, &size)), InfoFailure(query, error));
        }
    }
}

TEST_F(DeviceDescriptor, RawStringThatIsTooLongIsTheProducersFailureAndLeavesTheSize)
{
    char text[4] = {};
    std::size_t size = sizeof text;
    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_GetSerialNumber(tree.deviceDescriptor, text, &size)),
        InfoFailure(
            {"IFGetDeviceInfo", 7, "DEVICE_INFO_SERIAL_NUMBER", "RawStringInfo"},
            ProducerErrorOf(GenTL::GC_ERR_BUFFER_TOO_SMALL)));
    EXPECT_EQ(size, sizeof text);
}

TEST_F(DeviceDescriptor, RawStringTakesWhateverTypeAndSizeTheProducerTells)
{
    producer->SetInfo("IFGetDeviceInfo", 1, scripted::UInt64(0x41));
    char text[16];
    std::size_t size = sizeof text;
    EXPECT_EQ(Outcome(KORO_DeviceDescriptor_GetVendorName(tree.deviceDescriptor, text, &size)), Error{});
    EXPECT_EQ(size, 8u);
    EXPECT_STREQ(text, "A");

    producer->SetInfo("IFGetDeviceInfo", 1, {.bytes = "x", .claimedSize = std::size_t{1} << 40});
    EXPECT_EQ(Outcome(KORO_DeviceDescriptor_GetVendorName(tree.deviceDescriptor, nullptr, &size)), Error{});
    EXPECT_EQ(size, std::size_t{1} << 40);
}

TEST_F(DeviceDescriptor, RawStringWithoutASizeIsInvalidAndAsksNothing)
{
    char text[16];
    for (const auto& [command, commandName, parameter, function] : rawStrings)
    {
        EXPECT_EQ(
            Outcome(function(tree.deviceDescriptor, text, nullptr)), NullPointer(std::string(parameter) + "Size"));
        EXPECT_EQ(Outcome(function(nullptr, text, nullptr)), InvalidHandle("deviceDescriptorHandle"));
    }
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(DeviceDescriptor, NumbersAreAskedOfTheInterface)
{
    ExpectNumberGetter<KORO_DeviceDescriptorHandle, std::int32_t>(
        producer, {"IFGetDeviceInfo", 5, "DEVICE_INFO_ACCESS_STATUS"}, scripted::Int32(-7), "5 (INFO_DATATYPE_INT32)",
        "accessStatus", -7, KORO_DeviceDescriptor_GetAccessStatus, tree.deviceDescriptor);
    ExpectNumberGetter<KORO_DeviceDescriptorHandle, std::uint64_t>(
        producer, {"IFGetDeviceInfo", 9, "DEVICE_INFO_TIMESTAMP_FREQUENCY"}, scripted::UInt64(0xFEDCBA9876543210),
        "8 (INFO_DATATYPE_UINT64)", "timestampTickFrequency", 0xFEDCBA9876543210,
        KORO_DeviceDescriptor_GetTimestampTickFrequency, tree.deviceDescriptor);
}

TEST_F(DeviceDescriptor, RawInformationIsAskedOfTheInterface)
{
    ExpectRawInfo(producer, "IFGetDeviceInfo", KORO_DeviceDescriptor_GetInfo, tree.deviceDescriptor);
}

TEST_F(DeviceDescriptor, KeyAndIDAreStored)
{
    ExpectTextOut(
        "key", producer.Path() + "|scripted producer|if0|if0-dev0", KORO_DeviceDescriptor_GetKey,
        tree.deviceDescriptor);
    const auto base = Get<KORO_ModuleDescriptorHandle>(KORO_DeviceDescriptor_ToModuleDescriptor, tree.deviceDescriptor);
    ExpectTextOut("id", "if0-dev0", KORO_ModuleDescriptor_GetID, base);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(DeviceDescriptor, ParentIsTheInterface)
{
    EXPECT_EQ(
        Get<KORO_InterfaceHandle>(KORO_DeviceDescriptor_GetParentInterface, tree.deviceDescriptor), tree.interface);
    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_GetParentInterface(tree.deviceDescriptor, nullptr)),
        NullPointer("interfaceHandle"));
}

TEST_F(DeviceDescriptor, OpenableFollowsAccessTypeAndStatus)
{
    for (std::int32_t status = 0; status <= 7; ++status)
    {
        SCOPED_TRACE(status);
        SetStatus(status);
        EXPECT_EQ(IsOpenable(2), status == 1 || status == 2);
        EXPECT_EQ(IsOpenable(3), status == 1);
        EXPECT_EQ(IsOpenable(4), status == 1);
        EXPECT_EQ(
            Get<KORO_Bool8>(KORO_DeviceDescriptor_GetIsOpenableExclusive, tree.deviceDescriptor) != 0,
            status == 1 || status == 2);
    }
}

TEST_F(DeviceDescriptor, OtherAccessTypesAreNotOpenableAndAskNothing)
{
    for (const std::uint32_t type : {0u, 1u, 5u, 1000u, 0xFFFFFFFFu})
        EXPECT_FALSE(IsOpenable(type));
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(DeviceDescriptor, OpenableExclusiveAnswersAsForReadOnly)
{
    SetStatus(GenTL::DEVICE_ACCESS_STATUS_READONLY);
    EXPECT_FALSE(IsOpenable(4));
    ExpectScalarOut<KORO_DeviceDescriptorHandle, KORO_Bool8>(
        "isAccessTypeAvailable", 1, KORO_DeviceDescriptor_GetIsOpenableExclusive, tree.deviceDescriptor);
}

TEST_F(DeviceDescriptor, OpenableAsksTheStatusAtEachCallAndTellsItsFailure)
{
    EXPECT_TRUE(IsOpenable(2));
    EXPECT_EQ(
        producer->Journal(),
        (Strings{"IFGetDeviceInfo(if0, if0-dev0, 5, size)", "IFGetDeviceInfo(if0, if0-dev0, 5, data)"}));
    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_GetIsOpenable(tree.deviceDescriptor, 2, nullptr)),
        NullPointer("isAccessTypeAvailable"));

    producer->SetInfo("IFGetDeviceInfo", 5, scripted::Failing(GenTL::GC_ERR_IO));
    const auto failure =
        InfoFailure({"IFGetDeviceInfo", 5, "DEVICE_INFO_ACCESS_STATUS"}, ProducerErrorOf(GenTL::GC_ERR_IO));
    EXPECT_EQ(Outcome(KORO_DeviceDescriptor_GetIsOpenable(tree.deviceDescriptor, 3, nullptr)), failure);
    EXPECT_EQ(Outcome(KORO_DeviceDescriptor_GetIsOpenableExclusive(tree.deviceDescriptor, nullptr)), failure);
}

TEST_F(DeviceDescriptor, OpenDevicePassesTheAccessTypeUnchangedAndFetchesTheRemoteDevice)
{
    CloseDevice();
    for (const std::uint32_t type : {0u, 1u, 2u, 3u, 4u, 77u})
    {
        producer->ClearJournal();
        const auto device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, type);
        EXPECT_EQ(
            CallsOf(producer->Journal(), {"IFOpenDevice", "DevGetPort"}),
            (Strings{"IFOpenDevice(if0, if0-dev0, " + std::to_string(type) + ")", "DevGetPort(if0-dev0)"}));
        Require(KORO_Device_Destruct(device));
    }
}

TEST_F(DeviceDescriptor, OpenDeviceAsksForNoStatusBefore)
{
    CloseDevice();
    SetStatus(GenTL::DEVICE_ACCESS_STATUS_NOACCESS);
    Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, OpenTree::exclusiveAccess);
    EXPECT_EQ(CallsOf(producer->Journal(), {"IFGetDeviceInfo"}), Strings{});
}

TEST_F(DeviceDescriptor, BusyOrDeniedDeviceIsBadAccess)
{
    CloseDevice();
    for (const auto code : {GenTL::GC_ERR_BUSY, GenTL::GC_ERR_ACCESS_DENIED, GenTL::GC_ERR_RESOURCE_IN_USE})
    {
        producer->AnswerOnce("IFOpenDevice", code);
        KORO_DeviceHandle device = nullptr;
        const auto outcome = Outcome(KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, 4, &device));
        EXPECT_EQ(outcome, CallFailure("IFOpenDevice", ProducerErrorOf(code)));
        EXPECT_EQ(outcome.code, KORO_RETURN_CODE_BAD_ACCESS);
        EXPECT_EQ(device, nullptr);
    }
}

TEST_F(DeviceDescriptor, DeviceWithoutRemotePortDoesNotOpenAndIsClosedAgain)
{
    CloseDevice();
    producer->Answer("DevGetPort", GenTL::GC_ERR_NOT_AVAILABLE);
    KORO_DeviceHandle device = nullptr;

    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, 4, &device)),
        CallFailure("DevGetPort", ProducerErrorOf(GenTL::GC_ERR_NOT_AVAILABLE)));
    EXPECT_EQ(device, nullptr);
    EXPECT_EQ(
        CallsOf(producer->Journal(), {"IFOpenDevice", "DevGetPort", "DevClose"}),
        (Strings{"IFOpenDevice(if0, if0-dev0, 4)", "DevGetPort(if0-dev0)", "DevClose(if0-dev0)"}));
    EXPECT_EQ(producer->Open(), (Strings{"if0", "system"}));

    producer->AnswerAsUsual("DevGetPort");
    EXPECT_EQ(Outcome(KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, 4, &device)), Error{});
}

TEST_F(DeviceDescriptor, OpenDeviceWithoutAPlaceForTheHandleOpensNothing)
{
    CloseDevice();
    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, 4, nullptr)), NullPointer("deviceHandle"));
    EXPECT_EQ(CallsOf(producer->Journal(), {"IFOpenDevice"}), Strings{});
}

TEST_F(DeviceDescriptor, SecondOpenMakesASecondDeviceIfTheProducerAllowsIt)
{
    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, 4, &tree.device)),
        CallFailure("IFOpenDevice", ProducerErrorOf(GenTL::GC_ERR_RESOURCE_IN_USE)));

    for (const auto* function : {"IFOpenDevice", "DevGetPort", "GCGetPortInfo", "GCGetNumPortURLs"})
        producer->Answer(function, GenTL::GC_ERR_SUCCESS);
    const auto second = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, 4u);
    EXPECT_NE(second, tree.device);
    EXPECT_EQ(GetText(KORO_Device_GetKey, second), GetText(KORO_Device_GetKey, tree.device));
}

TEST_F(DeviceDescriptor, InterfaceThatGoesDuringAQueryHasExpired)
{
    producer->OnEntry("IFGetDeviceInfo", [this] { KORO_Interface_Destruct(tree.interface); });
    std::int32_t status = 0;

    EXPECT_EQ(Outcome(KORO_DeviceDescriptor_GetAccessStatus(tree.deviceDescriptor, &status)), parentExpired);
    EXPECT_EQ(
        Outcome(KORO_DeviceDescriptor_GetAccessStatus(tree.deviceDescriptor, &status)),
        InvalidHandle("deviceDescriptorHandle"));
}

TEST_F(DeviceDescriptor, InterfaceThatGoesDuringTheOpeningLeavesNothingOpen)
{
    CloseDevice();
    producer->OnEntry("DevGetPort", [this] { KORO_Interface_Destruct(tree.interface); });
    KORO_DeviceHandle device = nullptr;
    KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, 4, &device);

    EXPECT_EQ(producer->Open(), Strings{"system"});
    EXPECT_EQ(Outcome(KORO_Device_Destruct(device)), InvalidHandle("deviceHandle"));
}

} // namespace koro::test

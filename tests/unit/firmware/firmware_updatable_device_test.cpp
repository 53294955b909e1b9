// The device that an update is applied to: how it is opened and prepared.
#include "tests/unit/firmware/updatable_device.h"

#include <GenApi/INodeMap.h>
#include <gmock/gmock.h>
#include <stdexcept>

namespace koro::test
{

using namespace internal;
using namespace firmware;
using testing::ElementsAre;

namespace
{

class UpdatableDeviceOpening : public UpdatableDevice
{
protected:
    // What an opening makes of a count of 7.
    std::string RetriesAfterOpening(const std::string& node)
    {
        EditDevices([&](Devices& devices) {
            DescribePort(devices[0]->port, DescriptionOf(node, "DevicePort"));
            devices[0]->port.registers[0] = std::string("\7\0\0\0", 4);
        });
        Device().PrepareForFirmwareUpdate();
        device.reset();
        return Retries();
    }
};

} // namespace

TEST_F(UpdatableDeviceOpening, ConstructionOpensNothing)
{
    Device();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre());
}

TEST_F(UpdatableDeviceOpening, IsCalledAsItWasAtItsConstruction)
{
    FirmwareUpdatableDevice& made = Device();
    EditDevices([](Devices& devices) { devices[0]->info[GenTL::DEVICE_INFO_DISPLAYNAME] = scripted::Text("Other"); });
    EXPECT_STREQ(made.GetDisplayName().c_str(), "ZVR Scripted camera (if0-dev0)");
}

TEST_F(UpdatableDeviceOpening, WithoutASerialNumberThereIsNone)
{
    EditDevices([](Devices& devices) {
        devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Failing(GenTL::GC_ERR_NOT_AVAILABLE);
    });
    EXPECT_THROW(Device(), InternalErrorException);
}

TEST_F(UpdatableDeviceOpening, IsOpenedForControlAndClosedAtItsEnd)
{
    Device().PrepareForFirmwareUpdate();
    EXPECT_THAT(Calls({"IFOpenDevice", "DevClose"}), ElementsAre(openFirst));
    device->CleanupAfterFirmwareUpdate();
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev0"));
    device.reset();
    EXPECT_THAT(Calls({"IFOpenDevice", "DevClose"}), ElementsAre(openFirst, "DevClose(if0-dev0)"));
}

TEST_F(UpdatableDeviceOpening, EndGivesUpTheInterfaceBeforeTheDevice)
{
    Prepared();
    objects.interface.reset();
    EXPECT_THAT(Calls({"IFClose", "DevClose"}), ElementsAre());
    device.reset();
    // The interface took its devices along.
    EXPECT_THAT(Calls({"IFClose", "DevClose"}), ElementsAre("IFClose(if0)", "DevClose(dead)"));
}

TEST_F(UpdatableDeviceOpening, RefusedOpeningGoesUp)
{
    objects.producer->Answer("IFOpenDevice", GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_THROW(Device().PrepareForFirmwareUpdate(), BadAccessException);
}

TEST_F(UpdatableDeviceOpening, GivesTheFirstMapOfTheCamera)
{
    EXPECT_NE(Prepared().GetNodeMapOfDeviceToUpdate()->GetNode("Gain"), nullptr);
}

TEST_F(UpdatableDeviceOpening, CameraWithoutANodeMapIsTheStandardFailure)
{
    EditDevices([](Devices& devices) { devices[0]->remotePort.urls.clear(); });
    EXPECT_THAT(
        [&] { Prepared().GetNodeMapOfDeviceToUpdate(); }, ThrowsExactly<std::out_of_range>("invalid vector subscript"));
    EXPECT_THAT([&] { Reset(); }, ThrowsExactly<std::out_of_range>("invalid vector subscript"));
}

TEST_F(UpdatableDeviceOpening, TransportLayerWithoutANodeMapIsTheStandardFailure)
{
    EditDevices([](Devices& devices) { devices[0]->port.urls.clear(); });
    EXPECT_THAT(
        [&] { Device().PrepareForFirmwareUpdate(); }, ThrowsExactly<std::out_of_range>("invalid vector subscript"));
}

TEST_F(UpdatableDeviceOpening, CameraWithoutACountOfRetriesIsAccepted)
{
    EXPECT_EQ(RetriesAfterOpening(""), "7");
}

TEST_F(UpdatableDeviceOpening, RetriesAreLimitedToThreeOrToTheirMaximum)
{
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(2)), "2");
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(3)), "3");
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(10)), "3");
}

TEST_F(UpdatableDeviceOpening, CountOfRetriesThatCannotBeReadAndWrittenIsLeftAlone)
{
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(10, "RO")), "7");
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(10, "WO")), "7");
}

TEST_F(UpdatableDeviceOpening, CountOfRetriesOfAnotherTypeIsRefused)
{
    EXPECT_THAT(
        [&] {
            RetriesAfterOpening("<Boolean Name=\"ControlChannelNumRetriesOnTimeout\"><Value>true</Value></Boolean>");
        },
        ThrowsExactly<InternalErrorException>("Node cannot be cast to an integer node!"));
}

TEST_F(UpdatableDeviceOpening, CountOfRetriesThatTheProducerRefusesGoesUp)
{
    objects.producer->Answer("GCWritePort", GenTL::GC_ERR_IO);
    EXPECT_THROW(RetriesAfterOpening(RetriesNode(10)), IOException);
}

} // namespace koro::test

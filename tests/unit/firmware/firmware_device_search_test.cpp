// A reset of the device that an update is applied to, and the search that follows.
#include "tests/unit/firmware/updatable_device.h"

#include <GenApi/INodeMap.h>
#include <gmock/gmock.h>
#include <limits>
#include <stdexcept>

namespace koro::test
{

using namespace internal;
using namespace firmware;
using testing::ElementsAre;

using UpdatableDeviceSearch = UpdatableDevice;

TEST_F(UpdatableDeviceSearch, ResetIsExecutedAndTheDeviceClosedBeforeTheSearch)
{
    Prepared();
    GENAPI_NAMESPACE::INodeMap* const map = Reset();
    EXPECT_THAT(
        Calls({"GCWritePort", "DevClose", "IFUpdateDeviceList", "IFOpenDevice"}),
        ElementsAre(Written(resetAddress), "DevClose(if0-dev0)", listUpdate, openFirst));
    EXPECT_EQ(map, device->GetNodeMapOfDeviceToUpdate());
    EXPECT_NE(map->GetNode("Gain"), nullptr);
    EXPECT_THAT(clock.pauses, ElementsAre());
}

TEST_F(UpdatableDeviceSearch, ResetLimitsTheRetriesAgain)
{
    EditDevices([](Devices& devices) { DescribePort(devices[0]->port, DescriptionOf(RetriesNode(10), "DevicePort")); });
    Prepared();
    EditDevices([](Devices& devices) { devices[0]->port.registers[0] = std::string("\7\0\0\0", 4); });
    Reset();
    EXPECT_EQ(Retries(), "3");
}

TEST_F(UpdatableDeviceSearch, CameraWithoutAResetCommandKeepsItsDevice)
{
    EditDevices([](Devices& devices) { MakeUpdatable(*devices[0], Number("Gain", gainAddress)); });
    Prepared();
    EXPECT_THAT(
        [&] { Reset(); }, ThrowsExactly<NotFoundException>("There is no node with the given name (DeviceReset)!"));
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev0"));

    EditDevices([](Devices& devices) { MakeUpdatable(*devices[0], Number("DeviceReset", gainAddress)); });
    Prepared();
    EXPECT_THAT([&] { Reset(); }, ThrowsExactly<InternalErrorException>("Node cannot be cast to a command node!"));
}

TEST_F(UpdatableDeviceSearch, FailingResetCommandEndsTheOperation)
{
    Prepared();
    objects.producer->Answer("GCWritePort", GenTL::GC_ERR_IO);
    EXPECT_THROW(Reset(), IOException);
    EXPECT_THAT(Calls({"DevClose", "IFUpdateDeviceList"}), ElementsAre());
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev0"));
}

TEST_F(UpdatableDeviceSearch, FirstWaitComesBeforeTheFirstSearch)
{
    Prepared();
    GoAwayUntilUpdate(3);
    clock.onPause = [this] {
        if (clock.pauses.size() > 1) return;
        EXPECT_THAT(Calls({"IFUpdateDeviceList"}), ElementsAre());
    };
    Reset(150);
    EXPECT_THAT(clock.pauses, ElementsAre(150, 200, 200));
    EXPECT_THAT(
        Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(listUpdate, listUpdate, listUpdate, openFirst));
}

TEST_F(UpdatableDeviceSearch, FirstWaitCountsAgainstTheTimeout)
{
    Prepared(1000);
    GoAwayUntilUpdate(2);
    EXPECT_THAT([&] { Reset(1001); }, NotReopened(1000, Key()));
    EXPECT_THAT(clock.pauses, ElementsAre(1001));
    EXPECT_EQ(updates, 1);
}

TEST_F(UpdatableDeviceSearch, FirstWaitBeyondTheTimeoutIsMadeWhole)
{
    Prepared(10);
    GoAwayUntilUpdate(1);
    Reset(5000);
    EXPECT_THAT(clock.pauses, ElementsAre(5000));
}

TEST_F(UpdatableDeviceSearch, FirstWaitIsBoundedUnlessTheTimeoutIsLonger)
{
    constexpr unsigned int weeks_ms = 4294967295u;
    Prepared();
    Reset(weeks_ms);
    EXPECT_THAT(clock.pauses, ElementsAre(3'600'000));
    Prepared(4'000'000);
    Reset(weeks_ms);
    EXPECT_THAT(clock.pauses, ElementsAre(3'600'000, 4'000'000));
    Prepared(std::numeric_limits<std::uint64_t>::max());
    Reset(weeks_ms);
    EXPECT_THAT(clock.pauses, ElementsAre(3'600'000, 4'000'000, weeks_ms));
}

TEST_F(UpdatableDeviceSearch, TimeoutOfZeroMakesOneWholePass)
{
    Prepared(0);
    Reset();
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(listUpdate, openFirst));

    GoAwayUntilUpdate(2);
    EXPECT_THAT([&] { Reset(); }, NotReopened(0, Key()));
    EXPECT_EQ(updates, 1);
    EXPECT_THAT(clock.pauses, ElementsAre());
}

TEST_F(UpdatableDeviceSearch, SearchEndsWhenTheTimeoutIsExceeded)
{
    Prepared(400);
    GoAwayUntilUpdate(1000);
    EXPECT_THAT([&] { Reset(); }, NotReopened(400, Key()));
    // The readings of the clock make the third pass end behind 400 ms.
    EXPECT_THAT(clock.pauses, ElementsAre(200, 200));
    EXPECT_EQ(updates, 3);
    EXPECT_THAT(OpenedDevices(), ElementsAre());
    device.reset();
    EXPECT_THAT(Calls({"DevClose"}), ElementsAre("DevClose(if0-dev0)"));
}

TEST_F(UpdatableDeviceSearch, TimeoutThatIsJustReachedIsNotExceeded)
{
    clock.tick_ns = 0;
    Prepared(400);
    GoAwayUntilUpdate(1000);
    EXPECT_THAT([&] { Reset(); }, NotReopened(400, Key()));
    EXPECT_THAT(clock.pauses, ElementsAre(200, 200, 200));
}

TEST_F(UpdatableDeviceSearch, LargeTimeoutsAreNoShortOnes)
{
    for (const std::uint64_t timeout_ms :
         {std::numeric_limits<std::uint64_t>::max(), std::uint64_t{1} << 63, std::uint64_t{18446744073710}})
    {
        Prepared(timeout_ms);
        updates = 0;
        away.reset();
        GoAwayUntilUpdate(50);
        Reset();
        EXPECT_EQ(updates, 50) << timeout_ms;
        objects.producer->OnEntry("DevClose", {});
    }
}

TEST_F(UpdatableDeviceSearch, FailingListUpdatesAreSwallowedUntilTheTimeout)
{
    Prepared(300);
    objects.producer->Answer("IFUpdateDeviceList", GenTL::GC_ERR_IO);
    EXPECT_THAT([&] { Reset(); }, NotReopened(300, Key()));
    // The old list still holds the device.
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(listUpdate, listUpdate, listUpdate));
}

TEST_F(UpdatableDeviceSearch, SearchGoesOnAfterListUpdatesThatFail)
{
    Prepared();
    objects.producer->OnEntry("IFUpdateDeviceList", [this] {
        if (++updates == 1) throw std::runtime_error("no list");
        if (updates == 2) throw 5;
    });
    Reset();
    EXPECT_THAT(
        Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(listUpdate, listUpdate, listUpdate, openFirst));
}

TEST_F(UpdatableDeviceSearch, InterfaceWhoseSystemHasGoneRunsIntoTheTimeout)
{
    Prepared(100);
    objects.producer->OnEntry("DevClose", [this] { objects.system.reset(); });
    EXPECT_THAT([&] { Reset(); }, NotReopened(100, Key()));
}

TEST_F(UpdatableDeviceSearch, InterfaceIsKeptWhileTheDeviceIsAway)
{
    Prepared();
    objects.interface.reset();
    Reset();
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev0"));
}

TEST_F(UpdatableDeviceSearch, IsFoundByItsSerialNumberUnderAnyID)
{
    Prepared();
    objects.producer->OnEntry("DevClose", [this] {
        EditDevices([](Devices& devices) {
            const auto serial = devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER];
            devices.erase(devices.begin());
            devices.push_back(scripted::MakeDevice("bootloader"));
            MakeUpdatable(*devices.back());
            devices.back()->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = serial;
        });
    });
    Reset();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre("IFOpenDevice(if0, bootloader, 3)"));
}

TEST_F(UpdatableDeviceSearch, SerialNumbersAreComparedWhole)
{
    Prepared(300);
    objects.producer->OnEntry("DevClose", [this] {
        EditDevices([](Devices& devices) {
            devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Text("4711");
            devices[1]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Text("471100");
        });
    });
    EXPECT_THAT([&] { Reset(); }, NotReopened(300, Key()));
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre());
}

TEST_F(UpdatableDeviceSearch, DeviceThatIsNotOpenableIsSkippedUntilTheTimeout)
{
    Prepared(300);
    objects.producer->SetInfo(
        "IFGetDeviceInfo", GenTL::DEVICE_INFO_ACCESS_STATUS, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_NOACCESS));
    EXPECT_THAT([&] { Reset(); }, NotReopened(300, Key()));
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(listUpdate, listUpdate, listUpdate));
}

TEST_F(UpdatableDeviceSearch, DeviceThatBecomesOpenableIsTaken)
{
    Prepared();
    EditDevices([](Devices& devices) {
        devices[0]->info[GenTL::DEVICE_INFO_ACCESS_STATUS] = scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_BUSY);
    });
    clock.onPause = [this] {
        EditDevices([](Devices& devices) {
            devices[0]->info[GenTL::DEVICE_INFO_ACCESS_STATUS] = scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READWRITE);
        });
    };
    Reset();
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(listUpdate, listUpdate, openFirst));
}

TEST_F(UpdatableDeviceSearch, ReadableDeviceCountsAsOpenable)
{
    Prepared();
    EditDevices([](Devices& devices) {
        devices[0]->info[GenTL::DEVICE_INFO_ACCESS_STATUS] = scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY);
    });
    Reset();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre(openFirst));
}

TEST_F(UpdatableDeviceSearch, OfTwoWithOneSerialNumberTheFirstThatOpensIsTaken)
{
    const auto sameSerial = [](Devices& devices) {
        devices[1]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER];
    };
    EditDevices(sameSerial);
    Prepared();
    Reset();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre(openFirst));

    objects.producer->ClearJournal();
    objects.producer->AnswerOnce("IFOpenDevice", GenTL::GC_ERR_RESOURCE_IN_USE);
    Reset();
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(listUpdate, openFirst, openSecond));
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev1"));
}

TEST_F(UpdatableDeviceSearch, DeviceWithoutARemoteNodeMapIsClosedAndTheNextOneTried)
{
    Prepared();
    EditDevices([](Devices& devices) {
        devices[1]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER];
        devices[0]->remotePort.urls.clear();
    });
    Reset();
    EXPECT_THAT(
        Calls({"IFOpenDevice", "DevClose"}),
        ElementsAre("DevClose(if0-dev0)", openFirst, "DevClose(if0-dev0)", openSecond));
}

TEST_F(UpdatableDeviceSearch, FailuresOfACandidateAreSwallowed)
{
    Prepared();
    EditDevices([](Devices& devices) {
        devices.insert(devices.begin(), {scripted::MakeDevice("silent"), scripted::MakeDevice("unknown")});
        devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Failing(GenTL::GC_ERR_IO);
        devices[1]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = devices[2]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER];
        devices[1]->info[GenTL::DEVICE_INFO_ACCESS_STATUS] = scripted::Failing(GenTL::GC_ERR_ERROR);
    });
    Reset();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre(openFirst));
}

TEST_F(UpdatableDeviceSearch, ForeignFailuresOfACandidateAreSwallowedToo)
{
    Prepared();
    int openings = 0;
    objects.producer->OnEntry("IFOpenDevice", [&] {
        if (++openings == 1) throw 5;
    });
    Reset();
    EXPECT_THAT(
        Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(listUpdate, openFirst, listUpdate, openFirst));
}

TEST_F(UpdatableDeviceSearch, NewDeviceWithoutALocalNodeMapIsTheStandardFailure)
{
    Prepared();
    EditDevices([](Devices& devices) { devices[0]->port.urls.clear(); });
    EXPECT_THAT([&] { Reset(); }, ThrowsExactly<std::out_of_range>("invalid vector subscript"));
}

} // namespace koro::test

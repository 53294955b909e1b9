// The device that an update is applied to: how it is opened, and how it is found again after a reset.
#include "base/exceptions.h"
#include "firmware/firmware_updatable_device.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_firmware.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <GenApi/INodeMap.h>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>

namespace koro::test
{

using namespace internal;
using namespace firmware;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace
{

using Strings = std::vector<std::string>;

// Goes on by its pauses, and by a nanosecond each time it is read.
class ScriptedClock : public SearchClock
{
public:
    std::uint64_t Now_ns() const override { return ++now_ns; }
    void Sleep(std::uint64_t pause_ms) override
    {
        pauses.push_back(pause_ms);
        now_ns += pause_ms * 1'000'000;
        if (onPause) onPause();
    }

    std::vector<std::uint64_t> pauses;
    std::function<void()> onPause;

private:
    mutable std::uint64_t now_ns = 1'000'000'000'000;
};

class UpdatableDevice : public testing::Test
{
protected:
    UpdatableDevice()
    {
        objects.stream.reset();
        objects.remoteDevice.reset();
        objects.device.reset();
        EditDevices([](Devices& devices) {
            for (auto& camera : devices)
            {
                MakeUpdatable(*camera);
                camera->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Text("4711" + camera->id.substr(7));
            }
        });
        objects.producer->ClearJournal();
    }

    using Devices = std::vector<std::shared_ptr<scripted::Device>>;
    void EditDevices(const std::function<void(Devices&)>& edit) const
    {
        objects.producer->Edit([&](scripted::Tree& edited) { edit(edited.interfaces[0]->devices); });
    }

    // A device object as an update makes it.
    FirmwareUpdatableDevice& Device(std::uint64_t resetTimeout_ms = 1000)
    {
        device = std::make_unique<FirmwareUpdatableDevice>(objects.deviceDescriptor, resetTimeout_ms, clock);
        return *device;
    }
    FirmwareUpdatableDevice& Prepared(std::uint64_t resetTimeout_ms = 1000)
    {
        Device(resetTimeout_ms).PrepareForFirmwareUpdate();
        objects.producer->ClearJournal();
        return *device;
    }
    GENAPI_NAMESPACE::INodeMap* Reset(unsigned int firstWait_ms = 0)
    {
        return device->DeviceResetWhileUpdatingFirmware(12345, firstWait_ms);
    }

    // The first device leaves the tree when it is closed for a reset, and comes back at the n-th list update.
    void GoAwayUntilUpdate(int count)
    {
        objects.producer->OnEntry("DevClose", [this] {
            EditDevices([this](Devices& devices) {
                if (away) return;
                away = devices.front();
                devices.erase(devices.begin());
            });
        });
        objects.producer->OnEntry("IFUpdateDeviceList", [this, count] {
            if (++updates == count) EditDevices([this](Devices& devices) { devices.insert(devices.begin(), away); });
        });
    }

    std::string Retries(std::size_t index = 0) const
    {
        std::uint32_t value = 0;
        EditDevices([&](Devices& devices) { value = RegisterOf(devices.at(index)->port, 0); });
        return std::to_string(value);
    }
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

    Strings Calls(const Strings& functions) const { return CallsOf(objects.producer->Journal(), functions); }
    Strings OpenedDevices() const
    {
        Strings opened;
        for (const auto& id : objects.producer->Open())
            if (id.find("-dev") != std::string::npos) opened.push_back(id);
        return opened;
    }

    static auto NotReopened(std::uint64_t timeout_ms, const std::string& key)
    {
        return ThrowsExactly<TimeoutException>(
            "Device could not be reopened within " + std::to_string(timeout_ms) +
            " ms after reset (Device Key: " + key + ")!");
    }
    std::string Key() const { return objects.deviceDescriptor->Key(); }

    OpenObjects objects;
    ScriptedClock clock;
    std::unique_ptr<FirmwareUpdatableDevice> device;
    std::shared_ptr<scripted::Device> away;
    int updates = 0;
};

const std::string update = "IFUpdateDeviceList(if0, 200)";
const std::string open0 = "IFOpenDevice(if0, if0-dev0, 3)";
const std::string open1 = "IFOpenDevice(if0, if0-dev1, 3)";

} // namespace

TEST_F(UpdatableDevice, ConstructionOpensNothing)
{
    Device();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre());
}

TEST_F(UpdatableDevice, IsCalledAsItWasAtItsConstruction)
{
    FirmwareUpdatableDevice& made = Device();
    EditDevices([](Devices& devices) { devices[0]->info[GenTL::DEVICE_INFO_DISPLAYNAME] = scripted::Text("Other"); });
    EXPECT_STREQ(made.GetDisplayName().c_str(), "ZVR Scripted camera (if0-dev0)");
}

TEST_F(UpdatableDevice, WithoutASerialNumberThereIsNone)
{
    EditDevices([](Devices& devices) {
        devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Failing(GenTL::GC_ERR_NOT_AVAILABLE);
    });
    EXPECT_THROW(Device(), InternalErrorException);
}

TEST_F(UpdatableDevice, IsOpenedForControlAndClosedAtItsEnd)
{
    Device().PrepareForFirmwareUpdate();
    EXPECT_THAT(Calls({"IFOpenDevice", "DevClose"}), ElementsAre(open0));
    device->CleanupAfterFirmwareUpdate();
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev0"));
    device.reset();
    EXPECT_THAT(Calls({"IFOpenDevice", "DevClose"}), ElementsAre(open0, "DevClose(if0-dev0)"));
}

TEST_F(UpdatableDevice, RefusedOpeningGoesUp)
{
    objects.producer->Answer("IFOpenDevice", GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_THROW(Device().PrepareForFirmwareUpdate(), BadAccessException);
}

TEST_F(UpdatableDevice, GivesTheFirstMapOfTheCamera)
{
    EXPECT_NE(Prepared().GetNodeMapOfDeviceToUpdate()->GetNode("Gain"), nullptr);
}

TEST_F(UpdatableDevice, CameraWithoutANodeMapIsTheStandardFailure)
{
    EditDevices([](Devices& devices) { devices[0]->remotePort.urls.clear(); });
    EXPECT_THAT(
        [&] { Prepared().GetNodeMapOfDeviceToUpdate(); }, ThrowsExactly<std::out_of_range>("invalid vector subscript"));
    EXPECT_THAT([&] { Reset(); }, ThrowsExactly<std::out_of_range>("invalid vector subscript"));
}

TEST_F(UpdatableDevice, TransportLayerWithoutANodeMapIsTheStandardFailure)
{
    EditDevices([](Devices& devices) { devices[0]->port.urls.clear(); });
    EXPECT_THAT(
        [&] { Device().PrepareForFirmwareUpdate(); }, ThrowsExactly<std::out_of_range>("invalid vector subscript"));
}

TEST_F(UpdatableDevice, CameraWithoutACountOfRetriesIsAccepted)
{
    EXPECT_EQ(RetriesAfterOpening(""), "7");
}

TEST_F(UpdatableDevice, RetriesAreLimitedToThreeOrToTheirMaximum)
{
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(2)), "2");
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(3)), "3");
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(10)), "3");
}

TEST_F(UpdatableDevice, CountOfRetriesThatCannotBeReadAndWrittenIsLeftAlone)
{
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(10, "RO")), "7");
    EXPECT_EQ(RetriesAfterOpening(RetriesNode(10, "WO")), "7");
}

TEST_F(UpdatableDevice, CountOfRetriesOfAnotherTypeIsRefused)
{
    EXPECT_THAT(
        [&] {
            RetriesAfterOpening("<Boolean Name=\"ControlChannelNumRetriesOnTimeout\"><Value>true</Value></Boolean>");
        },
        ThrowsExactly<InternalErrorException>("Node cannot be cast to an integer node!"));
}

TEST_F(UpdatableDevice, CountOfRetriesThatTheProducerRefusesGoesUp)
{
    objects.producer->Answer("GCWritePort", GenTL::GC_ERR_IO);
    EXPECT_THROW(RetriesAfterOpening(RetriesNode(10)), IOException);
}

TEST_F(UpdatableDevice, ResetIsExecutedAndTheDeviceClosedBeforeTheSearch)
{
    Prepared();
    GENAPI_NAMESPACE::INodeMap* const map = Reset();
    EXPECT_THAT(
        Calls({"GCWritePort", "DevClose", "IFUpdateDeviceList", "IFOpenDevice"}),
        ElementsAre(Written(resetAddress), "DevClose(if0-dev0)", update, open0));
    EXPECT_EQ(map, device->GetNodeMapOfDeviceToUpdate());
    EXPECT_NE(map->GetNode("Gain"), nullptr);
    EXPECT_THAT(clock.pauses, ElementsAre());
}

TEST_F(UpdatableDevice, ResetLimitsTheRetriesAgain)
{
    EditDevices([](Devices& devices) { DescribePort(devices[0]->port, DescriptionOf(RetriesNode(10), "DevicePort")); });
    Prepared();
    EditDevices([](Devices& devices) { devices[0]->port.registers[0] = std::string("\7\0\0\0", 4); });
    Reset();
    EXPECT_EQ(Retries(), "3");
}

TEST_F(UpdatableDevice, CameraWithoutAResetCommandKeepsItsDevice)
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

TEST_F(UpdatableDevice, FailingResetCommandEndsTheOperation)
{
    Prepared();
    objects.producer->Answer("GCWritePort", GenTL::GC_ERR_IO);
    EXPECT_THROW(Reset(), IOException);
    EXPECT_THAT(Calls({"DevClose", "IFUpdateDeviceList"}), ElementsAre());
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev0"));
}

TEST_F(UpdatableDevice, FirstWaitComesBeforeTheFirstSearch)
{
    Prepared();
    GoAwayUntilUpdate(3);
    clock.onPause = [this] {
        if (clock.pauses.size() > 1) return;
        EXPECT_THAT(Calls({"IFUpdateDeviceList"}), ElementsAre());
    };
    Reset(150);
    EXPECT_THAT(clock.pauses, ElementsAre(150, 200, 200));
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(update, update, update, open0));
}

TEST_F(UpdatableDevice, FirstWaitCountsAgainstTheTimeout)
{
    Prepared(1000);
    GoAwayUntilUpdate(2);
    EXPECT_THAT([&] { Reset(1001); }, NotReopened(1000, Key()));
    EXPECT_THAT(clock.pauses, ElementsAre(1001));
    EXPECT_EQ(updates, 1);
}

TEST_F(UpdatableDevice, FirstWaitBeyondTheTimeoutIsMadeWhole)
{
    Prepared(10);
    GoAwayUntilUpdate(1);
    Reset(5000);
    EXPECT_THAT(clock.pauses, ElementsAre(5000));
}

TEST_F(UpdatableDevice, FirstWaitIsBoundedUnlessTheTimeoutIsLonger)
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

TEST_F(UpdatableDevice, TimeoutOfZeroMakesOneWholePass)
{
    Prepared(0);
    Reset();
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(update, open0));

    GoAwayUntilUpdate(2);
    EXPECT_THAT([&] { Reset(); }, NotReopened(0, Key()));
    EXPECT_EQ(updates, 1);
    EXPECT_THAT(clock.pauses, ElementsAre());
}

TEST_F(UpdatableDevice, SearchEndsWhenTheTimeoutIsExceeded)
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

TEST_F(UpdatableDevice, LargeTimeoutsAreNoShortOnes)
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

TEST_F(UpdatableDevice, FailingListUpdatesAreSwallowedUntilTheTimeout)
{
    Prepared(300);
    objects.producer->Answer("IFUpdateDeviceList", GenTL::GC_ERR_IO);
    EXPECT_THAT([&] { Reset(); }, NotReopened(300, Key()));
    // The old list still holds the device.
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(update, update, update));
}

TEST_F(UpdatableDevice, SearchGoesOnAfterListUpdatesThatFail)
{
    Prepared();
    objects.producer->OnEntry("IFUpdateDeviceList", [this] {
        if (++updates == 1) throw std::runtime_error("no list");
        if (updates == 2) throw 5;
    });
    Reset();
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(update, update, update, open0));
}

TEST_F(UpdatableDevice, InterfaceWhoseSystemHasGoneRunsIntoTheTimeout)
{
    Prepared(100);
    objects.producer->OnEntry("DevClose", [this] { objects.system.reset(); });
    EXPECT_THAT([&] { Reset(); }, NotReopened(100, Key()));
}

TEST_F(UpdatableDevice, InterfaceIsKeptWhileTheDeviceIsAway)
{
    Prepared();
    objects.interface.reset();
    Reset();
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev0"));
}

TEST_F(UpdatableDevice, IsFoundByItsSerialNumberUnderAnyID)
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

TEST_F(UpdatableDevice, SerialNumbersAreComparedWhole)
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

TEST_F(UpdatableDevice, DeviceThatIsNotOpenableIsSkippedUntilTheTimeout)
{
    Prepared(300);
    objects.producer->SetInfo(
        "IFGetDeviceInfo", GenTL::DEVICE_INFO_ACCESS_STATUS, scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_NOACCESS));
    EXPECT_THAT([&] { Reset(); }, NotReopened(300, Key()));
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(update, update, update));
}

TEST_F(UpdatableDevice, DeviceThatBecomesOpenableIsTaken)
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
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(update, update, open0));
}

TEST_F(UpdatableDevice, ReadableDeviceCountsAsOpenable)
{
    Prepared();
    EditDevices([](Devices& devices) {
        devices[0]->info[GenTL::DEVICE_INFO_ACCESS_STATUS] = scripted::Int32(GenTL::DEVICE_ACCESS_STATUS_READONLY);
    });
    Reset();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre(open0));
}

TEST_F(UpdatableDevice, OfTwoWithOneSerialNumberTheFirstThatOpensIsTaken)
{
    const auto sameSerial = [](Devices& devices) {
        devices[1]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER];
    };
    EditDevices(sameSerial);
    Prepared();
    Reset();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre(open0));

    objects.producer->ClearJournal();
    objects.producer->AnswerOnce("IFOpenDevice", GenTL::GC_ERR_RESOURCE_IN_USE);
    Reset();
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(update, open0, open1));
    EXPECT_THAT(OpenedDevices(), ElementsAre("if0-dev1"));
}

TEST_F(UpdatableDevice, DeviceWithoutARemoteNodeMapIsClosedAndTheNextOneTried)
{
    Prepared();
    EditDevices([](Devices& devices) {
        devices[1]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER];
        devices[0]->remotePort.urls.clear();
    });
    Reset();
    EXPECT_THAT(
        Calls({"IFOpenDevice", "DevClose"}), ElementsAre("DevClose(if0-dev0)", open0, "DevClose(if0-dev0)", open1));
}

TEST_F(UpdatableDevice, FailuresOfACandidateAreSwallowed)
{
    Prepared();
    EditDevices([](Devices& devices) {
        devices.insert(devices.begin(), {scripted::MakeDevice("silent"), scripted::MakeDevice("unknown")});
        devices[0]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = scripted::Failing(GenTL::GC_ERR_IO);
        devices[1]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER] = devices[2]->info[GenTL::DEVICE_INFO_SERIAL_NUMBER];
        devices[1]->info[GenTL::DEVICE_INFO_ACCESS_STATUS] = scripted::Failing(GenTL::GC_ERR_ERROR);
    });
    Reset();
    EXPECT_THAT(Calls({"IFOpenDevice"}), ElementsAre(open0));
}

TEST_F(UpdatableDevice, ForeignFailuresOfACandidateAreSwallowedToo)
{
    Prepared();
    int openings = 0;
    objects.producer->OnEntry("IFOpenDevice", [&] {
        if (++openings == 1) throw 5;
    });
    Reset();
    EXPECT_THAT(Calls({"IFUpdateDeviceList", "IFOpenDevice"}), ElementsAre(update, open0, update, open0));
}

TEST_F(UpdatableDevice, NewDeviceWithoutALocalNodeMapIsTheStandardFailure)
{
    Prepared();
    EditDevices([](Devices& devices) { devices[0]->port.urls.clear(); });
    EXPECT_THAT([&] { Reset(); }, ThrowsExactly<std::out_of_range>("invalid vector subscript"));
}

} // namespace koro::test

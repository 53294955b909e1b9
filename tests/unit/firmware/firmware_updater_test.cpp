// The updater by its class: empty references, which no handle can be, and what a collection leaves behind.
#include "base/exceptions.h"
#include "capi/handle_tables.h"
#include "firmware/firmware_update_information.h"
#include "firmware/firmware_updater.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_firmware.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/firmware/scripted_clock.h"
#include "tests/unit/modules/open_objects.h"

#include <gtest/gtest.h>

namespace koro::test
{

using namespace internal;

namespace
{

class FirmwareUpdaterClass : public testing::Test
{
protected:
    FirmwareUpdaterClass()
    {
        objects.stream.reset();
        objects.remoteDevice.reset();
        objects.device.reset();
        objects.producer->Edit(
            [](scripted::Tree& edited) { firmware::MakeUpdatable(*edited.interfaces[0]->devices[0]); });
        objects.producer->ClearJournal();
    }

    OpenObjects objects;
    FirmwareUpdater updater;
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + Update()));
};

} // namespace

TEST_F(FirmwareUpdaterClass, EmptyReferencesAreRefused)
{
    EXPECT_THAT(
        [&] { updater.CollectFirmwareUpdateInformation(file.path, nullptr); },
        ThrowsExactly<InvalidArgumentException>("Device is an empty shared pointer!"));
    EXPECT_THAT(
        [&] { updater.UpdateDevice(nullptr, nullptr, nullptr, 0); },
        ThrowsExactly<InvalidArgumentException>("Device is an empty shared pointer!"));
    EXPECT_THAT(
        [&] { updater.UpdateDevice(objects.deviceDescriptor, nullptr, nullptr, 0); },
        ThrowsExactly<InvalidArgumentException>("UpdateInfo is an empty shared pointer!"));
    EXPECT_EQ(objects.producer->Journal(), std::vector<std::string>());
}

TEST_F(FirmwareUpdaterClass, WithoutATimeoutAMinuteIsGivenToEachReset)
{
    const KoroLibrary library;
    const auto clock = std::make_shared<ScriptedClock>();
    const auto searching = std::make_shared<FirmwareUpdater>(clock);
    const UpdateFileOnDisk resetting = WithControl(Control(Procedure(firmware::ResetStep()) + Update()));
    searching->CollectAllFirmwareUpdateInformation(resetting.path);
    const auto information = searching->FirmwareUpdateInformation().at(0);
    // It is never listed again.
    objects.producer->Answer("IFUpdateDeviceList", GenTL::GC_ERR_IO);
    EXPECT_EQ(
        Outcome(KORO_FirmwareUpdater_UpdateDevice(
            Table<FirmwareUpdater>().Add(searching),
            Table<DeviceDescriptor>().Add(objects.deviceDescriptor, objects.interface),
            Table<internal::FirmwareUpdateInformation>().Add(information, searching), nullptr)),
        (Error{
            KORO_RETURN_CODE_TIMEOUT, "Device could not be reopened within 60000 ms after reset (Device Key: " +
                                          objects.deviceDescriptor->Key() + ")!"}));
    EXPECT_EQ(clock->pauses, std::vector<std::uint64_t>(300, 200));
}

TEST_F(FirmwareUpdaterClass, InformationIsACopyOfTheList)
{
    updater.CollectAllFirmwareUpdateInformation(file.path);
    const auto list = updater.FirmwareUpdateInformation();
    ASSERT_EQ(list.size(), 1u);
    updater.CollectAllFirmwareUpdateInformation(file.path);
    EXPECT_EQ(updater.FirmwareUpdateInformation().size(), 1u);
    EXPECT_NE(updater.FirmwareUpdateInformation().at(0), list.at(0));
    EXPECT_EQ(list.at(0)->Version(), "2.0");
}

TEST_F(FirmwareUpdaterClass, InformationThatWasNeverReadIsRefusedBeforeTheDevice)
{
    const auto empty = std::make_shared<FirmwareUpdateInformation>(GENAPI_NAMESPACE::CFirmwareUpdateInfo());
    EXPECT_THROW(updater.UpdateDevice(objects.deviceDescriptor, empty, nullptr, 0), InvalidArgumentException);
    EXPECT_EQ(CallsOf(objects.producer->Journal(), {"IFOpenDevice"}), std::vector<std::string>());
}

TEST_F(FirmwareUpdaterClass, MissingNodeMapLeavesAsAnInternalError)
{
    objects.producer->Edit([](scripted::Tree& edited) { edited.interfaces[0]->devices[0]->remotePort.urls.clear(); });
    EXPECT_THAT(
        [&] { updater.CollectFirmwareUpdateInformation(file.path, objects.deviceDescriptor); },
        ThrowsExactly<InternalErrorException>("invalid vector subscript"));
    updater.CollectAllFirmwareUpdateInformation(file.path);
    EXPECT_THAT(
        [&] { updater.UpdateDevice(objects.deviceDescriptor, updater.FirmwareUpdateInformation().at(0), nullptr, 0); },
        ThrowsExactly<InternalErrorException>("invalid vector subscript"));
}

TEST_F(FirmwareUpdaterClass, DeviceIsClosedWhenACollectionEndsOrFails)
{
    updater.CollectFirmwareUpdateInformation(file.path, objects.deviceDescriptor);
    EXPECT_THROW(
        updater.CollectFirmwareUpdateInformation(file.path + "x", objects.deviceDescriptor), InternalErrorException);
    EXPECT_EQ(
        CallsOf(objects.producer->Journal(), {"IFOpenDevice", "DevClose"}),
        (std::vector<std::string>{
            "IFOpenDevice(if0, if0-dev0, 3)", "DevClose(if0-dev0)", "IFOpenDevice(if0, if0-dev0, 3)",
            "DevClose(if0-dev0)"}));
}

} // namespace koro::test

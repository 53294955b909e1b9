// The updater by its class: empty references, which no handle can be, and what a collection leaves behind.
#include "base/exceptions.h"
#include "firmware/firmware_update_information.h"
#include "firmware/firmware_updater.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_firmware.h"
#include "tests/support/throws_exactly.h"
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

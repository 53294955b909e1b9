// The information about an update, and the collector that takes it from a file.
#include "base/exceptions.h"
#include "firmware/firmware_update_information.h"
#include "firmware/firmware_update_information_collector.h"
#include "tests/support/scripted_firmware.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

namespace koro::test
{

using namespace internal;
using namespace GENAPI_NAMESPACE;
using testing::ElementsAre;

namespace
{

FirmwareUpdateInformationCollector::Updates Collect(
    FirmwareUpdateInformationCollector& collector, const std::string& updates)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + updates));
    CFirmwareUpdater().ReadFirmwareUpdateInfos(file.path.c_str(), collector, nullptr);
    return collector.TakeUpdates();
}

std::shared_ptr<FirmwareUpdateInformation> InformationOf(const std::string& entries)
{
    FirmwareUpdateInformationCollector all;
    return Collect(all, Update(entries)).at(0);
}

std::vector<std::string> VersionsOf(const FirmwareUpdateInformationCollector::Updates& updates)
{
    std::vector<std::string> versions;
    for (const auto& update : updates)
        versions.push_back(update->Version());
    return versions;
}

std::string Versioned(const std::string& version, const std::string& vendorPattern)
{
    return Update(
        Entry("Version", version) + Entry("Description", "An update"),
        "<Condition Feature=\"DeviceVendorName\">" + vendorPattern + "</Condition>");
}

} // namespace

TEST(FirmwareUpdateInformation, TextsAreThoseOfTheFile)
{
    const auto information = InformationOf(
        neededEntries + Entry("VersionExtractionPattern", "V(.*)") + Entry("ReleaseNotes", "Anmerkungen", "de") +
        Entry("ReleaseNotes", "Notes", "en") + Entry("ReleaseNotesURL", "https://example.com/notes"));
    EXPECT_TRUE(information->IsValid());
    EXPECT_THAT(information->FileName(), testing::EndsWith("/update.guf"));
    EXPECT_EQ(information->Version(), "2.0");
    EXPECT_EQ(information->Description(), "Better pictures");
    EXPECT_EQ(information->VersionExtractionPattern(), "V(.*)");
    EXPECT_EQ(information->ReleaseNotes(), "Notes");
    EXPECT_EQ(information->ReleaseNotesURL(), "https://example.com/notes");
}

TEST(FirmwareUpdateInformation, AbsentEntriesAreEmptyTexts)
{
    const auto information = InformationOf(neededEntries);
    EXPECT_EQ(information->VersionExtractionPattern(), "");
    EXPECT_EQ(information->ReleaseNotes(), "");
    EXPECT_EQ(information->ReleaseNotesURL(), "");
}

TEST(FirmwareUpdateInformation, NumbersAreTheFirstOnesForEveryFile)
{
    for (const std::string style : {"", "dotted", "semver"})
    {
        for (const std::string persistence : {"", "none", "full", "other"})
        {
            std::string entries = neededEntries;
            if (!style.empty()) entries += Entry("VersionStyle", style);
            if (!persistence.empty())
                entries += Entry("UserSetPersistence", persistence) + Entry("SequencerSetPersistence", persistence);
            const auto information = InformationOf(entries);
            EXPECT_EQ(information->VersionStyle(), FirmwareUpdateVersionStyle::Dotted) << style;
            EXPECT_EQ(information->UserSetPersistence(), FirmwareUpdatePersistence::None) << persistence;
            EXPECT_EQ(information->SequencerSetPersistence(), FirmwareUpdatePersistence::None) << persistence;
        }
    }
}

TEST(FirmwareUpdateInformation, WithoutAFileIsNotValidAndEmpty)
{
    const FirmwareUpdateInformation information{CFirmwareUpdateInfo()};
    EXPECT_FALSE(information.IsValid());
    EXPECT_EQ(information.FileName(), "");
    EXPECT_EQ(information.Version(), "");
    EXPECT_EQ(information.VersionStyle(), FirmwareUpdateVersionStyle::Dotted);
}

TEST(FirmwareUpdateInformationCollector, WithoutADeviceTakesAllInTheOrderOfTheFile)
{
    FirmwareUpdateInformationCollector all;
    EXPECT_THAT(
        VersionsOf(Collect(all, Versioned("1", "Acme") + Versioned("2", "Other") + Versioned("3", "Acme"))),
        ElementsAre("1", "2", "3"));
}

TEST(FirmwareUpdateInformationCollector, WithADeviceSkipsWhatDoesNotFitAndGoesOn)
{
    OpenObjects objects;
    objects.stream.reset();
    objects.device.reset();
    objects.producer->Edit([](scripted::Tree& edited) { firmware::MakeUpdatable(*edited.interfaces[0]->devices[0]); });
    FirmwareUpdateInformationCollector fitting(objects.deviceDescriptor->OpenDevice(GenTL::DEVICE_ACCESS_CONTROL));
    EXPECT_THAT(
        VersionsOf(Collect(
            fitting,
            Versioned("1", "Other") + Versioned("2", "Acme") + Versioned("3", "^Vision") + Versioned("4", "Vision$"))),
        ElementsAre("2", "4"));
}

TEST(FirmwareUpdateInformationCollector, AnswersTrueForEveryUpdate)
{
    OpenObjects objects;
    FirmwareUpdateInformationCollector fitting(objects.device);
    // The default camera has none of the features that are asked for.
    EXPECT_TRUE(fitting.OnUpdateRead(InformationOf(neededEntries)->GenApiInformation()));
    EXPECT_THAT(fitting.TakeUpdates(), ElementsAre());
    FirmwareUpdateInformationCollector all;
    EXPECT_TRUE(all.OnUpdateRead(InformationOf(neededEntries)->GenApiInformation()));
    EXPECT_EQ(all.TakeUpdates().size(), 1u);
}

TEST(FirmwareUpdateInformationCollector, DeviceWithoutARemoteNodeMapIsTheStandardFailure)
{
    OpenObjects objects;
    objects.stream.reset();
    objects.device.reset();
    objects.producer->Edit([](scripted::Tree& edited) { edited.interfaces[0]->devices[0]->remotePort.urls.clear(); });
    const auto device = objects.deviceDescriptor->OpenDevice(GenTL::DEVICE_ACCESS_CONTROL);
    EXPECT_THAT(
        [&] { FirmwareUpdateInformationCollector collector(device); },
        ThrowsExactly<std::out_of_range>("invalid vector subscript"));
}

} // namespace koro::test

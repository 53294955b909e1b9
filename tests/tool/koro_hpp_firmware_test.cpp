// Firmware through the C++ face, on a scripted camera.
#include "tests/support/scripted_firmware.h"
#include "tests/support/scripted_producer.h"
#include "tests/tool/koro_tree.h"
#include <koro/koro.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>

namespace
{

using koro::test::CodeOf;
using koro::test::Control;
using koro::test::Entry;
using koro::test::Procedure;
using koro::test::ScriptedProducer;
using koro::test::Tree;
using koro::test::Update;
using koro::test::UpdateFileOnDisk;
using koro::test::WithControl;
using testing::ElementsAre;
using testing::IsEmpty;
namespace firmware = koro::test::firmware;

class KoroFirmware : public testing::Test
{
protected:
    KoroFirmware()
    {
        tree.stream.Close();
        tree.device.Close();
        Edit([](scripted::Device& device) { firmware::MakeUpdatable(device); });
    }

    void Edit(const std::function<void(scripted::Device&)>& edit) const
    {
        producer->Edit([&](scripted::Tree& edited) { edit(*edited.interfaces[0]->devices[0]); });
    }
    uint32_t Gain() const
    {
        uint32_t gain = 0;
        Edit([&](scripted::Device& device) { gain = firmware::RegisterOf(device.remotePort, firmware::gainAddress); });
        return gain;
    }
    static UpdateFileOnDisk FileFor(const std::string& vendor)
    {
        return WithControl(
            Control(
                Procedure(firmware::WriteGain("7") + firmware::UploadStep("a.bin")) +
                Update(
                    koro::test::neededEntries + Entry("ReleaseNotes", "Notes"),
                    "<Condition Feature=\"DeviceVendorName\">" + vendor + "</Condition>")),
            {{"a.bin", "bytes"}});
    }

    const ScriptedProducer producer;
    Tree tree{producer.Path()};
    const koro::DeviceDescriptor camera = tree.firstInterface.Devices().at(0);
    const koro::FirmwareUpdater updater;
};

TEST_F(KoroFirmware, UpdatesOfAFileTellAboutThemselves)
{
    const UpdateFileOnDisk file = FileFor("Other");
    EXPECT_THAT(updater.Found(), IsEmpty());
    const auto updates = updater.Collect(file.path);
    ASSERT_EQ(updates.size(), 1u);
    EXPECT_TRUE(updates[0].IsValid());
    EXPECT_EQ(updates[0].FileName(), file.path);
    EXPECT_EQ(updates[0].Version(), "2.0");
    EXPECT_EQ(updates[0].Description(), "Better pictures");
    EXPECT_EQ(updates[0].VersionExtractionPattern(), "");
    EXPECT_EQ(updates[0].ReleaseNotes(), "Notes");
    EXPECT_EQ(updates[0].ReleaseNotesURL(), "");
    EXPECT_EQ(updates[0].VersionStyle(), KORO_FIRMWARE_UPDATE_VERSION_STYLE_DOTTED);
    EXPECT_EQ(updates[0].UserSetPersistence(), KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE);
    EXPECT_EQ(updates[0].SequencerSetPersistence(), KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE);
    EXPECT_EQ(updater.Found(), updates);
    EXPECT_THAT(updater.Collect(file.path, camera), IsEmpty());
}

TEST_F(KoroFirmware, UpdateRunsWithoutAnybodyWatching)
{
    const UpdateFileOnDisk file = FileFor("Acme");
    updater.Update(camera, updater.Collect(file.path, camera).at(0), 0);
    EXPECT_EQ(Gain(), 7u);
}

TEST_F(KoroFirmware, UpdateIsFollowed)
{
    const UpdateFileOnDisk file = FileFor("Acme");
    const koro::FirmwareUpdateProgressObserver observer;
    std::vector<std::string> told;
    const auto started = observer.OnStarted([&](koro::FirmwareUpdateInformation update, uint32_t duration_ms) {
        told.push_back("started " + update.Version() + " " + std::to_string(duration_ms));
    });
    const auto stepStarted =
        observer.OnStepStarted([&](KORO_FirmwareUpdateStep step, uint32_t, const std::string& description) {
            if (step > KORO_FIRMWARE_UPDATE_STEP_ACQUIRE_UPDATE_DATA) told.push_back(description);
        });
    const auto progress = observer.OnStepProgress([&](KORO_FirmwareUpdateStep, double percent) {
        told.push_back(std::to_string(static_cast<int>(percent)) + " %");
    });
    int steps = 0;
    const auto stepFinished = observer.OnStepFinished([&](KORO_FirmwareUpdateStep) { ++steps; });
    std::optional<koro::Registration> finished = observer.OnFinished([&] { told.push_back("finished"); });
    const auto failed = observer.OnFailed([&](const std::string& error) { told.push_back("failed: " + error); });

    const auto updates = updater.Collect(file.path);
    updater.Update(camera, updates.at(0), observer);
    EXPECT_THAT(told, ElementsAre("started 2.0 20", "FeatureWrite", "FileUpload", "100 %", "finished"));
    EXPECT_EQ(steps, 4);
    EXPECT_EQ(Gain(), 7u);

    told.clear();
    finished.reset();
    updater.Update(camera, updates.at(0), observer);
    EXPECT_EQ(told.back(), "100 %");

    producer->Answer("IFOpenDevice", GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(CodeOf([&] { updater.Update(camera, updates.at(0), observer); }), KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_THAT(told.back(), testing::StartsWith("failed: [Function: IFOpenDevice"));
}

TEST_F(KoroFirmware, FailuresCarryTheirCodes)
{
    EXPECT_EQ(CodeOf([&] { updater.Collect("/nowhere.guf"); }), KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(
        CodeOf([&] { updater.Collect("/nowhere.guf", koro::DeviceDescriptor()); }), KORO_RETURN_CODE_INVALID_HANDLE);
    EXPECT_EQ(CodeOf([&] { updater.Update(camera, {}); }), KORO_RETURN_CODE_INVALID_HANDLE);
    koro::FirmwareUpdater ended;
    ended.Close();
    EXPECT_EQ(CodeOf([&] { ended.Found(); }), KORO_RETURN_CODE_INVALID_HANDLE);
}

} // namespace

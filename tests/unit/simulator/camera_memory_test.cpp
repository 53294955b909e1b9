// A camera with a memory is one camera for all processes.
#include "tests/support/temporary_folder.h"
#include "tests/unit/simulator/other_process.h"
#include "tests/unit/simulator/remembered_camera.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace koro::simulator::test
{
namespace
{

using koro::test::TemporaryFolder;
using Steps = OtherProcess::Steps;

class SimulatorMemory : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const std::string settings = RememberedSettings(folder.File("memory"));
};

TEST_F(SimulatorMemory, SettingsOutliveTheProcessThatMadeThem)
{
    OtherProcess other([this](const Steps&) {
        const RememberedCamera camera(settings);
        camera.WriteWidth(32);
        camera.Write(at::userSetSave1, std::uint32_t{1});
        camera.WriteWidth(24);
        camera.WriteName("kept");
    });
    ASSERT_TRUE(other.Finish());
    const RememberedCamera camera(settings);
    EXPECT_EQ(camera.Read(at::width), 24U);
    EXPECT_EQ(camera.Read<std::uint64_t>(at::payloadSize), 24U * 48U);
    EXPECT_EQ(camera.ListedName(), "kept");
    camera.Write(at::userSetLoad1, std::uint32_t{1});
    EXPECT_EQ(camera.Read(at::width), 32U);
}

TEST_F(SimulatorMemory, WithoutTheSettingEachProcessHasItsOwn)
{
    const std::string alone = RememberedSettings("");
    OtherProcess other([&](const Steps& steps) {
        const RememberedCamera camera(alone, DEVICE_ACCESS_EXCLUSIVE);
        camera.WriteWidth(32);
        steps.Done();
        steps.AwaitNext();
    });
    ASSERT_TRUE(other.AwaitDone());
    const RememberedCamera camera(alone, DEVICE_ACCESS_EXCLUSIVE);
    EXPECT_EQ(camera.Read(at::width), 64U);
    camera.WriteWidth(16);
    EXPECT_EQ(camera.Read(at::width), 16U);
}

TEST_F(SimulatorMemory, WritesAreSeenByTheOthersAtOnce)
{
    OtherProcess other([this](const Steps& steps) {
        const RememberedCamera camera(settings);
        for (std::uint32_t width = 1; width <= 20; ++width)
        {
            camera.WriteWidth(width);
            steps.Done();
            steps.AwaitNext();
        }
    });
    ASSERT_TRUE(other.AwaitDone());
    const RememberedCamera camera(settings, DEVICE_ACCESS_READONLY);
    for (std::uint32_t width = 1; width < 20; ++width)
    {
        ASSERT_EQ(camera.Read(at::width), width);
        ASSERT_TRUE(other.Next());
    }
    EXPECT_EQ(camera.Read(at::width), 20U);
}

TEST_F(SimulatorMemory, TakingImagesIsSeenAndEndsWithTheProcessThatTakesThem)
{
    OtherProcess other([this](const Steps& steps) {
        RememberedCamera camera(settings);
        camera.WriteWidth(32);
        camera.TakeImages();
        steps.Done();
        steps.AwaitNext();
    });
    ASSERT_TRUE(other.AwaitDone());
    RememberedCamera camera(settings, DEVICE_ACCESS_READONLY);
    EXPECT_EQ(camera.Read(at::paramsLocked), 1U);
    EXPECT_EQ(camera.Read(at::streamEnable), 1U);
    EXPECT_EQ(camera.Read(at::acquisitionStatus) & isActive, isActive);

    other.Kill();
    EXPECT_EQ(camera.Read(at::paramsLocked), 0U);
    EXPECT_EQ(camera.Read(at::streamEnable), 0U);
    EXPECT_EQ(camera.Read(at::acquisitionStatus) & isActive, 0U);
    EXPECT_EQ(camera.Read(at::width), 32U);

    camera.Close();
    ASSERT_EQ(camera.Open(DEVICE_ACCESS_EXCLUSIVE), GC_ERR_SUCCESS);
    camera.WriteWidth(16);
    camera.TakeImages();
    EXPECT_EQ(camera.Read(at::paramsLocked), 1U);
}

TEST_F(SimulatorMemory, WhatAKilledProcessLeftRunningIsOverWhenTheNextTakesControl)
{
    OtherProcess other([this](const Steps& steps) {
        RememberedCamera camera(settings);
        camera.TakeImages();
        steps.Done();
        steps.AwaitNext();
    });
    ASSERT_TRUE(other.AwaitDone());
    other.Kill();
    const RememberedCamera camera(settings);
    EXPECT_EQ(camera.Read(at::paramsLocked), 0U);
    camera.WriteWidth(16);
}

TEST_F(SimulatorMemory, OneProcessControlsAndOthersRead)
{
    OtherProcess other([this](const Steps& steps) {
        const RememberedCamera camera(settings);
        steps.Done();
        steps.AwaitNext();
        camera.Close();
        steps.Done();
        steps.AwaitNext();
    });
    ASSERT_TRUE(other.AwaitDone());
    RememberedCamera camera(settings, DEVICE_ACCESS_NONE);
    EXPECT_EQ(camera.Status(), DEVICE_ACCESS_STATUS_READONLY);
    for (const DEVICE_ACCESS_FLAGS access : {DEVICE_ACCESS_CONTROL, DEVICE_ACCESS_EXCLUSIVE})
    {
        EXPECT_EQ(camera.Open(access), GC_ERR_ACCESS_DENIED);
        EXPECT_EQ(camera.producer.Last().text, "IFOpenDevice: another process controls the camera");
    }
    ASSERT_EQ(camera.Open(DEVICE_ACCESS_READONLY), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.Status(), DEVICE_ACCESS_STATUS_OPEN_READONLY);
    EXPECT_EQ(camera.TryWrite(at::width, std::uint32_t{8}), GC_ERR_ACCESS_DENIED);
    camera.Close();

    ASSERT_TRUE(other.Next());
    EXPECT_EQ(camera.Status(), DEVICE_ACCESS_STATUS_READWRITE);
    EXPECT_EQ(camera.Open(DEVICE_ACCESS_EXCLUSIVE), GC_ERR_SUCCESS);
}

TEST_F(SimulatorMemory, AProcessCanHaveTheCameraForItself)
{
    OtherProcess other([this](const Steps& steps) {
        const RememberedCamera camera(settings, DEVICE_ACCESS_EXCLUSIVE);
        steps.Done();
        steps.AwaitNext();
    });
    ASSERT_TRUE(other.AwaitDone());
    RememberedCamera camera(settings, DEVICE_ACCESS_NONE);
    EXPECT_EQ(camera.Status(), DEVICE_ACCESS_STATUS_BUSY);
    EXPECT_EQ(camera.Open(DEVICE_ACCESS_READONLY), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(camera.producer.Last().text, "IFOpenDevice: another process has the camera for itself");
    other.Kill();
    EXPECT_EQ(camera.Status(), DEVICE_ACCESS_STATUS_READWRITE);
    EXPECT_EQ(camera.Open(DEVICE_ACCESS_READONLY), GC_ERR_SUCCESS);
}

TEST_F(SimulatorMemory, AReaderKeepsOthersFromHavingTheCameraForThemselves)
{
    OtherProcess other([this](const Steps& steps) {
        const RememberedCamera camera(settings, DEVICE_ACCESS_READONLY);
        steps.Done();
        steps.AwaitNext();
    });
    ASSERT_TRUE(other.AwaitDone());
    RememberedCamera camera(settings, DEVICE_ACCESS_NONE);
    EXPECT_EQ(camera.Status(), DEVICE_ACCESS_STATUS_READWRITE);
    EXPECT_EQ(camera.Open(DEVICE_ACCESS_EXCLUSIVE), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(camera.producer.Last().text, "IFOpenDevice: another process reads the camera");
    EXPECT_EQ(camera.Status(), DEVICE_ACCESS_STATUS_READWRITE); // nothing of the refused one is left
    EXPECT_EQ(camera.Open(DEVICE_ACCESS_CONTROL), GC_ERR_SUCCESS);
}

TEST_F(SimulatorMemory, AReaderGetsNoImagesAndDisturbsNobodyByItsEnd)
{
    OtherProcess other([this](const Steps& steps) {
        RememberedCamera camera(settings);
        camera.TakeImages();
        steps.Done();
        steps.AwaitNext();
        steps.Done();
        if (camera.Read(at::paramsLocked) != 1) throw std::runtime_error("unlocked");
    });
    ASSERT_TRUE(other.AwaitDone());
    {
        RememberedCamera camera(settings, DEVICE_ACCESS_READONLY);
        EXPECT_EQ(camera.TryStream(), GC_ERR_ACCESS_DENIED);
        EXPECT_EQ(camera.producer.Last().text, "DSStartAcquisition: the device is open for reading only");
    }
    ASSERT_TRUE(other.Next());
    EXPECT_TRUE(other.Finish());
}

TEST_F(SimulatorMemory, AResetElsewhereDoesNotTakeTheCameraAwayHere)
{
    const std::string vanishing = RememberedSettings(folder.File("memory"), R"(, "resetMissingUpdates": 1)");
    OtherProcess other([&](const Steps&) {
        const RememberedCamera camera(vanishing);
        camera.WriteWidth(32);
        camera.Write(at::reset, std::uint32_t{1});
    });
    ASSERT_TRUE(other.Finish());
    const RememberedCamera camera(vanishing);
    EXPECT_EQ(camera.Read(at::width), 64U);
    camera.WriteWidth(8);
    EXPECT_EQ(camera.Read(at::width), 8U);
}

// Width and height lie side by side: one access writes both.
using Size = std::array<std::uint32_t, 2>;

TEST_F(SimulatorMemory, KillingAProcessThatWritesNeitherTearsValuesNorLocksTheOthersOut)
{
    Size last{64, 48};
    for (int round = 0; round < 25; ++round)
    {
        OtherProcess other([this](const Steps& steps) {
            const RememberedCamera camera(settings);
            camera.Write(at::width, Size{2, 1});
            steps.Done();
            for (std::uint32_t half = 1;; half = half % 24 + 1)
                camera.Write(at::width, Size{2 * half, half});
        });
        ASSERT_TRUE(other.AwaitDone());
        const RememberedCamera camera(settings, DEVICE_ACCESS_READONLY);
        for (int read = 0; read < 20 * round; ++read)
        {
            const Size size = camera.Read<Size>(at::width);
            ASSERT_EQ(size[0], 2 * size[1]);
        }
        other.Kill();
        last = camera.Read<Size>(at::width);
        ASSERT_EQ(last[0], 2 * last[1]);
        ASSERT_EQ(camera.Read<Size>(at::width), last);
    }
    EXPECT_EQ(RememberedCamera(settings).Read<Size>(at::width), last);
}

TEST_F(SimulatorMemory, ProcessesThatMakeTheFileAtOnceShareOne)
{
    std::vector<std::unique_ptr<OtherProcess>> others;
    std::ofstream("shared-settings.json") << settings;
    for (int number = 0; number < 8; ++number)
        others.push_back(std::make_unique<OtherProcess>([](const Steps& steps) {
            const Producer producer("", false);
            setenv("KORO_SIMULATOR_CONFIG", "shared-settings.json", 1);
            steps.AwaitNext();
            if (producer.GCInitLib() != GC_ERR_SUCCESS) throw std::runtime_error(producer.Last().text);
            steps.Done();
            steps.AwaitNext();
        }));
    for (const auto& other : others)
        EXPECT_TRUE(other->Start());
    for (const auto& other : others)
        EXPECT_TRUE(other->AwaitDone());
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.File("memory")))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, testing::ElementsAre("A.memory"));
}

} // namespace
} // namespace koro::simulator::test

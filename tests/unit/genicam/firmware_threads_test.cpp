// One update for several cameras, each in its thread.
#include "tests/unit/genicam/firmware_camera.h"
#include "tests/unit/genicam/firmware_files.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using namespace koro::test;
using namespace GENAPI_NAMESPACE;

TEST(FirmwareThreads, OneUpdateIsAppliedToTwoCamerasAtOnce)
{
    const std::string steps =
        Step("FileUpload", "<DeviceFileName>Firmware</DeviceFileName><FileName>a.bin</FileName>") +
        Step("FeatureAssert", "<FeatureName>DeviceVendorName</FeatureName><AssertPattern>^Acme</AssertPattern>") +
        Step("FeatureWrite", "<FeatureName>Gain</FeatureName><Value>7</Value>");
    const std::string payload(1000, 'x');
    const UpdateFileOnDisk file = WithControl(
        Control(Procedure(steps) + Update(neededEntries + Entry("VersionExtractionPattern", "V(.*)"))),
        {{"a.bin", payload}});
    const CFirmwareUpdateInfo info = ReadAll(file).at(0);
    const CFirmwareUpdater updater;
    const auto update = [&](std::string& result) {
        Journal journal;
        FirmwareCamera camera(journal);
        UpdatableCamera device(camera);
        RecordingObserver observer(journal);
        result = Thrown([&] { CFirmwareUpdater().ApplyUpdate(&device, info, &observer); });
        if (!updater.FirmwareUpdateMatchesDevice(camera.map, info)) result += ", no match";
        if (info.ExtractVersionFromDeviceFirmwareVersion("V1.2") != "1.2") result += ", another version";
        if (camera.Number(FirmwareCamera::Gain) != 7) result += ", no gain";
        if (std::count(journal.begin(), journal.end(), "end") != 1) result += ", no end";
    };
    std::string results[2];
    std::thread first(update, std::ref(results[0])), second(update, std::ref(results[1]));
    first.join();
    second.join();
    EXPECT_EQ(results[0], "nothing");
    EXPECT_EQ(results[1], "nothing");
}

TEST(FirmwareThreads, SelectorThatAnotherThreadMovesMisdirectsNoBlock)
{
    const std::string payload(64 * 200, 'x');
    const UpdateFileOnDisk file = WithControl(
        Control(
            Procedure(Step("FileUpload", "<DeviceFileName>Firmware</DeviceFileName><FileName>a.bin</FileName>")) +
            Update(neededEntries)),
        {{"a.bin", payload}});
    Journal journal;
    FirmwareCamera camera(journal);
    int misdirected = 0;
    camera.onExecute = [&] { misdirected += camera.Number(FirmwareCamera::FileSelector) != 1; };
    std::atomic<bool> done{false};
    std::thread mover([&] {
        const CEnumerationPtr fileSelector = camera.map->GetNode("FileSelector");
        const CEnumerationPtr operation = camera.map->GetNode("FileOperationSelector");
        while (!done)
        {
            fileSelector->FromString("UserFile");
            operation->FromString("Read");
            std::this_thread::yield();
        }
    });
    UpdatableCamera device(camera);
    const std::string result = Thrown([&] { CFirmwareUpdater().ApplyUpdate(&device, ReadAll(file).at(0), nullptr); });
    done = true;
    mover.join();
    EXPECT_EQ(result, "nothing");
    EXPECT_EQ(misdirected, 0);
    EXPECT_EQ(camera.file, payload);
}

} // namespace

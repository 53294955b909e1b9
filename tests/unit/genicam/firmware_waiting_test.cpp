#include "firmware/device_file.h"
#include "firmware/waiting.h"
#include "tests/unit/genicam/firmware_camera.h"
#include "tests/unit/genicam/firmware_files.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace koro::test;
using namespace GENAPI_NAMESPACE::runtime;

TEST(ExecuteAndWait, AsksAtLeastOnceEvenWithoutTime)
{
    Journal journal;
    FirmwareCamera camera(journal);
    const GENAPI_NAMESPACE::CCommandPtr command = camera.map->GetNode("Activate");
    EXPECT_TRUE(ExecuteAndWait(*command, 0));
    camera.polls = 1 << 30;
    EXPECT_FALSE(ExecuteAndWait(*command, 0));
}

TEST(ExecuteAndWait, AsksAgainAfterShortPausesThatGrowToTheLongest)
{
    using std::chrono::microseconds;
    Pauses pauses;
    EXPECT_EQ(pauses.Next(), microseconds(50));
    EXPECT_EQ(pauses.Next(), microseconds(100));
    EXPECT_EQ(pauses.Next(), microseconds(200));
    for (int pause = 0; pause < 100; ++pause)
        pauses.Next();
    EXPECT_EQ(pauses.Next(), microseconds(5000));
    EXPECT_EQ(Pauses().Next(), microseconds(50)) << "each wait begins anew";
}

TEST(ExecuteAndWait, AsksUntilTheDeviceIsDone)
{
    Journal journal;
    FirmwareCamera camera(journal);
    const GENAPI_NAMESPACE::CCommandPtr command = camera.map->GetNode("Activate");
    camera.polls = 20;
    EXPECT_TRUE(ExecuteAndWait(*command, 600000));
    EXPECT_TRUE(command->IsDone());
}

// Whether another thread could take the lock of the map now.
bool IsFree(GENAPI_NAMESPACE::INodeMap& map)
{
    return std::async(
               std::launch::async,
               [&] {
                   const bool taken = map.GetLock().TryLock();
                   if (taken) map.GetLock().Unlock();
                   return taken;
               })
        .get();
}

TEST(DeviceFile, EachOperationHoldsTheLockAndProgressDoesNot)
{
    Journal journal;
    FirmwareCamera camera(journal);
    int lockedOperations = 0;
    camera.onExecute = [&] { lockedOperations += !IsFree(*camera.map); };
    DeviceFile file(*camera.map, "Firmware", 1000);
    file.Open();
    int freeReports = 0;
    file.Write(std::string(130, 'x'), [&](size_t) { freeReports += IsFree(*camera.map); });
    file.Close();
    EXPECT_EQ(lockedOperations, 5);
    EXPECT_EQ(freeReports, 3);
    EXPECT_TRUE(IsFree(*camera.map));
}

TEST(DeviceFile, LockIsGivenBackAfterAFailedBlock)
{
    Journal journal;
    FirmwareCamera camera(journal);
    camera.refusesFrom = 64;
    DeviceFile file(*camera.map, "Firmware", 1000);
    file.Open();
    EXPECT_NE(Thrown([&] { file.Write(std::string(130, 'x'), [](size_t) {}); }), "nothing");
    EXPECT_TRUE(IsFree(*camera.map));
}

TEST(DeviceFile, BlockGoesIntoItsFileWhereverTheSelectorsWereMovedBeforeIt)
{
    Journal journal;
    FirmwareCamera camera(journal);
    const GENAPI_NAMESPACE::CEnumerationPtr fileSelector = camera.map->GetNode("FileSelector");
    const GENAPI_NAMESPACE::CEnumerationPtr operation = camera.map->GetNode("FileOperationSelector");
    int misdirected = 0;
    camera.onExecute = [&] { misdirected += camera.Number(FirmwareCamera::FileSelector) != 1; };
    DeviceFile file(*camera.map, "Firmware", 1000);
    file.Open();
    const std::string content = std::string(64, 'a') + std::string(64, 'b') + "c";
    file.Write(content, [&](size_t) {
        fileSelector->FromString("UserFile");
        operation->FromString("Delete");
    });
    file.Close();
    EXPECT_EQ(misdirected, 0);
    EXPECT_EQ(camera.file, content);
}

TEST(DeviceFile, SelectorsThatWereNotMovedAreNotWrittenAgain)
{
    Journal journal;
    FirmwareCamera camera(journal);
    DeviceFile file(*camera.map, "Firmware", 1000);
    file.Open();
    journal.clear();
    file.Write(std::string(640, 'x'), [](size_t) {});
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "write FileSelector=1"), 1);
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "write Operation=3"), 1);
}

TEST(DeviceFile, OperationThatDoesNotEndIsRefused)
{
    Journal journal;
    FirmwareCamera camera(journal);
    camera.polls = 1 << 30;
    DeviceFile file(*camera.map, "Firmware", 0);
    EXPECT_EQ(
        Thrown([&] { file.Open(); }),
        "RuntimeException: The device did not finish the operation 'Open' on its file 'Firmware' within 0 ms");
}

TEST(DeviceFile, BufferWithoutLengthIsRefused)
{
    Journal journal;
    FirmwareCamera camera(journal, 64);
    std::string elements = camera.Elements();
    elements.replace(
        elements.find("<Length>64</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache"
                      "</Cachable></Register>"),
        19, "<Length>0</Length>");
    camera.Describe(elements);
    DeviceFile file(*camera.map, "Firmware", 1000);
    file.Open();
    EXPECT_EQ(
        Thrown([&] { file.Write("x", [](size_t) {}); }),
        "RuntimeException: The feature 'FileAccessBuffer' has a length of 0");
}

} // namespace

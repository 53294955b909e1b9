#include "firmware/device_file.h"
#include "firmware/waiting.h"
#include "tests/unit/genicam/firmware_camera.h"
#include "tests/unit/genicam/firmware_files.h"

#include <gtest/gtest.h>

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

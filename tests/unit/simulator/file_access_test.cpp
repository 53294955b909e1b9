// The files of the simulated cameras, by their registers and through the GenICam runtime's file adapter.
#include "tests/unit/simulator/camera_files.h"

#include <array>
#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;
constexpr auto in = forReading;
constexpr auto out = forWriting;

class SimulatorFiles : public testing::TestWithParam<const char*>
{};

INSTANTIATE_TEST_SUITE_P(
    OnEveryTransport, SimulatorFiles, testing::Values("GEV", "U3V", "Custom"),
    [](const auto& parameter) { return std::string(parameter.param); });

TEST_P(SimulatorFiles, UserFileGivesBackWhatWasWritten)
{
    Files camera("", "", GetParam());
    const std::string text = Pattern(200'003);
    ASSERT_TRUE(camera.adapter.openFile("UserFile", out));
    EXPECT_EQ(camera.Write(text), 200'003);
    ASSERT_TRUE(camera.adapter.closeFile("UserFile"));
    EXPECT_EQ(camera.map.Text("FileSize"), "200003");
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in));
    EXPECT_TRUE(camera.Read(text.size()) == text);
    ASSERT_TRUE(camera.adapter.closeFile("UserFile"));
}

TEST(SimulatorUserFile, TakesSixteenMegabytes)
{
    Files camera;
    const std::string text = Pattern(std::size_t{16} << 20);
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in | out));
    ASSERT_EQ(camera.Write(text), static_cast<std::int64_t>(text.size()));
    EXPECT_TRUE(camera.Read(text.size()) == text);
    EXPECT_TRUE(camera.adapter.closeFile("UserFile"));
}

TEST(SimulatorUserFile, KeepsWhatIsNotOverwritten)
{
    Files camera;
    ASSERT_TRUE(camera.adapter.openFile("UserFile", out));
    EXPECT_EQ(camera.Write("abcdef"), 6);
    ASSERT_TRUE(camera.adapter.closeFile("UserFile"));
    ASSERT_TRUE(camera.adapter.openFile("UserFile", out));
    EXPECT_EQ(camera.Write("XY", 2), 2);
    EXPECT_EQ(camera.Write("z", 8), 1);
    ASSERT_TRUE(camera.adapter.closeFile("UserFile"));
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in));
    EXPECT_EQ(camera.Read(100), (std::string{"abXYef\0\0z", 9})) << "zeros where nobody wrote";
    EXPECT_EQ(camera.Read(100, 9), "");
    EXPECT_EQ(camera.Read(100, 1000), "");
    EXPECT_EQ(camera.Status(), "Success");
}

TEST(SimulatorUserFile, TakesNoMoreThanItHasRoomFor)
{
    Files camera(R"(, "userFileBytes": 100, "fileBufferBytes": 64)");
    EXPECT_EQ(camera.map.Integer("FileSize").GetMax(), 100);
    EXPECT_EQ(camera.map.Integer("FileAccessOffset").GetMax(), 100);
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in | out));
    EXPECT_EQ(camera.Write(Pattern(150)), 100);
    EXPECT_EQ(camera.Status(), "Overflow");
    EXPECT_EQ(camera.map.Text("FileOperationResult"), "36");
    EXPECT_EQ(camera.Read(150), Pattern(150).substr(0, 100));
    EXPECT_EQ(camera.Write("x", 100), 0);
    EXPECT_EQ(camera.Status(), "Overflow");
    std::uint64_t behind = __builtin_bswap64(101);
    EXPECT_EQ(camera.TryWrite(0xE10, &behind, sizeof behind), GC_ERR_INVALID_VALUE);
}

TEST(SimulatorUserFile, IsEmptyAfterDeleteWhichWantsItClosed)
{
    Files camera;
    ASSERT_TRUE(camera.adapter.openFile("UserFile", out));
    EXPECT_EQ(camera.Write("abc"), 3);
    EXPECT_FALSE(camera.adapter.deleteFile("UserFile"));
    EXPECT_EQ(camera.Status(), "FileAlreadyOpen");
    EXPECT_EQ(camera.map.Text("FileSize"), "3");
    ASSERT_TRUE(camera.adapter.closeFile("UserFile"));
    EXPECT_TRUE(camera.adapter.deleteFile("UserFile"));
    EXPECT_EQ(camera.map.Text("FileSize"), "0");
}

TEST(SimulatorUserFile, OutlivesTheOpeningOfTheDeviceAndAReset)
{
    Files camera;
    ASSERT_TRUE(camera.adapter.openFile("UserFile", out));
    EXPECT_EQ(camera.Write("abc"), 3);
    ASSERT_EQ(camera.producer.DevClose(camera.tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(camera.producer.IFOpenDevice(camera.tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(camera.producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    const FeatureMap map(camera.producer, remote);
    EXPECT_EQ(map.Text("FileSize"), "3");
    GenApi::FileProtocolAdapter adapter;
    ASSERT_TRUE(adapter.attach(&map.Map()));
    ASSERT_TRUE(adapter.openFile("UserFile", in)) << "the close of the device had closed it";
    map.Execute("DeviceReset");
    EXPECT_EQ(map.Text("FileOperationSelector"), "Open");
    EXPECT_FALSE(adapter.closeFile("UserFile")) << "the reset had closed it";
    EXPECT_EQ(map.Text("FileOperationStatus"), "FileNotOpen");
    EXPECT_EQ(map.Text("FileSize"), "3");
}

TEST(SimulatorFileKinds, FactoryDataIsForReadingOnly)
{
    Files camera;
    const std::string text = "vendor=zvr\nmodel=SimulatedCamera\nserial=A\n";
    EXPECT_FALSE(camera.adapter.openFile("FactoryData", out));
    EXPECT_FALSE(camera.adapter.openFile("FactoryData", in | out));
    ASSERT_TRUE(camera.adapter.openFile("FactoryData", in));
    EXPECT_EQ(camera.Read(1000, 0, "FactoryData"), text);
    EXPECT_EQ(camera.map.Integer("FileSize").GetMax(), static_cast<std::int64_t>(text.size()));
    EXPECT_EQ(camera.Write("x", 0, "FactoryData"), 0);
    EXPECT_FALSE(camera.adapter.deleteFile("FactoryData"));
    EXPECT_TRUE(camera.adapter.closeFile("FactoryData"));
    for (const char* const operation : {"Write", "Delete"})
        EXPECT_FALSE(GenApi::IsAvailable(camera.map.Enumeration("FileOperationSelector").GetEntryByName(operation)));
    for (const char* const mode : {"Write", "ReadWrite"})
        EXPECT_FALSE(GenApi::IsAvailable(camera.map.Enumeration("FileOpenMode").GetEntryByName(mode)));
    const std::uint32_t write = __builtin_bswap32(3);
    EXPECT_EQ(camera.TryWrite(0xE04, &write, sizeof write), GC_ERR_INVALID_VALUE);
    const std::uint32_t readWrite = __builtin_bswap32(2);
    EXPECT_EQ(camera.TryWrite(0xE08, &readWrite, sizeof readWrite), GC_ERR_INVALID_VALUE);
}

TEST(SimulatorFileKinds, CalibrationDataIsLongerThanTheBuffer)
{
    Files camera;
    EXPECT_EQ(camera.adapter.getBufSize("CalibrationData", in), 65536);
    EXPECT_EQ(camera.map.Text("FileSize"), "300001");
    ASSERT_TRUE(camera.adapter.openFile("CalibrationData", in));
    const std::string data = camera.Read(400'000, 0, "CalibrationData");
    ASSERT_EQ(data.size(), 300'001U);
    for (std::size_t index = 0; index < data.size(); ++index)
        ASSERT_EQ(static_cast<std::uint8_t>(data[index]), (index * 7 + index / 256) % 256) << index;
}

TEST(SimulatorFileKinds, MemoryCardIsNotThereAsARule)
{
    Files camera;
    EXPECT_FALSE(GenApi::IsAvailable(camera.map.Enumeration("FileSelector").GetEntryByName("MemoryCard")));
    EXPECT_ANY_THROW(camera.adapter.openFile("MemoryCard", in));
    const std::uint32_t card = __builtin_bswap32(3);
    EXPECT_EQ(camera.TryWrite(0xE00, &card, sizeof card), GC_ERR_INVALID_VALUE);
}

TEST(SimulatorFileKinds, MemoryCardIsAnotherFileWhenItIsPluggedIn)
{
    Files camera(R"(, "memoryCard": true)");
    ASSERT_TRUE(camera.adapter.openFile("MemoryCard", out));
    EXPECT_EQ(camera.Write("abc", 0, "MemoryCard"), 3);
    camera.map.Set("FileSelector", "UserFile");
    EXPECT_EQ(camera.map.Text("FileSize"), "0");
}

TEST(SimulatorFileKinds, BufferIsAsLongAsTheSettingsSay)
{
    Files camera(R"(, "fileBufferBytes": 5)");
    EXPECT_EQ(camera.adapter.getBufSize("UserFile", out), 5);
    EXPECT_EQ(camera.map.Integer("FileAccessLength").GetMax(), 5);
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in | out));
    EXPECT_EQ(camera.Write("hello, world"), 12);
    EXPECT_EQ(camera.Read(12), "hello, world");
    std::uint32_t six = __builtin_bswap32(6);
    EXPECT_EQ(camera.TryWrite(0xE18, &six, sizeof six), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(camera.TryWrite(0x10000000, "123456", 6), GC_ERR_INVALID_ADDRESS);
}

TEST(SimulatorFileOperations, TellByTheirStatusWhatTheyRefuse)
{
    const Files camera;
    EXPECT_EQ(camera.Do("Close"), "FileNotOpen");
    EXPECT_EQ(camera.Do("Read"), "FileNotOpen");
    EXPECT_EQ(camera.Do("Write"), "FileNotOpen");
    camera.map.Set("FileOpenMode", "Read");
    EXPECT_EQ(camera.Do("Open"), "Success");
    EXPECT_EQ(camera.Do("Open"), "FileAlreadyOpen");
    EXPECT_EQ(camera.Do("Write"), "AccessDenied");
    EXPECT_EQ(camera.Do("Read"), "Success");
    EXPECT_EQ(camera.Do("Close"), "Success");
    camera.map.Set("FileOpenMode", "Write");
    EXPECT_EQ(camera.Do("Open"), "Success");
    EXPECT_EQ(camera.Do("Read"), "AccessDenied");
    camera.map.Set("FileAccessLength", "10");
    EXPECT_EQ(camera.Do("Write"), "Success");
    EXPECT_EQ(camera.map.Text("FileOperationResult"), "10");
    EXPECT_EQ(camera.Do("Open"), "FileAlreadyOpen");
    EXPECT_EQ(camera.map.Text("FileOperationResult"), "0") << "of the last one";
}

TEST(SimulatorFileOperations, BufferIsShownWhileBytesAreToBeMoved)
{
    const Files camera;
    EXPECT_EQ(camera.map.Access("FileAccessBuffer"), GenApi::NA);
    camera.map.Set("FileOperationSelector", "Write");
    EXPECT_EQ(camera.map.Access("FileAccessBuffer"), GenApi::RW);
    camera.map.Set("FileOperationSelector", "Delete");
    EXPECT_EQ(camera.map.Access("FileAccessBuffer"), GenApi::NA);
    camera.map.Set("FileOperationSelector", "Read");
    EXPECT_EQ(camera.map.Access("FileAccessBuffer"), GenApi::RW);
}

TEST(SimulatorFileOperations, AnotherFileBeginsAnew)
{
    const Files camera;
    camera.map.Set("FileOperationSelector", "Write");
    camera.map.Set("FileOpenMode", "ReadWrite");
    camera.map.Set("FileAccessOffset", "1000");
    camera.map.Set("FileSelector", "UserFile");
    EXPECT_EQ(camera.map.Text("FileAccessOffset"), "1000") << "it is the same file";
    camera.map.Set("FileSelector", "FactoryData");
    EXPECT_EQ(camera.map.Text("FileOperationSelector"), "Open");
    EXPECT_EQ(camera.map.Text("FileOpenMode"), "Read");
    EXPECT_EQ(camera.map.Text("FileAccessOffset"), "0");
}

TEST(SimulatorFileOperations, SeveralFilesAreOpenAtATime)
{
    Files camera;
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in | out));
    ASSERT_TRUE(camera.adapter.openFile("FactoryData", in));
    EXPECT_EQ(camera.Write("abc"), 3);
    EXPECT_EQ(camera.Read(3, 7, "FactoryData"), "zvr");
    EXPECT_EQ(camera.Read(3), "abc");
    EXPECT_TRUE(camera.adapter.closeFile("FactoryData"));
    EXPECT_TRUE(camera.adapter.closeFile("UserFile"));
}

TEST(SimulatorFileOperations, WriteOverSeveralRegistersHappensAsAWholeOrNotAtAll)
{
    const Files camera("", "", "U3V");
    const std::array<std::uint32_t, 3> bad{1, 0, 9}; // FactoryData, Open, no mode
    EXPECT_EQ(camera.TryWrite(0xE00, bad.data(), sizeof bad), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(camera.map.Text("FileSelector"), "UserFile");
    const std::array<std::uint32_t, 3> good{1, 2, 0};
    EXPECT_EQ(camera.TryWrite(0xE00, good.data(), sizeof good), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.map.Text("FileSelector"), "FactoryData");
    EXPECT_EQ(camera.map.Text("FileOperationSelector"), "Read");
}

TEST(SimulatorFileOperations, UnknownNumbersAreRefused)
{
    const Files camera("", "", "U3V");
    const std::uint32_t many = 99;
    for (const std::uint64_t address : {0xE00U, 0xE04U, 0xE08U, 0xE60U})
        EXPECT_EQ(camera.TryWrite(address, &many, sizeof many), GC_ERR_INVALID_VALUE) << address;
    for (const std::uint64_t address : {0xE20U, 0xE28U, 0xE30U, 0xE40U, 0xE44U})
        EXPECT_EQ(camera.TryWrite(address, &many, sizeof many), GC_ERR_ACCESS_DENIED) << address;
}

} // namespace
} // namespace koro::simulator::test

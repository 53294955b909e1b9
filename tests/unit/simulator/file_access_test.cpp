// The files of the simulated cameras, by their registers and through the GenICam runtime's file adapter.
#include "tests/unit/simulator/feature_map.h"

#include <GenApi/Filestream.h>
#include <array>
#include <gtest/gtest.h>
#include <optional>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;
constexpr auto in = std::ios_base::in;
constexpr auto out = std::ios_base::out;

std::string CameraWithFiles(const std::string& keys, const std::string& faults, const std::string& tlType)
{
    return R"({"misbehaviour": {"files": [)" + faults + R"(]}, "interfaces": [{"id": "I", "tlType": ")" + tlType +
           R"(", "cameras": [{"serial": "A", "width": 16, "height": 4, "rate": 0)" + keys + "}]}]}";
}

std::string Pattern(std::size_t bytes)
{
    std::string pattern(bytes, '\0');
    for (std::size_t index = 0; index < bytes; ++index)
        pattern[index] = static_cast<char>(index * 2654435761U >> 11);
    return pattern;
}

// One camera, opened, with an adapter on its map.
struct Files
{
    explicit Files(const std::string& keys = "", const std::string& faults = "", const std::string& tlType = "GEV")
        : producer(CameraWithFiles(keys, faults, tlType)), tree(producer), map(producer, tree.remote)
    {
        if (!adapter.attach(&map.Map())) throw std::runtime_error("the camera has no files");
    }

    std::int64_t Write(const std::string& text, std::int64_t offset = 0, const char* file = "UserFile")
    {
        return adapter.write(text.data(), offset, static_cast<std::int64_t>(text.size()), file);
    }
    std::string Read(std::size_t bytes, std::int64_t offset = 0, const char* file = "UserFile")
    {
        std::string text(bytes, '\x55');
        const auto got = adapter.read(text.data(), offset, static_cast<std::int64_t>(bytes), file);
        text.resize(static_cast<std::size_t>(got));
        return text;
    }
    // Runs it and tells its status.
    std::string Do(const char* operation) const
    {
        map.Set("FileOperationSelector", operation);
        map.Execute("FileOperationExecute");
        return map.Text("FileOperationStatus");
    }
    std::string Status() const { return map.Text("FileOperationStatus"); }
    bool IsDone() const { return dynamic_cast<GenApi::ICommand&>(map.Node("FileOperationExecute")).IsDone(); }
    GC_ERROR TryWrite(std::uint64_t address, const void* bytes, std::size_t size) const
    {
        return producer.GCWritePort(tree.remote, address, bytes, &size);
    }

    Producer producer;
    Tree tree;
    FeatureMap map;
    GenApi::FileProtocolAdapter adapter;
};

// The code that an access fails with.
std::optional<GC_ERROR> CodeOf(const std::function<void()>& act)
{
    try
    {
        act();
        return std::nullopt;
    }
    catch (const PortFailure& failure)
    {
        return failure.code;
    }
}

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

TEST(SimulatorFileFaults, BlockFailsThatTheSettingsName)
{
    Files camera(
        R"(, "fileBufferBytes": 10)", R"({"camera": "A", "operation": "Write", "at": 3, "status": "Failure"})");
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in | out));
    EXPECT_EQ(camera.Write(Pattern(100)), 20);
    EXPECT_EQ(camera.Status(), "Failure");
    EXPECT_EQ(camera.map.Text("FileOperationResult"), "0");
    EXPECT_EQ(camera.map.Text("FileSize"), "20");
    EXPECT_EQ(camera.Write(Pattern(100)), 100) << "the next ones do not";
    EXPECT_EQ(camera.Read(100), Pattern(100)) << "and others never did";
}

TEST(SimulatorFileFaults, ConcernTheFileAndTheOperationThatTheyName)
{
    Files camera("", R"({"camera": "*", "file": "UserFile", "operation": "Open", "status": "FileNotAvailable"},
                        {"camera": "*", "operation": "Close", "count": "every", "status": "FileNotValid"},
                        {"camera": "B", "status": "Failure", "count": "every"})");
    EXPECT_TRUE(camera.adapter.openFile("FactoryData", in));
    EXPECT_FALSE(camera.adapter.openFile("UserFile", out));
    EXPECT_EQ(camera.Status(), "FileNotAvailable");
    EXPECT_EQ(camera.Write("x"), 0);
    EXPECT_TRUE(camera.adapter.openFile("UserFile", out));
    for (const char* const file : {"UserFile", "FactoryData", "UserFile"})
        EXPECT_FALSE(camera.adapter.closeFile(file));
    EXPECT_EQ(camera.Status(), "FileNotValid");
    EXPECT_EQ(camera.Write("x"), 1) << "it is open still";
}

TEST(SimulatorFileFaults, BusyDeviceIsDoneWhenItWasAskedOftenEnough)
{
    const Files camera("", R"({"camera": "A", "operation": "Open", "busyPolls": 3})", "U3V");
    camera.map.Execute("FileOperationExecute");
    EXPECT_EQ(CodeOf([&] { camera.map.Set("FileAccessOffset", "1"); }), GC_ERR_BUSY);
    EXPECT_EQ(CodeOf([&] { camera.map.Execute("FileOperationExecute"); }), GC_ERR_BUSY);
    const std::uint32_t zero = 0;
    for (const std::uint64_t address : {0xE00U, 0xE04U, 0xE08U, 0xE18U, 0x10000000U})
        EXPECT_EQ(camera.TryWrite(address, &zero, sizeof zero), GC_ERR_BUSY) << address;
    for (int question = 0; question < 3; ++question)
        EXPECT_FALSE(camera.IsDone());
    EXPECT_TRUE(camera.IsDone());
    EXPECT_EQ(camera.Do("Open"), "FileAlreadyOpen") << "it was opened then";
}

TEST(SimulatorFileFaults, NothingIsMovedWhileTheDeviceIsBusy)
{
    const Files camera("", R"({"camera": "A", "operation": "Write", "busyPolls": 1, "count": "every"})");
    camera.map.Set("FileOpenMode", "Write");
    ASSERT_EQ(camera.Do("Open"), "Success");
    camera.map.Set("FileAccessLength", "7");
    camera.Do("Write");
    EXPECT_EQ(camera.map.Text("FileOperationResult"), "0");
    EXPECT_EQ(camera.map.Text("FileSize"), "0");
    EXPECT_FALSE(camera.IsDone());
    EXPECT_TRUE(camera.IsDone());
    EXPECT_EQ(camera.map.Text("FileOperationResult"), "7");
    EXPECT_EQ(camera.map.Text("FileSize"), "7");
}

TEST(SimulatorFileFaults, AdapterWaitsForABusyDevice)
{
    Files camera("", R"({"camera": "A", "busyPolls": 20, "count": "every"})");
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in | out));
    EXPECT_EQ(camera.Write("abc"), 3);
    EXPECT_EQ(camera.Read(3), "abc");
    EXPECT_TRUE(camera.adapter.closeFile("UserFile"));
}

TEST(SimulatorFileFaults, ClosingTheDeviceEndsWhatItIsBusyWith)
{
    const Files camera("", R"({"camera": "A", "operation": "Open", "busyPolls": 1000000})");
    camera.map.Execute("FileOperationExecute");
    ASSERT_EQ(camera.producer.DevClose(camera.tree.device), GC_ERR_SUCCESS);
    DEV_HANDLE device = nullptr;
    PORT_HANDLE remote = nullptr;
    ASSERT_EQ(camera.producer.IFOpenDevice(camera.tree.interface, "A", DEVICE_ACCESS_CONTROL, &device), GC_ERR_SUCCESS);
    ASSERT_EQ(camera.producer.DevGetPort(device, &remote), GC_ERR_SUCCESS);
    const FeatureMap map(camera.producer, remote);
    EXPECT_NO_THROW(map.Execute("FileOperationExecute"));
}

TEST(SimulatorFileFaults, ShortMovesAreGoneOnWith)
{
    Files camera("", R"({"camera": "A", "operation": "Write", "movedBytes": 4, "count": 3},
                        {"camera": "A", "operation": "Read", "movedBytes": 2, "status": "Failure", "at": 2})");
    ASSERT_TRUE(camera.adapter.openFile("UserFile", in | out));
    EXPECT_EQ(camera.Write("0123456789ABCDEF"), 16);
    EXPECT_EQ(camera.Read(16), "0123456789ABCDEF");
    EXPECT_EQ(camera.Read(16), "01") << "the second read fails after two bytes";
    EXPECT_EQ(camera.Status(), "Failure");
}

TEST(SimulatorFileFaults, AccessFailsWithTheCodeThatTheSettingsName)
{
    const Files camera("", R"({"camera": "A", "operation": "Open", "error": "GC_ERR_TIMEOUT"})");
    EXPECT_EQ(CodeOf([&] { camera.map.Execute("FileOperationExecute"); }), GC_ERR_TIMEOUT);
    EXPECT_EQ(camera.Do("Open"), "Success");
}

} // namespace
} // namespace koro::simulator::test

// File operations that are slow, short or fail because the settings say so.
#include "tests/unit/simulator/camera_files.h"

#include <functional>
#include <gtest/gtest.h>
#include <optional>

namespace koro::simulator::test
{
namespace
{

namespace GenApi = GENAPI_NAMESPACE;
constexpr auto in = forReading;
constexpr auto out = forWriting;

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

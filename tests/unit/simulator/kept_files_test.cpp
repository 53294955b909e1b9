// What the user's files of a camera with a memory hold, and its firmware, are there for all processes.
#include "tests/support/temporary_folder.h"
#include "tests/unit/simulator/other_process.h"
#include "tests/unit/simulator/remembered_camera.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <zlib.h>

namespace koro::simulator::test
{
namespace
{

using koro::test::TemporaryFolder;
namespace fs = std::filesystem;
using Steps = OtherProcess::Steps;

enum File : std::uint32_t
{
    userFile = 0,
    memoryCard = 3,
    firmware = 4
};
enum Operation : std::uint32_t
{
    open = 0,
    close = 1,
    read = 2,
    write = 3,
    deletion = 4
};
enum Status : std::uint32_t
{
    success = 0,
    failure = 1,
    notAvailable = 3
};
constexpr std::uint32_t readWrite = 2;
constexpr std::uint32_t onlyWrite = 1;

// The file operations of an opened camera, by its registers.
class FileRegisters
{
public:
    explicit FileRegisters(const RememberedCamera& opened, File file = userFile) : camera(opened)
    {
        camera.Write(0xE00, std::uint32_t{file});
        camera.Write(0xE08, file == firmware ? onlyWrite : readWrite);
    }

    // Runs it to its end and returns its status.
    std::uint32_t Do(Operation operation) const
    {
        camera.Write(0xE04, std::uint32_t{operation});
        camera.Write(0xE60, std::uint32_t{1});
        while (camera.Read(0xE60) != 0)
            ;
        return camera.Read(0xE20);
    }
    std::uint32_t Write(const std::string& text) const
    {
        std::size_t size = text.size();
        camera.Require(camera.producer.GCWritePort(camera.remote, 0x10000000, text.data(), &size));
        camera.Write(0xE18, static_cast<std::uint32_t>(text.size()));
        return Do(Operation::write);
    }
    std::string Read() const
    {
        EXPECT_EQ(Do(Operation::read), success);
        std::string text(camera.Read<std::uint64_t>(0xE28), '\0');
        camera.Require(camera.TryRead(0x10000000, text.data(), text.size()));
        return text;
    }
    // Opens it, writes and closes it.
    void Keep(const std::string& text) const
    {
        camera.Require(Do(open) == success && Write(text) == success && Do(close) == success ? 0 : GC_ERR_ERROR);
    }
    std::string ReadAll() const
    {
        EXPECT_EQ(Do(open), success);
        const std::string text = Read();
        EXPECT_EQ(Do(close), success);
        return text;
    }
    std::uint64_t Size() const { return camera.Read<std::uint64_t>(0xE30); }

private:
    const RememberedCamera& camera;
};

class SimulatorKeptFiles : public testing::Test
{
protected:
    const TemporaryFolder folder;
    const std::string memory = folder.File("memory");
    const std::string settings = RememberedSettings(memory, R"(, "memoryCard": true, "userFileBytes": 1000)");
};

TEST_F(SimulatorKeptFiles, AreThereForTheNextProcess)
{
    OtherProcess other([this](const Steps&) {
        const RememberedCamera camera(settings);
        FileRegisters(camera).Keep("of the user");
        FileRegisters(camera, memoryCard).Keep("on the card");
    });
    ASSERT_TRUE(other.Finish());
    const RememberedCamera camera(settings);
    const FileRegisters card(camera, memoryCard);
    EXPECT_EQ(card.ReadAll(), "on the card");
    const FileRegisters file(camera);
    EXPECT_EQ(file.Size(), 11U);
    EXPECT_EQ(file.ReadAll(), "of the user");
    EXPECT_TRUE(fs::is_regular_file(fs::path(memory) / "A.UserFile"));
    EXPECT_TRUE(fs::is_regular_file(fs::path(memory) / "A.MemoryCard"));
}

TEST_F(SimulatorKeptFiles, ShowTheirSizeToAReaderOnceTheyAreClosed)
{
    OtherProcess other([this](const Steps& steps) {
        const RememberedCamera camera(settings);
        const FileRegisters file(camera);
        camera.Require(file.Do(open) == success && file.Write("abc") == success ? 0 : GC_ERR_ERROR);
        steps.Done();
        steps.AwaitNext();
        file.Do(close);
        steps.Done();
        steps.AwaitNext();
        file.Do(deletion);
        steps.Done();
        steps.AwaitNext();
    });
    ASSERT_TRUE(other.AwaitDone());
    const RememberedCamera camera(settings, DEVICE_ACCESS_READONLY);
    EXPECT_EQ(camera.Read<std::uint64_t>(0xE30), 0U);
    ASSERT_TRUE(other.Next());
    EXPECT_EQ(camera.Read<std::uint64_t>(0xE30), 3U);
    ASSERT_TRUE(other.Next());
    EXPECT_EQ(camera.Read<std::uint64_t>(0xE30), 0U);
}

TEST_F(SimulatorKeptFiles, AreSavedWhenTheDeviceIsClosed)
{
    OtherProcess other([this](const Steps&) {
        const RememberedCamera camera(settings);
        const FileRegisters file(camera);
        camera.Require(file.Do(open) == success && file.Write("abc") == success ? 0 : GC_ERR_ERROR);
        camera.Close();
    });
    ASSERT_TRUE(other.Finish());
    const RememberedCamera camera(settings);
    EXPECT_EQ(FileRegisters(camera).ReadAll(), "abc");
}

TEST_F(SimulatorKeptFiles, AreAsBeforeWhenTheWriterIsKilled)
{
    OtherProcess other([this](const Steps& steps) {
        const RememberedCamera camera(settings);
        const FileRegisters file(camera);
        file.Keep("before");
        camera.Require(file.Do(open) == success && file.Write("after!") == success ? 0 : GC_ERR_ERROR);
        steps.Done();
        steps.AwaitNext();
    });
    ASSERT_TRUE(other.AwaitDone());
    other.Kill();
    const RememberedCamera camera(settings);
    EXPECT_EQ(FileRegisters(camera).ReadAll(), "before");
    EXPECT_EQ(std::distance(fs::directory_iterator(memory), {}), 2) << "nothing half is left";
}

TEST_F(SimulatorKeptFiles, AreNotOpenedWhenTheirCopyCannotBeRead)
{
    const RememberedCamera camera(settings);
    const FileRegisters file(camera);
    const fs::path copy = fs::path(memory) / "A.UserFile";
    fs::create_directory(copy);
    EXPECT_EQ(file.Do(open), notAvailable);
    fs::remove(copy);
    ASSERT_EQ(mkfifo(copy.c_str(), 0600), 0);
    EXPECT_EQ(file.Do(open), notAvailable);
    fs::remove(copy);
    std::ofstream(copy) << std::string(1001, 'x');
    EXPECT_EQ(file.Do(open), notAvailable);
    EXPECT_EQ(file.Size(), 1000U) << "never more than the maximum";
    fs::resize_file(copy, 1000);
    EXPECT_EQ(file.ReadAll(), std::string(1000, 'x'));
}

TEST_F(SimulatorKeptFiles, StayOpenWhenTheyCannotBeSaved)
{
    const RememberedCamera camera(settings);
    const FileRegisters file(camera);
    ASSERT_EQ(file.Do(open), success);
    ASSERT_EQ(file.Write("abc"), success);
    fs::rename(memory, memory + "2");
    EXPECT_EQ(file.Do(close), failure);
    EXPECT_EQ(file.Read(), "abc");
    fs::rename(memory + "2", memory);
    EXPECT_EQ(file.Do(close), success);
    EXPECT_EQ(file.ReadAll(), "abc");
    fs::rename(memory, memory + "2");
    EXPECT_EQ(file.Do(deletion), failure);
}

std::string Number(std::size_t number)
{
    std::string bytes;
    for (int index = 0; index < 4; ++index, number >>= 8)
        bytes += static_cast<char>(number & 0xFF);
    return bytes;
}

std::string ImageOf(const std::string& content)
{
    const auto check = crc32_z(0, reinterpret_cast<const Bytef*>(content.data()), content.size());
    return "KOROFWIM" + Number(content.size()) + Number(check) + content;
}

std::string VersionOf(const RememberedCamera& camera)
{
    char version[64] = "";
    camera.Require(camera.TryRead(0x140, version, sizeof version));
    return version;
}

TEST_F(SimulatorKeptFiles, NewFirmwareRunsInWhicheverProcessResetsTheCamera)
{
    // Its close takes some questions: the version has to be kept by the one that finds it done.
    const std::string slow =
        R"({"misbehaviour": {"files": [{"camera": "A", "operation": "Close", "busyPolls": 2}]}, )" + settings.substr(1);
    OtherProcess other([&](const Steps&) {
        const RememberedCamera camera(slow);
        FileRegisters(camera, firmware).Keep(ImageOf("7.7\n"));
    });
    ASSERT_TRUE(other.Finish());
    const RememberedCamera camera(settings);
    EXPECT_EQ(VersionOf(camera), "1.0.0");
    camera.Write(at::reset, std::uint32_t{1});
    EXPECT_EQ(VersionOf(camera), "7.7");
    EXPECT_FALSE(fs::exists(fs::path(memory) / "A.Firmware"));
}

} // namespace
} // namespace koro::simulator::test

// The files behind a memory: where they lie, and those that cannot be used, which are never touched.
#include "tests/support/temporary_folder.h"
#include "tests/unit/simulator/remembered_camera.h"

#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace koro::simulator::test
{
namespace
{

using koro::test::TemporaryFolder;
using testing::HasSubstr;
namespace fs = std::filesystem;

constexpr std::size_t slotBytes = 4096;
constexpr std::size_t fileBytes = 3 * slotBytes;
constexpr std::size_t slotHeadBytes = 16;
constexpr off_t changeByte = 1 << 20;

std::string ReadFile(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void WriteFile(const fs::path& file, const std::string& content)
{
    std::ofstream(file, std::ios::binary) << content;
}

template <typename T>
T NumberAt(const std::string& bytes, std::size_t place)
{
    T number{};
    std::memcpy(&number, bytes.data() + place, sizeof number);
    return number;
}

template <typename T>
void PutNumber(std::string& bytes, std::size_t place, T number)
{
    std::memcpy(bytes.data() + place, &number, sizeof number);
}

// FNV-1a of a slot's number and state, as the file has it.
std::uint64_t CheckOf(const std::string& file, std::size_t slot, std::size_t stateBytes)
{
    std::uint64_t check = 0xCBF29CE484222325;
    const auto add = [&](std::size_t from, std::size_t number) {
        for (std::size_t at = from; at < from + number; ++at)
            check = (check ^ static_cast<unsigned char>(file[at])) * 0x100000001B3;
    };
    add((slot + 1) * slotBytes, 8);
    add((slot + 1) * slotBytes + slotHeadBytes, stateBytes);
    return check;
}

class SimulatorMemoryFile : public testing::Test
{
protected:
    SimulatorMemoryFile() { fs::create_directory(folder.File("memory")); }

    // What a camera of width 32 leaves.
    void Make() const
    {
        RememberedCamera(settings).WriteWidth(32);
        ASSERT_EQ(fs::file_size(file), fileBytes);
    }
    std::string Complaint(const std::string& json) const
    {
        const Producer producer(json, false);
        const GC_ERROR result = producer.GCInitLib();
        EXPECT_EQ(result, result == GC_ERR_SUCCESS ? GC_ERR_SUCCESS : GC_ERR_ERROR);
        return result == GC_ERR_SUCCESS ? "" : producer.Last().text;
    }
    // The whole text, and that the file stayed as it was.
    void ExpectRefusal(const std::string& why) const
    {
        const std::string before = ReadFile(file);
        EXPECT_EQ(Complaint(settings), "GCInitLib: camera 'A': memory '" + file.string() + "': " + why);
        EXPECT_EQ(ReadFile(file), before);
    }
    std::size_t NewestSlot(const std::string& bytes) const
    {
        return NumberAt<std::uint64_t>(bytes, slotBytes) > NumberAt<std::uint64_t>(bytes, 2 * slotBytes) ? 0 : 1;
    }

    const TemporaryFolder folder;
    const fs::path file = folder.File("memory/A.memory");
    const std::string settings = RememberedSettings(folder.File("memory"));
};

TEST_F(SimulatorMemoryFile, FolderIsMadeButNotItsParents)
{
    EXPECT_EQ(Complaint(RememberedSettings(folder.File("new"))), "");
    EXPECT_TRUE(fs::exists(folder.File("new/A.memory")));
    EXPECT_THAT(
        Complaint(RememberedSettings(folder.File("far/away"))),
        HasSubstr("camera 'A': memory '" + folder.File("far/away") + "': "));
    EXPECT_FALSE(fs::exists(folder.File("far")));
}

TEST_F(SimulatorMemoryFile, FolderLiesBesideTheSettings)
{
    const Producer producer("", false);
    const std::string relative = folder.MakeFile("cameras.json", RememberedSettings("beside"));
    setenv("KORO_SIMULATOR_CONFIG", relative.c_str(), 1);
    ASSERT_EQ(producer.GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_TRUE(fs::exists(folder.File("beside/A.memory")));
    EXPECT_FALSE(fs::exists("beside"));
}

TEST_F(SimulatorMemoryFile, AnySerialNumberIsAFileOfTheFolder)
{
    EXPECT_EQ(Complaint(RememberedSettings(folder.File("memory"), "", "../\\u00e9 1_-")), "");
    EXPECT_TRUE(fs::exists(folder.File("memory/%2E%2E%2F%C3%A9%201_-.memory")));
    const std::string longest(63, '.');
    EXPECT_EQ(Complaint(RememberedSettings(folder.File("memory"), "", longest)), "");
}

TEST_F(SimulatorMemoryFile, AFileThatIsTooShortOrTooLongIsRefused)
{
    Make();
    const std::string whole = ReadFile(file);
    for (const std::size_t bytes : {std::size_t{0}, std::size_t{8}, slotBytes, fileBytes - 1, fileBytes + 1})
    {
        std::string cut = whole;
        cut.resize(bytes);
        WriteFile(file, cut);
        ExpectRefusal("has " + std::to_string(bytes) + " bytes instead of 12288; remove it to begin anew");
    }
}

TEST_F(SimulatorMemoryFile, AForeignFileIsRefused)
{
    WriteFile(file, std::string(fileBytes, 'x'));
    ExpectRefusal("is no memory of a simulated camera");
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_THAT(Complaint(settings), HasSubstr("cannot be opened: "));
    fs::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    EXPECT_THAT(Complaint(settings), HasSubstr("is no regular file"));
}

TEST_F(SimulatorMemoryFile, AFileOfAnotherVersionIsRefused)
{
    for (const std::size_t place : {std::size_t{8}, std::size_t{12}}) // version, size of the state
    {
        fs::remove(file);
        Make();
        std::string bytes = ReadFile(file);
        PutNumber(bytes, place, NumberAt<std::uint32_t>(bytes, place) + 1);
        WriteFile(file, bytes);
        ExpectRefusal("is of another version of the simulator; remove it to begin anew");
    }
}

TEST_F(SimulatorMemoryFile, AFileOfACameraWithOtherSettingsIsRefused)
{
    Make();
    for (const char* key : {R"("height": 40)", R"("pixelFormat": "Mono16")", R"("rate": 5)", R"("model": "M")"})
    {
        const std::string changed = RememberedSettings(folder.File("memory"), std::string(", ") + key);
        EXPECT_THAT(Complaint(changed), HasSubstr("is of a camera with other settings; remove it to begin anew"));
    }
    const RememberedCamera camera(settings);
    EXPECT_EQ(camera.Read(at::width), 32U);
}

TEST_F(SimulatorMemoryFile, AChangeThatWasCutOffLeavesTheOneBefore)
{
    std::string cut;
    {
        const RememberedCamera camera(settings);
        camera.WriteWidth(32);
        const std::string before = ReadFile(file);
        camera.WriteWidth(16);
        cut = ReadFile(file);
        const std::size_t slot = NewestSlot(cut);
        ASSERT_NE(slot, NewestSlot(before));
        // Of the slot only its head and a little of the state were written.
        const std::size_t end = (slot + 1) * slotBytes + slotHeadBytes + 8;
        cut.replace(end, slotBytes - slotHeadBytes - 8, before, end, slotBytes - slotHeadBytes - 8);
    }
    WriteFile(file, cut);
    {
        const RememberedCamera camera(settings);
        EXPECT_EQ(camera.Read(at::width), 32U);
        camera.WriteWidth(8);
        EXPECT_EQ(camera.Read(at::width), 8U);
    }
    EXPECT_EQ(RememberedCamera(settings).Read(at::width), 8U);
}

TEST_F(SimulatorMemoryFile, AFileWithoutAWholeStateIsRefused)
{
    Make();
    std::string bytes = ReadFile(file);
    for (std::size_t slot = 0; slot < 2; ++slot)
        bytes[(slot + 1) * slotBytes + slotHeadBytes] ^= 1;
    WriteFile(file, bytes);
    const Producer producer(settings, false);
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_IO);
    EXPECT_THAT(producer.Last().text, HasSubstr(file.string() + "': is damaged; remove it to begin anew"));
    WriteFile(file, bytes.substr(0, slotBytes) + std::string(2 * slotBytes, '\0'));
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_IO);
    fs::remove(file);
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_SUCCESS);
}

// Every number of the state in turn, with a check sum that fits: refused, or a camera that can be read and started.
TEST_F(SimulatorMemoryFile, AStateThatNoCameraCanHaveIsRefused)
{
    Make();
    const std::string whole = ReadFile(file);
    const std::size_t slot = NewestSlot(whole);
    const std::size_t state = (slot + 1) * slotBytes + slotHeadBytes;
    const std::size_t stateBytes = NumberAt<std::uint32_t>(whole, 12);
    const Producer loaded(settings, false); // once for all rounds
    std::size_t refused = 0;
    for (std::size_t place = 0; place + 8 <= stateBytes; place += 8)
        for (const std::uint64_t number : {std::uint64_t{0}, UINT64_MAX, std::uint64_t{1} << 62})
        {
            std::string bytes = whole;
            PutNumber(bytes, state + place, number);
            PutNumber(bytes, state - 8, CheckOf(bytes, slot, stateBytes));
            WriteFile(file, bytes);
            if (loaded.GCInitLib() != GC_ERR_SUCCESS)
            {
                EXPECT_THAT(loaded.Last().text, HasSubstr("is damaged; remove it to begin anew"));
                ++refused;
                continue;
            }
            loaded.GCCloseLib();
            RememberedCamera camera(settings);
            EXPECT_TRUE(std::isfinite(camera.Read<float>(at::temperature)));
            EXPECT_LT(camera.Read<float>(at::temperature), 50);
            camera.TakeImages();
        }
    EXPECT_GT(refused, 200U);
}

TEST_F(SimulatorMemoryFile, AFileThatIsCutOrReplacedMeanwhileIsAFailureAndNoCrash)
{
    for (const std::string& content : {std::string(100, 'x'), std::string(fileBytes, 'x')})
    {
        fs::remove(file);
        RememberedCamera camera(settings);
        WriteFile(file, content);
        std::uint32_t width = 16;
        EXPECT_EQ(camera.TryRead(at::width, &width, sizeof width), GC_ERR_IO);
        EXPECT_EQ(camera.TryWrite(at::width, width), GC_ERR_IO);
        EXPECT_THAT(camera.producer.Last().text, HasSubstr(file.string()));
        EXPECT_EQ(camera.TryStream(), GC_ERR_IO);
        EXPECT_EQ(ReadFile(file), content);
    }
}

TEST_F(SimulatorMemoryFile, OtherCamerasGoOnWithoutTheOneWhoseFileIsSpoilt)
{
    const std::string two = R"({"memory": ")" + folder.File("memory") +
                            R"(", "interfaces": [{"id": "I", "cameras": [{"serial": "A"}, {"serial": "B"}]}]})";
    RememberedCamera camera(two, DEVICE_ACCESS_NONE);
    WriteFile(file, "x");
    ASSERT_EQ(camera.Open(DEVICE_ACCESS_CONTROL, "B"), GC_ERR_SUCCESS);
    EXPECT_EQ(camera.Read(at::width), 640U);
    EXPECT_EQ(camera.Open(DEVICE_ACCESS_READONLY, "nobody"), GC_ERR_INVALID_ID);
}

TEST_F(SimulatorMemoryFile, ACameraThatLosesItsFileWhileItTakesImagesIsGone)
{
    RememberedCamera camera(RememberedSettings(folder.File("memory"), R"(, "rate": 1000)"));
    camera.TakeImages();
    EXPECT_EQ(camera.Status(), DEVICE_ACCESS_STATUS_OPEN_READWRITE);
    fs::resize_file(file, 100);
    EXPECT_TRUE(Eventually([&] { return camera.Status() == DEVICE_ACCESS_STATUS_NOACCESS; }));
}

TEST_F(SimulatorMemoryFile, ALockThatIsNeverGivenBackIsATimeOut)
{
    const RememberedCamera camera(settings);
    const int holder = open(file.c_str(), O_RDWR | O_CLOEXEC);
    flock range{};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = changeByte;
    range.l_len = 1;
    ASSERT_EQ(fcntl(holder, F_OFD_SETLK, &range), 0);
    std::uint32_t width = 0;
    EXPECT_EQ(camera.TryRead(at::width, &width, sizeof width), GC_ERR_TIMEOUT);
    EXPECT_THAT(camera.producer.Last().text, HasSubstr("another process does not give it back"));
    close(holder);
    EXPECT_EQ(camera.Read(at::width), 64U);
}

} // namespace
} // namespace koro::simulator::test

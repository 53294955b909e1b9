#include "tests/unit/genicam/file_device.h"

#include <GenApi/Filestream.h>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::FileDevice;
using koro::test::FileMap;
using koro::test::FileNodes;

const auto in = std::ios_base::in;
const auto out = std::ios_base::out;

// An adapter with the file "User" open and an empty journal.
struct Opened : FileMap
{
    explicit Opened(const std::map<std::string, std::string>& nodes = FileNodes()) : FileMap(nodes)
    {
        EXPECT_TRUE(adapter.attach(map));
        EXPECT_TRUE(adapter.openFile("User", in | out));
        device.Journal();
    }

    std::string Read(int64_t offset, int64_t length)
    {
        std::string text(static_cast<size_t>(length) + 1, '-');
        const int64_t got = adapter.read(text.data(), offset, length, "User");
        EXPECT_GE(got, 0);
        EXPECT_LE(got, length);
        EXPECT_EQ(text.substr(static_cast<size_t>(got)), std::string(static_cast<size_t>(length - got) + 1, '-'))
            << "nothing behind what was read";
        return text.substr(0, static_cast<size_t>(got));
    }
    int64_t Write(int64_t offset, const std::string& text)
    {
        return adapter.write(text.data(), offset, static_cast<int64_t>(text.size()), "User");
    }

    FileProtocolAdapter adapter;
};

TEST(FileProtocolAdapter, AttachesToAMapWithAllNodes)
{
    const FileMap map;
    FileProtocolAdapter adapter;
    EXPECT_TRUE(adapter.attach(map.map));
    EXPECT_THROW(adapter.attach(nullptr), RuntimeException);
}

TEST(FileProtocolAdapter, EachNodeIsNeeded)
{
    for (const auto& [name, text] : FileNodes())
    {
        SCOPED_TRACE(name);
        std::map<std::string, std::string> nodes = FileNodes();
        nodes.erase(name);
        const FileMap incomplete(nodes);
        FileProtocolAdapter adapter;
        EXPECT_FALSE(adapter.attach(incomplete.map));
        nodes[name] = "<String Name=\"" + name + "\"><Value>x</Value></String>";
        const FileMap wrong(nodes);
        EXPECT_FALSE(adapter.attach(wrong.map));
    }
}

TEST(FileProtocolAdapter, WithoutAMapNothingHappens)
{
    FileMap good;
    std::map<std::string, std::string> nodes = FileNodes();
    nodes.erase("FileOpenMode");
    const FileMap bad(nodes);
    FileProtocolAdapter adapter;
    char letter = 0;
    const auto refuses = [&] {
        EXPECT_FALSE(adapter.openFile("User", in));
        EXPECT_FALSE(adapter.closeFile("User"));
        EXPECT_FALSE(adapter.deleteFile("User"));
        EXPECT_EQ(adapter.read(&letter, 0, 1, "User"), 0);
        EXPECT_EQ(adapter.write(&letter, 0, 1, "User"), 0);
        EXPECT_EQ(adapter.getBufSize("User", in), 0);
    };
    refuses();
    EXPECT_TRUE(adapter.attach(good.map));
    EXPECT_FALSE(adapter.attach(bad.map));
    refuses();
    EXPECT_TRUE(adapter.attach(good.map));
    EXPECT_THROW(adapter.attach(nullptr), RuntimeException);
    refuses();
    EXPECT_EQ(good.device.Journal(), "") << "the former map is left alone";
}

TEST(FileProtocolAdapter, OpensInTheModeThatIsAsked)
{
    FileMap map;
    FileProtocolAdapter adapter;
    adapter.attach(map.map);
    EXPECT_TRUE(adapter.openFile("User", in));
    EXPECT_EQ(map.device.Journal(), "file 0, mode 0, Open, execute, status");
    EXPECT_TRUE(adapter.openFile("Firmware", out | std::ios_base::trunc));
    EXPECT_EQ(map.device.Journal(), "file 1, mode 1, Open, execute, status");
    EXPECT_TRUE(adapter.openFile("User", in | out | std::ios_base::binary));
    EXPECT_EQ(map.device.Journal(), "file 0, mode 2, Open, execute, status");
    EXPECT_FALSE(adapter.openFile("User", std::ios_base::binary));
    EXPECT_EQ(map.device.Journal(), "");
}

TEST(FileProtocolAdapter, UnknownFileIsThrownByOpenAlone)
{
    FileMap map;
    FileProtocolAdapter adapter;
    adapter.attach(map.map);
    EXPECT_THROW(adapter.openFile("Nothing", in), InvalidArgumentException);
    EXPECT_THROW(adapter.openFile(nullptr, in), InvalidArgumentException);
    EXPECT_FALSE(adapter.closeFile("Nothing"));
    EXPECT_FALSE(adapter.deleteFile("Nothing"));
    EXPECT_FALSE(adapter.deleteFile(nullptr));
    char letter = 0;
    EXPECT_EQ(adapter.read(&letter, 0, 1, "Nothing"), 0);
    EXPECT_EQ(adapter.write(&letter, 0, 1, "Nothing"), 0);
    EXPECT_EQ(adapter.getBufSize("Nothing", in), 0);
}

TEST(FileProtocolAdapter, ClosesAndDeletes)
{
    Opened map;
    EXPECT_TRUE(map.adapter.closeFile("User"));
    EXPECT_EQ(map.device.Journal(), "file 0, Close, execute, status");
    EXPECT_FALSE(map.device.open);
    EXPECT_TRUE(map.adapter.deleteFile("User"));
    EXPECT_EQ(map.device.Journal(), "file 0, Delete, execute, status");
    EXPECT_EQ(map.device.content, "");
}

TEST(FileProtocolAdapter, FailingStatusOfOpenCloseAndDeleteIsFalse)
{
    FileMap map;
    map.device.refused = {"Open", "Close", "Delete"};
    FileProtocolAdapter adapter;
    adapter.attach(map.map);
    EXPECT_FALSE(adapter.openFile("User", in));
    EXPECT_FALSE(adapter.closeFile("User"));
    EXPECT_FALSE(adapter.deleteFile("User"));
    map.device.refused.clear();
    map.device.registers[FileDevice::Status] = 0;
    map.device.failingAddress = FileDevice::Execute;
    EXPECT_FALSE(adapter.openFile("User", in));
    EXPECT_FALSE(adapter.closeFile("User"));
    EXPECT_FALSE(adapter.deleteFile("User"));
}

TEST(FileProtocolAdapter, StatusWithoutAnEntryIsNoSuccess)
{
    FileMap map;
    FileProtocolAdapter adapter;
    adapter.attach(map.map);
    map.device.refused = {"Open"};
    map.device.failure = 77;
    EXPECT_FALSE(adapter.openFile("User", in));
    map.device.refused.clear();
    EXPECT_TRUE(adapter.openFile("User", in));
    map.device.failingAddress = FileDevice::Status;
    EXPECT_FALSE(adapter.openFile("User", in));
}

TEST(FileProtocolAdapter, ReadsBlockAfterBlock)
{
    Opened map;
    EXPECT_EQ(map.Read(2, 10), "23456789ab");
    EXPECT_EQ(
        map.device.Journal(), "file 0, Read, offset 2, length 8, execute, result, get 8, status, "
                              "offset 10, length 2, execute, result, get 2, status");
}

TEST(FileProtocolAdapter, ReadEndsAtTheEndOfTheFile)
{
    Opened map;
    EXPECT_EQ(map.Read(16, 100), "ghij");
    EXPECT_EQ(map.Read(20, 1), "");
    EXPECT_EQ(map.Read(5000, 1), "");
}

TEST(FileProtocolAdapter, ShortBlocksGoOnBehindTheResult)
{
    Opened map;
    map.device.mostBytes = 3;
    EXPECT_EQ(map.Read(0, 8), "01234567");
    EXPECT_EQ(map.Write(1, "ABCDEFG"), 7);
    EXPECT_EQ(map.device.content, "0ABCDEFG89abcdefghij");
}

TEST(FileProtocolAdapter, WritesBlockAfterBlock)
{
    Opened map;
    EXPECT_EQ(map.Write(18, "ABCDEFGHIJ"), 10);
    EXPECT_EQ(map.device.content, "0123456789abcdefghABCDEFGHIJ");
    EXPECT_EQ(
        map.device.Journal(), "file 0, Write, offset 18, length 8, set 8, execute, result, status, "
                              "offset 26, length 2, set 2, execute, result, status");
}

TEST(FileProtocolAdapter, OffsetsBeyondFourGigabytesWork)
{
    Opened map;
    map.device.origin = (int64_t(5) << 30) + 1;
    EXPECT_EQ(map.Read(map.device.origin, 10), "0123456789");
    EXPECT_EQ(map.Write(map.device.origin + 4, "ABC"), 3);
    EXPECT_EQ(map.device.content.substr(0, 8), "0123ABC7");
}

TEST(FileProtocolAdapter, OffsetAboveTheMaximumMovesNothing)
{
    std::map<std::string, std::string> nodes = FileNodes();
    std::string& text = nodes["FileAccessOffset"];
    text.replace(text.find("<Min>0</Min>"), 12, "<Min>0</Min><Max>10</Max>");
    Opened map(nodes);
    EXPECT_EQ(map.Read(11, 2), "");
    EXPECT_EQ(map.Write(11, "A"), 0);
    EXPECT_EQ(map.Read(0, 20), "0123456789abcdef") << "two blocks, the third lies behind";
}

TEST(FileProtocolAdapter, LengthBelowTheBlockMovesNothing)
{
    std::map<std::string, std::string> nodes = FileNodes();
    std::string& text = nodes["FileAccessLength"];
    text.replace(text.find("<Min>0</Min>"), 12, "<Min>0</Min><Max>4</Max>");
    Opened map(nodes);
    EXPECT_EQ(map.Read(0, 8), "");
    EXPECT_EQ(map.Write(0, "ABCDEFGH"), 0);
    EXPECT_EQ(map.Read(0, 4), "0123");
}

TEST(FileProtocolAdapter, NonsenseMovesNothing)
{
    Opened map;
    char letter = 0;
    EXPECT_EQ(map.adapter.read(&letter, 0, 0, "User"), 0);
    EXPECT_EQ(map.adapter.read(&letter, 0, -1, "User"), 0);
    EXPECT_EQ(map.adapter.read(&letter, -1, 1, "User"), 0);
    EXPECT_EQ(map.adapter.read(nullptr, 0, 1, "User"), 0);
    EXPECT_EQ(map.adapter.write(&letter, 0, 0, "User"), 0);
    EXPECT_EQ(map.adapter.write(&letter, -1, 1, "User"), 0);
    EXPECT_EQ(map.adapter.write(nullptr, 0, 1, "User"), 0);
    EXPECT_EQ(map.device.Journal(), "");
    EXPECT_EQ(map.adapter.write(&letter, GC_INT64_MAX, 1, "User"), 0);
    EXPECT_EQ(map.device.Journal(), "file 0, Write");
}

TEST(FileProtocolAdapter, FailingStatusEndsATransferWithWhatWasMoved)
{
    Opened map;
    map.device.failingBlock = 1;
    EXPECT_EQ(map.Read(0, 20), "01234567");
    map.adapter.closeFile("User");
    map.adapter.openFile("User", in | out);
    EXPECT_EQ(map.Write(0, "ABCDEFGHIJ"), 8);
    EXPECT_EQ(map.device.content, "ABCDEFGH89abcdefghij");
    map.adapter.closeFile("User");
    map.adapter.openFile("User", in | out);
    map.device.failingBlock = 0;
    EXPECT_EQ(map.Read(0, 20), "");
}

TEST(FileProtocolAdapter, PortThatThrowsEndsATransferWithWhatWasMoved)
{
    Opened map;
    map.device.throwingBlock = 2;
    EXPECT_EQ(map.Read(0, 20), "0123456789abcdef");
    map.device.throwingBlock = 3;
    EXPECT_EQ(map.Write(0, "ABC"), 0);
    map.device.throwingBlock = -1;
    for (const int64_t address :
         {FileDevice::File, FileDevice::Operation, FileDevice::Offset, FileDevice::Length, FileDevice::Result,
          FileDevice::Buffer, FileDevice::BufferLength})
    {
        map.device.failingAddress = address;
        EXPECT_EQ(map.Read(0, 4), "") << address;
        EXPECT_EQ(map.Write(0, "A"), 0) << address;
    }
    map.device.failingAddress = -1;
    EXPECT_EQ(map.Read(8, 4), "89ab") << "nothing stays behind";
}

TEST(FileProtocolAdapter, BytesOfAFailingBlockCountWhenTheDeviceSaysSo)
{
    Opened map;
    map.device.refused = {"Read"};
    EXPECT_EQ(map.Read(0, 20), "01234567");
}

TEST(FileProtocolAdapter, ResultLargerThanAskedIsNotBelieved)
{
    Opened map;
    map.device.lie = 1;
    EXPECT_EQ(map.Read(0, 8), "");
    EXPECT_EQ(map.Write(0, "ABCDEFGH"), 0);
    map.device.lie = -100;
    EXPECT_EQ(map.Read(0, 8), "");
    EXPECT_EQ(map.Write(0, "ABCDEFGH"), 0);
}

TEST(FileProtocolAdapter, BufferLengthThatLiesIsHarmless)
{
    Opened map;
    for (const int64_t length : {int64_t(0), int64_t(-1), int64_t(-9223372036854775807)})
    {
        map.device.registers[FileDevice::BufferLength] = length;
        EXPECT_EQ(map.Read(0, 8), "") << length;
        EXPECT_EQ(map.Write(0, "ABC"), 0) << length;
    }
    map.device.registers[FileDevice::BufferLength] = GC_INT64_MAX;
    map.device.Journal();
    EXPECT_EQ(map.Read(0, 30), "0123456789abcdefghij");
    EXPECT_EQ(
        map.device.Journal(), "file 0, Read, offset 0, length 30, execute, result, get 20, status, "
                              "offset 20, length 10, execute, result");
}

TEST(FileProtocolAdapter, NodesThatCannotBeUsedMakeOperationsFail)
{
    for (const char* const name : {"FileAccessOffset", "FileAccessLength", "FileOperationExecute", "FileAccessBuffer"})
    {
        SCOPED_TRACE(name);
        FileMap map;
        FileProtocolAdapter adapter;
        adapter.attach(map.map);
        adapter.openFile("User", in | out);
        map.map->GetNode(name)->ImposeAccessMode(NA);
        char letters[4] = {};
        EXPECT_EQ(adapter.read(letters, 0, 4, "User"), 0);
        EXPECT_EQ(adapter.write(letters, 0, 4, "User"), 0);
        map.map->GetNode(name)->ImposeAccessMode(RO);
        EXPECT_EQ(adapter.write(letters, 0, 4, "User"), 0);
        EXPECT_EQ(map.device.content, "0123456789abcdefghij");
    }
    FileMap map;
    FileProtocolAdapter adapter;
    adapter.attach(map.map);
    map.map->GetNode("FileOpenMode")->ImposeAccessMode(RO);
    EXPECT_FALSE(adapter.openFile("User", in));
    map.map->GetNode("FileSelector")->ImposeAccessMode(RO);
    EXPECT_THROW(adapter.openFile("User", in), AccessException);
    EXPECT_FALSE(adapter.closeFile("User"));
}

TEST(FileProtocolAdapter, AnswersAreAskedAnewWhateverTheDescriptionCaches)
{
    std::map<std::string, std::string> nodes = FileNodes();
    for (auto& [name, text] : nodes)
    {
        for (size_t place; (place = text.find("NoCache")) != std::string::npos;)
            text.replace(place, 7, "WriteThrough");
    }
    Opened map(nodes);
    EXPECT_EQ(map.Read(0, 20), "0123456789abcdefghij");
    map.device.failingBlock = 3;
    EXPECT_EQ(map.Read(0, 20), "");
    EXPECT_TRUE(map.adapter.closeFile("User"));
    map.device.refused.insert("Close");
    EXPECT_FALSE(map.adapter.closeFile("User"));
}

TEST(FileProtocolAdapter, WaitsUntilAnOperationIsDone)
{
    Opened map;
    map.device.busyPolls = 40;
    EXPECT_EQ(map.Read(0, 4), "0123");
    EXPECT_TRUE(map.adapter.closeFile("User"));
}

class ImpatientAdapter : public FileProtocolAdapter
{
public:
    ImpatientAdapter() { SetTimeLimit(std::chrono::milliseconds(0)); }
};

TEST(FileProtocolAdapter, OperationThatNeverEndsHasFailed)
{
    FileMap map;
    ImpatientAdapter adapter;
    adapter.attach(map.map);
    EXPECT_TRUE(adapter.openFile("User", in | out)) << "done at once is in time";
    map.device.busyPolls = -1;
    char letters[4] = {};
    EXPECT_EQ(adapter.read(letters, 0, 4, "User"), 0);
    EXPECT_EQ(adapter.write(letters, 0, 4, "User"), 0);
    EXPECT_FALSE(adapter.closeFile("User"));
    EXPECT_FALSE(adapter.deleteFile("User"));
    EXPECT_FALSE(adapter.openFile("User", in));
}

TEST(FileProtocolAdapter, BufferSizeIsTheLengthOfTheRegister)
{
    Opened map;
    EXPECT_EQ(map.adapter.getBufSize("User", in), 8);
    EXPECT_EQ(map.device.Journal(), "file 0, Read");
    EXPECT_EQ(map.adapter.getBufSize("User", out), 8);
    EXPECT_EQ(map.device.Journal(), "file 0, Write");
    EXPECT_EQ(map.adapter.getBufSize("User", std::ios_base::binary), 0);
    map.device.failingAddress = FileDevice::BufferLength;
    EXPECT_EQ(map.adapter.getBufSize("User", in), 0);
}

TEST(FileProtocolAdapter, HoldsTheLockOfTheMapForAWholeOperation)
{
    Opened map;
    bool free = false;
    int calls = 0;
    for (const char* const node : {"FileSelector", "FileAccessOffset"})
    {
        Register(
            map.map->GetNode(node), std::function<void(INode*)>([&](INode*) {
                ++calls;
                std::thread([&] {
                    if (!map.map->GetLock().TryLock()) return;
                    free = true;
                    map.map->GetLock().Unlock();
                }).join();
            }),
            cbPostOutsideLock);
    }
    const auto expectHeld = [&](const char* operation) {
        EXPECT_GT(calls, 0) << operation;
        EXPECT_FALSE(free) << operation;
        EXPECT_TRUE(map.map->GetLock().TryLock()) << operation;
        map.map->GetLock().Unlock();
        calls = 0;
    };
    EXPECT_EQ(map.Read(0, 4), "0123");
    expectHeld("read");
    EXPECT_EQ(map.adapter.write("ab", 0, 2, "User"), 2);
    expectHeld("write");
    EXPECT_GT(map.adapter.getBufSize("User", std::ios_base::in), 0);
    expectHeld("getBufSize");
    EXPECT_TRUE(map.adapter.closeFile("User"));
    expectHeld("close");
    EXPECT_TRUE(map.adapter.openFile("User", std::ios_base::in));
    expectHeld("open");
    EXPECT_TRUE(map.adapter.deleteFile("User"));
    expectHeld("delete");
}

} // namespace

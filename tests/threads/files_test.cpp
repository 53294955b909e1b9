// Files of one device, and its settings, used by many threads at once: each transfer has the device for itself.
#include "tests/boundary/file_camera.h"
#include "tests/support/temporary_folder.h"
#include "tests/threads/threads.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

constexpr int rounds = 50;

class FilesInThreads : public FileCamera
{
protected:
    FilesInThreads()
    {
        auto nodes = FileNodes();
        nodes["Settings"] = "<Category Name=\"Root\"><pFeature>Gain</pFeature></Category>" +
                            IntRegister("Gain", 0x80, "<Streamable>Yes</Streamable>");
        OpenFiles(nodes);
        producer->KeepJournal(false);
    }

    void ReadAll(const std::string& file) const
    {
        const auto adapter = Adapter(file);
        for (int round = 0; round < rounds; ++round)
        {
            std::vector<std::uint8_t> bytes(20);
            std::uint64_t count = 0;
            EXPECT_EQ(Outcome(KORO_FileAdapter_Read(adapter, bytes.size(), 0, bytes.data(), &count)), Error{});
            EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "0123456789abcdefghij");
            EXPECT_EQ(Get<std::uint64_t>(KORO_FileAdapter_GetSize, adapter), 20u);
        }
        Require(KORO_FileAdapter_Destruct(adapter));
    }
    void MoveSelectors() const
    {
        const auto selector = Get<KORO_EnumerationNodeHandle>(KORO_Node_ToEnumerationNode, Find(map, "FileSelector"));
        for (int round = 0; round < rounds; ++round)
            Require(KORO_EnumerationNode_SetCurrentEntryByValue(selector, round % 2));
    }
    void KeepSettings(std::size_t number) const
    {
        const std::string path = folder.File(std::to_string(number));
        for (int round = 0; round < rounds; ++round)
        {
            EXPECT_EQ(Outcome(KORO_NodeMap_StoreToFile(map, path.c_str(), path.size() + 1)), Error{});
            EXPECT_EQ(Outcome(KORO_NodeMap_LoadFromFile(map, path.c_str(), path.size() + 1)), Error{});
        }
    }

    const TemporaryFolder folder;
};

} // namespace

TEST_F(FilesInThreads, TransfersOfSeveralThreadsDoNotMeet)
{
    Threads threads;
    threads.Add(2, [&](std::size_t number) { ReadAll(number == 0 ? "User" : "Table"); });
    threads.Add(1, [&](std::size_t) { MoveSelectors(); });
    threads.Add(2, [&](std::size_t number) { KeepSettings(number); });
    threads.Join();
    EXPECT_FALSE(files->IsOpen());
}

// Who asks again and again finds the lock as soon as a transfer gives it away in between.
TEST_F(FilesInThreads, TransferHoldsTheLockFromItsOpeningToItsClosing)
{
    const auto adapter = Adapter();
    std::atomic<bool> isTransferring = false;
    std::atomic<bool> isOver = false;
    files->whileExecuting = [&] { isTransferring = !files->diary.ends_with("Close"); };
    std::atomic<int> locks = 0;
    int locksWithin = 0;
    Threads threads;
    threads.Add(1, [&](std::size_t) {
        for (int round = 0; round < 20 * rounds || locks == 0; ++round)
        {
            std::vector<std::uint8_t> bytes(20);
            std::uint64_t count = 0;
            EXPECT_EQ(Outcome(KORO_FileAdapter_Read(adapter, bytes.size(), 0, bytes.data(), &count)), Error{});
            EXPECT_EQ(Outcome(KORO_FileAdapter_Write(adapter, bytes.data(), bytes.size(), 0)), Error{});
            files->diary.clear();
        }
        isOver = true;
    });
    threads.Add(1, [&](std::size_t) {
        while (!isOver)
        {
            if (Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) != 1) continue;
            ++locks;
            locksWithin += isTransferring;
            Require(KORO_NodeMap_Unlock(map));
        }
    });
    threads.Join();
    EXPECT_EQ(locksWithin, 0);
}

TEST_F(FilesInThreads, AdapterMayEndWhileAnotherThreadReads)
{
    const auto adapter = Adapter();
    Threads threads;
    threads.Add(1, [&](std::size_t) {
        std::uint64_t size = 0;
        KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
        while (code == KORO_RETURN_CODE_SUCCESS)
            code = KORO_FileAdapter_GetSize(adapter, &size);
        EXPECT_EQ(code, KORO_RETURN_CODE_INVALID_HANDLE);
    });
    threads.Add(1, [&](std::size_t) { Require(KORO_FileAdapter_Destruct(adapter)); });
    threads.Join();
}

TEST_F(FilesInThreads, MapMayGoWhileAnotherThreadReads)
{
    const auto adapter = Adapter();
    Threads threads;
    threads.Add(1, [&](std::size_t) {
        std::vector<std::uint8_t> bytes(20);
        std::uint64_t count = 0;
        Error error;
        while (error == Error{})
            error = Outcome(KORO_FileAdapter_Read(adapter, bytes.size(), 0, bytes.data(), &count));
        // The rest of a read that was running met the device's end.
        while (error.text != "Pointer has expired!")
            error = Outcome(KORO_FileAdapter_Read(adapter, bytes.size(), 0, bytes.data(), &count));
        EXPECT_EQ(error.code, KORO_RETURN_CODE_ERROR);
    });
    threads.Add(1, [&](std::size_t) { Require(KORO_Device_Destruct(tree.device)); });
    threads.Join();
}

} // namespace koro::test

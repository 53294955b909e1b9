#include "tests/support/file_size_limit.h"
#include "tests/support/temporary_folder.h"
#include "tools/koro/pending_file.h"
#include "tools/koro/tool_error.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace
{

std::vector<std::string> synced; // paths, in their order
int syncFailure = 0;

} // namespace

// In place of the system's: what is synced is seen here, and can fail.
extern "C" int fsync(int file)
{
    if (syncFailure != 0)
    {
        errno = syncFailure;
        return -1;
    }
    synced.push_back(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file)));
    return 0;
}

namespace
{

using namespace koro::tool;
using koro::test::TemporaryFolder;
namespace fs = std::filesystem;

std::string ContentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void Write(const std::string& path, const char* text)
{
    PendingFile file(path);
    std::fputs(text, file.Stream());
    file.Commit();
}

std::ptrdiff_t NumEntries(const TemporaryFolder& folder)
{
    return std::distance(fs::directory_iterator(folder.Path()), {});
}

std::string Refusal(const std::string& path)
{
    try
    {
        PendingFile file{path};
        file.Commit();
        return "none";
    }
    catch (const ToolError& error)
    {
        return error.what();
    }
}

TEST(PendingFile, ShowsUpWhenItIsCommitted)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("file", "older");
    {
        PendingFile file(path);
        std::fputs("half", file.Stream());
        EXPECT_EQ(ContentOf(path), "older");
    }
    EXPECT_EQ(ContentOf(path), "older");
    EXPECT_EQ(NumEntries(folder), 1);
    Write(path, "whole");
    EXPECT_EQ(ContentOf(path), "whole");
    EXPECT_EQ(NumEntries(folder), 1);
}

TEST(PendingFile, LinkStaysOne)
{
    const TemporaryFolder folder;
    folder.MakeFolder("elsewhere");
    const std::string target = folder.MakeFile("elsewhere/file", "older");
    const std::string link = folder.MakeLink(target, "link");
    Write(link, "new");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(ContentOf(target), "new");
}

TEST(PendingFile, ReplacesNoFolderNoDeviceAndNoPipe)
{
    const TemporaryFolder folder;
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(Refusal(pipe), "Cannot write " + pipe + ": it is there, and no regular file.");
    EXPECT_TRUE(fs::is_fifo(pipe));
    const std::string inside = folder.MakeFolder("folder");
    EXPECT_EQ(Refusal(inside), "Cannot write " + inside + ": it is a folder.");
    EXPECT_EQ(Refusal(inside + "/."), "Cannot write " + inside + "/.: it is a folder.");
    EXPECT_TRUE(fs::is_empty(inside));
    EXPECT_EQ(Refusal(folder.MakeLink("folder", "elsewhere")).find("Cannot write "), 0u);
    EXPECT_EQ(Refusal(folder.MakeLink("/dev/null", "device")).find("Cannot write "), 0u);
    EXPECT_EQ(NumEntries(folder), 4);
}

TEST(PendingFile, TwoWritersOfOnePathDoNotMixTheirFiles)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    PendingFile first(path);
    PendingFile second(path);
    EXPECT_NE(first.Path(), second.Path());
    std::fputs("first", first.Stream());
    std::fputs("the second", second.Stream());
    first.Commit();
    EXPECT_EQ(ContentOf(path), "first");
    second.Commit();
    EXPECT_EQ(ContentOf(path), "the second");
    EXPECT_EQ(NumEntries(folder), 1);
}

TEST(PendingFile, NameOfFullLengthHasRoomForItsNeighbour)
{
    const TemporaryFolder folder;
    const std::string path = folder.File(std::string(255, 'n'));
    Write(path, "text");
    EXPECT_EQ(ContentOf(path), "text");
}

TEST(PendingFile, ReplacedFileIsOnTheDiskWithItsFolder)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("file", "older");
    synced.clear();
    PendingFile file(path);
    const std::string pending = fs::canonical(file.Path());
    std::fputs("new", file.Stream());
    file.Commit();
    EXPECT_EQ(synced, (std::vector<std::string>{pending, fs::canonical(folder.Path())}));
}

TEST(PendingFile, SyncThatFailsLeavesTheOlderFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("file", "older");
    syncFailure = ENOSPC;
    EXPECT_THROW(Write(path, "new"), ToolError);
    syncFailure = 0;
    EXPECT_EQ(ContentOf(path), "older");
    EXPECT_EQ(NumEntries(folder), 1);
}

TEST(PendingFile, FullDiskLeavesTheOlderFile)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("file", "older");
    {
        const koro::test::FileSizeLimit disk(10);
        EXPECT_THROW(Write(path, "longer than the limit"), ToolError);
    }
    EXPECT_EQ(ContentOf(path), "older");
    EXPECT_EQ(NumEntries(folder), 1);
}

} // namespace

#include "producers/simulator/camera/kept_file.h"
#include "tests/support/temporary_folder.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace
{

std::vector<std::string> synced; // what was there, in its order: a folder's path, or the content of a file
int syncFailure = 0;

std::string ContentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

// In place of the system's: what is synced is seen here, and can fail.
extern "C" int fsync(int file)
{
    if (syncFailure != 0)
    {
        errno = syncFailure;
        return -1;
    }
    const std::string path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file));
    synced.push_back(std::filesystem::is_directory(path) ? path : ContentOf(path));
    return 0;
}

namespace
{

using koro::simulator::KeptFile;
using koro::test::TemporaryFolder;
namespace fs = std::filesystem;

bool Save(const std::string& path, const std::string& content)
{
    return KeptFile(path).Save(std::as_bytes(std::span(content)));
}

TEST(KeptFile, ContentThatReplacesAnotherIsOnTheDiskWithItsFolder)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("file", "older");
    synced.clear();
    EXPECT_TRUE(Save(path, "new"));
    EXPECT_EQ(synced, (std::vector<std::string>{"new", fs::canonical(folder.Path())}));
    EXPECT_EQ(ContentOf(path), "new");
}

TEST(KeptFile, SyncThatFailsLeavesTheOlderContent)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("file", "older");
    syncFailure = ENOSPC;
    EXPECT_FALSE(Save(path, "new"));
    syncFailure = 0;
    EXPECT_EQ(ContentOf(path), "older");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 1);
}

TEST(KeptFile, FileSystemThatCannotSyncKeepsTheContent)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("file", "older");
    syncFailure = EINVAL;
    EXPECT_TRUE(Save(path, "new"));
    syncFailure = 0;
    EXPECT_EQ(ContentOf(path), "new");
}

} // namespace

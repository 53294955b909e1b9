#include "tests/support/temporary_folder.h"
#include "tools/koro/pending_file.h"
#include "tools/koro/tool_error.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/stat.h>

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

std::string Refusal(const std::string& path)
{
    try
    {
        PendingFile file{path};
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
    EXPECT_FALSE(fs::exists(folder.File(".file.part")));
    Write(path, "whole");
    EXPECT_EQ(ContentOf(path), "whole");
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
    EXPECT_THROW(Write(folder.MakeFolder("folder"), "text"), ToolError);
    EXPECT_EQ(Refusal(folder.MakeLink("folder", "elsewhere")).find("Cannot write "), 0u);
    EXPECT_EQ(Refusal(folder.MakeLink("/dev/null", "device")).find("Cannot write "), 0u);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), {}), 4);
}

} // namespace

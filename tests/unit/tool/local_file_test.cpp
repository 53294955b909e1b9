#include "tests/support/temporary_folder.h"
#include "tools/koro/local_file.h"
#include "tools/koro/tool_error.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

namespace
{

using namespace koro::tool;
using koro::test::TemporaryFolder;
using namespace std::string_literals;

std::string Refusal(const std::string& path)
{
    try
    {
        ReadLocalFile(path);
        return "none";
    }
    catch (const ToolError& error)
    {
        return error.what();
    }
}

TEST(LocalFile, IsReadWithAllItsBytes)
{
    const TemporaryFolder folder;
    EXPECT_EQ(ReadLocalFile(folder.MakeFile("file", "a\0\r\n\xff"s)), "a\0\r\n\xff"s);
    EXPECT_EQ(ReadLocalFile(folder.MakeFile("empty", "")), "");
}

TEST(LocalFile, ThatCannotBeReadIsNamedWithTheReason)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("file");
    EXPECT_EQ(Refusal(path), "Cannot read " + path + ": No such file or directory.");
    EXPECT_EQ(Refusal(folder.Path()), "Cannot read " + folder.Path().string() + ": Is a directory.");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(Refusal(path).find("Cannot read " + path + ": "), 0u) << "and it is not waited for";
}

TEST(LocalFile, OfMoreThanTheBoundIsRefused)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeFile("file", "");
    std::filesystem::resize_file(path, (256 << 20) + 1); // without a disk's space
    EXPECT_EQ(Refusal(path), path + " has 268435457 bytes, which is too much.");
}

} // namespace

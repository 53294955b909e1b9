#include "base/exceptions.h"
#include "gentl/shared_object.h"
#include "tests/support/elf_file.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/temporary_folder.h"

#include <cerrno>
#include <elf.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>

using koro::internal::CTILoadingException;
using koro::internal::SharedObject;
using koro::test::BuiltProducer;
using koro::test::IsMapped;
using koro::test::ScriptedProducer;
using koro::test::TemporaryFolder;
using testing::ContainsRegex;

namespace
{

// What the loader says about a file that has to be refused; the number is the platform's.
std::string TextOfRefusal(const std::string& path)
{
    try
    {
        const SharedObject loaded(path);
    }
    catch (const CTILoadingException& exception)
    {
        return exception.what();
    }
    return "loaded";
}

void ExpectRefusal(const std::string& path)
{
    errno = 77; // of something that happened before
    const std::string text = TextOfRefusal(path);
    const std::string start = "Loading CTI " + path + " failed! Code: ";
    ASSERT_EQ(text.substr(0, start.size()), start);
    EXPECT_THAT(text.substr(start.size()), testing::MatchesRegex("([1-9][0-9]*|<not available>)\\."));
    EXPECT_NE(text, start + "77.");
}

// Puts the working directory back.
class WorkingDirectory
{
public:
    explicit WorkingDirectory(const std::filesystem::path& path) { std::filesystem::current_path(path); }
    ~WorkingDirectory() { std::filesystem::current_path(before); }

private:
    std::filesystem::path before = std::filesystem::current_path();
};

} // namespace

TEST(SharedObject, FindsTheExportsOfTheFile)
{
    const SharedObject library(BuiltProducer("scripted_1_5"));
    const auto found = library.Symbol("TLOpen");
    EXPECT_NE(found.address, nullptr);
    EXPECT_EQ(found.errorNumber, "");
}

TEST(SharedObject, AbsentExportIsNoExceptionAndTellsThePlatformsNumber)
{
    const SharedObject library(BuiltProducer("scripted_not_gentl"));
    errno = 77;
    const auto found = library.Symbol("TLOpen");
    EXPECT_EQ(found.address, nullptr);
    EXPECT_THAT(found.errorNumber, testing::MatchesRegex("[1-9][0-9]*|<not available>"));
    EXPECT_NE(found.errorNumber, "77");
}

TEST(SharedObject, MissingFileIsRefused)
{
    const TemporaryFolder folder;
    ExpectRefusal(folder.File("missing.cti"));
}

TEST(SharedObject, EmptyPathIsRefused)
{
    ExpectRefusal("");
}

TEST(SharedObject, FolderIsRefused)
{
    const TemporaryFolder folder;
    ExpectRefusal(folder.MakeFolder("folder.cti"));
}

// Nobody ever writes into it: asked for it, the loader would hang.
TEST(SharedObject, PipeIsRefusedWithoutWaitingForItsContent)
{
    const TemporaryFolder folder;
    const std::string path = folder.File("pipe.cti");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    ExpectRefusal(path);
}

TEST(SharedObject, DeviceIsRefused)
{
    ExpectRefusal("/dev/zero");
}

TEST(SharedObject, EmptyFileIsRefused)
{
    const TemporaryFolder folder;
    ExpectRefusal(folder.MakeFile("empty.cti", ""));
}

TEST(SharedObject, TextFileIsRefused)
{
    const TemporaryFolder folder;
    ExpectRefusal(folder.MakeFile("text.cti", std::string(4096, 'x')));
}

TEST(SharedObject, FileThatWasCutShortIsRefused)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeCopy(BuiltProducer("scripted_not_gentl"), "cut.cti");
    for (const std::uintmax_t size : {8000u, 4096u, 1000u, 200u, 65u, 63u, 4u, 1u})
    {
        std::filesystem::resize_file(path, size);
        ExpectRefusal(path);
    }
}

TEST(SharedObject, FileOfAnotherArchitectureIsRefused)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeCopy(BuiltProducer("scripted_1_5"), "other.cti");
    koro::test::SetMachine(path, EM_S390);
    ExpectRefusal(path);
}

TEST(SharedObject, FileWithAnUnresolvedSymbolIsRefusedAtLoad)
{
    ExpectRefusal(BuiltProducer("scripted_missing_symbol"));
}

TEST(SharedObject, PathWithoutFolderMeansTheWorkingDirectory)
{
    const TemporaryFolder folder;
    folder.MakeCopy(BuiltProducer("scripted_1_5"), "here.cti");
    const WorkingDirectory inside(folder.Path());
    const SharedObject library("here.cti");
    EXPECT_NE(library.Symbol("TLOpen").address, nullptr);
}

TEST(SharedObject, PathWithoutFolderIsNotSearchedElsewhereAndStaysAsGivenInTheMessage)
{
    const TemporaryFolder folder;
    const WorkingDirectory inside(folder.Path());
    ExpectRefusal("libc.so.6");
}

TEST(SharedObject, DestructorUnloads)
{
    ScriptedProducer producer;
    std::optional<SharedObject> library(producer.Path());
    library.reset();
    EXPECT_FALSE(producer.IsLoadedByOthers());
}

TEST(SharedObject, FileStaysLoadedWhileTheObjectLives)
{
    ScriptedProducer producer;
    const SharedObject library(producer.Path());
    EXPECT_TRUE(producer.IsLoadedByOthers());
}

TEST(SharedObject, FileThatIsKeptMappedOutlivesTheObject)
{
    ScriptedProducer producer;
    std::optional<SharedObject> library(producer.Path());
    library->KeepMapped();
    library.reset();
    EXPECT_TRUE(producer.IsLoadedByOthers());
}

TEST(SharedObject, FileOfARelativePathIsKeptMappedFromAnotherWorkingDirectoryToo)
{
    const TemporaryFolder folder;
    const std::string path = folder.MakeCopy(BuiltProducer("scripted_1_5"), "here.cti");
    {
        std::optional<WorkingDirectory> inside(folder.Path());
        const SharedObject library("here.cti");
        inside.reset();
        library.KeepMapped();
    }
    EXPECT_TRUE(IsMapped(path));
}

TEST(SharedObject, ProducersDoNotSeeEachOthersSymbols)
{
    const ScriptedProducer first;
    const ScriptedProducer second;
    const SharedObject one(first.Path());
    const SharedObject other(second.Path());
    EXPECT_NE(one.Symbol("TLOpen").address, other.Symbol("TLOpen").address);
}

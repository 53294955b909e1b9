#include "base/exceptions.h"
#include "gentl/environment_inspector.h"
#include "tests/support/environment_variable.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/throws_exactly.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <pthread.h>
#include <set>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

using namespace koro::internal;
using namespace koro::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{

class EnvironmentInspectorTest : public testing::Test
{
protected:
    // Searches `folders`; the test of a producer is recorded, and fails for those in `unusable`.
    void Update(const std::string& folders)
    {
        variable.Set(folders);
        tested.clear();
        inspector.UpdateCTIPaths([this](const std::string& path) {
            tested.push_back(path);
            return !unusable.contains(path);
        });
    }

    EnvironmentVariable variable{"GENICAM_GENTL64_PATH", std::nullopt};
    TemporaryFolder folder;
    EnvironmentInspector inspector;
    std::vector<std::string> tested;
    std::set<std::string> unusable;
};

bool Accept(const std::string&)
{
    return true;
}

} // namespace

TEST_F(EnvironmentInspectorTest, ListIsEmptyBeforeTheFirstUpdate)
{
    EXPECT_THAT(inspector.CTIPaths(), IsEmpty());
}

TEST_F(EnvironmentInspectorTest, UnsetVariableIsNotFoundAndKeepsTheList)
{
    const auto path = folder.MakeFile("a.cti", "");
    Update(folder.Path());
    variable.Set(std::nullopt);
    EXPECT_THAT(
        [&] { inspector.UpdateCTIPaths(Accept); },
        ThrowsExactly<NotFoundException>(
            "GENICAM_GENTL64_PATH environment variable not found! Please set this to the path of the CTIs."));
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(path));
}

TEST_F(EnvironmentInspectorTest, EmptyVariableGivesNoPathsAndNoError)
{
    Update("");
    EXPECT_THAT(inspector.CTIPaths(), IsEmpty());
}

TEST_F(EnvironmentInspectorTest, FilesOfAllFoldersAreSortedTogether)
{
    const auto second = folder.MakeFolder("b");
    const auto first = folder.MakeFolder("a");
    const auto two = folder.MakeFile("b/1.cti", "");
    const auto one = folder.MakeFile("a/2.cti", "");
    Update(second + ":" + first);
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(one, two));
    EXPECT_THAT(tested, ElementsAre(one, two));
}

TEST_F(EnvironmentInspectorTest, SortingIsByBytes)
{
    const auto capital = folder.MakeFile("Z.cti", "");
    const auto small = folder.MakeFile("a.cti", "");
    const auto umlaut = folder.MakeFile("\xc3\xa4.cti", "");
    Update(folder.Path());
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(capital, small, umlaut));
}

TEST_F(EnvironmentInspectorTest, OneFileThroughSeveralFormsOfItsFolderStandsOnce)
{
    const auto path = folder.MakeFile("a.cti", "");
    const auto link = folder.MakeLink(folder.Path(), "link");
    const std::string plain = folder.Path().string();
    Update(plain + ":" + plain + "/:" + plain + "/./:" + plain + "//:" + link + ";" + plain);
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(path));
    EXPECT_THAT(tested, ElementsAre(path));
}

TEST_F(EnvironmentInspectorTest, LinkedFileStandsUnderItsCanonicalPath)
{
    const auto target = folder.MakeFile("a.cti", "");
    const auto linked = folder.MakeFolder("linked");
    folder.MakeLink(target, "linked/b.cti");
    Update(linked);
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(target));
}

TEST_F(EnvironmentInspectorTest, OnlyPlainFilesDirectlyInTheFolderCount)
{
    folder.MakeFolder("folder.cti");
    folder.MakeFolder("below");
    folder.MakeFile("below/a.cti", "");
    ASSERT_EQ(mkfifo(folder.File("pipe.cti").c_str(), 0600), 0);
    const auto path = folder.MakeFile("a.cti", "");
    Update(folder.Path());
    EXPECT_THAT(tested, ElementsAre(path));
}

TEST_F(EnvironmentInspectorTest, EndingIsExactAndCaseSensitive)
{
    for (const auto* name : {"a.CTI", "b.Cti", "c.cti.txt", "d.ctix", "cti", "e.ct"})
        folder.MakeFile(name, "");
    const auto bare = folder.MakeFile(".cti", "");
    const auto twice = folder.MakeFile("f.cti.cti", "");
    Update(folder.Path());
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(bare, twice));
}

TEST_F(EnvironmentInspectorTest, AbsentFolderAndFileInItsPlaceGiveNothing)
{
    const auto file = folder.MakeFile("a.cti", "");
    Update(folder.File("absent") + ":" + file);
    EXPECT_THAT(inspector.CTIPaths(), IsEmpty());
}

TEST_F(EnvironmentInspectorTest, FolderPathFrom258CharactersOnIsSkipped)
{
    std::string longPath = folder.Path().string();
    while (longPath.size() < 240)
        longPath += "/x";
    longPath += std::string("/") + std::string(256 - longPath.size(), 'y');
    ASSERT_EQ(longPath.size(), 257u);
    std::filesystem::create_directories(longPath);
    const auto relative = std::filesystem::relative(longPath, folder.Path()).string();
    const auto path = folder.MakeFile(relative + "/a.cti", "");

    Update(longPath);
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(path));
    Update(longPath + "/");
    EXPECT_THAT(inspector.CTIPaths(), IsEmpty());
}

TEST_F(EnvironmentInspectorTest, LinkThatLeadsNowhereEndsTheUpdateWithTheFileSystemsError)
{
    folder.MakeLink(folder.File("nowhere"), "dead.cti");
    std::string text;
    try
    {
        Update(folder.Path());
    }
    catch (const std::exception& exception)
    {
        EXPECT_EQ(dynamic_cast<const Exception*>(&exception), nullptr);
        text = exception.what();
    }
    EXPECT_THAT(text, testing::HasSubstr(folder.File("dead.cti")));
}

// Differences between updates.

TEST_F(EnvironmentInspectorTest, UnusableProducerIsAbsentAndNoError)
{
    const auto good = folder.MakeFile("good.cti", "");
    unusable.insert(folder.MakeFile("bad.cti", ""));
    Update(folder.Path());
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(good));
}

TEST_F(EnvironmentInspectorTest, WhateverTheTestThrowsMeansNo)
{
    const auto standard = folder.MakeFile("standard.cti", "");
    const auto other = folder.MakeFile("other.cti", "");
    const auto good = folder.MakeFile("good.cti", "");
    variable.Set(folder.Path());
    inspector.UpdateCTIPaths([&](const std::string& path) {
        if (path == standard) throw std::runtime_error("does not load");
        if (path == other) throw 5;
        return true;
    });
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(good));
}

TEST_F(EnvironmentInspectorTest, KnownProducerIsNotTestedAgainAndARefusedOneIs)
{
    const auto good = folder.MakeFile("good.cti", "");
    const auto bad = folder.MakeFile("bad.cti", "");
    unusable.insert(bad);
    Update(folder.Path());
    EXPECT_THAT(tested, ElementsAre(bad, good));
    unusable.clear();
    Update(folder.Path());
    EXPECT_THAT(tested, ElementsAre(bad));
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(good, bad));
}

TEST_F(EnvironmentInspectorTest, NewEntriesStandSortedBehindTheOldOnes)
{
    const auto m = folder.MakeFile("m.cti", "");
    const auto n = folder.MakeFile("n.cti", "");
    Update(folder.Path());
    const auto z = folder.MakeFile("z.cti", "");
    const auto a = folder.MakeFile("a.cti", "");
    Update(folder.Path());
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(m, n, a, z));
}

TEST_F(EnvironmentInspectorTest, VanishedFileGoesAndTheOthersKeepTheirOrder)
{
    const auto b = folder.MakeFile("b.cti", "");
    const auto c = folder.MakeFile("c.cti", "");
    Update(folder.Path());
    const auto a = folder.MakeFile("a.cti", "");
    Update(folder.Path());
    std::filesystem::remove(b);
    Update(folder.Path());
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(c, a));
}

TEST_F(EnvironmentInspectorTest, FolderThatLeavesTheVariableTakesItsEntriesAlong)
{
    folder.MakeFile("a.cti", "");
    Update(folder.Path());
    Update("");
    EXPECT_THAT(inspector.CTIPaths(), IsEmpty());
}

TEST_F(EnvironmentInspectorTest, FailingSearchKeepsTheList)
{
    const auto path = folder.MakeFile("a.cti", "");
    Update(folder.Path());
    folder.MakeLink(folder.File("nowhere"), "dead.cti");
    EXPECT_ANY_THROW(Update(folder.Path()));
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(path));
}

TEST_F(EnvironmentInspectorTest, ReaderWaitsForTheUpdateThatRuns)
{
    const auto path = folder.MakeFile("a.cti", "");
    variable.Set(folder.Path());
    std::latch inside(1);
    std::latch goOn(1);
    std::thread update([&] {
        inspector.UpdateCTIPaths([&](const std::string&) {
            inside.count_down();
            goOn.wait();
            return true;
        });
    });
    inside.wait();
    std::thread reader([&] { EXPECT_THAT(inspector.CTIPaths(), ElementsAre(path)); });
    goOn.count_down();
    reader.join();
    update.join();
}

// Cancelling unwinds the thread by an exception; swallowed, it would end the process.
TEST_F(EnvironmentInspectorTest, ThreadThatIsCancelledDuringATestUnwindsAndLeavesTheListToTheOthers)
{
    const auto path = folder.MakeFile("a.cti", "");
    variable.Set(folder.Path());
    pthread_t thread{};
    ASSERT_EQ(
        pthread_create(
            &thread, nullptr,
            [](void* context) -> void* {
                static_cast<EnvironmentInspector*>(context)->UpdateCTIPaths([](const std::string&) {
                    pthread_cancel(pthread_self());
                    pthread_testcancel();
                    return true;
                });
                return nullptr;
            },
            &inspector),
        0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);

    EXPECT_THAT(inspector.CTIPaths(), IsEmpty());
    inspector.UpdateCTIPaths(Accept);
    EXPECT_THAT(inspector.CTIPaths(), ElementsAre(path));
}

TEST(EnvironmentInspector, IsOneForTheProcess)
{
    EXPECT_EQ(&EnvironmentInspector::Shared(), &EnvironmentInspector::Shared());
}

// The pieces.

TEST(EnvironmentInspector, VariableIsSplitAtColonsAndSemicolonsWithoutEmptyPieces)
{
    EXPECT_THAT(SplitProducerFolders(""), IsEmpty());
    EXPECT_THAT(SplitProducerFolders(":;:"), IsEmpty());
    EXPECT_THAT(SplitProducerFolders("/a"), ElementsAre("/a"));
    EXPECT_THAT(SplitProducerFolders("/a:/b;/c d"), ElementsAre("/a", "/b", "/c d"));
    EXPECT_THAT(SplitProducerFolders(";/a::/b:"), ElementsAre("/a", "/b"));
}

TEST(EnvironmentInspector, StoredFormCollapsesSlashesButForTwoInFrontOfAName)
{
    EXPECT_EQ(StoredPathForm(""), "");
    EXPECT_EQ(StoredPathForm("/"), "/");
    EXPECT_EQ(StoredPathForm("//"), "/");
    EXPECT_EQ(StoredPathForm("/a/b.cti"), "/a/b.cti");
    EXPECT_EQ(StoredPathForm("/a//b///c.cti"), "/a/b/c.cti");
    EXPECT_EQ(StoredPathForm("//server/share//c.cti"), "//server/share/c.cti");
    EXPECT_EQ(StoredPathForm("///a/b.cti"), "/a/b.cti");
    EXPECT_EQ(StoredPathForm("a/b/"), "a/b/");
}

TEST(EnvironmentInspector, FolderIsListedByCanonicalPaths)
{
    const TemporaryFolder folder;
    const auto a = folder.MakeFile("a.cti", "");
    const auto b = folder.MakeFile("b.cti", "");
    EXPECT_THAT(ListProducerFiles(folder.Path().string() + "/."), UnorderedElementsAre(a, b));
    EXPECT_THAT(ListProducerFiles(folder.File("absent")), IsEmpty());
}

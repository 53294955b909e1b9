#include "tests/support/temporary_folder.h"
#include "tools/koro/producer_search.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;
using koro::test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

ProducerSearch Search(const std::string& variable)
{
    return SearchProducers(variable.c_str());
}

TEST(ProducerSearch, UnsetVariableFindsNothing)
{
    const ProducerSearch search = SearchProducers(static_cast<const char*>(nullptr));
    EXPECT_FALSE(search.variableIsSet);
    EXPECT_THAT(search.candidates, IsEmpty());
}

TEST(ProducerSearch, VariableThatNamesNoDirectoryCountsAsNotSet)
{
    for (const char* const value : {"", ":", ";:"})
    {
        const ProducerSearch search = Search(value);
        EXPECT_FALSE(search.variableIsSet);
        EXPECT_THAT(search.directories, IsEmpty());
    }
}

TEST(ProducerSearch, ColonAndSemicolonSeparateDirectories)
{
    const TemporaryFolder folder;
    const std::string a = folder.MakeFolder("a");
    const std::string b = folder.MakeFolder("b");
    const std::string first = folder.MakeFile("b/one.cti", "");
    const std::string second = folder.MakeFile("a/two.cti", "");
    folder.MakeFile("a/three.CTI", "");
    folder.MakeFile("a/cti", "");

    const ProducerSearch search = Search(a + ":;" + b + ";");
    EXPECT_EQ(search.directories.size(), 2u);
    EXPECT_THAT(search.candidates, ElementsAre(second, first));
}

TEST(ProducerSearch, EachDirectoryThatDoesNotServeSaysWhy)
{
    const TemporaryFolder folder;
    const std::string file = folder.MakeFile("file", "");
    const ProducerSearch search = Search(folder.File("missing") + ":" + file);
    ASSERT_EQ(search.directories.size(), 2u);
    EXPECT_EQ(search.directories[0].problem, "does not exist");
    EXPECT_EQ(search.directories[1].problem, "is not a directory");
}

TEST(ProducerSearch, FileReachedTwiceIsACandidateOnce)
{
    const TemporaryFolder folder;
    const std::string real = folder.MakeFolder("real");
    const std::string file = folder.MakeFile("real/one.cti", "");
    const std::string link = folder.MakeLink(real, "link");
    const ProducerSearch search = Search(real + ":" + link + ":" + real + "/.");
    EXPECT_THAT(search.candidates, ElementsAre(file));
    EXPECT_THAT(search.duplicates, IsEmpty());
}

TEST(ProducerSearch, SameNameInTwoDirectoriesIsADuplicate)
{
    const TemporaryFolder folder;
    const std::string a = folder.MakeFolder("a");
    const std::string b = folder.MakeFolder("b");
    folder.MakeFile("a/one.cti", "");
    folder.MakeFile("b/one.cti", "");
    EXPECT_THAT(Search(a + ":" + b).duplicates, ElementsAre("one.cti lies in " + a + " and " + b));
}

TEST(ProducerSearch, DirectoryAndBrokenLinkOfThatNameAreCandidatesToo)
{
    const TemporaryFolder folder;
    const std::string directory = folder.MakeFolder("directory.cti");
    const std::string link = folder.MakeLink(folder.File("nowhere"), "link.cti");
    EXPECT_THAT(Search(folder.Path().string()).candidates, ElementsAre(directory, link));
}

TEST(ProducerSearch, SingleProducerIsTheOnlyCandidate)
{
    const TemporaryFolder folder;
    const std::string file = folder.MakeFile("one.any", "");
    EXPECT_THAT(SearchProducers({.file = file}).candidates, ElementsAre(file));
    EXPECT_THAT(SearchProducers({.file = folder.File("missing.cti")}).candidates, ElementsAre(folder.File("missing.cti")));
}

} // namespace

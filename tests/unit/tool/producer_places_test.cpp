#include "tests/support/temporary_folder.h"
#include "tools/koro/producer_places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;
using koro::test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ProducerPlaces, FoldersWithProducersAreFoundOnceEach)
{
    const TemporaryFolder folder;
    folder.MakeFolder("maker");
    const std::string library = folder.MakeFolder("maker/lib");
    folder.MakeFolder("maker/include");
    folder.MakeFile("maker/lib/one.cti", "");
    folder.MakeFile("maker/lib/two.cti", "");
    folder.MakeFile("maker/include/one.h", "");
    const ProducerPlaces places = FindProducerPlaces({folder.Path().string(), folder.File("missing")}, {});
    EXPECT_THAT(places.folders, ElementsAre(library));
    EXPECT_TRUE(places.isWhole);
}

TEST(ProducerPlaces, FoldersBelowTheDepthAreLeftOut)
{
    const TemporaryFolder folder;
    const std::string upper = folder.MakeFolder("a");
    folder.MakeFolder("a/b");
    folder.MakeFile("a/one.cti", "");
    folder.MakeFile("a/b/two.cti", "");
    EXPECT_THAT(FindProducerPlaces({folder.Path().string()}, {.depth = 1}).folders, ElementsAre(upper));
}

TEST(ProducerPlaces, TooManyEntriesEndTheSearch)
{
    const TemporaryFolder folder;
    folder.MakeFile("a", "");
    folder.MakeFile("b", "");
    EXPECT_FALSE(FindProducerPlaces({folder.Path().string()}, {.numEntries = 1}).isWhole);
}

TEST(ProducerPlaces, TimeThatIsOverEndsTheSearch)
{
    const TemporaryFolder folder;
    folder.MakeFile("a", "");
    EXPECT_FALSE(FindProducerPlaces({folder.Path().string()}, {.time = std::chrono::milliseconds(0)}).isWhole);
}

TEST(ProducerPlaces, LinksToFoldersAreNotFollowed)
{
    const TemporaryFolder folder;
    folder.MakeFolder("root");
    folder.MakeFolder("outside");
    folder.MakeFile("outside/one.cti", "");
    folder.MakeLink(folder.File("outside"), "root/link");
    folder.MakeLink(folder.File("root"), "root/circle");
    EXPECT_THAT(FindProducerPlaces({folder.File("root")}, {}).folders, IsEmpty());
}

} // namespace

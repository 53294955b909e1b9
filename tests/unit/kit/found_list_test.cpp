#include "producers/kit/found_list.h"

#include <gtest/gtest.h>

namespace
{
using namespace koro::kit;

struct Entry
{
    std::string id;
    const std::string& Id() const { return id; }
};

std::shared_ptr<Entry> Named(const char* id)
{
    return std::make_shared<Entry>(Entry{id});
}

TEST(KitFoundList, IsEmptyBeforeTheFirstUpdate)
{
    const FoundList<Entry> list("cameras");
    EXPECT_EQ(list.Size(), 0U);
    EXPECT_EQ(list.Find(0), nullptr);
}

TEST(KitFoundList, ReportsAChangeOfIdsAndNothingElse)
{
    FoundList<Entry> list("cameras");
    EXPECT_FALSE(list.Replace({}));
    const auto entry = Named("a");
    EXPECT_TRUE(list.Replace({entry}));
    EXPECT_FALSE(list.Replace({Named("a")}));
    EXPECT_FALSE(list.Has(*entry));
    EXPECT_TRUE(list.Replace({Named("a"), Named("b")}));
    EXPECT_TRUE(list.Replace({Named("b"), Named("a")}));
}

TEST(KitFoundList, NoticesAnEntryThatHasAnotherId)
{
    FoundList<Entry> list("cameras");
    const auto entry = Named("a");
    list.Replace({entry});
    entry->id = "b";
    EXPECT_TRUE(list.Replace({entry}));
}

TEST(KitFoundList, SaysHowManyEntriesThereAre)
{
    FoundList<Entry> list("cameras");
    list.Replace({Named("a")});
    try
    {
        list.At(1);
        FAIL();
    }
    catch (const Failure& failure)
    {
        EXPECT_EQ(failure.Code(), GC_ERR_INVALID_INDEX);
        EXPECT_STREQ(failure.what(), "the list has 1 cameras");
    }
}

} // namespace

#include "tests/unit/genicam/persistence_bag.h"

#include <GenApi/SelectorSet.h>
#include <gtest/gtest.h>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::EnumerationSelector;
using koro::test::IntegerSelector;
using koro::test::Kept;
using koro::test::SmallMap;

TEST(SelectorState, GoesFromTheFirstToTheLast)
{
    CSelectorState state;
    EXPECT_TRUE(state.IsEmpty());
    EXPECT_FALSE(state.SetFirst());
    EXPECT_FALSE(state.SetNext());
    EXPECT_THROW(state.GetNodeName(), LogicalErrorException);
    EXPECT_THROW(state.GetNodeValue(), LogicalErrorException);
    state.AddSelector("A", "1");
    state.AddSelector("B", "2");
    EXPECT_FALSE(state.IsEmpty());
    EXPECT_TRUE(state.SetFirst());
    EXPECT_STREQ(state.GetNodeName().c_str(), "A");
    EXPECT_STREQ(state.GetNodeValue().c_str(), "1");
    EXPECT_TRUE(state.SetNext());
    EXPECT_STREQ(state.GetNodeName().c_str(), "B");
    EXPECT_FALSE(state.SetNext());
    EXPECT_STREQ(state.GetNodeName().c_str(), "B");
    CSelectorState copy(state);
    copy.SetFirst();
    EXPECT_STREQ(state.GetNodeName().c_str(), "B");
}

TEST(SelectorState, TakesAndRestoresSelectors)
{
    const SmallMap map(EnumerationSelector("S", "1", "") + EnumerationSelector("T", "2", ""));
    CSelectorState state;
    state.AddSelector(*map.Value("S"));
    state.AddSelector("Gone", "1");
    state.AddSelector(*map.Value("T"));
    map.Value("S")->FromString("A");
    map.Value("T")->FromString("A");
    EXPECT_TRUE(state.RestoreState(map.map));
    EXPECT_STREQ(map.Value("S")->ToString().c_str(), "B");
    EXPECT_STREQ(map.Value("T")->ToString().c_str(), "C");
}

TEST(SelectorState, RefusedValueEndsTheRestoring)
{
    const SmallMap map(EnumerationSelector("S", "0", "") + EnumerationSelector("T", "0", ""));
    CSelectorState state;
    state.AddSelector("S", "Nothing");
    state.AddSelector("T", "B");
    EXPECT_FALSE(state.RestoreState(map.map));
    gcstring_vector errors;
    EXPECT_FALSE(state.RestoreState(map.map, &errors));
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(std::string(errors[0]).find("Error while writing selector 'S': There is no entry 'Nothing'."), 0u);
    EXPECT_STREQ(map.Value("T")->ToString().c_str(), "A");
    EXPECT_THROW(state.RestoreState(nullptr), InvalidArgumentException);
}

TEST(SelectorSet, IsEmptyWithoutSelectors)
{
    const SmallMap map(Kept("V", "1"));
    CSelectorSet set(map.Node("V"));
    EXPECT_TRUE(set.IsEmpty());
    EXPECT_FALSE(set.SetFirst());
    EXPECT_FALSE(set.SetNext());
    EXPECT_FALSE(set.SetNext(false));
    set.Restore();
    CSelectorSet none(nullptr);
    EXPECT_TRUE(none.IsEmpty());
}

TEST(SelectorSet, WalksAndRestores)
{
    const SmallMap map(
        Kept("V", "1") + IntegerSelector("Outer", "1", "<Min>0</Min><Max>1</Max>", "Inner") +
        EnumerationSelector("Inner", "1", "V"));
    CSelectorSet set(map.Node("V"));
    std::string walk;
    for (bool more = set.SetFirst(); more; more = set.SetNext())
    {
        FeatureList_t list;
        set.GetSelectorList(list, true);
        walk += std::string(set.ToString()) + " moved " + std::to_string(list.size()) + "\n";
    }
    EXPECT_EQ(
        walk, "Outer=0, Inner=A moved 2\nOuter=0, Inner=B moved 1\nOuter=0, Inner=C moved 1\n"
              "Outer=1, Inner=A moved 2\nOuter=1, Inner=B moved 1\nOuter=1, Inner=C moved 1\n");
    EXPECT_STREQ(set.ToString().c_str(), "Outer=1, Inner=A") << "the outermost one stays at its end";
    FeatureList_t all;
    set.GetSelectorList(all);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_EQ(all[0], static_cast<IValue*>(map.Value("Outer")));
    set.Restore();
    EXPECT_STREQ(set.ToString().c_str(), "Outer=1, Inner=B");
}

TEST(SelectorSet, WithoutTickTheValuesAreWrittenAgain)
{
    const SmallMap map(
        Kept("V", "1") + IntegerSelector("I", "1", "<Min>0</Min><Max>3</Max>", "V") +
        "<Boolean Name=\"B\"><Value>false</Value><pSelected>V</pSelected></Boolean>" +
        EnumerationSelector("E", "1", "V"));
    CSelectorSet set(map.Node("V"));
    ASSERT_TRUE(set.SetFirst());
    ASSERT_TRUE(set.SetNext());
    const gcstring before = set.ToString();
    map.Integer("I")->SetValue(3);
    map.Value("B")->FromString("1");
    map.Value("E")->FromString("C");
    EXPECT_TRUE(set.SetNext(false));
    EXPECT_EQ(set.ToString(), before);
    set.Restore();
}

TEST(SelectorSet, StaysOnTheGridThatTheOuterSelectorGives)
{
    const SmallMap map(
        Kept("V", "1") + IntegerSelector("Outer", "0", "<Min>0</Min><Max>1</Max>", "Inner") +
        "<Integer Name=\"Inner\"><Value>0</Value><pMin>Outer</pMin><Max>5</Max><Inc>2</Inc>"
        "<pSelected>V</pSelected></Integer>");
    CSelectorSet set(map.Node("V"));
    std::string walk;
    for (bool more = set.SetFirst(); more; more = set.SetNext())
        walk += std::string(set.ToString()) + "\n";
    EXPECT_EQ(
        walk, "Outer=0, Inner=0\nOuter=0, Inner=2\nOuter=0, Inner=4\n"
              "Outer=1, Inner=0\nOuter=1, Inner=1\nOuter=1, Inner=3\nOuter=1, Inner=5\n");
    set.Restore();
}

TEST(SelectorSet, EndsAtTheLargestNumber)
{
    const SmallMap map(
        Kept("V", "1") +
        IntegerSelector("S", "9223372036854775805", "<Min>9223372036854775804</Min><Inc>2</Inc>", "V"));
    CSelectorSet set(map.Node("V"));
    ASSERT_TRUE(set.SetFirst());
    EXPECT_TRUE(set.SetNext());
    EXPECT_STREQ(set.ToString().c_str(), "S=9223372036854775806");
    EXPECT_FALSE(set.SetNext());
}

TEST(SelectorSet, SelectorsOfANodeAreBounded)
{
    std::string description = Kept("V", "1");
    for (int i = 0; i < 257; ++i)
        description += IntegerSelector("S" + std::to_string(i), "0", "<Max>0</Max>", "V");
    const SmallMap map(description);
    EXPECT_THROW(CSelectorSet(map.Node("V")), RuntimeException);
}

} // namespace

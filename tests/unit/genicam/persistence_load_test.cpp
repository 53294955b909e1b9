#include "tests/unit/genicam/persistence_bag.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::EnumerationSelector;
using koro::test::Features;
using koro::test::Fill;
using koro::test::IntegerSelector;
using koro::test::Kept;
using koro::test::KeptFor;
using koro::test::Records;
using koro::test::SmallMap;
using koro::test::yesAndNo;

// The error texts, each up to the type of the exception in it.
struct Loading
{
    Loading(const SmallMap& map, const std::string& records, bool verify = true)
    {
        CFeatureBag bag;
        Fill(bag, records);
        gcstring_vector list;
        good = bag.LoadFromBag(map.map, verify, &list);
        for (size_t i = 0; i < list.size(); ++i)
        {
            const std::string text = list.at(i).c_str();
            errors += text.substr(0, text.find(" : ")) + "\n";
        }
    }

    bool good = false;
    std::string errors;
};

TEST(FeatureBag, LoadedFeaturesHaveTheStoredValues)
{
    const std::string description =
        Features("A V") + KeptFor("A", "100", "") + KeptFor("V", "0", "S") + EnumerationSelector("S", "1", "V");
    SmallMap source(description);
    source.port.bytes = {{0, 7}, {1, 8}, {2, 9}, {100, 3}};
    CFeatureBag bag;
    bag.StoreToBag(source.map);

    SmallMap target(description);
    target.Value("S")->FromString("A");
    EXPECT_TRUE(bag.LoadFromBag(target.map));
    CFeatureBag again;
    again.StoreToBag(target.map);
    EXPECT_EQ(Records(again), Records(bag));
    EXPECT_EQ(target.port.bytes[1], 8);
    EXPECT_STREQ(target.Value("S")->ToString().c_str(), "B");
}

TEST(FeatureBag, ErrorsAreCollectedAndTheRestIsWritten)
{
    const SmallMap map(
        yesAndNo + Features("A B E") + Kept("A", "1") + Kept("B", "1") +
        Kept("Fixed", "1", "<ImposedAccessMode>RO</ImposedAccessMode>") + EnumerationSelector("E", "0", ""));
    const Loading loading(map, "Nowhere\t1\nA\tabc\nFixed\t2\nE\tD\nB\t7\n");
    EXPECT_FALSE(loading.good);
    EXPECT_EQ(
        loading.errors, "Error while writing node: 'Nowhere' not found\n"
                        "Error while writing node 'A': The text 'abc' is no integer value.\n"
                        "Error while writing node 'Fixed': Node is not writable.\n"
                        "Error while writing node 'E': There is no entry 'D'.\n");
    EXPECT_EQ(map.Integer("B")->GetValue(), 7);
}

TEST(FeatureBag, WithoutAListErrorsAreInTheResultOnly)
{
    const SmallMap map(Features("B") + Kept("B", "1"));
    CFeatureBag bag;
    Fill(bag, "Nowhere\t1\nB\t7\n");
    EXPECT_FALSE(bag.LoadFromBag(map.map));
    EXPECT_EQ(map.Integer("B")->GetValue(), 7);
    Fill(bag, "B\t8\n");
    EXPECT_TRUE(bag.LoadFromBag(map.map));
    EXPECT_EQ(map.Integer("B")->GetValue(), 8);
}

TEST(FeatureBag, LocksAndLimitsAreNotLookedAtInWriting)
{
    const SmallMap map(
        yesAndNo + Kept("Locked", "1", "<pIsLocked>Yes</pIsLocked>") +
        Kept("Away", "1", "<pIsAvailable>No</pIsAvailable>") +
        "<Integer Name=\"Small\"><Value>1</Value><Max>9</Max></Integer>");
    EXPECT_TRUE(Loading(map, "Locked\t5\nAway\t5\nSmall\t50\n", false).good);
    EXPECT_EQ(map.Integer("Locked")->GetValue(), 5);
    EXPECT_EQ(map.Integer("Small")->GetValue(), 50);
}

TEST(FeatureBag, VerifyingReadsBackWithinTheLimits)
{
    const SmallMap map("<Integer Name=\"Small\"><Value>1</Value><Max>9</Max></Integer>");
    EXPECT_TRUE(Loading(map, "Small\t9\n").good);
    const Loading loading(map, "Small\t50\n");
    EXPECT_FALSE(loading.good);
    EXPECT_EQ(
        loading.errors, "Error while verifying the value of node 'Small': Value = 50 must be smaller than or equal to "
                        "Max = 9.\n");
}

TEST(FeatureBag, VerifyingComparesTheTexts)
{
    const SmallMap map("<Float Name=\"F\"><Value>1</Value></Float>");
    const Loading loading(map, "F\t0.123456789\n");
    EXPECT_FALSE(loading.good);
    EXPECT_EQ(loading.errors, "Error while verifying node 'F': expected '0.123456789', found '0.123457'\n");
    EXPECT_TRUE(Loading(map, "F\t0.123456789\n", false).good);
}

TEST(FeatureBag, VerifyingWaitsForAWritingWithoutErrors)
{
    const SmallMap map("<Float Name=\"F\"><Value>1</Value></Float>");
    EXPECT_EQ(Loading(map, "F\t0.123456789\nNowhere\t1\n").errors, "Error while writing node: 'Nowhere' not found\n");
}

TEST(FeatureBag, VerifyingLeavesOutWhatCanOnlyBeWritten)
{
    const SmallMap map(yesAndNo + Kept("W", "1", "<ImposedAccessMode>WO</ImposedAccessMode>"));
    EXPECT_TRUE(Loading(map, "W\t5\n").good);
}

TEST(FeatureBag, VerifyingFailsForAFeatureThatIsNotAvailable)
{
    const SmallMap map(yesAndNo + Kept("Away", "1", "<pIsAvailable>No</pIsAvailable>"));
    EXPECT_EQ(
        Loading(map, "Away\t5\n").errors, "Error while verifying the value of node 'Away': Node is not readable.\n");
}

TEST(FeatureBag, SelectorsAreSetInTheirOrderBeforeTheValue)
{
    SmallMap map(
        KeptFor("V", "0", "Inner Outer") + IntegerSelector("Outer", "0", "<Max>15</Max>", "Inner") +
        IntegerSelector("Inner", "0", "<Max>15</Max>", "V"));
    EXPECT_TRUE(Loading(map, "V\t{Outer=2\tInner=3}\t9\nV\t{Outer=1\tInner=0}\t8\n").good);
    EXPECT_EQ(map.port.bytes[35], 9);
    EXPECT_EQ(map.port.bytes[16], 8);
}

TEST(FeatureBag, SelectorThatDoesNotExistIsPassedOver)
{
    SmallMap map(KeptFor("V", "0", "S") + IntegerSelector("S", "0", "<Max>15</Max>", "V"));
    EXPECT_TRUE(Loading(map, "V\t{Gone=1\tS=3}\t9\n").good);
    EXPECT_EQ(map.port.bytes[3], 9);
}

TEST(FeatureBag, EntryOfASelectorThatIsNotAvailableIsNoErrorInWriting)
{
    SmallMap map(
        yesAndNo + KeptFor("V", "0", "S") + EnumerationSelector("S", "0", "V", "<pIsAvailable>No</pIsAvailable>"));
    EXPECT_TRUE(Loading(map, "V\t{S=B}\t9\n", false).good);
    EXPECT_EQ(map.port.bytes[1], 9);
    const Loading verified(map, "V\t{S=B}\t9\n");
    EXPECT_EQ(
        verified.errors, "Error while verifying the value of node 'V': The current entry 'B' is not available.\n");
}

TEST(FeatureBag, RecordWhoseSelectorFailsIsDropped)
{
    SmallMap map(KeptFor("V", "0", "S") + EnumerationSelector("S", "0", "V"));
    const Loading loading(map, "V\t{S=Nothing}\t9\nV\t{S=C}\t8\n");
    EXPECT_FALSE(loading.good);
    EXPECT_EQ(loading.errors, "Error while writing selector 'S': There is no entry 'Nothing'.\n");
    EXPECT_EQ(map.port.bytes[0], 0);
    EXPECT_EQ(map.port.bytes[2], 8);
}

TEST(FeatureBag, FeatureThatVanishesMidwayIsAnError)
{
    const SmallMap map(
        Kept("Switch", "1") + Kept("V", "1", "<pIsImplemented>Switch</pIsImplemented>") + Kept("W", "1"));
    const Loading loading(map, "V\t2\nSwitch\t0\nV\t3\nW\t4\n");
    EXPECT_EQ(loading.errors, "Error while writing node 'V': Node is not writable.\n");
    EXPECT_EQ(map.Integer("W")->GetValue(), 4);
}

TEST(FeatureBag, ForeignExceptionsPassAndReleaseTheLock)
{
    SmallMap map(KeptFor("A", "0", "") + Kept("B", "1"));
    map.port.onWrite = [] { throw std::runtime_error("cable"); };
    CFeatureBag bag;
    Fill(bag, "A\t1\nB\t7\n");
    gcstring_vector errors;
    EXPECT_THROW(bag.LoadFromBag(map.map, true, &errors), std::runtime_error);
    EXPECT_TRUE(errors.empty());
    EXPECT_EQ(map.Integer("B")->GetValue(), 1);
    EXPECT_TRUE(map.map->GetLock().TryLock());
    map.map->GetLock().Unlock();
}

TEST(FeatureBag, LoadingTellsTheCallbacks)
{
    const SmallMap map(Kept("A", "1"));
    int changes = 0;
    Register(map.Node("A"), std::function<void(INode*)>([&](INode*) { ++changes; }));
    EXPECT_TRUE(Loading(map, "A\t5\n").good);
    EXPECT_EQ(changes, 1);
}

TEST(FeatureBag, LongTextsAreCutInErrors)
{
    const SmallMap map(Kept("A", "1"));
    const std::string errors = Loading(map, std::string(5000, 'n') + "\t1\n").errors;
    EXPECT_EQ(errors, "Error while writing node: '" + std::string(200, 'n') + "...' not found\n");
}

TEST(FeatureBag, CopiesAreIndependentAndEqual)
{
    CFeatureBag bag;
    Fill(bag, "A\t{S=1\tT=2}\t5\nB\t6\n");
    const CFeatureBag copy(bag);
    CFeatureBag assigned;
    assigned = copy;
    Fill(bag, "C\t1\n");
    EXPECT_EQ(Records(copy), "A\t{S=1\tT=2}\t5\nB\t6\n");
    EXPECT_TRUE(assigned == copy);
    EXPECT_FALSE(assigned == bag);
    for (const char* const other :
         {"A\t{S=1\tT=3}\t5\nB\t6\n", "A\t{S=1}\t5\nB\t6\n", "A\t{S=1\tT=2}\t5\n", "A\t{S=1\tT=2}\t5\nB\t7\n",
          "A\t{S=1\tT=2}\t5\nC\t6\n"})
    {
        Fill(bag, other);
        EXPECT_FALSE(bag == copy) << other;
    }
}

TEST(FeatureBag, KeepsItsNameAndEndsByDestroy)
{
    CFeatureBag* const bag = new CFeatureBag;
    bag->SetBagName("UserSet.1");
    EXPECT_STREQ(bag->GetBagName().c_str(), "UserSet.1");
    bag->Destroy();
}

} // namespace

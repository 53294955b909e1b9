#include "tests/unit/genicam/persistence_bag.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::EnumerationSelector;
using koro::test::Features;
using koro::test::IntegerSelector;
using koro::test::Kept;
using koro::test::KeptFor;
using koro::test::Records;
using koro::test::SmallMap;
using koro::test::yesAndNo;

std::string Stored(const SmallMap& map)
{
    CFeatureBag bag;
    bag.StoreToBag(map.map);
    return Records(bag);
}

TEST(FeatureBag, KeepsStreamableFeaturesThatCanBeReadAndWritten)
{
    const SmallMap map(
        yesAndNo + Features("B A ReadOnly WriteOnly Away Missing Locked Plain Off") + Kept("A", "1") + Kept("B", "2") +
        Kept("ReadOnly", "3", "<ImposedAccessMode>RO</ImposedAccessMode>") +
        Kept("WriteOnly", "3", "<ImposedAccessMode>WO</ImposedAccessMode>") +
        Kept("Away", "3", "<pIsAvailable>No</pIsAvailable>") +
        Kept("Missing", "3", "<pIsImplemented>No</pIsImplemented>") +
        Kept("Locked", "3", "<pIsLocked>Yes</pIsLocked>") + Kept("NoFeature", "3") +
        "<Integer Name=\"Plain\"><Value>3</Value></Integer>"
        "<Integer Name=\"Off\"><Streamable>No</Streamable><Value>3</Value></Integer>");
    EXPECT_EQ(Stored(map), "B\t2\nA\t1\n") << "in the order of the map";
}

TEST(FeatureBag, KeepsEachCombinationOfTheSelectorsTheOutermostTurningSlowest)
{
    SmallMap map(
        Features("V") + KeptFor("V", "0", "Inner Outer") + EnumerationSelector("Outer", "1", "Inner") +
        IntegerSelector("Inner", "2", "<Min>0</Min><Max>4</Max><Inc>2</Inc>", "V"));
    for (uint8_t place = 0; place < 48; ++place)
        map.port.bytes[place] = place;
    EXPECT_EQ(
        Stored(map), "V\t{Outer=A\tInner=0}\t0\nV\t{Outer=A\tInner=2}\t2\nV\t{Outer=A\tInner=4}\t4\n"
                     "V\t{Outer=B\tInner=0}\t16\nV\t{Outer=B\tInner=2}\t18\nV\t{Outer=B\tInner=4}\t20\n"
                     "V\t{Outer=C\tInner=0}\t32\nV\t{Outer=C\tInner=2}\t34\nV\t{Outer=C\tInner=4}\t36\n"
                     "Outer\tB\nInner\t2\n");
    EXPECT_STREQ(map.Value("Outer")->ToString().c_str(), "B");
    EXPECT_EQ(map.Integer("Inner")->GetValue(), 2);
}

TEST(FeatureBag, OfSelectorsThatKnowNothingOfEachOtherTheLaterIsTheOuterOne)
{
    const std::string limits = "<Min>0</Min><Max>1</Max>";
    const SmallMap map(
        Features("V") + Kept("V", "5") + IntegerSelector("First", "0", limits, "V") +
        IntegerSelector("Second", "0", limits, "V"));
    EXPECT_EQ(
        Stored(map), "V\t{Second=0\tFirst=0}\t5\nV\t{Second=0\tFirst=1}\t5\nV\t{Second=1\tFirst=0}\t5\n"
                     "V\t{Second=1\tFirst=1}\t5\nSecond\t0\nFirst\t0\n");
}

TEST(FeatureBag, SelectorThatSelectsAnotherStandsOutsideOfIt)
{
    const std::string limits = "<Min>0</Min><Max>1</Max>";
    const SmallMap map(
        Features("V") + Kept("V", "5") + IntegerSelector("Outer", "0", limits, "Inner V") +
        IntegerSelector("Inner", "0", limits, "V"));
    EXPECT_EQ(
        Stored(map), "V\t{Outer=0\tInner=0}\t5\nV\t{Outer=0\tInner=1}\t5\nV\t{Outer=1\tInner=0}\t5\n"
                     "V\t{Outer=1\tInner=1}\t5\nOuter\t0\nInner\t0\n");
}

TEST(FeatureBag, BooleanSelectorLeavesNoRecordOfItsOwn)
{
    const SmallMap map(
        Features("V") + Kept("V", "5") + "<Boolean Name=\"S\"><Value>true</Value><pSelected>V</pSelected></Boolean>");
    EXPECT_EQ(Stored(map), "V\t{S=0}\t5\nV\t{S=1}\t5\n");
    EXPECT_TRUE(CBooleanPtr(map.Node("S"))->GetValue());
}

TEST(FeatureBag, StreamableSelectorIsKeptBehindItsFeaturesOnly)
{
    const SmallMap map(
        Features("S V") + Kept("V", "5") +
        "<Boolean Name=\"S\"><Streamable>Yes</Streamable><Value>true</Value><pSelected>V</pSelected></Boolean>");
    EXPECT_EQ(Stored(map), "V\t{S=0}\t5\nV\t{S=1}\t5\n");
}

TEST(FeatureBag, EntryThatIsNotAvailableIsLeftOut)
{
    const SmallMap map(
        yesAndNo + Features("V") + KeptFor("V", "0", "S") +
        EnumerationSelector("S", "2", "V", "<pIsAvailable>No</pIsAvailable>"));
    EXPECT_EQ(Stored(map), "V\t{S=A}\t0\nV\t{S=C}\t0\nS\tC\n");
}

TEST(FeatureBag, CombinationWithoutTheFeatureIsLeftOut)
{
    const SmallMap map(
        Features("V") + KeptFor("V", "0", "S", "<pIsAvailable>Odd</pIsAvailable>") +
        IntegerSelector("S", "0", "<Min>0</Min><Max>3</Max>", "V") +
        "<IntSwissKnife Name=\"Odd\"><pVariable Name=\"X\">S</pVariable><Formula>X%2</Formula></IntSwissKnife>");
    EXPECT_EQ(Stored(map), "V\t{S=1}\t0\nV\t{S=3}\t0\nS\t0\n");
}

TEST(FeatureBag, SelectorThatCannotBeWrittenTakesNoPart)
{
    const SmallMap map(
        Features("V") + KeptFor("V", "0", "") +
        "<Integer Name=\"S\"><ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value><Max>3</Max>"
        "<pSelected>V</pSelected></Integer>");
    EXPECT_EQ(Stored(map), "V\t0\n");
}

TEST(FeatureBag, StreamableNodeThatIsNoFeatureLeavesItsSelectorsAlone)
{
    const SmallMap map(
        Features("Other") + Kept("Other", "1") + Kept("V", "5") +
        IntegerSelector("S", "2", "<Min>0</Min><Max>3</Max>", "V"));
    int changes = 0;
    Register(map.Node("S"), std::function<void(INode*)>([&](INode*) { ++changes; }));
    EXPECT_EQ(Stored(map), "Other\t1\nS\t2\n");
    EXPECT_EQ(changes, 0);
}

TEST(FeatureBag, InnerSelectorStandsWhereItWasWhenTheOuterOneMoves)
{
    // The place of the inner selector depends on the outer one: it goes back to its first value before the outer moves.
    SmallMap map(
        Features("V") + KeptFor("V", "32", "Inner Outer") +
        IntegerSelector("Outer", "0", "<Min>0</Min><Max>1</Max>", "Inner") +
        "<Integer Name=\"Inner\"><pValue>Place</pValue><Min>0</Min><Max>2</Max><pSelected>V</pSelected></Integer>"
        "<IntReg Name=\"Place\"><Address>0</Address><pIndex Offset=\"1\">Outer</pIndex><Length>1</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess>"
        "</IntReg>");
    map.port.bytes[1] = 2;
    EXPECT_EQ(
        Stored(map), "V\t{Outer=0\tInner=0}\t0\nV\t{Outer=0\tInner=1}\t0\nV\t{Outer=0\tInner=2}\t0\n"
                     "V\t{Outer=1\tInner=2}\t0\nV\t{Outer=1\tInner=1}\t0\nV\t{Outer=1\tInner=2}\t0\n"
                     "Outer\t0\nInner\t0\n");
}

TEST(FeatureBag, InfoTellsTheDevice)
{
    const SmallMap map(Features("A") + Kept("A", "1"));
    CFeatureBag bag;
    bag.StoreToBag(map.map);
    EXPECT_STREQ(
        bag.ToString().c_str(), "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n"
                                "# GenApi persistence file (version 3.4.0)\n"
                                "# Device = V::M --  -- Device version = 1.2.3 -- Product GUID = p -- Product version "
                                "GUID = v\nA\t1\n");
}

TEST(FeatureBag, StoringTwiceAppends)
{
    const SmallMap map(Features("A") + Kept("A", "1"));
    CFeatureBag bag;
    EXPECT_EQ(bag.StoreToBag(map.map), 1);
    EXPECT_EQ(bag.StoreToBag(map.map), 1);
    EXPECT_EQ(Records(bag), "A\t1\nA\t1\n");
}

TEST(FeatureBag, LimitEndsTheStoringAndSelectorsGoBack)
{
    const SmallMap map(
        Features("A V B") + Kept("A", "1") + Kept("B", "1") + KeptFor("V", "0", "S") +
        IntegerSelector("S", "2", "<Min>0</Min><Max>3</Max>", "V"));
    const auto stored = [&](int limit) {
        CFeatureBag bag;
        const int64_t count = bag.StoreToBag(map.map, limit);
        EXPECT_EQ(map.Integer("S")->GetValue(), 2);
        return std::to_string(count) + ": " + Records(bag);
    };
    EXPECT_EQ(stored(0), "1: A\t1\n");
    EXPECT_EQ(stored(1), "1: A\t1\n");
    EXPECT_EQ(stored(3), "3: A\t1\nV\t{S=0}\t0\nV\t{S=1}\t0\n");
    EXPECT_EQ(stored(5), "5: A\t1\nV\t{S=0}\t0\nV\t{S=1}\t0\nV\t{S=2}\t0\nV\t{S=3}\t0\n");
    EXPECT_EQ(stored(-5).substr(0, 1), "7");
}

TEST(FeatureBag, FilterNamesTheOnlyNodes)
{
    const SmallMap map(Features("A B C") + Kept("A", "1") + Kept("B", "2") + Kept("C", "3"));
    gcstring_vector filter;
    filter.push_back("C");
    filter.push_back("A");
    filter.push_back("Unknown");
    CFeatureBag bag;
    EXPECT_EQ(bag.StoreToBag(map.map, -1, &filter), 2);
    EXPECT_EQ(Records(bag), "A\t1\nC\t3\n");
}

TEST(FeatureBag, FirstReadingThatFailsIsThrownAndSelectorsGoBack)
{
    SmallMap map(
        Features("A V") + Kept("A", "1") + KeptFor("V", "0", "S", "<Cachable>NoCache</Cachable>") +
        IntegerSelector("S", "2", "<Min>0</Min><Max>3</Max>", "V"));
    map.port.onRead = [reads = 0]() mutable {
        if (++reads == 2) throw std::runtime_error("cable");
    };
    CFeatureBag bag;
    EXPECT_THROW(bag.StoreToBag(map.map), std::runtime_error);
    EXPECT_EQ(Records(bag), "A\t1\nV\t{S=0}\t0\n");
    EXPECT_EQ(map.Integer("S")->GetValue(), 2);
    EXPECT_TRUE(map.map->GetLock().TryLock());
    map.map->GetLock().Unlock();
}

TEST(FeatureBag, FormerValueThatIsRefusedIsThrownWhenTheOthersAreBack)
{
    const SmallMap map(
        Features("V") + KeptFor("V", "0", "Inner") +
        IntegerSelector("Outer", "9", "<Min>0</Min><Max>1</Max>", "Inner") +
        IntegerSelector("Inner", "3", "<Min>0</Min><Max>3</Max>", "V"));
    CFeatureBag bag;
    EXPECT_THROW(bag.StoreToBag(map.map), OutOfRangeException);
    EXPECT_EQ(map.Integer("Inner")->GetValue(), 3);
}

TEST(FeatureBag, SelectorWithoutAFittingEntryMovesNothing)
{
    const SmallMap map(Features("V") + KeptFor("V", "0", "") + EnumerationSelector("S", "77", "V"));
    CFeatureBag bag;
    EXPECT_THROW(bag.StoreToBag(map.map), InvalidArgumentException);
    EXPECT_EQ(map.Enumeration("S")->GetIntValue(), 77);
}

TEST(FeatureBag, TooManyCombinationsAreRefusedBeforeAnythingMoves)
{
    const SmallMap map(
        Features("V") + KeptFor("V", "0", "") + IntegerSelector("S", "5", "<Min>-9223372036854775808</Min>", "V") +
        IntegerSelector("T", "5", "<Min>0</Min><Max>1</Max>", "S V"));
    int changes = 0;
    Register(map.Node("S"), std::function<void(INode*)>([&](INode*) { ++changes; }));
    CFeatureBag bag;
    try
    {
        bag.StoreToBag(map.map);
        FAIL() << "nothing thrown";
    }
    catch (const RuntimeException& exception)
    {
        EXPECT_STREQ(
            exception.GetDescription(),
            "The selectors of feature 'V' have too many combinations: at most 1048576 are walked at a time");
    }
    EXPECT_EQ(changes, 0);
}

TEST(FeatureBag, LimitLetsTheFirstOfManyCombinationsThrough)
{
    const SmallMap map(Features("V") + KeptFor("V", "0", "") + IntegerSelector("S", "5", "<Min>0</Min>", "V"));
    CFeatureBag bag;
    EXPECT_EQ(bag.StoreToBag(map.map, 2), 2);
    EXPECT_EQ(Records(bag), "V\t{S=0}\t0\nV\t{S=1}\t0\n");
    EXPECT_EQ(map.Integer("S")->GetValue(), 5);
}

TEST(FeatureBag, WalkThatGrowsOnTheWayEndsAtTheBound)
{
    // Two values of the inner selector at first; at the second value of the outer one it has very many.
    const SmallMap map(
        yesAndNo + Features("V") + Kept("V", "0", "<pIsAvailable>No</pIsAvailable>") +
        IntegerSelector("Outer", "0", "<Min>0</Min><Max>1</Max>", "Inner") +
        "<Integer Name=\"Inner\"><Value>0</Value><Min>0</Min><pMax>Many</pMax><pSelected>V</pSelected></Integer>"
        "<IntSwissKnife Name=\"Many\"><pVariable Name=\"O\">Outer</pVariable><Formula>O=0?1:0x7fffffffffff</Formula>"
        "</IntSwissKnife>");
    CFeatureBag bag;
    EXPECT_THROW(bag.StoreToBag(map.map), RuntimeException);
    EXPECT_EQ(map.Integer("Outer")->GetValue(), 0);
    EXPECT_EQ(map.Integer("Inner")->GetValue(), 0);
}

TEST(FeatureBag, IncrementOfZeroDoesNotWalkForEver)
{
    const SmallMap map(
        Features("V") + Kept("V", "0") + IntegerSelector("S", "0", "<Min>0</Min><Max>3</Max><Inc>0</Inc>", "V"));
    CFeatureBag bag;
    EXPECT_THROW(bag.StoreToBag(map.map), LogicalErrorException);
}

TEST(FeatureBag, IncrementThatVanishesOnTheWayEndsTheWalk)
{
    const SmallMap map(
        Features("V") + KeptFor("V", "0", "S") + "<Integer Name=\"Step\"><Value>1</Value></Integer>" +
        IntegerSelector("S", "0", "<Min>0</Min><Max>3</Max><pInc>Step</pInc>", "V"));
    Register(map.Node("S"), std::function<void(INode*)>([&](INode*) {
                 const CIntegerPtr step = map.Integer("Step");
                 if (step->GetValue() != 0) step->SetValue(0);
             }));
    CFeatureBag bag;
    EXPECT_THROW(bag.StoreToBag(map.map), LogicalErrorException);
}

TEST(FeatureBag, DeviceThatOffersNeitherPersistenceCommandIsNotReady)
{
    const SmallMap map(
        Features("A") + Kept("A", "1") + koro::test::IntReg("Ready", "0") + koro::test::IntReg("Begun", "4") +
        "<Command Name=\"DeviceFeaturePersistenceStart\"><pIsAvailable>Ready</pIsAvailable><pValue>R</pValue>"
        "<CommandValue>1</CommandValue></Command>"
        "<Command Name=\"DeviceFeaturePersistenceEnd\"><pIsAvailable>Begun</pIsAvailable><pValue>R</pValue>"
        "<CommandValue>1</CommandValue></Command>" +
        koro::test::IntReg("R", "8"));
    CFeatureBag bag;
    EXPECT_THROW(bag.StoreToBag(map.map), AccessException);
    map.Integer("Ready")->SetValue(1);
    EXPECT_EQ(bag.StoreToBag(map.map), 1);
    map.Integer("Ready")->SetValue(0);
    map.Integer("Begun")->SetValue(1);
    EXPECT_EQ(bag.StoreToBag(map.map), 1);
    EXPECT_EQ(map.Integer("R")->GetValue(), 0) << "the commands are the application's to call";
}

TEST(FeatureBag, MissingMapIsAnArgumentError)
{
    CFeatureBag bag;
    EXPECT_THROW(bag.StoreToBag(nullptr), InvalidArgumentException);
    EXPECT_THROW(bag.LoadFromBag(nullptr), InvalidArgumentException);
}

} // namespace

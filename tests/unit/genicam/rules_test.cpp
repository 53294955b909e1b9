// Rules that descriptions rarely touch: conditions that decide nothing or fail, what is imposed, unverified writes,
// readings past the caches. Where recorded answers show an accident, the test states what this runtime does.
#include "tests/unit/genicam/listener.h"
#include "tests/unit/genicam/small_map.h"

#include <GenApi/ICommand.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::Listener;
using koro::test::ListenToAll;
using koro::test::SmallMap;

const std::string yesAndNo = "<Integer Name=\"No\"><Value>0</Value></Integer>"
                             "<Integer Name=\"Yes\"><Value>1</Value></Integer>";
const std::string noCache = "<Cachable>NoCache</Cachable>";

std::string Integer(const std::string& name, const std::string& children)
{
    return "<Integer Name=\"" + name + "\">" + children + "</Integer>";
}

std::string ReadOnlyReg(const std::string& name, const std::string& address, const std::string& before)
{
    return "<IntReg Name=\"" + name + "\">" + before + "<Address>" + address +
           "</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

// What a device does that does not answer.
void RefuseReading(SmallMap& map)
{
    map.port.onRead = [] { throw TIMEOUT_EXCEPTION("no answer"); };
}

int64_t Computed(const std::string& formula)
{
    const SmallMap map(
        Integer("Three", "<Value>3</Value>") +
        "<IntSwissKnife Name=\"K\"><pVariable Name=\"A\">Three</pVariable><Formula>" + formula +
        "</Formula></IntSwissKnife>");
    return map.Integer("K")->GetValue();
}

TEST(Conditions, LockOfAFeatureThatIsNotImplementedIsNeverRead)
{
    const SmallMap map(
        yesAndNo + IntReg("Lock", "0") +
        Integer("Missing", "<pIsImplemented>No</pIsImplemented><pIsLocked>Lock</pIsLocked><Value>1</Value>") +
        Integer("Away", "<pIsAvailable>No</pIsAvailable><pIsLocked>Lock</pIsLocked><Value>1</Value>") +
        Integer("Locked", "<pIsLocked>Yes</pIsLocked><Value>1</Value>") +
        Integer("OnLocked", "<pIsLocked>Lock</pIsLocked><pValue>Locked</pValue>"));
    EXPECT_EQ(map.Node("Missing")->GetAccessMode(), NI);
    EXPECT_EQ(map.Node("Away")->GetAccessMode(), NA);
    EXPECT_EQ(map.Node("OnLocked")->GetAccessMode(), RO);
    EXPECT_EQ(map.port.reads, 0);
}

TEST(Conditions, AvailabilityOfAFeatureThatIsNotImplementedIsNeverRead)
{
    const SmallMap map(
        yesAndNo + IntReg("Power", "0") +
        Integer("Missing", "<pIsImplemented>No</pIsImplemented><pIsAvailable>Power</pIsAvailable><Value>1</Value>"));
    EXPECT_EQ(map.Node("Missing")->GetAccessMode(), NI);
    EXPECT_EQ(map.port.reads, 0);
}

TEST(Conditions, RefusedReadingOfOneLeavesAReadOnlyRegisterReadOnly)
{
    SmallMap map(
        IntReg("P", "0") + ReadOnlyReg("R", "8", "<pIsAvailable>P</pIsAvailable>") +
        Integer("Above", "<pValue>R</pValue>") +
        Integer("Imposed", "<pIsLocked>P</pIsLocked><ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value>"));
    RefuseReading(map);
    EXPECT_THROW(map.Node("R")->GetAccessMode(), TimeoutException);
    EXPECT_THROW(map.Node("Imposed")->GetAccessMode(), TimeoutException);
    map.port.onRead = nullptr;
    EXPECT_THROW(map.Integer("R")->SetValue(1), AccessException);
    EXPECT_THROW(map.Integer("R")->SetValue(1, false), AccessException);
    EXPECT_THROW(map.Value("R")->FromString("1", false), AccessException);
    EXPECT_THROW(map.Integer("Above")->SetValue(1), AccessException);
    EXPECT_THROW(map.Integer("Imposed")->SetValue(1), AccessException);
    EXPECT_EQ(map.port.writes, 0);
    EXPECT_EQ(map.Integer("R")->GetValue(), 0) << "it can be read";
}

TEST(Conditions, RefusedReadingOfOneLeavesWhatTheNodeBehindAllows)
{
    SmallMap map(
        yesAndNo + IntReg("P", "0") + IntReg("R", "8") +
        Integer("Locked", "<pIsLocked>Yes</pIsLocked><pValue>R</pValue>") +
        Integer("A", "<pIsAvailable>P</pIsAvailable><pValue>Locked</pValue>"));
    RefuseReading(map);
    EXPECT_THROW(map.Node("A")->GetAccessMode(), TimeoutException);
    map.port.onRead = nullptr;
    EXPECT_THROW(map.Integer("A")->SetValue(1), AccessException);
    EXPECT_EQ(map.port.writes, 0);
}

TEST(Conditions, RefusedReadingOfOneLeavesARegisterOfAReadOnlyPortReadOnly)
{
    SmallMap map(
        IntReg("P", "0") +
        IntReg("R", "8").insert(IntReg("R", "8").find("<Address>"), "<pIsAvailable>P</pIsAvailable>"));
    map.port.mode = RO;
    RefuseReading(map);
    EXPECT_THROW(map.Node("R")->GetAccessMode(), TimeoutException);
    map.port.onRead = nullptr;
    EXPECT_THROW(map.Integer("R")->SetValue(1), AccessException);
    EXPECT_EQ(map.port.writes, 0);
}

// A device that does not answer would cost a time-out at each question.
TEST(Conditions, DeviceThatRefusedIsAskedAgainAfterAnInvalidation)
{
    SmallMap map(IntReg("P", "0", noCache) + Integer("A", "<pIsAvailable>P</pIsAvailable><Value>1</Value>"));
    RefuseReading(map);
    EXPECT_THROW(map.Node("A")->GetAccessMode(), TimeoutException);
    const int reads = map.port.reads;
    EXPECT_EQ(map.Node("A")->GetAccessMode(), RW);
    EXPECT_EQ(map.port.reads, reads);
    map.port.onRead = nullptr;
    map.Node("P")->InvalidateNode();
    EXPECT_EQ(map.Node("A")->GetAccessMode(), NA);
}

TEST(Conditions, UncachedOneWithoutAResultIsEvaluatedAgain)
{
    SmallMap map(
        IntReg("P", "0", noCache) +
        "<IntSwissKnife Name=\"K\"><pVariable Name=\"P\">P</pVariable><Formula>1/P</Formula></IntSwissKnife>" +
        Integer("A", "<pIsAvailable>K</pIsAvailable><Value>1</Value>"));
    EXPECT_THROW(map.Node("A")->GetAccessMode(), LogicalErrorException);
    EXPECT_THROW(map.Node("A")->GetAccessMode(), LogicalErrorException);
    map.port.bytes[0] = 1;
    EXPECT_EQ(map.Node("A")->GetAccessMode(), RW);
}

TEST(Conditions, CategoryOfAFeatureWithAFailedOneStaysReadOnly)
{
    const SmallMap map(
        "<Category Name=\"Root\"><pFeature>A</pFeature></Category>"
        "<IntSwissKnife Name=\"Bad\"><Formula>1/0</Formula></IntSwissKnife>" +
        Integer("A", "<pIsAvailable>Bad</pIsAvailable><Value>1</Value>"));
    EXPECT_THROW(map.Node("Root")->GetAccessMode(), LogicalErrorException);
    EXPECT_EQ(map.Node("Root")->GetAccessMode(), RO);
}

TEST(Conditions, OfIndexedValuesCount)
{
    const SmallMap map(
        yesAndNo + Integer(
                       "A",
                       "<pIsAvailable>No</pIsAvailable><pIndex>No</pIndex><ValueIndexed Index=\"2\">1</ValueIndexed>"
                       "<ValueDefault>2</ValueDefault>"));
    EXPECT_EQ(map.Node("A")->GetAccessMode(), NA);
}

TEST(Signs, MayStandBehindAQuestionMark)
{
    EXPECT_EQ(Computed("1?-1:3"), -1);
    EXPECT_EQ(Computed("(A&gt;1)?-1:1"), -1);
    EXPECT_EQ(Computed("A?-A:1"), -3);
    EXPECT_EQ(Computed("1?+A:1"), 3);
    EXPECT_EQ(Computed("0?1:-A"), -3);
}

TEST(Signs, ReachOverWhatStandsDirectlyBehindThem)
{
    EXPECT_EQ(Computed("-(A)+5"), 2);
    EXPECT_EQ(Computed("-SGN(A)+5"), 4);
    EXPECT_EQ(Computed("1?-(A):3"), -3);
    EXPECT_EQ(Computed("1?(-(A)+2):3"), -1);
}

TEST(Blockers, ThatCannotBeReadBlockNothing)
{
    SmallMap map(
        IntReg("Dead", "0", noCache) +
        Integer("WriteOnly", "<ImposedAccessMode>WO</ImposedAccessMode><Value>1</Value>") +
        IntReg("A", "8", "<PollingTime>10</PollingTime>") +
        "<IntReg Name=\"B\"><pBlockPolling>Dead</pBlockPolling><Address>12</Address><Length>4</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort><PollingTime>10</PollingTime><Endianess>LittleEndian</"
        "Endianess></IntReg>"
        "<IntReg Name=\"C\"><pBlockPolling>WriteOnly</pBlockPolling><Address>16</Address><Length>4</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort><PollingTime>10</PollingTime><Endianess>LittleEndian</"
        "Endianess></IntReg>"
        "<IntReg Name=\"D\"><pBlockPolling>Dead</pBlockPolling><Address>20</Address><Length>4</Length>"
        "<AccessMode>RW</AccessMode><pPort>Device</pPort><PollingTime>10</PollingTime><Endianess>LittleEndian</"
        "Endianess></IntReg>");
    Listener listener;
    ListenToAll(map, listener);
    map.port.onRead = [] { throw 7; };
    map.map->Poll(10);
    EXPECT_EQ(listener.Take(), "A B C D");
    EXPECT_EQ(map.port.reads, 1) << "a device that refused is not asked twice in one poll";
    map.port.onRead = nullptr;
    map.port.bytes[0] = 1;
    map.map->Poll(10);
    EXPECT_EQ(listener.Take(), "A C");
}

TEST(Blockers, ThatAreNotThereMakeTheirNodeSo)
{
    const SmallMap map(
        yesAndNo + Integer("Away", "<pIsAvailable>No</pIsAvailable><Value>1</Value>") +
        Integer("Missing", "<pIsImplemented>No</pIsImplemented><Value>1</Value>") +
        Integer("A", "<pBlockPolling>Away</pBlockPolling><Value>1</Value>") +
        Integer("B", "<pBlockPolling>Missing</pBlockPolling><Value>1</Value>"));
    EXPECT_EQ(map.Node("A")->GetAccessMode(), NA);
    EXPECT_EQ(map.Node("B")->GetAccessMode(), NI);
}

TEST(Steps, FloatOnAnIntegerIsRoundedToAStepAndNotIntoTheLimits)
{
    const SmallMap map(
        Integer("N", "<Value>20</Value><Min>0</Min><Max>100</Max><Inc>5</Inc>") +
        "<Float Name=\"F\"><pValue>N</pValue><Min>-1e300</Min><Max>1e300</Max></Float>");
    map.Float("F")->SetValue(101);
    EXPECT_EQ(map.Integer("N")->GetValue(), 100);
    for (const double refused : {184.0, -20.0, 102.6, 9.2e18, -9.2e18})
        EXPECT_THROW(map.Float("F")->SetValue(refused), OutOfRangeException) << refused;
    EXPECT_EQ(map.Integer("N")->GetValue(), 100);
    map.Float("F")->SetValue(-4);
    EXPECT_EQ(map.Integer("N")->GetValue(), 0) << "less than a step below the minimum";
}

TEST(Steps, IntegerOnAFloatHasItsIncrementWhereThatIsWhole)
{
    const SmallMap map(
        "<Float Name=\"F\"><Value>10</Value><Min>0</Min><Max>100</Max><Inc>5</Inc></Float>"
        "<Float Name=\"G\"><Value>10</Value><Min>0</Min><Max>100</Max><Inc>2.5</Inc></Float>" +
        Integer("OnF", "<pValue>F</pValue>") + Integer("OnG", "<pValue>G</pValue>"));
    EXPECT_EQ(map.Integer("OnF")->GetInc(), 5);
    EXPECT_THROW(map.Integer("OnF")->SetValue(7), OutOfRangeException);
    map.Integer("OnF")->SetValue(15);
    EXPECT_EQ(map.Integer("OnG")->GetInc(), 1);
    map.Integer("OnG")->SetValue(7);
}

TEST(Imposed, LimitsOfARegisterCountForTheNodesAboveIt)
{
    const SmallMap map(
        IntReg("R", "0") + Integer("V", "<pValue>R</pValue>") +
        "<FloatReg Name=\"FR\"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
        "<Endianess>LittleEndian</Endianess></FloatReg><Float Name=\"F\"><pValue>FR</pValue></Float>");
    map.Integer("R")->ImposeMin(20);
    map.Integer("R")->ImposeMax(100);
    EXPECT_EQ(map.Integer("V")->GetMin(), 20);
    EXPECT_EQ(map.Integer("V")->GetMax(), 100);
    EXPECT_THROW(map.Integer("V")->SetValue(19), OutOfRangeException);
    map.Integer("R")->SetValue(0);
    EXPECT_EQ(map.Integer("R")->GetValue(), 0) << "the node itself is not checked";
    map.Float("FR")->ImposeMin(2);
    EXPECT_EQ(map.Float("F")->GetMin(), 2);
    EXPECT_THROW(map.Float("F")->SetValue(1), OutOfRangeException);
    map.Float("FR")->SetValue(1);
    EXPECT_STREQ(map.Value("FR")->ToString().c_str(), "1");
}

TEST(Imposed, AccessModeReplacesTheOneOfTheDescription)
{
    const SmallMap map(Integer("A", "<ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value>"));
    map.Node("A")->ImposeAccessMode(RW);
    EXPECT_EQ(map.Node("A")->GetAccessMode(), RW);
    map.Integer("A")->SetValue(2);
    map.Node("A")->ImposeAccessMode(WO);
    EXPECT_EQ(map.Node("A")->GetAccessMode(), WO);
}

TEST(Imposed, VisibilityIsAnnouncedToAllThatDependsOnTheNode)
{
    const SmallMap map(
        "<Category Name=\"Root\"><pFeature>I</pFeature></Category>" + Integer("I", "<Value>1</Value>") +
        Integer("J", "<pValue>I</pValue>"));
    Listener listener;
    ListenToAll(map, listener);
    map.Node("I")->ImposeVisibility(Guru);
    EXPECT_EQ(listener.Take(), "I J Root");
}

TEST(UnverifiedWrites, PassLocksAndAvailability)
{
    const std::string away = "<pIsAvailable>No</pIsAvailable>";
    const std::string locked = "<pIsLocked>Yes</pIsLocked>";
    const SmallMap map(
        yesAndNo + IntReg("R", "0") + ReadOnlyReg("Fixed", "8", "") + Integer("A", away + "<pValue>R</pValue>") +
        Integer("L", locked + "<pValue>R</pValue>") +
        Integer("Missing", "<pIsImplemented>No</pIsImplemented><pValue>R</pValue>") + "<Boolean Name=\"B\">" + locked +
        "<pValue>R</pValue></Boolean><Enumeration Name=\"E\">" + locked +
        "<EnumEntry Name=\"X\"><Value>1</Value></EnumEntry><pValue>R</pValue></Enumeration><Command Name=\"C\">" +
        locked + "<pValue>R</pValue><CommandValue>1</CommandValue></Command>");
    map.Integer("A")->SetValue(3, false);
    map.Integer("L")->SetValue(3, false);
    CBooleanPtr(map.Node("B"))->SetValue(true, false);
    map.Enumeration("E")->SetIntValue(1, false);
    EXPECT_EQ(map.port.writes, 4);
    EXPECT_THROW(map.Integer("A")->SetValue(3), AccessException);
    EXPECT_THROW(map.Integer("Missing")->SetValue(3, false), AccessException);
    EXPECT_THROW(map.Integer("Fixed")->SetValue(3, false), AccessException);
    EXPECT_THROW(CCommandPtr(map.Node("C"))->Execute(false), AccessException);
    EXPECT_EQ(map.port.writes, 4);
}

TEST(VerifiedReadings, NumberWithoutEntryIsOutOfRange)
{
    SmallMap map(
        IntReg("R", "0") +
        "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>1</Value></EnumEntry><pValue>R</pValue></Enumeration>");
    EXPECT_EQ(map.Enumeration("E")->GetIntValue(), 0);
    EXPECT_EQ(map.Enumeration("E")->GetCurrentEntry(), nullptr);
    EXPECT_THROW(map.Enumeration("E")->GetIntValue(true), OutOfRangeException);
    EXPECT_THROW(map.Enumeration("E")->GetCurrentEntry(true), OutOfRangeException);
    EXPECT_THROW(map.Value("E")->ToString(true), InvalidArgumentException);
}

TEST(PastTheCache, NextPlainReadingGoesToThePort)
{
    SmallMap map(IntReg("R", "0") + Integer("V", "<pValue>R</pValue>"));
    map.Integer("V")->GetValue(false, true);
    EXPECT_EQ(map.port.reads, 1);
    map.Integer("V")->GetValue();
    EXPECT_EQ(map.port.reads, 2);
    map.Integer("R")->GetValue();
    EXPECT_EQ(map.port.reads, 2) << "the plain reading filled the cache";
}

TEST(PastTheCache, ReadingDropsWhatTheRegisterInvalidates)
{
    SmallMap map(
        IntReg("R", "0") + IntReg("Other", "8", "<pInvalidator>R</pInvalidator>") +
        Integer("OnOther", "<pValue>Other</pValue>"));
    EXPECT_EQ(map.Integer("OnOther")->GetValue(), 0);
    map.port.bytes[8] = 5;
    map.Integer("R")->GetValue();
    EXPECT_EQ(map.Integer("OnOther")->GetValue(), 0);
    map.Integer("R")->GetValue(false, true);
    EXPECT_EQ(map.Integer("OnOther")->GetValue(), 5);
}

TEST(RefusedWrites, KeepTheBytesOfTheRegister)
{
    SmallMap map(IntReg("R", "0", "") + Integer("V", "<pValue>R</pValue><Max>9</Max>"));
    map.Integer("V")->GetValue();
    EXPECT_THROW(map.Integer("R")->SetValue(-1), OutOfRangeException);
    EXPECT_THROW(map.Integer("V")->SetValue(10), OutOfRangeException);
    map.Integer("R")->GetValue();
    map.Integer("V")->GetValue();
    EXPECT_EQ(map.port.reads, 1);
}

TEST(RefusedWrites, OfTheDeviceDropTheBytes)
{
    SmallMap map(IntReg("R", "0"));
    map.Integer("R")->GetValue();
    map.port.onWrite = [] { throw TIMEOUT_EXCEPTION("no answer"); };
    EXPECT_THROW(map.Integer("R")->SetValue(1), TimeoutException);
    map.Integer("R")->GetValue();
    EXPECT_EQ(map.port.reads, 2);
}

TEST(Lengths, ThatAreNotCachedLeaveTheRegisterCached)
{
    const SmallMap map(
        IntReg("Length", "0", noCache) +
        "<StringReg Name=\"S\"><Address>8</Address><pLength>Length</pLength><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort></StringReg>");
    EXPECT_EQ(map.Node("S")->GetCachingMode(), WriteThrough);
}

TEST(Lengths, BeyondTheBoundOfATextAreRefusedInWordsThatNameThem)
{
    const SmallMap map("<StringReg Name=\"S\"><Address>0</Address><Length>16777217</Length><AccessMode>RW</AccessMode>"
                       "<pPort>Device</pPort></StringReg>");
    try
    {
        map.Value("S")->ToString();
        FAIL() << "nothing thrown";
    }
    catch (const RuntimeException& exception)
    {
        EXPECT_THAT(
            exception.what(),
            testing::AllOf(
                testing::HasSubstr("'S'"), testing::HasSubstr("16777217"), testing::HasSubstr("16777216 bytes")));
    }
}

TEST(Commands, TextThatShowsTheEndIsAnnounced)
{
    SmallMap map(
        IntReg("R", "0", noCache) + "<Command Name=\"C\"><pValue>R</pValue><CommandValue>1</CommandValue></Command>" +
        Integer("I", "<pInvalidator>C</pInvalidator><Value>1</Value>"));
    CCommandPtr(map.Node("C"))->Execute();
    Listener listener;
    ListenToAll(map, listener);
    EXPECT_STREQ(map.Value("C")->ToString().c_str(), "1");
    EXPECT_EQ(listener.Take(), "");
    map.port.bytes[0] = 0;
    EXPECT_STREQ(map.Value("C")->ToString().c_str(), "0");
    EXPECT_EQ(listener.Take(), "C I R");
    EXPECT_STREQ(map.Value("C")->ToString().c_str(), "0");
    EXPECT_EQ(listener.Take(), "");
}

TEST(Attributes, OfAFloatReachAnIntegerButForItsRepresentation)
{
    const SmallMap map(
        "<Float Name=\"F\"><Value>4</Value><Unit>mm</Unit><Representation>Logarithmic</Representation></Float>" +
        Integer("I", "<pValue>F</pValue>") +
        "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>4</Value></EnumEntry><pValue>F</pValue></Enumeration>"
        "<Converter "
        "Name=\"OnE\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>E</pValue></Converter>");
    EXPECT_EQ(map.Integer("I")->GetRepresentation(), PureNumber);
    EXPECT_STREQ(map.Integer("I")->GetUnit().c_str(), "mm");
    EXPECT_STREQ(map.Float("OnE")->GetUnit().c_str(), "") << "no unit passes through an enumeration";
}

TEST(Entries, AreFoundByNumberAndTextAmongEqualOnes)
{
    const SmallMap map(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>2</Value></EnumEntry><EnumEntry Name=\"B\">"
        "<Value>2</Value></EnumEntry><EnumEntry Name=\"C\"><Value>-1</Value></EnumEntry>"
        "<Value>2</Value></Enumeration>");
    EXPECT_STREQ(map.Enumeration("E")->GetEntry(2)->GetSymbolic().c_str(), "B") << "the later one counts";
    EXPECT_EQ(map.Enumeration("E")->GetEntryByName("A")->GetValue(), 2);
    EXPECT_EQ(map.Enumeration("E")->GetEntryByName("C")->GetValue(), -1);
    EXPECT_EQ(map.Enumeration("E")->GetEntryByName("D"), nullptr);
    EXPECT_EQ(map.Enumeration("E")->GetEntry(0), nullptr);
    EXPECT_EQ(map.Enumeration("E")->GetEntry(3), nullptr);
}

} // namespace

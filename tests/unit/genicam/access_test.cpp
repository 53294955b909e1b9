#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

const std::string conditions =
    "<Integer Name=\"Yes\"><Value>1</Value></Integer><Integer Name=\"No\"><Value>0</Value></Integer>";

std::string Constant(const std::string& name, const std::string& children)
{
    return "<Integer Name=\"" + name + "\">" + children + "<Value>1</Value></Integer>";
}

TEST(AccessMode, FollowsItsConditions)
{
    const SmallMap map(
        conditions + Constant("Plain", "") + Constant("Missing", "<pIsImplemented>No</pIsImplemented>") +
        Constant("Away", "<pIsAvailable>No</pIsAvailable>") + Constant("Locked", "<pIsLocked>Yes</pIsLocked>") +
        Constant("Imposed", "<ImposedAccessMode>WO</ImposedAccessMode>") +
        Constant("LockedImposed", "<pIsLocked>Yes</pIsLocked><ImposedAccessMode>WO</ImposedAccessMode>"));
    EXPECT_EQ(map.Node("Plain")->GetAccessMode(), RW);
    EXPECT_EQ(map.Node("Missing")->GetAccessMode(), NI);
    EXPECT_EQ(map.Node("Away")->GetAccessMode(), NA);
    EXPECT_EQ(map.Node("Locked")->GetAccessMode(), RO);
    EXPECT_EQ(map.Node("Imposed")->GetAccessMode(), WO);
    EXPECT_EQ(map.Node("LockedImposed")->GetAccessMode(), NA);
}

TEST(AccessMode, ConditionThatIsNotImplementedMakesItsNodeSo)
{
    const SmallMap map(
        conditions + Constant("Missing", "<pIsImplemented>No</pIsImplemented>") +
        Constant("A", "<pIsAvailable>Missing</pIsAvailable>"));
    EXPECT_EQ(map.Node("A")->GetAccessMode(), NI);
}

TEST(AccessMode, RegistersFollowTheirPortAfterAnInvalidation)
{
    SmallMap map(IntReg("R", "0"));
    EXPECT_EQ(map.Node("R")->GetAccessMode(), RW);
    map.port.mode = RO;
    EXPECT_EQ(map.Node("R")->GetAccessMode(), RW) << "the mode is cached";
    map.map->InvalidateNodes();
    EXPECT_EQ(map.Node("R")->GetAccessMode(), RO);
}

TEST(AccessMode, RegisterOfAPortThatIsNotConnectedIsNotImplemented)
{
    const SmallMap map("<Port Name=\"Other\"/><Register Name=\"R\"><Address>0</Address><Length>4</Length>"
                       "<AccessMode>RW</AccessMode><pPort>Other</pPort></Register>");
    EXPECT_EQ(map.Node("R")->GetAccessMode(), NI);
    EXPECT_FALSE(map.map->Connect(static_cast<IPort*>(nullptr), "Nowhere"));
}

TEST(AccessMode, ChangesWithTheConditionThatIsWritten)
{
    const SmallMap map(Constant("Switch", "") + Constant("A", "<pIsAvailable>Switch</pIsAvailable>"));
    EXPECT_EQ(map.Node("A")->GetAccessMode(), RW);
    map.Integer("Switch")->SetValue(0);
    EXPECT_EQ(map.Node("A")->GetAccessMode(), NA);
}

TEST(AccessMode, EntryMayDependOnItsOwnEnumeration)
{
    const SmallMap map(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"One\"><pIsAvailable>IsOne</pIsAvailable><Value>1</Value></EnumEntry>"
        "<EnumEntry Name=\"Two\"><Value>2</Value></EnumEntry><Value>1</Value></Enumeration>"
        "<IntSwissKnife Name=\"IsOne\"><pVariable Name=\"V\">E</pVariable><Formula>V=1</Formula></IntSwissKnife>");
    EXPECT_EQ(map.Node("E")->GetAccessMode(), RW);
    EXPECT_STREQ(map.Value("E")->ToString().c_str(), "One");
}

TEST(AccessMode, RefusedOperationsNameNodeAndEntryPoint)
{
    const SmallMap map(conditions + Constant("A", "<pIsAvailable>No</pIsAvailable>"));
    try
    {
        map.Integer("A")->SetValue(5);
        FAIL() << "nothing thrown";
    }
    catch (const AccessException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "Node is not writable.");
        EXPECT_NE(
            std::string(exception.what()).find(": AccessException thrown in node 'A' while calling 'A.SetValue()'"),
            std::string::npos)
            << exception.what();
    }
    EXPECT_THROW(map.Integer("A")->GetValue(), AccessException);
    EXPECT_THROW(map.Integer("A")->GetMin(), AccessException);
}

TEST(AccessMode, ExceptionsOfThePortPassUnchanged)
{
    SmallMap map(IntReg("R", "0"));
    map.port.onRead = [] { throw std::logic_error("mine"); };
    EXPECT_THROW(map.Integer("R")->GetValue(), std::logic_error);
    map.port.onRead = nullptr;
    EXPECT_EQ(map.Integer("R")->GetValue(), 0) << "nothing of the failed reading stays";
    map.port.onWrite = [] { throw 7; };
    EXPECT_THROW(map.Integer("R")->SetValue(3), int);
    map.port.onWrite = nullptr;
    EXPECT_EQ(map.Integer("R")->GetValue(), 0);
}

TEST(AccessMode, VerifiedReadingNeedsAnEntryThatIsAvailableAlsoThroughOtherNodes)
{
    const SmallMap map(
        conditions +
        "<Enumeration Name=\"E\"><EnumEntry Name=\"Here\"><Value>0</Value></EnumEntry>"
        "<EnumEntry Name=\"Away\"><pIsAvailable>No</pIsAvailable><Value>1</Value></EnumEntry>"
        "<Value>1</Value></Enumeration>" +
        IntReg("R", "0", "<pIndex Offset=\"4\">E</pIndex>"));
    EXPECT_THROW(map.Enumeration("E")->ToString(true), AccessException);
    EXPECT_THROW(map.Integer("R")->GetValue(true), AccessException);
    EXPECT_EQ(map.Integer("R")->GetValue(), 0);
}

TEST(AccessMode, UncheckedTextsAndNumbersPassLocksAndAvailabilityOnly)
{
    const SmallMap map(
        conditions + Constant("Away", "<pIsAvailable>No</pIsAvailable>") +
        Constant("Locked", "<pIsLocked>Yes</pIsLocked>") + Constant("Missing", "<pIsImplemented>No</pIsImplemented>") +
        Constant("Fixed", "<ImposedAccessMode>RO</ImposedAccessMode>") +
        "<Integer Name=\"Above\"><pValue>Locked</pValue></Integer>");
    for (const char* const name : {"Away", "Locked", "Above"})
    {
        SCOPED_TRACE(name);
        EXPECT_THROW(map.Value(name)->FromString("5"), AccessException);
        EXPECT_THROW(map.Integer(name)->SetValue(4), AccessException);
        EXPECT_NO_THROW(map.Integer(name)->SetValue(4, false));
        EXPECT_NO_THROW(map.Value(name)->FromString("5", false));
        EXPECT_FALSE(IsWritable(map.Node(name))) << "for the one write only";
    }
    EXPECT_EQ(map.Integer("Locked")->GetValue(), 5);
    EXPECT_THROW(map.Value("Missing")->FromString("5", false), AccessException);
    EXPECT_THROW(map.Value("Fixed")->FromString("5", false), AccessException);
}

TEST(AccessMode, CallbacksOfAnUncheckedTextSeeTheLocks)
{
    const SmallMap map(conditions + Constant("Locked", "<pIsLocked>Yes</pIsLocked>"));
    EAccessMode seen = NI;
    Register(map.Node("Locked"), std::function<void(INode*)>([&](INode* node) { seen = node->GetAccessMode(); }));
    map.Value("Locked")->FromString("5", false);
    EXPECT_EQ(seen, RO);
}

} // namespace

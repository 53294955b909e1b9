// Enumerations, booleans and commands over other nodes.
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

const std::string numbered =
    "<Integer Name=\"Off\"><Value>0</Value></Integer><Integer Name=\"I\"><Value>0</Value></Integer><Enumeration "
    "Name=\"E\">"
    "<EnumEntry Name=\"A\"><Value>0</Value><NumericValue>-4.5</NumericValue></EnumEntry><EnumEntry "
    "Name=\"B\"><Value>1</Value>"
    "<NumericValue>5.5</NumericValue></EnumEntry><EnumEntry "
    "Name=\"C\"><pIsAvailable>Off</pIsAvailable><Value>2</Value><NumericValue>2</NumericValue>"
    "</EnumEntry><pValue>I</pValue></Enumeration><Integer Name=\"X\"><pValue>E</pValue></Integer><Float "
    "Name=\"F\"><pValue>E</pValue></Float>";

TEST(Enumerations, ReadAsNumbersByTheirNumericValue)
{
    const SmallMap map(
        numbered + "<IntSwissKnife Name=\"K\"><pVariable Name=\"V\">E</pVariable><Formula>V</Formula></IntSwissKnife>"
                   "<SwissKnife Name=\"S\"><pVariable Name=\"V\">E</pVariable><Formula>V</Formula></SwissKnife>");
    EXPECT_EQ(map.Integer("X")->GetValue(), -5) << "rounded half away from zero";
    EXPECT_EQ(map.Float("F")->GetValue(), -4.5);
    EXPECT_EQ(map.Integer("K")->GetValue(), -5);
    EXPECT_EQ(map.Float("S")->GetValue(), -4.5);
}

TEST(Enumerations, NumberThroughAPointerSetsTheNearestAvailableEntry)
{
    const SmallMap map(numbered);
    map.Integer("X")->SetValue(2);
    EXPECT_EQ(map.Enumeration("E")->GetIntValue(), 1) << "the entry C with 2 is not available";
    EXPECT_EQ(map.Integer("X")->GetValue(), 2) << "what was written stays in the cache";
    map.map->InvalidateNodes();
    EXPECT_EQ(map.Integer("X")->GetValue(), 6);
    map.Float("F")->SetValue(0.5);
    EXPECT_EQ(map.Enumeration("E")->GetIntValue(), 0) << "the first of equally near ones";
}

TEST(Enumerations, EntryThatIsNotAvailableIsRefused)
{
    const SmallMap map(numbered);
    const CEnumerationPtr e = map.Enumeration("E");
    EXPECT_THROW(e->SetIntValue(2), AccessException);
    EXPECT_THROW(e->SetIntValue(9), InvalidArgumentException);
    EXPECT_THROW(e->SetIntValue(9, false), InvalidArgumentException);
    e->SetIntValue(2, false);
    EXPECT_EQ(map.Integer("I")->GetValue(), 2);
    EXPECT_EQ(e->GetIntValue(), 2);
    EXPECT_STREQ(e->ToString().c_str(), "C");
    EXPECT_THROW(e->GetIntValue(true), AccessException);
    EXPECT_THROW(e->ToString(true), AccessException);
    EXPECT_THROW(e->GetCurrentEntry(true), AccessException);
}

TEST(Enumerations, EntryThatIsNotImplementedIsRefusedWithoutVerificationToo)
{
    const SmallMap map(
        "<Integer Name=\"Off\"><Value>0</Value></Integer><Enumeration Name=\"E\"><EnumEntry "
        "Name=\"A\"><Value>0</Value></EnumEntry>"
        "<EnumEntry "
        "Name=\"B\"><pIsImplemented>Off</pIsImplemented><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>");
    EXPECT_THROW(map.Enumeration("E")->SetIntValue(1, false), AccessException);
    EXPECT_THROW(map.Enumeration("E")->FromString("B", false), AccessException);
    EXPECT_NE(map.Enumeration("E")->GetEntryByName("B"), nullptr);
}

TEST(Enumerations, OfTwoEntriesWithOneNumberTheLaterIsTheCurrent)
{
    const SmallMap map("<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry "
                       "Name=\"B\"><Value>0</Value></EnumEntry>"
                       "<Value>0</Value></Enumeration>");
    map.Enumeration("E")->FromString("A");
    EXPECT_STREQ(map.Enumeration("E")->ToString().c_str(), "B");
    EXPECT_STREQ(map.Enumeration("E")->GetEntry(0)->GetSymbolic().c_str(), "B");
}

TEST(Enumerations, SelfClearingEntryIsReadUntilItHasGone)
{
    SmallMap map(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"Idle\"><Value>0</Value></EnumEntry><EnumEntry "
        "Name=\"Once\"><Value>1</Value>"
        "<IsSelfClearing>Yes</IsSelfClearing></EnumEntry><pValue>R</pValue></Enumeration>" +
        IntReg("R", "0"));
    map.Enumeration("E")->FromString("Once");
    EXPECT_STREQ(map.Enumeration("E")->ToString().c_str(), "Once");
    EXPECT_EQ(map.port.reads, 1);
    map.port.bytes[0] = 0;
    EXPECT_STREQ(map.Enumeration("E")->ToString().c_str(), "Idle");
    EXPECT_EQ(map.port.reads, 2);
    EXPECT_STREQ(map.Enumeration("E")->ToString().c_str(), "Idle");
    EXPECT_STREQ(map.Enumeration("E")->ToString().c_str(), "Idle");
    EXPECT_EQ(map.port.reads, 3) << "cached again";
}

TEST(Booleans, UseTheirOnAndOffValues)
{
    SmallMap map(
        "<Boolean Name=\"B\"><pValue>R</pValue><OnValue>5</OnValue><OffValue>9</OffValue></Boolean>" +
        IntReg("R", "0"));
    const CBooleanPtr boolean(map.Node("B"));
    boolean->SetValue(true);
    EXPECT_EQ(map.port.bytes[0], 5);
    boolean->SetValue(false);
    EXPECT_EQ(map.port.bytes[0], 9);
    map.port.bytes[0] = 1;
    map.map->InvalidateNodes();
    EXPECT_THROW(boolean->GetValue(), LogicalErrorException);
    EXPECT_THROW(boolean->ToString(), LogicalErrorException);
    boolean->SetValue(true);
    EXPECT_TRUE(boolean->GetValue());
}

class Command : public testing::Test
{
protected:
    Command()
        : map("<Command Name=\"C\"><pValue>R</pValue><pCommandValue>V</pCommandValue></Command><Integer "
              "Name=\"V\"><Value>7</Value></Integer>" +
              IntReg("R", "0")),
          command(map.Node("C"))
    {
        Register(map.Node("C"), std::function<void(INode*)>([this](INode*) { ++calls; }));
    }

    SmallMap map;
    CCommandPtr command;
    int calls = 0;
};

TEST_F(Command, IsDoneWithoutAccessBeforeItIsExecuted)
{
    map.port.bytes[0] = 7;
    EXPECT_TRUE(command->IsDone());
    EXPECT_EQ(map.port.reads, 0);
}

TEST_F(Command, IsDoneWhenItsValueIsGoneAndTellsOnce)
{
    command->Execute();
    EXPECT_EQ(map.port.bytes[0], 7);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(command->IsDone());
    EXPECT_EQ(map.port.reads, 1);
    EXPECT_EQ(calls, 1);
    map.port.bytes[0] = 0;
    EXPECT_TRUE(command->IsDone());
    EXPECT_EQ(map.port.reads, 2);
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(command->IsDone());
    EXPECT_EQ(map.port.reads, 2);
    EXPECT_EQ(calls, 2);
}

TEST(Commands, OnConstantsAndWriteOnlyPlacesAreDoneAtOnce)
{
    SmallMap map("<Command Name=\"A\"><Value>0</Value><CommandValue>1</CommandValue></Command><Command "
                 "Name=\"B\"><pValue>R</pValue><CommandValue>1"
                 "</CommandValue></Command><IntReg "
                 "Name=\"R\"><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>"
                 "<Endianess>LittleEndian</Endianess></IntReg>");
    for (const char* const name : {"A", "B"})
    {
        const CCommandPtr command(map.Node(name));
        command->Execute();
        EXPECT_TRUE(command->IsDone()) << name;
    }
    EXPECT_EQ(map.port.reads, 0);
}

TEST(Commands, ThatAreNotThereAreNotDoneAndThoseThatAreNotAvailableAre)
{
    const SmallMap map("<Integer Name=\"Off\"><Value>0</Value></Integer><Command "
                       "Name=\"A\"><pIsImplemented>Off</pIsImplemented><Value>0</Value>"
                       "<CommandValue>1</CommandValue></Command><Command "
                       "Name=\"B\"><pIsAvailable>Off</pIsAvailable><Value>0</Value><CommandValue>1"
                       "</CommandValue></Command>");
    EXPECT_THROW(CCommandPtr(map.Node("A"))->IsDone(), AccessException);
    EXPECT_TRUE(CCommandPtr(map.Node("B"))->IsDone());
    EXPECT_THROW(CCommandPtr(map.Node("B"))->Execute(), AccessException);
}

} // namespace

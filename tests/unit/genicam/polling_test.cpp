// Nodes that the application polls.
#include "tests/unit/genicam/listener.h"
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::Listener;
using koro::test::ListenToAll;
using koro::test::SmallMap;

const std::string overR =
    "<Category Name=\"Root\"><pFeature>A</pFeature></Category><Integer Name=\"A\"><pValue>R</pValue>"
    "</Integer><Integer Name=\"B\"><pValue>R</pValue></Integer>";

std::string Polled(
    const std::string& name, const std::string& address, const std::string& time, const std::string& before = "")
{
    return "<IntReg Name=\"" + name + "\">" + before + "<Address>" + address +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><PollingTime>" + time +
           "</PollingTime><Endianess>LittleEndian</Endianess></IntReg>";
}

TEST(Polling, TellsTheNodeAndItsDependentsWhenTheTimeIsReached)
{
    SmallMap map(Polled("R", "0", "100") + overR);
    Listener listener;
    ListenToAll(map, listener);
    map.Integer("A")->GetValue();
    map.port.bytes[0] = 7;
    map.map->Poll(99);
    EXPECT_EQ(listener.Take(), "");
    EXPECT_EQ(map.Integer("A")->GetValue(), 0);
    map.map->Poll(1);
    EXPECT_EQ(listener.Take(), "A B R Root");
    EXPECT_EQ(map.port.reads, 1) << "nothing is read by polling";
    EXPECT_EQ(map.Integer("A")->GetValue(), 7);
    map.map->Poll(99);
    EXPECT_EQ(listener.Take(), "") << "it starts again at 0";
    map.map->Poll(500);
    EXPECT_EQ(listener.Take(), "A B R Root") << "once, however late";
}

TEST(Polling, OfTimeZeroTellsEachTime)
{
    const SmallMap map(Polled("R", "0", "0"));
    Listener listener;
    ListenToAll(map, listener);
    map.map->Poll(0);
    EXPECT_EQ(listener.Take(), "R");
    map.map->Poll(1);
    EXPECT_EQ(listener.Take(), "R");
}

TEST(Polling, TimesBeyondAllCountingStandStill)
{
    const SmallMap map(IntReg("R", "0", "<PollingTime>100</PollingTime>"));
    Listener listener;
    ListenToAll(map, listener);
    map.map->Poll(99);
    map.map->Poll(std::numeric_limits<int64_t>::max());
    EXPECT_EQ(listener.Take(), "R");
    map.map->Poll(-1);
    map.map->Poll(std::numeric_limits<int64_t>::min());
    map.map->Poll(std::numeric_limits<int64_t>::max());
    EXPECT_EQ(listener.Take(), "");
    map.map->Poll(101);
    EXPECT_EQ(listener.Take(), "R");
}

TEST(Polling, StandsWhileItIsBlocked)
{
    const SmallMap map(
        "<Integer Name=\"Block\"><Value>1</Value></Integer>" +
        Polled("R", "0", "10", "<pBlockPolling>Block</pBlockPolling>"));
    map.map->Poll(9);
    map.map->Poll(100);
    map.Integer("Block")->SetValue(0);
    Listener listener;
    ListenToAll(map, listener);
    map.map->Poll(9);
    EXPECT_EQ(listener.Take(), "") << "what passed meanwhile does not count";
    map.map->Poll(1);
    EXPECT_EQ(listener.Take(), "R");
}

TEST(Polling, OfACommandLastsFromItsExecutionToItsEnd)
{
    SmallMap map(
        IntReg("R", "0") +
        "<Command Name=\"C\"><pValue>R</pValue><CommandValue>1</CommandValue><PollingTime>10</PollingTime></Command>");
    Listener listener;
    ListenToAll(map, listener);
    map.map->Poll(10);
    EXPECT_EQ(listener.Take(), "");
    CCommandPtr(map.Node("C"))->Execute();
    listener.Take();
    map.map->Poll(10);
    EXPECT_EQ(listener.Take(), "C");
    map.port.bytes[0] = 0;
    EXPECT_TRUE(CCommandPtr(map.Node("C"))->IsDone());
    listener.Take();
    map.map->Poll(10);
    EXPECT_EQ(listener.Take(), "");
}

TEST(Polling, OfAnEnumerationLastsWhileASelfClearingEntryStands)
{
    SmallMap map(
        IntReg("R", "0") + "<Enumeration Name=\"E\"><EnumEntry Name=\"Idle\"><Value>0</Value></EnumEntry><EnumEntry "
                           "Name=\"Once\"><Value>1</Value>"
                           "<IsSelfClearing>Yes</IsSelfClearing></EnumEntry><pValue>R</pValue><PollingTime>10</"
                           "PollingTime></Enumeration>");
    Listener listener;
    ListenToAll(map, listener);
    map.map->Poll(10);
    EXPECT_EQ(listener.Take(), "");
    map.Value("E")->FromString("Once");
    listener.Take();
    map.map->Poll(10);
    EXPECT_EQ(listener.Take(), "E");
    map.port.bytes[0] = 0;
    EXPECT_STREQ(map.Value("E")->ToString().c_str(), "Idle");
    map.map->Poll(10);
    EXPECT_EQ(listener.Take(), "");
}

} // namespace

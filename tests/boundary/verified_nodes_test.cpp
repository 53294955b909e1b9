// Verification: a camera reports an error in other features, and only verified accesses check it.
#include "tests/boundary/described_camera.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;

using Strings = std::vector<std::string>;

// Every feature has the register at 0 for its error: not 0 means that it burns.
const std::string looksForErrors = "<pError>Error</pError>";

std::string BytesRegister(const std::string& type, const std::string& name, std::size_t address)
{
    return "<" + type + " Name=\"" + name + "\">" + looksForErrors + "<Address>" + std::to_string(address) +
           "</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></" + type + ">";
}

const std::string description =
    "<Enumeration Name=\"Error\"><EnumEntry Name=\"None\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Fire\">"
    "<ToolTip>it burns</ToolTip><Value>3</Value></EnumEntry><pValue>ErrorReg</pValue></Enumeration>" +
    IntRegister("ErrorReg", 0, "<Cachable>NoCache</Cachable>") + IntRegister("NumberReg", 4) +
    "<Integer Name=\"Integer\">" + looksForErrors +
    "<pValue>NumberReg</pValue><Min>1</Min><Max>9</Max></Integer>"
    "<Float Name=\"Float\">" +
    looksForErrors +
    "<pValue>NumberReg</pValue><Min>1</Min><Max>9</Max></Float>"
    "<Boolean Name=\"Boolean\">" +
    looksForErrors + "<pValue>FlagReg</pValue></Boolean>" + IntRegister("FlagReg", 8) +
    BytesRegister("StringReg", "String", 16) + BytesRegister("Register", "Register", 24) +
    "<Enumeration Name=\"Choice\">" + looksForErrors +
    "<EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry><EnumEntry Name=\"On\"><Value>1</Value></EnumEntry>"
    "<EnumEntry Name=\"Away\"><pIsAvailable>Nothing</pIsAvailable><Value>2</Value></EnumEntry>"
    "<pValue>ChoiceReg</pValue></Enumeration><Integer Name=\"Nothing\"><Value>0</Value></Integer>" +
    IntRegister("ChoiceReg", 32) + "<Command Name=\"Command\">" + looksForErrors +
    "<pValue>CommandReg</pValue><CommandValue>1</CommandValue></Command>"
    "<IntReg Name=\"CommandReg\"><Address>36</Address><Length>4</Length><AccessMode>WO</AccessMode>"
    "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>"
    "<Integer Name=\"Place\"><Value>200</Value><Max>100</Max></Integer>"
    "<Register Name=\"Moved\"><pAddress>Place</pAddress><Length>4</Length><AccessMode>RW</AccessMode>"
    "<pPort>Device</pPort></Register>";

class VerifiedNodes : public DescribedCamera
{
protected:
    template <class Handle>
    Handle As(const std::string& name, KORO_ReturnCode (*cast)(KORO_NodeHandle, Handle*)) const
    {
        return Get<Handle>(cast, Find(map, name));
    }

    void SetFire(bool burning) const { SetRegister(0, burning ? 3 : 0); }

    static void ExpectFire(KORO_ReturnCode code)
    {
        const Error outcome = Outcome(code);
        EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
        EXPECT_THAT(outcome.text, HasSubstr("it burns"));
    }

    const KORO_NodeMapHandle map = Describe(description);
    const KORO_IntegerNodeHandle integer = As("Integer", KORO_Node_ToIntegerNode);
    const KORO_FloatNodeHandle real = As("Float", KORO_Node_ToFloatNode);
    const KORO_BooleanNodeHandle boolean = As("Boolean", KORO_Node_ToBooleanNode);
    const KORO_StringNodeHandle text = As("String", KORO_Node_ToStringNode);
    const KORO_RegisterNodeHandle bytes = As("Register", KORO_Node_ToRegisterNode);
    const KORO_EnumerationNodeHandle choice = As("Choice", KORO_Node_ToEnumerationNode);
    const KORO_CommandNodeHandle command = As("Command", KORO_Node_ToCommandNode);
};

} // namespace

TEST_F(VerifiedNodes, ReadsAreNot)
{
    SetRegister(4, 5);
    SetFire(true);
    for (const KORO_NodeCachePolicy policy : {1, 0})
    {
        EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, integer, policy), 5);
        EXPECT_EQ(Get<double>(KORO_FloatNode_GetValue, real, policy), 5);
        EXPECT_EQ(Get<KORO_Bool8>(KORO_BooleanNode_GetValue, boolean, policy), 0);
        EXPECT_EQ(GetText(KORO_StringNode_GetValue, text, policy), "");
        EXPECT_NE(Get<KORO_EnumerationEntryNodeHandle>(KORO_EnumerationNode_GetCurrentEntry, choice, policy), nullptr);
    }
}

TEST_F(VerifiedNodes, ValuesBeyondTheLimitsAndEntriesThatAreAwayAreStillRead)
{
    SetRegister(4, 5000);
    SetRegister(32, 2);
    EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, integer, 1), 5000);
    EXPECT_EQ(Get<double>(KORO_FloatNode_GetValue, real, 1), 5000);
    const auto current = Get<KORO_EnumerationEntryNodeHandle>(KORO_EnumerationNode_GetCurrentEntry, choice, 1);
    EXPECT_EQ(GetText(KORO_EnumerationEntryNode_GetSymbolicValue, current), "Away");
}

TEST_F(VerifiedNodes, PlaceOfARegisterIsNot)
{
    EXPECT_EQ(Get<std::uint64_t>(KORO_RegisterNode_GetAddress, As("Moved", KORO_Node_ToRegisterNode)), 200u);
    SetFire(true);
    EXPECT_EQ(Get<std::uint64_t>(KORO_RegisterNode_GetAddress, bytes), 24u);
    EXPECT_EQ(Get<std::size_t>(KORO_RegisterNode_GetLength, bytes), 8u);
}

// The policy of this read goes another way than that of all others.
TEST_F(VerifiedNodes, ReadOfARegisterIsByPolicyOneAlone)
{
    SetFire(true);
    std::uint8_t data[8];
    for (const KORO_NodeCachePolicy policy : {0, 2, -1})
        EXPECT_EQ(Outcome(KORO_RegisterNode_Read(bytes, policy, data, sizeof data)), Error{}) << policy;
    ExpectFire(KORO_RegisterNode_Read(bytes, 1, data, sizeof data));
    SetFire(false);
    EXPECT_EQ(Outcome(KORO_RegisterNode_Read(bytes, 1, data, sizeof data)), Error{});
}

TEST_F(VerifiedNodes, EveryWriteIsAndWhatWasWrittenStays)
{
    SetFire(true);
    const std::uint8_t data[8] = {1, 2, 3};
    const auto on = Get<KORO_EnumerationEntryNodeHandle>(KORO_EnumerationNode_GetEntry, choice, std::size_t{1});
    producer->ClearJournal();
    ExpectFire(KORO_IntegerNode_SetValue(integer, 7));
    ExpectFire(KORO_FloatNode_SetValue(real, 8));
    ExpectFire(KORO_BooleanNode_SetValue(boolean, 1));
    ExpectFire(KORO_StringNode_SetValue(text, "abc", 4));
    ExpectFire(KORO_RegisterNode_Write(bytes, data, sizeof data));
    ExpectFire(KORO_EnumerationNode_SetCurrentEntry(choice, on));
    ExpectFire(KORO_EnumerationNode_SetCurrentEntryByValue(choice, 0));
    ExpectFire(KORO_EnumerationNode_SetCurrentEntryBySymbolicValue(choice, "On", 3));
    EXPECT_EQ(CallsOf(producer->Journal(), {"GCWritePort"}).size(), 8u);

    EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, integer, 1), 8);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_BooleanNode_GetValue, boolean, 1), 1);
    EXPECT_EQ(GetText(KORO_StringNode_GetValue, text, 1), "abc");
    EXPECT_EQ(Get<KORO_EnumerationEntryNodeHandle>(KORO_EnumerationNode_GetCurrentEntry, choice, 1), on);
    // The lock has been given back each time.
    EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_TryLock, map), 1);
    Require(KORO_NodeMap_Unlock(map));
}

TEST_F(VerifiedNodes, CommandIsInAllItDoes)
{
    SetFire(true);
    producer->ClearJournal();
    ExpectFire(KORO_CommandNode_Execute(command));
    EXPECT_EQ(CallsOf(producer->Journal(), {"GCWritePort"}).size(), 1u);
    KORO_Bool8 isDone = 2;
    ExpectFire(KORO_CommandNode_GetIsDone(command, &isDone));
    EXPECT_EQ(isDone, 2);
    ExpectFire(KORO_CommandNode_WaitUntilDone(command, 1000));
    ExpectFire(KORO_CommandNode_WaitUntilDoneInfinite(command));
}

// Each question looks for the error once.
TEST_F(VerifiedNodes, WaitForACommandThatIsDoneAsksExactlyTwice)
{
    for (const std::uint64_t timeout : {std::uint64_t{0}, std::uint64_t{1000}, KORO_INFINITE})
    {
        producer->ClearJournal();
        EXPECT_EQ(Outcome(KORO_CommandNode_WaitUntilDone(command, timeout)), Error{});
        EXPECT_EQ(Reads(), (Strings(2, "GCReadPort(if0-dev0-remote, 0, 4)"))) << timeout;
    }
}

TEST_F(VerifiedNodes, LastAnswerOfAWaitCounts)
{
    std::size_t asked = 0;
    producer->OnEntry("GCReadPort", [&] {
        if (++asked == 2) SetFire(true);
    });
    ExpectFire(KORO_CommandNode_WaitUntilDone(command, 1000));
    producer->OnEntry("GCReadPort", {});
    EXPECT_EQ(asked, 2u);
}

} // namespace koro::test

// Commands, enumerations with their entries, and categories.
#include "tests/boundary/described_camera.h"
#include "tests/support/in_thread.h"

#include <cstdint>
#include <future>
#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;

using Strings = std::vector<std::string>;

const Error expired{KORO_RETURN_CODE_TIMEOUT, "Execution waiting time expired."};

// The commands' registers read what the test puts there: not 0 while a command runs.
const std::string description =
    "<Category Name=\"Root\"><pFeature>Start</pFeature><pFeature>Format</pFeature></Category>"
    "<Command Name=\"Start\"><pValue>StartReg</pValue><CommandValue>1</CommandValue>"
    "<PollingTime>10</PollingTime></Command>" +
    IntRegister("StartReg", 0, "<Cachable>NoCache</Cachable>") +
    "<Enumeration Name=\"Format\">"
    "<EnumEntry Name=\"Mono8\"><Value>8</Value></EnumEntry>"
    "<EnumEntry Name=\"Negative\"><Value>-3</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry>"
    "<EnumEntry Name=\"Away\"><pIsAvailable>Nothing</pIsAvailable><Value>12</Value></EnumEntry>"
    "<EnumEntry Name=\"Symbol\"><Value>20</Value><Symbolic>Named</Symbolic></EnumEntry>"
    "<pValue>FormatReg</pValue></Enumeration>"
    "<Integer Name=\"Nothing\"><Value>0</Value></Integer>"
    "<IntReg Name=\"FormatReg\"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "<Sign>Signed</Sign><Endianess>LittleEndian</Endianess></IntReg>"
    "<Enumeration Name=\"Other\"><EnumEntry Name=\"One\"><Value>8</Value></EnumEntry>"
    "<EnumEntry Name=\"Two\"><Value>77</Value></EnumEntry><Value>8</Value></Enumeration>";

class ChoiceNode : public DescribedCamera
{
protected:
    using Entry = KORO_EnumerationEntryNodeHandle;

    std::string SymbolicValue(Entry entry) const { return GetText(KORO_EnumerationEntryNode_GetSymbolicValue, entry); }

    Entry FindEntry(const std::string& name) const
    {
        return Get<Entry>(KORO_EnumerationNode_FindEntryBySymbolicValue, format, name.c_str(), name.size() + 1);
    }

    Error SetByName(const std::string& name) const
    {
        return Outcome(KORO_EnumerationNode_SetCurrentEntryBySymbolicValue(format, name.c_str(), name.size() + 1));
    }

    Strings Writes() const { return CallsOf(producer->Journal(), {"GCWritePort"}); }

    const KORO_NodeMapHandle map = Describe(description);
    const KORO_CommandNodeHandle start = Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, Find(map, "Start"));
    const KORO_EnumerationNodeHandle format =
        Get<KORO_EnumerationNodeHandle>(KORO_Node_ToEnumerationNode, Find(map, "Format"));
};

} // namespace

TEST_F(ChoiceNode, CommandIsExecutedUnderTheLock)
{
    int writes = 0;
    producer->OnEntry("GCWritePort", [&] {
        ++writes;
        EXPECT_FALSE(InThread([&] { return Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) != 0; }));
    });
    EXPECT_EQ(Outcome(KORO_CommandNode_Execute(start)), Error{});
    producer->OnEntry("GCWritePort", {});
    EXPECT_EQ(writes, 1);
}

TEST_F(ChoiceNode, CommandIsDoneWhenItsRegisterNoLongerHoldsTheCommand)
{
    Require(KORO_CommandNode_Execute(start));
    ExpectScalarOut<KORO_CommandNodeHandle, KORO_Bool8>("isDone", 0, KORO_CommandNode_GetIsDone, start);
    SetRegister(0, 0);
    ExpectScalarOut<KORO_CommandNodeHandle, KORO_Bool8>("isDone", 1, KORO_CommandNode_GetIsDone, start);
}

TEST_F(ChoiceNode, WaitForACommandThatIsDoneAtOnceAsksTwice)
{
    Require(KORO_CommandNode_Execute(start));
    std::size_t asked = 0;
    producer->OnEntry("GCReadPort", [&] {
        if (++asked == 1) SetRegister(0, 0);
    });
    EXPECT_EQ(Outcome(KORO_CommandNode_WaitUntilDone(start, 1000)), Error{});
    producer->OnEntry("GCReadPort", {});
    EXPECT_GE(asked, 1u);
    EXPECT_LE(asked, 2u);
}

TEST_F(ChoiceNode, WaitOfNothingForARunningCommandAsksTwiceAndExpires)
{
    Require(KORO_CommandNode_Execute(start));
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_CommandNode_WaitUntilDone(start, 0)), expired);
    EXPECT_EQ(Reads().size(), 2u);
}

TEST_F(ChoiceNode, WaitAsksUntilItsTimeIsOver)
{
    Require(KORO_CommandNode_Execute(start));
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_CommandNode_WaitUntilDone(start, 5)), expired);
    EXPECT_GT(Reads().size(), 2u);
}

TEST_F(ChoiceNode, WaitEndsWithTheCommandAndLeavesTheLockFreeMeanwhile)
{
    for (const bool infinite : {false, true})
    {
        Require(KORO_CommandNode_Execute(start));
        std::size_t asked = 0;
        bool wasFree = false;
        producer->OnEntry("GCReadPort", [&] {
            if (++asked == 5) SetRegister(0, 0);
        });
        // Between two questions, which are asked under the lock.
        const auto other = std::async(std::launch::async, [&] {
            Require(KORO_NodeMap_Lock(map));
            wasFree = true;
            Require(KORO_NodeMap_Unlock(map));
        });
        EXPECT_EQ(
            Outcome(
                infinite ? KORO_CommandNode_WaitUntilDoneInfinite(start)
                         : KORO_CommandNode_WaitUntilDone(start, 600'000)),
            Error{});
        other.wait();
        producer->OnEntry("GCReadPort", {});
        EXPECT_TRUE(wasFree);
        EXPECT_GE(asked, 5u);
    }
}

TEST_F(ChoiceNode, FailingAnswerEndsTheWait)
{
    Require(KORO_CommandNode_Execute(start));
    producer->AnswerAtCall("GCReadPort", 3, GenTL::GC_ERR_IO);
    const Error outcome = Outcome(KORO_CommandNode_WaitUntilDoneInfinite(start));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("GCReadPort"));
}

TEST_F(ChoiceNode, DeviceThatClosesEndsTheWait)
{
    Require(KORO_CommandNode_Execute(start));
    std::size_t asked = 0;
    producer->OnEntry("GCReadPort", [&] {
        if (++asked == 3) Require(KORO_Device_Destruct(tree.device));
    });
    const Error outcome = Outcome(KORO_CommandNode_WaitUntilDoneInfinite(start));
    producer->OnEntry("GCReadPort", {});
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("Pointer has expired!"));
    EXPECT_EQ(Outcome(KORO_CommandNode_WaitUntilDone(start, 0)), InvalidHandle("commandNodeHandle"));
}

TEST_F(ChoiceNode, EntriesAreListedInTheirOrderAvailableOrNot)
{
    ExpectScalarOut<KORO_EnumerationNodeHandle, std::size_t>(
        "numEntries", 4, KORO_EnumerationNode_GetNumEntries, format);
    Strings names;
    for (std::size_t index = 0; index < 4; ++index)
        names.push_back(SymbolicValue(Get<Entry>(KORO_EnumerationNode_GetEntry, format, index)));
    EXPECT_EQ(names, (Strings{"Mono8", "Negative", "Away", "Named"}));

    Entry entry = nullptr;
    EXPECT_EQ(Outcome(KORO_EnumerationNode_GetEntry(format, 4, &entry)), outOfRange);
    EXPECT_EQ(Outcome(KORO_EnumerationNode_GetEntry(format, SIZE_MAX, &entry)), outOfRange);
    EXPECT_EQ(entry, nullptr);
    EXPECT_EQ(Outcome(KORO_EnumerationNode_GetEntry(format, 0, nullptr)), NullPointer("enumerationEntryNodeHandle"));
}

TEST_F(ChoiceNode, EntryTellsItsNameNumberAndWhetherItClearsItself)
{
    const auto mono = FindEntry("Mono8");
    ExpectTextOut("symbolicValue", "Mono8", KORO_EnumerationEntryNode_GetSymbolicValue, mono);
    ExpectScalarOut<Entry, std::int64_t>("value", 8, KORO_EnumerationEntryNode_GetValue, mono);
    ExpectScalarOut<Entry, KORO_Bool8>("isSelfClearing", 0, KORO_EnumerationEntryNode_GetIsSelfClearing, mono);
    const auto negative = FindEntry("Negative");
    ExpectScalarOut<Entry, std::int64_t>("value", -3, KORO_EnumerationEntryNode_GetValue, negative);
    ExpectScalarOut<Entry, KORO_Bool8>("isSelfClearing", 1, KORO_EnumerationEntryNode_GetIsSelfClearing, negative);
    ExpectScalarOut("nodeHandle", Find(map, "EnumEntry_Format_Mono8"), KORO_EnumerationEntryNode_ToNode, mono);
}

TEST_F(ChoiceNode, EntryIsFoundByNumberAndNameAndAlwaysByTheSameHandle)
{
    const auto entry = FindEntry("Away");
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_FindEntryByValue, format, std::int64_t{12}), entry);
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_TryFindEntryByValue, format, std::int64_t{12}), entry);
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_TryFindEntryBySymbolicValue, format, "Away", std::size_t{5}), entry);
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_GetEntry, format, std::size_t{2}), entry);
    EXPECT_EQ(Get<Entry>(KORO_Node_ToEnumerationEntryNode, Find(map, "EnumEntry_Format_Away")), entry);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_EnumerationNode_GetHasEntryByValue, format, std::int64_t{12}), 1);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_EnumerationNode_GetHasEntryBySymbolicValue, format, "Away", std::size_t{5}), 1);
}

TEST_F(ChoiceNode, MissingEntryIsNotFoundOrNull)
{
    Entry entry = FindEntry("Mono8");
    const auto before = entry;
    EXPECT_EQ(
        Outcome(KORO_EnumerationNode_FindEntryByValue(format, -42, &entry)),
        (Error{KORO_RETURN_CODE_NOT_FOUND, "There is no enumeration entry node with the given value (-42)!"}));
    EXPECT_EQ(
        Outcome(KORO_EnumerationNode_FindEntryBySymbolicValue(format, "mono8", 6, &entry)),
        (Error{
            KORO_RETURN_CODE_NOT_FOUND, "There is no enumeration entry node with the given symbolic value (mono8)!"}));
    EXPECT_EQ(entry, before);
    EXPECT_EQ(Outcome(KORO_EnumerationNode_TryFindEntryByValue(format, -42, &entry)), Error{});
    EXPECT_EQ(entry, nullptr);
    entry = before;
    EXPECT_EQ(Outcome(KORO_EnumerationNode_TryFindEntryBySymbolicValue(format, "Symbol", 7, &entry)), Error{});
    EXPECT_EQ(entry, nullptr);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_EnumerationNode_GetHasEntryByValue, format, std::int64_t{-42}), 0);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_EnumerationNode_GetHasEntryBySymbolicValue, format, "Symbol", std::size_t{7}), 0);
}

TEST_F(ChoiceNode, LookUpsDoNotTouchTheDevice)
{
    FindEntry("Mono8");
    producer->ClearJournal();
    FindEntry("Away");
    Get<Entry>(KORO_EnumerationNode_FindEntryByValue, format, std::int64_t{-3});
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(ChoiceNode, CurrentEntryIsTheOneOfTheDevicesNumber)
{
    SetRegister(8, static_cast<std::uint32_t>(-3));
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_GetCurrentEntry, format, 0), FindEntry("Negative"));
    SetRegister(8, 8);
    for (const KORO_NodeCachePolicy policy : {0, 2})
        EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_GetCurrentEntry, format, policy), FindEntry("Negative"));
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_GetCurrentEntry, format, 1), FindEntry("Mono8"));
    EXPECT_EQ(
        Outcome(KORO_EnumerationNode_GetCurrentEntry(format, 0, nullptr)), NullPointer("enumerationEntryNodeHandle"));
}

TEST_F(ChoiceNode, NumberOfTheDeviceWithoutAnEntryIsAnError)
{
    SetRegister(8, 4711);
    Entry entry = nullptr;
    EXPECT_EQ(
        Outcome(KORO_EnumerationNode_GetCurrentEntry(format, 1, &entry)),
        (Error{KORO_RETURN_CODE_ERROR, "EnumerationNode CurrentEntry not found. This should not be possible."}));
    EXPECT_EQ(entry, nullptr);
}

TEST_F(ChoiceNode, EntryIsChosenByHandleNumberAndName)
{
    int writes = 0;
    producer->OnEntry("GCWritePort", [&] {
        ++writes;
        EXPECT_FALSE(InThread([&] { return Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) != 0; }));
    });
    EXPECT_EQ(Outcome(KORO_EnumerationNode_SetCurrentEntry(format, FindEntry("Named"))), Error{});
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_GetCurrentEntry, format, 1), FindEntry("Named"));
    EXPECT_EQ(Outcome(KORO_EnumerationNode_SetCurrentEntryByValue(format, -3)), Error{});
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_GetCurrentEntry, format, 1), FindEntry("Negative"));
    EXPECT_EQ(SetByName("Mono8"), Error{});
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_GetCurrentEntry, format, 1), FindEntry("Mono8"));
    producer->OnEntry("GCWritePort", {});
    EXPECT_EQ(writes, 3);
}

TEST_F(ChoiceNode, NumberWithoutAnEntryIsRefusedByGenApiAndANameIsNotEvenAskedFor)
{
    producer->ClearJournal();
    const Error refused = Outcome(KORO_EnumerationNode_SetCurrentEntryByValue(format, 4711));
    EXPECT_EQ(refused.code, KORO_RETURN_CODE_INVALID_ARGUMENT) << refused;
    EXPECT_THAT(refused.text, HasSubstr("Format"));
    EXPECT_EQ(
        SetByName("Symbol"),
        (Error{
            KORO_RETURN_CODE_NOT_FOUND, "There is no enumeration entry node with the given symbolic value (Symbol)!"}));
    EXPECT_EQ(Writes(), Strings{});
}

TEST_F(ChoiceNode, EntryThatIsNotAvailableFailsOnlyWhenItIsChosen)
{
    producer->ClearJournal();
    for (const auto& outcome :
         {Outcome(KORO_EnumerationNode_SetCurrentEntry(format, FindEntry("Away"))),
          Outcome(KORO_EnumerationNode_SetCurrentEntryByValue(format, 12)), SetByName("Away")})
    {
        EXPECT_EQ(outcome.code, KORO_RETURN_CODE_BAD_ACCESS) << outcome;
    }
    EXPECT_EQ(Writes(), Strings{});
}

TEST_F(ChoiceNode, EntryOfAnotherEnumerationCountsByItsNumber)
{
    const auto other = Get<KORO_EnumerationNodeHandle>(KORO_Node_ToEnumerationNode, Find(map, "Other"));
    const auto one = Get<Entry>(KORO_EnumerationNode_GetEntry, other, std::size_t{0});
    EXPECT_EQ(Outcome(KORO_EnumerationNode_SetCurrentEntry(format, one)), Error{});
    EXPECT_EQ(Get<Entry>(KORO_EnumerationNode_GetCurrentEntry, format, 1), FindEntry("Mono8"));
    const auto two = Get<Entry>(KORO_EnumerationNode_GetEntry, other, std::size_t{1});
    EXPECT_EQ(Outcome(KORO_EnumerationNode_SetCurrentEntry(format, two)).code, KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(
        Outcome(KORO_EnumerationNode_SetCurrentEntry(format, nullptr)), InvalidHandle("enumerationEntryNodeHandle"));
}

TEST_F(ChoiceNode, CategoryListsItsFeatures)
{
    const auto root = Get<KORO_CategoryNodeHandle>(KORO_Node_ToCategoryNode, Find(map, "Root"));
    ExpectScalarOut<KORO_CategoryNodeHandle, std::size_t>("numSubNodes", 2, KORO_CategoryNode_GetNumSubNodes, root);
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_CategoryNode_GetSubNode, root, std::size_t{0}), Find(map, "Start"));
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_CategoryNode_GetSubNode, root, std::size_t{1}), Find(map, "Format"));
    ExpectScalarOut("nodeHandle", Find(map, "Root"), KORO_CategoryNode_ToNode, root);

    KORO_NodeHandle node = nullptr;
    EXPECT_EQ(
        Outcome(KORO_CategoryNode_GetSubNode(root, 2, &node)),
        (Error{KORO_RETURN_CODE_ERROR, "invalid vector subscript"}));
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(Outcome(KORO_CategoryNode_GetSubNode(root, 0, nullptr)), NullPointer("nodeHandle"));
}

TEST_F(ChoiceNode, CommandAndEnumerationGiveThePlainNodeBack)
{
    ExpectScalarOut("nodeHandle", Find(map, "Start"), KORO_CommandNode_ToNode, start);
    ExpectScalarOut("nodeHandle", Find(map, "Format"), KORO_EnumerationNode_ToNode, format);
}

} // namespace koro::test

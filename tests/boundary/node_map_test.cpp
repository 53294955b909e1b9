#include "tests/boundary/described_camera.h"
#include "tests/boundary/lock_elsewhere.h"

#include <cstring>
#include <future>
#include <gmock/gmock.h>
#include <limits>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;

using Strings = std::vector<std::string>;

class NodeMap : public DescribedCamera
{
protected:
    // A feature that is available while the register at 0 is not 0, which is asked for at most once.
    static std::string FeatureOnRegister(const std::string& elements = "")
    {
        return "<Category Name=\"Root\"><pFeature>Feature</pFeature></Category>"
               "<Integer Name=\"Feature\"><pIsAvailable>Available</pIsAvailable><Value>1</Value></Integer>" +
               IntRegister("Available", 0, elements);
    }

    static std::int32_t AccessStatus(KORO_NodeHandle node)
    {
        return Get<std::int32_t>(KORO_Node_GetAccessStatus, node);
    }
};

// Another thread that holds the lock of a map from construction to end.
class LockHolder
{
public:
    explicit LockHolder(KORO_NodeMapHandle map)
    {
        std::promise<void> taken;
        holder = std::async(std::launch::async, [&taken, map, end = released.get_future()] {
            Require(KORO_NodeMap_Lock(map));
            taken.set_value();
            end.wait();
            Require(KORO_NodeMap_Unlock(map));
        });
        taken.get_future().wait();
    }
    ~LockHolder()
    {
        released.set_value();
        holder.wait();
    }

private:
    std::promise<void> released;
    std::future<void> holder;
};

} // namespace

TEST_F(NodeMap, GivingAHandleParsesNothingAndTouchesNoRegister)
{
    producer->Edit([](scripted::Tree& edited) { DescribePort(edited.port, "no description at all"); });
    const auto module = Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
    EXPECT_EQ(Get<std::size_t>(KORO_Module_GetNumNodeMaps, module), 1u);
    producer->ClearJournal();
    EXPECT_NE(Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0}), nullptr);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(NodeMap, FirstUseAsksForThePortsNameAlone)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
    const auto map = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    producer->ClearJournal();
    EXPECT_EQ(Get<std::size_t>(KORO_NodeMap_GetNumNodes, map), 2u);
    EXPECT_EQ(producer->Journal(), (Strings{"GCGetPortInfo(system, 12, size)", "GCGetPortInfo(system, 12, data)"}));

    producer->ClearJournal();
    Find(map, "Root");
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(NodeMap, NodesAreListedInTheDescriptionsOrder)
{
    const auto map = Describe(FeatureOnRegister());
    Strings names;
    for (std::size_t index = 0; index < Get<std::size_t>(KORO_NodeMap_GetNumNodes, map); ++index)
        names.push_back(GetText(KORO_Node_GetName, Get<KORO_NodeHandle>(KORO_NodeMap_GetNode, map, index)));
    EXPECT_EQ(names, (Strings{"Root", "Feature", "Available", "Device"}));
}

TEST_F(NodeMap, NodeHasOneHandleHoweverItIsFound)
{
    const auto map = Describe(FeatureOnRegister());
    const auto feature = Find(map, "Feature");
    EXPECT_EQ(Find(map, "Feature"), feature);
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_NodeMap_GetNode, map, std::size_t{1}), feature);
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_NodeMap_TryFindNode, map, "Feature", std::size_t{8}), feature);
    EXPECT_EQ(Get<KORO_NodeMapHandle>(KORO_Node_GetParentNodeMap, feature), map);
}

TEST_F(NodeMap, MissingNodeIsNoFailureForTryingAndOneForFinding)
{
    const auto map = Describe("");
    auto node = reinterpret_cast<KORO_NodeHandle>(this);
    EXPECT_EQ(Outcome(KORO_NodeMap_TryFindNode(map, "Gain", 5, &node)), Error{});
    EXPECT_EQ(node, nullptr);

    node = reinterpret_cast<KORO_NodeHandle>(this);
    EXPECT_EQ(
        Outcome(KORO_NodeMap_FindNode(map, "Gain", 5, &node)),
        (Error{KORO_RETURN_CODE_NOT_FOUND, "There is no node with the given name (Gain)!"}));
    EXPECT_EQ(node, reinterpret_cast<KORO_NodeHandle>(this));

    EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, "Gain", std::size_t{5}), 0);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, "Device", std::size_t{7}), 1);
}

TEST_F(NodeMap, NamesThatDifferInCaseAreTwoNodes)
{
    const auto map = Describe("<Category Name=\"gain\"/><Category Name=\"Gain\"/>");
    EXPECT_NE(Find(map, "gain"), Find(map, "Gain"));
    EXPECT_EQ(GetText(KORO_Node_GetName, Find(map, "gain")), "gain");
    EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, "GAIN", std::size_t{5}), 0);
}

TEST_F(NodeMap, NameIsLookedUpAsItIs)
{
    const auto map = Describe("<Integer Name=\"Gain\" NameSpace=\"Standard\"><Value>1</Value></Integer>");
    for (const auto* name : {"Std::Gain", "Gain ", " Gain", "Gai", ""})
        EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, name, std::strlen(name) + 1), 0) << name;
}

TEST_F(NodeMap, NameIsOneByteShorterThanItsSizeAndNeedNotBeTerminated)
{
    const auto map = Describe("<Category Name=\"Gain\"/>");
    const auto gain = Find(map, "Gain");
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, "Gainless", std::size_t{5}), gain);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, "Gain\0\0", std::size_t{6}), 0);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, "Gain", std::size_t{1}), 0);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, "Gain", std::size_t{0}), 0);
}

TEST_F(NodeMap, IndexAtOrPastTheEndIsAStandardFailure)
{
    const auto map = Describe("");
    KORO_NodeHandle node = nullptr;
    const Error failure{KORO_RETURN_CODE_ERROR, "invalid vector subscript"};
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNode(map, 1, &node)), failure);
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNode(map, ~std::size_t{0}, &node)), failure);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNode(map, 0, &node)), Error{});
}

TEST_F(NodeMap, EveryPointerIsChecked)
{
    const auto map = Describe("");
    KORO_NodeHandle node = nullptr;
    KORO_Bool8 flag = 0;
    EXPECT_EQ(Outcome(KORO_NodeMap_GetHasNode(map, nullptr, 1, &flag)), NullPointer("nodeName"));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetHasNode(map, "a", 2, nullptr)), NullPointer("hasNode"));
    EXPECT_EQ(Outcome(KORO_NodeMap_FindNode(map, nullptr, 1, &node)), NullPointer("nodeName"));
    EXPECT_EQ(Outcome(KORO_NodeMap_FindNode(map, "a", 2, nullptr)), NullPointer("nodeHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_TryFindNode(map, nullptr, 1, &node)), NullPointer("nodeName"));
    EXPECT_EQ(Outcome(KORO_NodeMap_TryFindNode(map, "a", 2, nullptr)), NullPointer("nodeHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(map, nullptr)), NullPointer("numNodes"));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNode(map, 0, nullptr)), NullPointer("nodeHandle"));
}

TEST_F(NodeMap, LockIsNotTakenWhenNobodyIsToldOfIt)
{
    const auto map = Describe("");
    EXPECT_EQ(Outcome(KORO_NodeMap_TryLock(map, nullptr)), NullPointer("locked"));
    EXPECT_TRUE(TryLockElsewhere(map));

    const LockHolder holder(map);
    EXPECT_EQ(Outcome(KORO_NodeMap_TryLock(map, nullptr)), NullPointer("locked"));
}

TEST_F(NodeMap, MapWithoutTheNamedPortFailsAtEachUseUntilThePortIsThere)
{
    DescribeBy(DescriptionOf("", "Other"));
    const auto map = NodeMapOf(tree.remoteDevice);
    const Error failure{KORO_RETURN_CODE_ERROR, "Could not connect node map with port (Port-Name: Device)!"};
    std::size_t count = 0;
    KORO_NodeHandle node = nullptr;
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(map, &count)), failure);
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNode(map, 0, &node)), failure);
    EXPECT_EQ(Outcome(KORO_NodeMap_TryFindNode(map, "Other", 6, &node)), failure);
    EXPECT_EQ(Outcome(KORO_NodeMap_InvalidateNodes(map)), failure);
    EXPECT_EQ(Outcome(KORO_NodeMap_PollNodes(map, 1)), failure);
    EXPECT_EQ(Outcome(KORO_NodeMap_Lock(map)), failure);
    EXPECT_EQ(Outcome(KORO_NodeMap_Unlock(map)), failure);

    producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_PORTNAME, scripted::Text("Other"));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(map, &count)), Error{});
    EXPECT_EQ(count, 1u);
}

TEST_F(NodeMap, FailureToNameThePortIsThatOfTheQuery)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
    const auto map = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_PORTNAME, scripted::Failing(GenTL::GC_ERR_IO));
    std::size_t count = 0;
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(map, &count)).code, KORO_RETURN_CODE_IO_ERROR);
    producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_PORTNAME, scripted::Text("TLPort"));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetNumNodes(map, &count)), Error{});
}

TEST_F(NodeMap, InvalidatingMakesTheNextReadsAskTheProducer)
{
    const auto map = Describe(FeatureOnRegister());
    const auto feature = Find(map, "Feature");
    producer->ClearJournal();
    EXPECT_EQ(AccessStatus(feature), KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE);
    EXPECT_EQ(AccessStatus(feature), KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE);
    EXPECT_EQ(Reads(), Strings{"GCReadPort(if0-dev0-remote, 0, 4)"});

    SetRegister(0, 1);
    EXPECT_EQ(AccessStatus(feature), KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE);
    EXPECT_EQ(Outcome(KORO_NodeMap_InvalidateNodes(map)), Error{});
    EXPECT_EQ(AccessStatus(feature), KORO_NODE_ACCESS_STATUS_READ_WRITE);
    EXPECT_EQ(Reads().size(), 2u);
}

TEST_F(NodeMap, PollingInvalidatesWhoseTimeIsOver)
{
    const auto map = Describe(FeatureOnRegister("<PollingTime>1000</PollingTime>"));
    const auto feature = Find(map, "Feature");
    EXPECT_EQ(AccessStatus(feature), KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE);
    SetRegister(0, 1);

    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_NodeMap_PollNodes(map, 600)), Error{});
    EXPECT_EQ(AccessStatus(feature), KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE);
    EXPECT_EQ(Outcome(KORO_NodeMap_PollNodes(map, 400)), Error{});
    EXPECT_EQ(Reads(), Strings{}); // nothing is read by the polling itself
    EXPECT_EQ(AccessStatus(feature), KORO_NODE_ACCESS_STATUS_READ_WRITE);
    EXPECT_EQ(Reads().size(), 1u);
}

TEST_F(NodeMap, PollingTakesAnyTime)
{
    const auto map = Describe(FeatureOnRegister("<PollingTime>1000</PollingTime>"));
    for (const auto elapsed :
         {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::max(), std::int64_t{0},
          std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::min()})
    {
        EXPECT_EQ(Outcome(KORO_NodeMap_PollNodes(map, elapsed)), Error{}) << elapsed;
    }
}

TEST_F(NodeMap, PollingGoesOnWhereABlockerCannotBeReadAndGivesTheLockBack)
{
    const auto map = Describe(
        IntRegister("Block", 0, "<Cachable>NoCache</Cachable>") +
        IntRegister("Polled", 4, "<pBlockPolling>Block</pBlockPolling><PollingTime>1</PollingTime>"));
    Find(map, "Polled");
    producer->AnswerOnce("GCReadPort", GenTL::GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(Outcome(KORO_NodeMap_PollNodes(map, 1)), Error{});
    EXPECT_TRUE(TryLockElsewhere(map));
}

TEST_F(NodeMap, LockIsRecursiveAndKeepsOtherThreadsOut)
{
    const auto map = Describe("");
    EXPECT_EQ(Outcome(KORO_NodeMap_Lock(map)), Error{});
    EXPECT_TRUE(TryLock(map));
    EXPECT_FALSE(TryLockElsewhere(map));
    EXPECT_EQ(Outcome(KORO_NodeMap_Unlock(map)), Error{});
    EXPECT_FALSE(TryLockElsewhere(map));
    EXPECT_EQ(Outcome(KORO_NodeMap_Unlock(map)), Error{});
    EXPECT_TRUE(TryLockElsewhere(map));
}

TEST_F(NodeMap, TryingTheLockOfAnotherThreadSaysZeroAndSucceeds)
{
    const auto map = Describe("");
    const LockHolder holder(map);
    KORO_Bool8 locked = 2;
    EXPECT_EQ(Outcome(KORO_NodeMap_TryLock(map, &locked)), Error{});
    EXPECT_EQ(locked, 0);
}

TEST_F(NodeMap, UnlockingWhatIsNotHeldChangesNothing)
{
    const auto map = Describe("");
    const LockHolder holder(map);
    EXPECT_EQ(Outcome(KORO_NodeMap_Unlock(map)), Error{});
    EXPECT_FALSE(TryLock(map));
}

TEST_F(NodeMap, EachMapHasALockOfItsOwn)
{
    const auto map = Describe("");
    const auto system = Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
    const LockHolder holder(map);
    EXPECT_TRUE(TryLock(Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, system, std::size_t{0})));
}

TEST_F(NodeMap, LockingTheThreadsOwnMapLetsItsOperationsThrough)
{
    const auto map = Describe(FeatureOnRegister());
    Require(KORO_NodeMap_Lock(map));
    EXPECT_EQ(Outcome(KORO_NodeMap_InvalidateNodes(map)), Error{});
    EXPECT_EQ(Outcome(KORO_NodeMap_PollNodes(map, 1)), Error{});
    EXPECT_EQ(AccessStatus(Find(map, "Feature")), KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE);
    Require(KORO_NodeMap_Unlock(map));
}

// Each of these would wait for ever if it took the lock.
TEST_F(NodeMap, LookingForNodesNeedsNoLock)
{
    const auto map = Describe(FeatureOnRegister());
    const LockHolder holder(map);
    EXPECT_EQ(Get<std::size_t>(KORO_NodeMap_GetNumNodes, map), 4u);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_NodeMap_GetHasNode, map, "Feature", std::size_t{8}), 1);
    const auto feature = Find(map, "Feature");
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_NodeMap_GetNode, map, std::size_t{1}), feature);
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_NodeMap_TryFindNode, map, "Feature", std::size_t{8}), feature);
    EXPECT_EQ(Get<KORO_NodeMapHandle>(KORO_Node_GetParentNodeMap, feature), map);
}

// The order of events shows it: an operation that waits for the lock cannot finish before the lock is released.
TEST_F(NodeMap, InvalidatingAndPollingWaitForTheLock)
{
    const auto map = Describe(FeatureOnRegister("<PollingTime>1</PollingTime>"));
    const auto available = Find(map, "Available");
    struct Held
    {
        KORO_NodeMapHandle map;
        bool lockedElsewhere = true;
        int calls = 0;
    } held{map};
    KORO_NodeChangedCallbackHandle callback = nullptr;
    Require(KORO_Node_RegisterChangedCallback(
        available,
        [](KORO_NodeHandle, void* context) {
            auto& state = *static_cast<Held*>(context);
            state.lockedElsewhere = TryLockElsewhere(state.map);
            ++state.calls;
        },
        &held, &callback));

    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(held.calls, 1);
    EXPECT_FALSE(held.lockedElsewhere);
    held.lockedElsewhere = true;
    Require(KORO_NodeMap_PollNodes(map, 1));
    EXPECT_EQ(held.calls, 2);
    EXPECT_FALSE(held.lockedElsewhere);
    EXPECT_TRUE(TryLockElsewhere(map));
}

TEST_F(NodeMap, NodesStayWhenTheDeviceFailsAndWorkAgainAfterwards)
{
    const auto map = Describe(FeatureOnRegister());
    const auto feature = Find(map, "Feature");
    producer->Answer("GCReadPort", GenTL::GC_ERR_IO);
    std::int32_t status = -1;
    EXPECT_EQ(Outcome(KORO_Node_GetAccessStatus(feature, &status)).code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_EQ(status, -1);
    EXPECT_EQ(Find(map, "Feature"), feature);
    producer->AnswerAsUsual("GCReadPort");
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(AccessStatus(feature), KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE);
}

TEST_F(NodeMap, LockThatIsHeldDoesNotKeepTheDeviceFromClosing)
{
    const auto map = Describe(FeatureOnRegister());
    KORO_NodeChangedCallbackHandle callback = nullptr;
    Require(KORO_Node_RegisterChangedCallback(
        Find(map, "Feature"), [](KORO_NodeHandle, void*) {}, nullptr, &callback));
    std::promise<void> locked;
    std::promise<void> closed;
    auto unlocked = std::async(std::launch::async, [&] {
        Require(KORO_NodeMap_Lock(map));
        locked.set_value();
        closed.get_future().wait();
        return Outcome(KORO_NodeMap_Unlock(map));
    });
    locked.get_future().wait();
    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    closed.set_value();
    EXPECT_EQ(unlocked.get(), InvalidHandle("nodeMapHandle"));
}

} // namespace koro::test

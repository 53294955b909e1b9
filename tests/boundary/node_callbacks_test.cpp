// News of changes: registering, delivery, unregistering, and callbacks that come back to the map.
#include "tests/boundary/described_camera.h"
#include "tests/boundary/lock_elsewhere.h"
#include "tests/support/in_thread.h"

#include <algorithm>
#include <functional>
#include <list>
#include <string>
#include <thread>
#include <vector>

namespace koro::test
{

namespace
{

class NodeCallbacks : public DescribedCamera
{
protected:
    // "Polled" alone is polled, after 10 ms; "Dependent" depends on it.
    KORO_NodeMapHandle DescribeAll()
    {
        return Describe(
            IntRegister("Polled", 0, "<PollingTime>10</PollingTime>") + IntRegister("Other", 4) +
            "<Integer Name=\"Dependent\"><pInvalidator>Polled</pInvalidator><Value>1</Value></Integer>");
    }

    using Body = std::function<void(KORO_NodeHandle)>;

    // The body stays where it is until the test ends, after all nodes.
    KORO_NodeChangedCallbackHandle Register(KORO_NodeHandle node, Body body)
    {
        bodies.push_back(std::move(body));
        return Get<KORO_NodeChangedCallbackHandle>(
            KORO_Node_RegisterChangedCallback, node, &Call, static_cast<void*>(&bodies.back()));
    }

private:
    static void Call(KORO_NodeHandle node, void* context) { (*static_cast<const Body*>(context))(node); }

    std::list<Body> bodies;
};

} // namespace

TEST_F(NodeCallbacks, ChangeIsToldOnItsOwnThreadWithTheLockHeld)
{
    const auto map = DescribeAll();
    const auto node = Find(map, "Other");
    std::vector<KORO_NodeHandle> told;
    std::thread::id toldOn;
    Register(node, [&](KORO_NodeHandle changed) {
        told.push_back(changed);
        toldOn = std::this_thread::get_id();
        EXPECT_FALSE(TryLockElsewhere(map));
    });
    EXPECT_EQ(told.size(), 0u); // not by the registration

    const auto caller = InThread([&] {
        Require(KORO_NodeMap_InvalidateNodes(map));
        return std::this_thread::get_id();
    });
    EXPECT_EQ(told, std::vector<KORO_NodeHandle>{node});
    EXPECT_EQ(toldOn, caller);
    EXPECT_TRUE(TryLockElsewhere(map));
}

// Nobody but the runtime holds the lock of a question.
TEST_F(NodeCallbacks, EndOfACommandIsToldWithTheLockHeld)
{
    const auto map = Describe(
        "<Command Name=\"Start\"><pValue>StartReg</pValue><CommandValue>1</CommandValue></Command>" +
        IntRegister("StartReg", 0, "<Cachable>NoCache</Cachable>"));
    const auto start = Get<KORO_CommandNodeHandle>(KORO_Node_ToCommandNode, Find(map, "Start"));
    Require(KORO_CommandNode_Execute(start));
    SetRegister(0, 0);
    int calls = 0;
    Register(Find(map, "Start"), [&](KORO_NodeHandle) {
        ++calls;
        EXPECT_FALSE(TryLockElsewhere(map));
    });
    EXPECT_EQ(Get<KORO_Bool8>(KORO_CommandNode_GetIsDone, start), 1);
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(TryLockElsewhere(map));
}

TEST_F(NodeCallbacks, PollingTellsThoseWhoseTimeIsOverAndTheirDependents)
{
    const auto map = DescribeAll();
    std::vector<std::string> told;
    for (const auto* name : {"Polled", "Other", "Dependent"})
        Register(Find(map, name), [&told, name](KORO_NodeHandle) { told.push_back(name); });
    Require(KORO_NodeMap_PollNodes(map, 9));
    EXPECT_EQ(told, std::vector<std::string>{});
    Require(KORO_NodeMap_PollNodes(map, 1));
    std::sort(told.begin(), told.end());
    EXPECT_EQ(told, (std::vector<std::string>{"Dependent", "Polled"}));
}

TEST_F(NodeCallbacks, EveryRegistrationIsCalledOnce)
{
    const auto map = DescribeAll();
    const auto node = Find(map, "Other");
    int calls = 0;
    const auto first = Register(node, [&](KORO_NodeHandle) { ++calls; });
    const auto second = Register(node, [&](KORO_NodeHandle) { ++calls; });
    EXPECT_NE(first, second);
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 2);

    EXPECT_EQ(Outcome(KORO_Node_UnregisterChangedCallback(node, first)), Error{});
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 3);
}

TEST_F(NodeCallbacks, UnknownHandleIsNoFailure)
{
    const auto map = DescribeAll();
    const auto node = Find(map, "Other");
    int calls = 0;
    const auto handle = Register(node, [&](KORO_NodeHandle) { ++calls; });

    EXPECT_EQ(Outcome(KORO_Node_UnregisterChangedCallback(node, nullptr)), Error{});
    EXPECT_EQ(
        Outcome(KORO_Node_UnregisterChangedCallback(node, reinterpret_cast<KORO_NodeChangedCallbackHandle>(this))),
        Error{});
    EXPECT_EQ(Outcome(KORO_Node_UnregisterChangedCallback(Find(map, "Polled"), handle)), Error{});
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 1);

    EXPECT_EQ(Outcome(KORO_Node_UnregisterChangedCallback(node, handle)), Error{});
    EXPECT_EQ(Outcome(KORO_Node_UnregisterChangedCallback(node, handle)), Error{});
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 1);
}

TEST_F(NodeCallbacks, PointersAreCheckedBeforeAnythingIsRegistered)
{
    const auto node = Find(DescribeAll(), "Other");
    KORO_NodeChangedCallbackHandle handle = nullptr;
    EXPECT_EQ(Outcome(KORO_Node_RegisterChangedCallback(node, nullptr, nullptr, &handle)), NullPointer("callback"));
    EXPECT_EQ(
        Outcome(KORO_Node_RegisterChangedCallback(
            node, [](KORO_NodeHandle, void*) { ADD_FAILURE(); }, nullptr, nullptr)),
        NullPointer("callbackHandle"));
    EXPECT_EQ(handle, nullptr);
    Require(KORO_NodeMap_InvalidateNodes(NodeMapOf(tree.remoteDevice)));
}

TEST_F(NodeCallbacks, ContextIsHandedBackAsItCame)
{
    const auto map = DescribeAll();
    static void* given;
    KORO_NodeChangedCallbackHandle handle = nullptr;
    for (void* const context : {static_cast<void*>(this), static_cast<void*>(nullptr)})
    {
        given = &given;
        Require(KORO_Node_RegisterChangedCallback(
            Find(map, "Other"), [](KORO_NodeHandle, void* back) { given = back; }, context, &handle));
        Require(KORO_NodeMap_InvalidateNodes(map));
        EXPECT_EQ(given, context);
        Require(KORO_Node_UnregisterChangedCallback(Find(map, "Other"), handle));
    }
}

TEST_F(NodeCallbacks, CallbackMayUseTheWholeMap)
{
    const auto map = DescribeAll();
    int calls = 0;
    Register(Find(map, "Other"), [&](KORO_NodeHandle changed) {
        if (++calls > 1) return; // the invalidation below comes back
        EXPECT_EQ(GetText(KORO_Node_GetName, changed), "Other");
        EXPECT_EQ(Get<KORO_NodeMapHandle>(KORO_Node_GetParentNodeMap, changed), map);
        EXPECT_EQ(
            Get<std::int32_t>(KORO_Node_GetAccessStatus, Find(map, "Polled")), KORO_NODE_ACCESS_STATUS_READ_WRITE);
        EXPECT_EQ(Get<std::size_t>(KORO_Node_GetNumInvalidatedNodes, Find(map, "Polled")), 1u);
        Require(KORO_NodeMap_Lock(map));
        Require(KORO_NodeMap_PollNodes(map, 1));
        Require(KORO_NodeMap_InvalidateNodes(map));
        Require(KORO_NodeMap_Unlock(map));
    });
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(TryLockElsewhere(map));
}

TEST_F(NodeCallbacks, CallbackMayUnregisterItself)
{
    const auto map = DescribeAll();
    const auto node = Find(map, "Other");
    KORO_NodeChangedCallbackHandle handle = nullptr;
    int calls = 0;
    handle = Register(node, [&](KORO_NodeHandle changed) {
        EXPECT_EQ(Outcome(KORO_Node_UnregisterChangedCallback(changed, handle)), Error{});
        ++calls;
        EXPECT_EQ(GetText(KORO_Node_GetName, changed), "Other");
    });
    Require(KORO_NodeMap_InvalidateNodes(map));
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 1);
}

TEST_F(NodeCallbacks, CallbackMayUnregisterTheOthers)
{
    const auto map = DescribeAll();
    const auto node = Find(map, "Other");
    std::vector<KORO_NodeChangedCallbackHandle> handles;
    int calls = 0;
    for (int number = 0; number < 3; ++number)
    {
        handles.push_back(Register(node, [&](KORO_NodeHandle changed) {
            ++calls;
            for (const auto handle : handles)
                EXPECT_EQ(Outcome(KORO_Node_UnregisterChangedCallback(changed, handle)), Error{});
        }));
    }
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 1);
}

TEST_F(NodeCallbacks, CallbackMayRegisterMore)
{
    const auto map = DescribeAll();
    const auto node = Find(map, "Other");
    int calls = 0;
    int moreCalls = 0;
    Register(node, [&](KORO_NodeHandle changed) {
        if (++calls == 1) Register(changed, [&](KORO_NodeHandle) { ++moreCalls; });
    });
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 1);
    moreCalls = 0; // whether this round calls it is not promised
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(moreCalls, 1);
}

TEST_F(NodeCallbacks, CallbackMayEndTheDevice)
{
    const auto map = DescribeAll();
    const auto node = Find(map, "Other");
    int calls = 0;
    Register(node, [&](KORO_NodeHandle changed) {
        ++calls;
        EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
        std::size_t size = 0; // the handle has ended, though the running call keeps the map
        EXPECT_EQ(Outcome(KORO_Node_GetName(changed, nullptr, &size)), InvalidHandle("nodeHandle"));
    });
    EXPECT_EQ(Outcome(KORO_NodeMap_InvalidateNodes(map)), Error{});
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(Outcome(KORO_NodeMap_InvalidateNodes(map)), InvalidHandle("nodeMapHandle"));
    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_Node_GetName(node, nullptr, &size)), InvalidHandle("nodeHandle"));
}

TEST_F(NodeCallbacks, RegistrationEndsWithTheDevice)
{
    const auto map = DescribeAll();
    const auto node = Find(map, "Other");
    const auto handle = Register(node, [](KORO_NodeHandle) { ADD_FAILURE(); });
    Register(Find(map, "Polled"), [](KORO_NodeHandle) { ADD_FAILURE(); });

    EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
    EXPECT_EQ(Outcome(KORO_Node_UnregisterChangedCallback(node, handle)), InvalidHandle("nodeHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_InvalidateNodes(map)), InvalidHandle("nodeMapHandle"));
}

TEST_F(NodeCallbacks, RegistrationThatIsLeftOverIsNoTroubleForTheLibrarysEnd)
{
    Register(Find(DescribeAll(), "Other"), [](KORO_NodeHandle) { ADD_FAILURE(); });
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});
    EXPECT_EQ(producer->Open(), std::vector<std::string>{});
    EXPECT_EQ(Outcome(KORO_Library_Initialize()), Error{}); // for the end of the test
}

} // namespace koro::test

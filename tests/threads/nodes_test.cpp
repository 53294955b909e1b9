// One camera's nodes in many threads: the first use of everything, the lock, callbacks that come and go, and a device
// that ends meanwhile.
#include "tests/boundary/described_camera.h"
#include "tests/threads/threads.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace koro::test;

namespace
{

constexpr std::size_t threadCount = 4;

class NodesInThreads : public DescribedCamera
{
protected:
    KORO_NodeMapHandle DescribeAll()
    {
        return Describe(
            "<Category Name=\"Root\"><pFeature>Feature</pFeature></Category>" +
            IntRegister("Switch", 0, "<PollingTime>1</PollingTime>") +
            "<Integer Name=\"Feature\"><pIsAvailable>Switch</pIsAvailable><pInvalidator>Switch</pInvalidator>"
            "<Value>1</Value><pSelected>Chosen</pSelected></Integer><Integer "
            "Name=\"Chosen\"><Value>1</Value></Integer>");
    }

    static void Count(KORO_NodeHandle, void* count) { ++*static_cast<std::atomic<int>*>(count); }
};

// A dead handle, or a producer whose device has been closed.
bool IsEnd(KORO_ReturnCode code)
{
    return code == KORO_RETURN_CODE_INVALID_HANDLE || code == KORO_RETURN_CODE_ERROR;
}

} // namespace

TEST_F(NodesInThreads, FirstRequestForTheMapsFetchesThemOnce)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream);
    producer->ClearJournal();
    std::vector<KORO_NodeMapHandle> maps(threadCount);
    Threads threads;
    threads.Add(threadCount, [&](std::size_t number) {
        maps[number] = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    });
    threads.Join();
    for (const auto map : maps)
        EXPECT_EQ(map, maps.front());
    EXPECT_EQ(Reads().size(), 1u);
}

TEST_F(NodesInThreads, FirstUseOfTheMapGivesAllTheSameNodes)
{
    const auto map = Get<KORO_NodeMapHandle>(
        KORO_Module_GetNodeMap, Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream), std::size_t{0});
    producer->ClearJournal();
    std::vector<KORO_NodeHandle> nodes(threadCount);
    Threads threads;
    threads.Add(threadCount, [&](std::size_t number) { nodes[number] = Find(map, "Root"); });
    threads.Join();
    for (const auto node : nodes)
        EXPECT_EQ(node, nodes.front());
    EXPECT_EQ(producer->Journal().size(), 2u); // the port's name, once
}

TEST_F(NodesInThreads, ListsAreTheSameForAllWhoeverHoldsTheLock)
{
    const auto map = DescribeAll();
    const auto feature = Find(map, "Feature");
    const auto theSwitch = Find(map, "Switch");
    Threads threads;
    threads.Add(threadCount, [&](std::size_t number) {
        const bool locks = number % 2 == 0;
        if (locks) Require(KORO_NodeMap_Lock(map));
        EXPECT_EQ(Get<std::size_t>(KORO_Node_GetNumInvalidatedNodes, theSwitch), 3u);
        EXPECT_EQ(Get<KORO_NodeHandle>(KORO_Node_GetSelectedNode, feature, std::size_t{0}), Find(map, "Chosen"));
        EXPECT_EQ(Get<std::size_t>(KORO_Node_GetNumInvalidatingNodes, feature), 1u);
        if (locks) Require(KORO_NodeMap_Unlock(map));
    });
    threads.Join();
}

TEST_F(NodesInThreads, CallbacksComeAndGoWhileTheMapIsInvalidated)
{
    constexpr int rounds = 50;
    const auto map = DescribeAll();
    const auto feature = Find(map, "Feature");
    std::atomic<int> calls{0};
    Threads threads;
    threads.Add(2, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            std::atomic<int> own{0};
            KORO_NodeChangedCallbackHandle handle = nullptr;
            Require(KORO_Node_RegisterChangedCallback(feature, &Count, &own, &handle));
            Require(KORO_NodeMap_InvalidateNodes(map));
            Require(KORO_Node_UnregisterChangedCallback(feature, handle));
            // The last call is over: `own` goes now.
            EXPECT_GE(own, 1);
            calls += own;
        }
    });
    threads.Add(1, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            Require(KORO_NodeMap_InvalidateNodes(map));
            Require(KORO_NodeMap_PollNodes(map, 1));
            Get<std::int32_t>(KORO_Node_GetAccessStatus, feature);
        }
    });
    threads.Join();
    EXPECT_GE(calls, 2 * rounds);
}

TEST_F(NodesInThreads, LockKeepsPairsTogether)
{
    constexpr int rounds = 100;
    const auto map = DescribeAll();
    int guarded = 0; // by the lock of the map alone
    Threads threads;
    threads.Add(threadCount, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            Require(KORO_NodeMap_Lock(map));
            Require(KORO_NodeMap_InvalidateNodes(map));
            ++guarded;
            Require(KORO_NodeMap_Unlock(map));
        }
    });
    threads.Add(1, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            if (Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) == 0) continue;
            ++guarded;
            --guarded;
            Require(KORO_NodeMap_Unlock(map));
        }
    });
    threads.Join();
    EXPECT_EQ(guarded, static_cast<int>(threadCount) * rounds);
}

TEST_F(NodesInThreads, DeviceThatEndsMeanwhileEndsEveryUseByACode)
{
    for (int round = 0; round < 10; ++round)
    {
        const auto map = DescribeAll();
        const auto feature = Find(map, "Feature");
        std::atomic<int> calls{0};
        KORO_NodeChangedCallbackHandle handle = nullptr;
        Require(KORO_Node_RegisterChangedCallback(feature, &Count, &calls, &handle));
        Threads threads;
        threads.Add(2, [&](std::size_t number) {
            for (;;)
            {
                std::int32_t status = 0;
                std::size_t size = 0;
                const auto code = number == 0 ? KORO_Node_GetAccessStatus(feature, &status)
                                              : KORO_Node_GetNumInvalidatedNodes(feature, &size);
                if (code != KORO_RETURN_CODE_SUCCESS)
                {
                    EXPECT_TRUE(IsEnd(code)) << code;
                    if (code == KORO_RETURN_CODE_INVALID_HANDLE) return;
                }
                const auto invalidated = KORO_NodeMap_InvalidateNodes(map);
                EXPECT_TRUE(invalidated == KORO_RETURN_CODE_SUCCESS || IsEnd(invalidated)) << invalidated;
            }
        });
        threads.Add(1, [&](std::size_t) { Require(KORO_Device_Destruct(tree.device)); });
        threads.Join();
        Open(); // not before: the last call that was inside closes the device
    }
}

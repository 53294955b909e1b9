// Handle tables under concurrent use; run by the race detector.

#include "tests/unit/capi/handle_kinds_of_tests.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace koro::internal::test
{
namespace
{

constexpr int threadCount = 4;
constexpr int rounds = 2000;

template <class Work>
void OnAllThreads(Work work)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread)
        threads.emplace_back(work);
    for (auto& thread : threads)
        thread.join();
}

TEST(HandleTablesThreads, EntriesComeGoAndAreFoundConcurrently)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    const auto shared = std::make_shared<Child>();
    const auto sharedHandle = table.Add(shared, parent);
    std::atomic<int> missed{0};
    OnAllThreads([&] {
        for (int round = 0; round < rounds; ++round)
        {
            const auto own = std::make_shared<Child>();
            const auto handle = table.Add(own, parent);
            if (ObjectOf(table, handle) != own) ++missed;
            if (ObjectOf(table, sharedHandle) != shared) ++missed;
            table.Remove(handle);
            if (ObjectOf(table, handle) == own) ++missed;
        }
    });
    EXPECT_EQ(missed, 0);
    EXPECT_EQ(SizeOf(table), 1);
}

TEST(HandleTablesThreads, OneOfManyAddsOfAnObjectIsNew)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    for (int round = 0; round < rounds / 10; ++round)
    {
        const auto child = std::make_shared<Child>();
        std::atomic<int> newEntries{0};
        OnAllThreads([&] {
            bool isNew = false;
            table.Add(child, parent, &isNew);
            if (isNew) ++newEntries;
        });
        ASSERT_EQ(newEntries, 1);
    }
}

TEST(HandleTablesThreads, ParentsEndWhileTheirChildrenAreRemoved)
{
    HandleTable<Child> table;
    for (int round = 0; round < rounds / 10; ++round)
    {
        auto parent = std::make_shared<Parent>();
        std::vector<HandleOf<Child>> handles;
        for (int child = 0; child < 8; ++child)
            handles.push_back(table.Add(std::make_shared<Child>(), parent));

        std::thread remover([&] {
            for (const auto handle : handles)
                table.Remove(handle);
        });
        parent.reset();
        remover.join();
        ASSERT_EQ(SizeOf(table), 0);
    }
}

TEST(HandleTablesThreads, CloseWhileOthersAddLeavesNothingBehind)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    for (int round = 0; round < rounds / 10; ++round)
    {
        table.Open();
        std::atomic<int> started{0};
        std::vector<std::thread> threads;
        for (int thread = 0; thread < threadCount; ++thread)
        {
            threads.emplace_back([&] {
                try
                {
                    for (;;)
                    {
                        table.Add(std::make_shared<Child>(), parent);
                        ++started;
                    }
                }
                catch (const NotInitializedException&) // closed: what the loop waits for
                {}
            });
        }
        while (started < threadCount)
            std::this_thread::yield();
        table.Close();
        for (auto& thread : threads)
            thread.join();
        ASSERT_EQ(SizeOf(table), 0);
    }
}

} // namespace
} // namespace koro::internal::test

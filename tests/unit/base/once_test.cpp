#include "base/once.h"

#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <stdexcept>
#include <thread>
#include <vector>

using koro::internal::Once;

TEST(Once, RunsTheStepOneTime)
{
    Once once;
    int runs = 0;
    once.Run([&] { ++runs; });
    once.Run([&] { ++runs; });
    EXPECT_EQ(runs, 1);
}

TEST(Once, FailureLeavesTheStepOpenForTheNextCaller)
{
    Once once;
    int runs = 0;
    EXPECT_THROW(once.Run([] { throw std::runtime_error("first"); }), std::runtime_error);
    EXPECT_THROW(once.Run([] { throw std::runtime_error("second"); }), std::runtime_error);
    once.Run([&] { ++runs; });
    EXPECT_EQ(runs, 1);
}

TEST(Once, EveryCallerReturnsAfterTheOneRunIsOver)
{
    Once once;
    std::atomic<int> runs{0};
    std::atomic<int> seenDone{0};
    constexpr int threadCount = 4;
    std::latch start(threadCount);
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index)
    {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            once.Run([&] { ++runs; });
            seenDone += runs;
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(seenDone, threadCount);
}

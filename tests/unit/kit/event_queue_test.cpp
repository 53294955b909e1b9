#include "producers/kit/failure.h"
#include "tests/unit/kit/test_stream.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace
{
using namespace koro::kit;

class KitEventQueue : public testing::Test
{
protected:
    ~KitEventQueue() override { module->Close(); }

    void Raise(const std::string& block) { module->RaiseEvent(EVENT_ERROR, block); }
    std::size_t NumWaiting()
    {
        std::size_t number = 0;
        std::memcpy(&number, events->Info(EVENT_NUM_IN_QUEUE).bytes.data(), sizeof number);
        return number;
    }

    const std::shared_ptr<kit_test::Stream> module = kit_test::MakeStream();
    const std::shared_ptr<EventQueue> events = module->RegisterEvent(EVENT_ERROR);
    char buffer[16] = {};
    std::size_t size = sizeof buffer;
};

TEST_F(KitEventQueue, HandsBlocksOutInOrder)
{
    Raise("one");
    Raise("three");
    EXPECT_EQ(events->Take(buffer, &size, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(std::string(buffer, size), "one");
    size = sizeof buffer;
    EXPECT_EQ(events->Take(buffer, &size, 0), GC_ERR_SUCCESS);
    EXPECT_EQ(std::string(buffer, size), "three");
    EXPECT_EQ(events->Take(buffer, &size, 0), GC_ERR_TIMEOUT);
}

TEST_F(KitEventQueue, KeepsABlockThatDoesNotFit)
{
    Raise("three");
    size = 2;
    EXPECT_EQ(events->Take(buffer, &size, 0), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(NumWaiting(), 1U);
}

TEST_F(KitEventQueue, EndsOneWaitForEachKill)
{
    events->Kill();
    events->Kill();
    Raise("one");
    EXPECT_EQ(events->Take(buffer, &size, GENTL_INFINITE), GC_ERR_ABORT);
    EXPECT_EQ(events->Take(buffer, &size, GENTL_INFINITE), GC_ERR_ABORT);
    EXPECT_EQ(events->Take(buffer, &size, GENTL_INFINITE), GC_ERR_SUCCESS);
}

TEST_F(KitEventQueue, WakesAWaiterThatWaitsWithoutEnd)
{
    GC_ERROR result = GC_ERR_ERROR;
    std::thread waiter([&] { result = events->Take(buffer, &size, GENTL_INFINITE); });
    Raise("one");
    waiter.join();
    EXPECT_EQ(result, GC_ERR_SUCCESS);
}

TEST_F(KitEventQueue, EndsAllWaitsWhenItIsUnregistered)
{
    GC_ERROR result = GC_ERR_SUCCESS;
    std::thread waiter([&] { result = events->Take(buffer, &size, GENTL_INFINITE); });
    module->UnregisterEvent(EVENT_ERROR);
    waiter.join();
    EXPECT_TRUE(result == GC_ERR_ABORT || result == GC_ERR_INVALID_HANDLE) << result;
    EXPECT_EQ(events->Take(buffer, &size, 0), GC_ERR_INVALID_HANDLE);
}

TEST_F(KitEventQueue, IsRegisteredOnce)
{
    EXPECT_THROW(module->RegisterEvent(EVENT_ERROR), Failure);
    EXPECT_THROW(module->RegisterEvent(EVENT_FEATURE_CHANGE), Failure);
    module->UnregisterEvent(EVENT_ERROR);
    EXPECT_NE(module->RegisterEvent(EVENT_ERROR), nullptr);
}

TEST_F(KitEventQueue, BoundsWhatNobodyTakes)
{
    for (int i = 0; i < 2000; ++i)
        Raise("x");
    EXPECT_EQ(NumWaiting(), 1024U);
    events->Flush();
    EXPECT_EQ(NumWaiting(), 0U);
}

TEST_F(KitEventQueue, TakesErrorBlocksApart)
{
    const std::string block = ErrorBlock(GC_ERR_IO, "broken");
    EXPECT_STREQ(events->DataInfo(block.data(), block.size(), EVENT_DATA_VALUE).bytes.c_str(), "broken");
    EXPECT_THROW(events->DataInfo("ab", 2, EVENT_DATA_VALUE), Failure);
}

} // namespace

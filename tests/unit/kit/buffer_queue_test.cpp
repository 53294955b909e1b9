#include "producers/kit/failure.h"
#include "tests/unit/kit/test_stream.h"

#include <functional>
#include <gtest/gtest.h>

namespace
{
using namespace koro::kit;

GC_ERROR CodeOfQueueing(const std::function<void()>& act)
{
    try
    {
        act();
        return GC_ERR_SUCCESS;
    }
    catch (const Failure& failure)
    {
        return failure.Code();
    }
}

class KitBufferQueue : public testing::Test
{
protected:
    KitBufferQueue() { events = stream->RegisterEvent(EVENT_NEW_BUFFER); }
    ~KitBufferQueue() override { stream->Close(); }

    // Fills the next buffer with frame n.
    void Fill(std::uint64_t frameId)
    {
        const std::lock_guard lock(stream->Mutex());
        const auto buffer = queue.BeginFill();
        if (!buffer) return;
        FrameFacts frame;
        frame.frameId = frameId;
        queue.EndFill(buffer, frame);
    }
    // The handle of the buffer that the event hands out, or null.
    void* Taken()
    {
        EVENT_NEW_BUFFER_DATA data{};
        std::size_t size = sizeof data;
        return events->Take(&data, &size, 0) == GC_ERR_SUCCESS ? data.BufferHandle : nullptr;
    }

    const std::shared_ptr<kit_test::Stream> stream = kit_test::MakeStream();
    BufferQueue& queue = stream->queue;
    std::shared_ptr<EventQueue> events;
};

TEST_F(KitBufferQueue, HandsFilledBuffersOutInTheOrderOfQueueing)
{
    const auto first = stream->Announce();
    const auto second = stream->Announce();
    stream->Queue(*second);
    stream->Queue(*first);
    Fill(1);
    Fill(2);
    EXPECT_EQ(Taken(), second->Handle());
    EXPECT_EQ(Taken(), first->Handle());
    EXPECT_EQ(Taken(), nullptr);
    EXPECT_EQ(second->frame.frameId, 1U);
    EXPECT_EQ(queue.counters.delivered, 2U);
}

TEST_F(KitBufferQueue, CountsAFrameWithoutBufferAsUnderrun)
{
    stream->Announce();
    Fill(1);
    EXPECT_EQ(queue.counters.underruns, 1U);
    EXPECT_EQ(Taken(), nullptr);
}

TEST_F(KitBufferQueue, RefusesABufferThatIsInAQueue)
{
    const auto buffer = stream->Announce();
    stream->Queue(*buffer);
    EXPECT_EQ(CodeOfQueueing([&] { stream->Queue(*buffer); }), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(CodeOfQueueing([&] { queue.Revoke(*buffer); }), GC_ERR_BUSY);
    Fill(1);
    EXPECT_EQ(CodeOfQueueing([&] { stream->Queue(*buffer); }), GC_ERR_RESOURCE_IN_USE);
    Taken();
    EXPECT_EQ(queue.Revoke(*buffer), buffer);
    EXPECT_EQ(CodeOfQueueing([&] { queue.Revoke(*buffer); }), GC_ERR_INVALID_HANDLE);
}

TEST_F(KitBufferQueue, RefusesMemoryThatIsAnnouncedAlready)
{
    std::byte memory[8];
    const auto announce = [&] {
        queue.Announce(std::make_shared<Buffer>(memory, sizeof memory, nullptr, PortFacts{}));
    };
    EXPECT_EQ(CodeOfQueueing(announce), GC_ERR_SUCCESS);
    EXPECT_EQ(CodeOfQueueing(announce), GC_ERR_RESOURCE_IN_USE);
}

TEST_F(KitBufferQueue, FlushesInputToOutputWithoutNewData)
{
    const auto buffer = stream->Announce();
    stream->Queue(*buffer);
    queue.Flush(ACQ_QUEUE_INPUT_TO_OUTPUT);
    EXPECT_EQ(Taken(), buffer->Handle());
    EXPECT_FALSE(buffer->hasNewData);
}

TEST_F(KitBufferQueue, FlushesEverythingBackToTheInput)
{
    const auto delivered = stream->Announce();
    stream->Announce();
    stream->Queue(*delivered);
    Fill(1);
    queue.Flush(ACQ_QUEUE_ALL_TO_INPUT);
    EXPECT_EQ(queue.NumQueued(), 2U);
    EXPECT_EQ(queue.NumAwaitingDelivery(), 0U);
    queue.Flush(ACQ_QUEUE_ALL_DISCARD);
    EXPECT_EQ(queue.NumQueued(), 0U);
    EXPECT_EQ(CodeOfQueueing([&] { queue.Flush(99); }), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(KitBufferQueue, LeavesFilledBuffersIdleWhileTheEventIsNotRegistered)
{
    const auto buffer = stream->Announce();
    stream->Queue(*buffer);
    stream->UnregisterEvent(EVENT_NEW_BUFFER);
    Fill(1);
    EXPECT_EQ(buffer->place, Place::Idle);
    EXPECT_TRUE(buffer->hasNewData);
}

} // namespace

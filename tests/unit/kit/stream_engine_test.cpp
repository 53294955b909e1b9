#include "producers/kit/failure.h"
#include "producers/kit/stream_engine.h"
#include "tests/unit/kit/test_stream.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace
{
using namespace koro::kit;

// Fills as fast as buffers come; holds a fill as long as `isHeld`.
class FastEngine final : public StreamEngine
{
public:
    using StreamEngine::StreamEngine;
    ~FastEngine() override { Stop(true); }

    bool isHeld = false; // guarded by the stream's mutex
    bool fails = false;  // as the last one
    std::atomic<bool> hasFailed{false};

private:
    void Run(Lock& lock, std::uint64_t number) override
    {
        std::uint64_t filled = 0;
        while (filled < number)
        {
            if (!AwaitInput(lock, never)) return;
            const auto fill = [&](const Buffer&, FrameFacts& frame) {
                frame.frameId = filled + 1;
                if (fails) throw Failure(GC_ERR_IO, "broken");
                wake.wait(lock, [&] { return !isHeld || IsFillGivenUp(); });
                frame.incomplete = isHeld;
            };
            if (FillNext(fill)) ++filled;
        }
        grabbing = false;
    }
    void OnFailure(const Failure&) override { hasFailed = true; }

    const bool never = false;
};

class KitStreamEngine : public testing::Test
{
protected:
    ~KitStreamEngine() override
    {
        engine.Stop(true);
        stream->Close();
    }

    std::shared_ptr<Buffer> QueueOne()
    {
        auto buffer = stream->Announce();
        Requeue(*buffer);
        return buffer;
    }
    void Requeue(Buffer& buffer)
    {
        stream->Queue(buffer);
        const std::lock_guard lock(stream->Mutex());
        engine.NotifyInput();
    }
    // Waits for the next frame.
    GC_ERROR Take()
    {
        EVENT_NEW_BUFFER_DATA data{};
        std::size_t size = sizeof data;
        return events->Take(&data, &size, GENTL_INFINITE);
    }
    void AwaitFilling(const Buffer& buffer)
    {
        for (;; std::this_thread::yield())
        {
            const std::lock_guard lock(stream->Mutex());
            if (buffer.place == Place::Filling) return;
        }
    }
    bool IsGrabbing()
    {
        const std::lock_guard lock(stream->Mutex());
        return engine.IsGrabbing();
    }

    const std::shared_ptr<kit_test::Stream> stream = kit_test::MakeStream();
    const std::shared_ptr<EventQueue> events = stream->RegisterEvent(EVENT_NEW_BUFFER);
    FastEngine engine{stream->Mutex(), stream->queue};
};

TEST_F(KitStreamEngine, FillsTheWantedNumberAndWaitsForItsStop)
{
    const auto buffer = QueueOne();
    engine.Start(2);
    EXPECT_EQ(Take(), GC_ERR_SUCCESS);
    Requeue(*buffer);
    EXPECT_EQ(Take(), GC_ERR_SUCCESS);
    EXPECT_TRUE(engine.IsStarted());
    engine.Stop(false);
    EXPECT_FALSE(engine.IsStarted());
    EXPECT_FALSE(IsGrabbing());
    EXPECT_EQ(buffer->frame.frameId, 2U);
}

TEST_F(KitStreamEngine, GrabsFromItsStartToItsStop)
{
    engine.Start(GENTL_INFINITE);
    EXPECT_TRUE(IsGrabbing());
    engine.Stop(false);
    EXPECT_FALSE(IsGrabbing());
}

TEST_F(KitStreamEngine, DeliversAFillThatAKillEndsAsIncomplete)
{
    engine.isHeld = true;
    const auto buffer = QueueOne();
    engine.Start(GENTL_INFINITE);
    AwaitFilling(*buffer);
    engine.Stop(true);
    EXPECT_EQ(Take(), GC_ERR_SUCCESS);
    EXPECT_TRUE(buffer->frame.incomplete);
}

TEST_F(KitStreamEngine, TakesAFillBackForAChangeThatNeedsIt)
{
    engine.isHeld = true;
    const auto buffer = QueueOne();
    engine.Start(GENTL_INFINITE);
    AwaitFilling(*buffer);
    Place during = Place::Filling;
    engine.WithoutFill([&] { during = buffer->place; });
    EXPECT_EQ(during, Place::Idle);
    EXPECT_EQ(stream->queue.NumAwaitingDelivery(), 0U);
}

TEST_F(KitStreamEngine, CutsAFillOffAndGoesOn)
{
    engine.isHeld = true;
    const auto buffer = QueueOne();
    engine.Start(GENTL_INFINITE);
    AwaitFilling(*buffer);
    engine.CutOff();
    EXPECT_EQ(Take(), GC_ERR_SUCCESS);
    EXPECT_TRUE(IsGrabbing());
}

TEST_F(KitStreamEngine, GivesTheBufferBackWhenAFillFails)
{
    engine.fails = true;
    const auto buffer = QueueOne();
    engine.Start(GENTL_INFINITE);
    while (!engine.hasFailed)
        std::this_thread::yield();
    engine.WithoutFill([] {});
    EXPECT_EQ(buffer->place, Place::Idle);
    EXPECT_EQ(stream->queue.NumQueued(), 0U);
}

} // namespace

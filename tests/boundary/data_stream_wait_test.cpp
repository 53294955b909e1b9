#include "tests/boundary/stream_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using namespace koro::test;
using namespace GenTL;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const std::vector<std::string> registrations = {"GCRegisterEvent", "GCUnregisterEvent"};

using DataStreamWait = StreamTest;

} // namespace

TEST_F(DataStreamWait, StartRegistersTheEventFirstAndOnlyOnce)
{
    const Journal functions = {"GCRegisterEvent", "DSStartAcquisition", "DSStopAcquisition"};
    Require(KORO_DataStream_StartAcquisition(tree.stream, 1234, 5));
    EXPECT_EQ(
        CallsOf(functions),
        (Journal{"GCRegisterEvent(if0-dev0-stream0, 1)", "DSStartAcquisition(if0-dev0-stream0, 1234, 5)"}));

    Require(KORO_DataStream_StopAcquisition(tree.stream, -7));
    Require(KORO_DataStream_StartAcquisition(tree.stream, 0, 1));
    EXPECT_THAT(
        CallsOf(functions),
        ElementsAre(_, _, "DSStopAcquisition(if0-dev0-stream0, -7)", "DSStartAcquisition(if0-dev0-stream0, 0, 1)"));
}

TEST_F(DataStreamWait, InfiniteAcquisitionPassesAllBitsSet)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 3));
    // The journal writes GENTL_INFINITE, and no other number, as a word.
    static_assert(GENTL_INFINITE == 0xFFFFFFFFFFFFFFFFULL && KORO_INFINITE == GENTL_INFINITE);
    EXPECT_EQ(CallsOf({"DSStartAcquisition"}), Journal{"DSStartAcquisition(if0-dev0-stream0, 3, infinite)"});
}

TEST_F(DataStreamWait, FailedRegistrationFailsTheStartAndIsTriedAgain)
{
    producer->AnswerOnce("GCRegisterEvent", GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(
        Outcome(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0)),
        Failure("GCRegisterEvent", GC_ERR_NOT_IMPLEMENTED));
    EXPECT_THAT(CallsOf({"DSStartAcquisition"}), IsEmpty());

    producer->AnswerOnce("GCRegisterEvent", GC_ERR_BUSY);
    EXPECT_EQ(OutcomeOfWait(), Failure("GCRegisterEvent", GC_ERR_BUSY));
    producer->AnswerOnce("GCRegisterEvent", GC_ERR_IO);
    EXPECT_EQ(Outcome(KORO_DataStream_KillWait(tree.stream)), Failure("GCRegisterEvent", GC_ERR_IO));

    EXPECT_EQ(Outcome(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0)), Error{});
    EXPECT_EQ(CallsOf({"GCRegisterEvent"}).size(), 4u);
}

TEST_F(DataStreamWait, SecondStartAndSecondStopAreTheProducersToRefuse)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    EXPECT_EQ(
        Outcome(KORO_DataStream_StartAcquisition(tree.stream, 0, 1)),
        Failure("DSStartAcquisition", GC_ERR_RESOURCE_IN_USE));
    Require(KORO_DataStream_StopAcquisition(tree.stream, 0));
    EXPECT_EQ(
        Outcome(KORO_DataStream_StopAcquisition(tree.stream, 0)), Failure("DSStopAcquisition", GC_ERR_RESOURCE_IN_USE));
}

TEST_F(DataStreamWait, FlushPassesItsModeAsItStands)
{
    for (const std::int32_t mode : {0, 1, 2, 3, 4})
        EXPECT_EQ(Outcome(KORO_DataStream_Flush(tree.stream, mode)), Error{});
    EXPECT_EQ(Outcome(KORO_DataStream_Flush(tree.stream, -1)), Failure("DSFlushQueue", GC_ERR_NOT_IMPLEMENTED));
    EXPECT_THAT(
        CallsOf({"DSFlushQueue"}), ElementsAre(
                                       "DSFlushQueue(if0-dev0-stream0, 0)", "DSFlushQueue(if0-dev0-stream0, 1)",
                                       "DSFlushQueue(if0-dev0-stream0, 2)", "DSFlushQueue(if0-dev0-stream0, 3)",
                                       "DSFlushQueue(if0-dev0-stream0, 4)", "DSFlushQueue(if0-dev0-stream0, -1)"));
}

TEST_F(DataStreamWait, WaitGivesTheHandlesOfTheAnnouncementInTheOrderOfDelivery)
{
    const auto buffers = StartWithBuffers(3);
    for (std::size_t frame = 0; frame < buffers.size(); ++frame)
        ASSERT_TRUE(Deliver());
    for (const auto buffer : buffers)
        EXPECT_EQ(Wait(), buffer);
}

TEST_F(DataStreamWait, WaitAsksForTheSizeOfTheBlockEachTimeAndForNothingElse)
{
    StartWithBuffers(2);
    Deliver();
    Deliver();
    producer->ClearJournal();
    Wait(11);
    Wait(12);
    EXPECT_THAT(
        producer->Journal(),
        ElementsAre(
            "EventGetInfo(if0-dev0-stream0:event1, 3, size)", "EventGetInfo(if0-dev0-stream0:event1, 3, data)",
            "EventGetData(if0-dev0-stream0:event1, 11)", "EventGetInfo(if0-dev0-stream0:event1, 3, size)",
            "EventGetInfo(if0-dev0-stream0:event1, 3, data)", "EventGetData(if0-dev0-stream0:event1, 12)"));
}

TEST_F(DataStreamWait, WaitBeforeAnyStartRegistersTheEvent)
{
    EXPECT_EQ(OutcomeOfWait(), timedOut);
    EXPECT_EQ(OutcomeOfWait(), timedOut);
    EXPECT_EQ(CallsOf(registrations), Journal{"GCRegisterEvent(if0-dev0-stream0, 1)"});
}

TEST_F(DataStreamWait, WaitWithoutAPlaceForItsResultTakesNothing)
{
    const auto buffers = StartWithBuffers(1);
    Deliver();
    EXPECT_EQ(Outcome(KORO_DataStream_WaitForFinishedBuffer(nullptr, 0, nullptr)), InvalidHandle("dataStreamHandle"));
    EXPECT_EQ(Outcome(KORO_DataStream_WaitForFinishedBuffer(tree.stream, 0, nullptr)), NullPointer("bufferHandle"));
    EXPECT_EQ(Wait(), buffers.front());
}

TEST_F(DataStreamWait, TimeoutHasItsOwnCodeAndTellsTheProducersText)
{
    producer->SetLastError({.text = "nothing came"});
    EXPECT_EQ(
        OutcomeOfWait(1),
        (Error{
            KORO_RETURN_CODE_TIMEOUT,
            "[Function: EventGetData | Error-Code: -1011 (GC_ERR_TIMEOUT) | Error-Text: nothing came]"}));
}

TEST_F(DataStreamWait, WaitWithoutEndIsEndedByADelivery)
{
    const auto buffers = StartWithBuffers(1);
    KORO_BufferHandle finished = nullptr;
    std::thread waiter([&] { finished = Wait(KORO_INFINITE); });
    producer->AwaitWaiters(1);
    Deliver();
    waiter.join();
    EXPECT_EQ(finished, buffers.front());
    EXPECT_EQ(CallsOf({"EventGetData"}), Journal{"EventGetData(if0-dev0-stream0:event1, infinite)"});
}

TEST_F(DataStreamWait, KillBeforeAnyStartRegistersFirstAndEndsTheNextWaitAtOnce)
{
    EXPECT_EQ(Outcome(KORO_DataStream_KillWait(tree.stream)), Error{});
    EXPECT_EQ(
        CallsOf({"GCRegisterEvent", "EventKill"}),
        (Journal{"GCRegisterEvent(if0-dev0-stream0, 1)", "EventKill(if0-dev0-stream0:event1)"}));
    EXPECT_EQ(OutcomeOfWait(KORO_INFINITE), aborted);
    EXPECT_EQ(OutcomeOfWait(), timedOut);
}

TEST_F(DataStreamWait, EachKillEndsOneWait)
{
    Require(KORO_DataStream_KillWait(tree.stream));
    Require(KORO_DataStream_KillWait(tree.stream));
    EXPECT_EQ(OutcomeOfWait(KORO_INFINITE), aborted);
    EXPECT_EQ(OutcomeOfWait(KORO_INFINITE), aborted);
    EXPECT_EQ(OutcomeOfWait(), timedOut);
}

TEST_F(DataStreamWait, KillEndsAWaitThatIsUnderWay)
{
    Error outcome;
    std::thread waiter([&] { outcome = OutcomeOfWait(KORO_INFINITE); });
    producer->AwaitWaiters(1);
    Require(KORO_DataStream_KillWait(tree.stream));
    waiter.join();
    EXPECT_EQ(outcome, aborted);
}

TEST_F(DataStreamWait, FlushedKillsEndNoWaitAndFinishedBuffersGoWithThem)
{
    StartWithBuffers(1);
    Deliver();
    Require(KORO_DataStream_KillWait(tree.stream));
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_DataStream_FlushPendingKillWaits(tree.stream)), Error{});
    EXPECT_EQ(
        CallsOf(registrations),
        (Journal{"GCUnregisterEvent(if0-dev0-stream0, 1)", "GCRegisterEvent(if0-dev0-stream0, 1)"}));
    EXPECT_EQ(OutcomeOfWait(), timedOut);
}

TEST_F(DataStreamWait, FlushOfKillsBeforeAnyStartWaitOrKillIsRefused)
{
    EXPECT_EQ(
        Outcome(KORO_DataStream_FlushPendingKillWaits(tree.stream)),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: FlushPendingKillWaits | Error: there is no new buffer event yet: start the acquisition, "
            "wait or kill a wait first]"}));
    EXPECT_THAT(producer->Journal(), IsEmpty());
    Require(KORO_DataStream_KillWait(tree.stream));
    EXPECT_EQ(Outcome(KORO_DataStream_FlushPendingKillWaits(tree.stream)), Error{});
}

TEST_F(DataStreamWait, BufferRevokedUnderAWaiterComesOutUnderAHandleThatIsInvalid)
{
    const auto buffers = StartWithBuffers(1);
    KORO_BufferHandle finished = nullptr;
    Error afterwards;
    std::thread waiter([&] {
        finished = Wait(KORO_INFINITE);
        void* base = nullptr;
        afterwards = Outcome(KORO_Buffer_GetBasePtr(finished, &base));
    });
    producer->AwaitWaiters(1);
    // The producer says yes and delivers all the same.
    producer->AnswerOnce("DSRevokeBuffer", GC_ERR_SUCCESS);
    Require(KORO_DataStream_RevokeBuffer(tree.stream, buffers.front()));
    Deliver();
    waiter.join();
    EXPECT_NE(finished, nullptr);
    EXPECT_EQ(afterwards, InvalidHandle("bufferHandle"));
}

TEST_F(DataStreamWait, BufferAnnouncedBehindTheLibrarysBackIsNotListed)
{
    StartWithBuffers(1);
    void* const stranger = reinterpret_cast<void*>(std::uintptr_t{0xABC0});
    const EVENT_NEW_BUFFER_DATA block{stranger, nullptr};
    const std::string bytes(reinterpret_cast<const char*>(&block), sizeof block);
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_TRUE(producer->Fire(streamID, EVENT_NEW_BUFFER, bytes));
        const auto buffer = Wait();
        EXPECT_NE(buffer, nullptr);
        EXPECT_FALSE(IsAlive(buffer));
        EXPECT_EQ(Outcome(KORO_DataStream_QueueBuffer(tree.stream, buffer)), InvalidHandle("bufferHandle"));
    }
}

TEST_F(DataStreamWait, BlockWithoutABufferHandleIsAClearError)
{
    StartWithBuffers(1);
    ASSERT_TRUE(producer->Fire(streamID, EVENT_NEW_BUFFER, "1234567"));
    EXPECT_EQ(
        OutcomeOfWait(),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: EventGetData | Error: a new buffer event of 7 bytes holds no buffer handle]"}));
}

TEST_F(DataStreamWait, ApplicationThatTakesTheNewBufferEventCompetesWithTheStream)
{
    const auto controller = EnableEvents(EVENT_NEW_BUFFER);
    EXPECT_EQ(
        Outcome(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0)),
        Failure("GCRegisterEvent", GC_ERR_RESOURCE_IN_USE));
    Require(KORO_EventController_Destruct(controller));
    EXPECT_EQ(Outcome(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0)), Error{});
}

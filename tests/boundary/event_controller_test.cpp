#include "tests/boundary/stream_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using namespace koro::test;
using namespace GenTL;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class EventController : public StreamTest
{
protected:
    EventController() { producer->ClearJournal(); }

    bool Fire(const std::string& block) const { return producer->Fire(streamID, EVENT_MODULE, block); }

    KORO_EventHandle WaitForEvent(std::uint64_t timeout_ms = 0) const
    {
        return Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, controller, timeout_ms);
    }

    Error OutcomeOfWait(std::uint64_t timeout_ms = 0) const
    {
        KORO_EventHandle event = nullptr;
        return Outcome(KORO_EventController_WaitForEvent(controller, timeout_ms, &event));
    }

    template <class Output>
    void ExpectNumber(
        std::int32_t command, const char* name, const scripted::Info& answer, const std::string& type,
        const std::string& parameter, Output value, ScalarExport<KORO_EventControllerHandle, Output> function) const
    {
        ExpectNumberGetter(
            producer, {"EventGetInfo", command, name}, answer, type, parameter, value, function, controller);
    }

    KORO_EventControllerHandle controller = EnableEvents(EVENT_MODULE);
    const std::string unregister = "GCUnregisterEvent(if0-dev0-stream0, 5)";
    const std::string registerAnew = "GCRegisterEvent(if0-dev0-stream0, 5)";
};

} // namespace

TEST_F(EventController, NumbersAreAskedOfTheProducerEachTime)
{
    const std::uint64_t big = (std::uint64_t{3} << 61) + 1;
    ExpectNumber(
        0, "EVENT_EVENT_TYPE", scripted::Int32(-5), "5 (INFO_DATATYPE_INT32)", "controlledEventType", std::int32_t{-5},
        KORO_EventController_GetControlledEventType);
    ExpectNumber(
        1, "EVENT_NUM_IN_QUEUE", scripted::Size(big), "12 (INFO_DATATYPE_SIZET)", "numEventsInQueue", std::size_t{big},
        KORO_EventController_GetNumEventsInQueue);
    ExpectNumber(
        2, "EVENT_NUM_FIRED", scripted::UInt64(big), "8 (INFO_DATATYPE_UINT64)", "numEventsFired", big,
        KORO_EventController_GetNumEventsFired);
    ExpectNumber(
        3, "EVENT_SIZE_MAX", scripted::Size(big), "12 (INFO_DATATYPE_SIZET)", "eventMaxSize", std::size_t{big},
        KORO_EventController_GetEventMaxSize);
    ExpectNumber(
        4, "EVENT_INFO_DATA_SIZE_MAX", scripted::Size(big), "12 (INFO_DATATYPE_SIZET)", "eventDataMaxSize",
        std::size_t{big}, KORO_EventController_GetEventDataMaxSize);
}

TEST_F(EventController, InfoOfAnyCommandPassesThrough)
{
    ExpectRawInfo(producer, "EventGetInfo", KORO_EventController_GetInfo, controller);
}

TEST_F(EventController, WaitOnAnEmptyQueueTimesOutWithTheProducersText)
{
    EXPECT_EQ(OutcomeOfWait(0), timedOut);
    EXPECT_THAT(
        producer->Journal(),
        ElementsAre(
            "EventGetInfo(if0-dev0-stream0:event5, 3, size)", "EventGetInfo(if0-dev0-stream0:event5, 3, data)",
            "EventGetData(if0-dev0-stream0:event5, 0)", "GCGetLastError(size)", "GCGetLastError(data)"));
}

TEST_F(EventController, TimeoutTellsTheCodeThatTheProducerGivesForIt)
{
    producer->SetLastError({.code = GC_ERR_SUCCESS, .text = "No Error"});
    EXPECT_EQ(
        OutcomeOfWait(0), (Error{
                              KORO_RETURN_CODE_TIMEOUT,
                              "[Function: EventGetData | Error-Code: 0 (GC_ERR_SUCCESS) | Error-Text: No Error]"}));
}

TEST_F(EventController, TimeoutWhoseTextCannotBeFetchedTellsThatInstead)
{
    producer->AnswerOnce("GCGetLastError", GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(
        OutcomeOfWait(0),
        (Error{KORO_RETURN_CODE_ERROR, "[Function: GCGetLastError | Error-Code: -1002 (GC_ERR_NOT_INITIALIZED)]"}));
}

// The exception is chosen by what the producer says afterwards, and not by the wait's own result.
TEST_F(EventController, AbortIsToldByTheProducersLastError)
{
    producer->SetLastError({.code = GC_ERR_SUCCESS, .text = "No Error"});
    Require(KORO_EventController_KillWait(controller));
    EXPECT_EQ(
        OutcomeOfWait(KORO_INFINITE),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: EventGetData | Error-Code: 0 (GC_ERR_SUCCESS) | Error-Text: No Error]"}));

    producer->SetLastError({.code = GC_ERR_TIMEOUT, .text = "late"});
    Require(KORO_EventController_KillWait(controller));
    EXPECT_EQ(
        OutcomeOfWait(KORO_INFINITE),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: EventGetData | Error-Code: -1011 (GC_ERR_TIMEOUT) | Error-Text: late]"}));
}

TEST_F(EventController, NothingButATimeoutCountsAsAnAbsence)
{
    for (const auto code : {GC_ERR_NO_DATA, GC_ERR_BUFFER_TOO_SMALL, GC_ERR_ABORT, GC_ERR_IO})
    {
        producer->AnswerOnce("EventGetData", code);
        EXPECT_EQ(OutcomeOfWait(), Failure("EventGetData", code));
    }
}

TEST_F(EventController, KillWithoutAWaiterEndsTheNextWaitAndNoOther)
{
    EXPECT_EQ(Outcome(KORO_EventController_KillWait(controller)), Error{});
    EXPECT_EQ(OutcomeOfWait(KORO_INFINITE), aborted);

    KORO_EventHandle event = nullptr;
    std::thread waiter([&] { event = WaitForEvent(KORO_INFINITE); });
    producer->AwaitWaiters(1); // it blocks
    ASSERT_TRUE(Fire("news"));
    waiter.join();
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, event), "news");
}

TEST_F(EventController, TwoKillsEndTwoWaits)
{
    Require(KORO_EventController_KillWait(controller));
    Require(KORO_EventController_KillWait(controller));
    EXPECT_EQ(OutcomeOfWait(KORO_INFINITE), aborted);
    EXPECT_EQ(OutcomeOfWait(KORO_INFINITE), aborted);
    EXPECT_EQ(OutcomeOfWait(0), timedOut);
}

TEST_F(EventController, FlushOfKillsRegistersAnewAndLosesQueuedEvents)
{
    Require(KORO_EventController_KillWait(controller));
    ASSERT_TRUE(Fire("lost"));
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_EventController_FlushPendingKillWaits(controller)), Error{});
    EXPECT_THAT(producer->Journal(), ElementsAre(unregister, registerAnew));
    EXPECT_EQ(Get<std::uint64_t>(KORO_EventController_GetNumEventsFired, controller), 0u);

    KORO_EventHandle event = nullptr;
    std::thread waiter([&] { event = WaitForEvent(KORO_INFINITE); });
    producer->AwaitWaiters(1); // neither killed nor served
    ASSERT_TRUE(Fire("kept"));
    waiter.join();
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, event), "kept");
}

TEST_F(EventController, FlushOfKillsWhoseRegistrationFailsLeavesADeadHandle)
{
    producer->AnswerOnce("GCUnregisterEvent", GC_ERR_BUSY);
    EXPECT_EQ(
        Outcome(KORO_EventController_FlushPendingKillWaits(controller)), Failure("GCUnregisterEvent", GC_ERR_BUSY));
    EXPECT_THAT(CallsOf({"GCRegisterEvent"}), IsEmpty());
    EXPECT_EQ(OutcomeOfWait(0), timedOut); // all as before

    producer->AnswerOnce("GCRegisterEvent", GC_ERR_IO);
    EXPECT_EQ(Outcome(KORO_EventController_FlushPendingKillWaits(controller)), Failure("GCRegisterEvent", GC_ERR_IO));
    EXPECT_EQ(Outcome(KORO_EventController_KillWait(controller)), Failure("EventKill", GC_ERR_INVALID_HANDLE));
}

// What a waiter gets whose registration goes under it is the producer's answer.
TEST_F(EventController, FlushOfKillsUnderAWaiterLeavesTheWaiterToTheProducer)
{
    Error outcome;
    std::thread waiter([&] { outcome = OutcomeOfWait(KORO_INFINITE); });
    producer->AwaitWaiters(1);
    EXPECT_EQ(Outcome(KORO_EventController_FlushPendingKillWaits(controller)), Error{});
    waiter.join();
    EXPECT_EQ(outcome, aborted);
    ASSERT_TRUE(Fire("next"));
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, WaitForEvent()), "next");
}

TEST_F(EventController, FlushOfEventsLosesThemAndNothingElse)
{
    ASSERT_TRUE(Fire("lost"));
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_EventController_FlushEvents(controller)), Error{});
    EXPECT_THAT(producer->Journal(), ElementsAre("EventFlush(if0-dev0-stream0:event5)"));
    EXPECT_EQ(OutcomeOfWait(0), timedOut);
    EXPECT_EQ(Get<std::uint64_t>(KORO_EventController_GetNumEventsFired, controller), 1u);
}

TEST_F(EventController, EventsComeInOrderEachToOneWait)
{
    ASSERT_TRUE(Fire("one"));
    ASSERT_TRUE(Fire("two"));
    EXPECT_EQ(Get<std::size_t>(KORO_EventController_GetNumEventsInQueue, controller), 2u);
    const auto first = WaitForEvent();
    const auto second = WaitForEvent();
    EXPECT_NE(first, second);
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, first), "one");
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, second), "two");
}

TEST_F(EventController, WaitWithoutAPlaceForTheEventTakesNothing)
{
    ASSERT_TRUE(Fire("kept"));
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_EventController_WaitForEvent(nullptr, 0, nullptr)), InvalidHandle("eventControllerHandle"));
    EXPECT_EQ(Outcome(KORO_EventController_WaitForEvent(controller, 0, nullptr)), NullPointer("eventHandle"));
    EXPECT_THAT(producer->Journal(), IsEmpty());
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, WaitForEvent()), "kept");
}

TEST_F(EventController, SizeOfABlockThatNoMachineHasIsRefusedBeforeTheWait)
{
    producer->SetInfo("EventGetInfo", EVENT_SIZE_MAX, scripted::Size(std::size_t{1} << 40));
    EXPECT_EQ(
        OutcomeOfWait(0), (Error{
                              KORO_RETURN_CODE_ERROR,
                              "[Function: EventGetInfo | Error: 1099511627776 event block bytes exceed the bound of "
                              "268435456]"}));
    EXPECT_THAT(CallsOf({"EventGetData"}), IsEmpty());

    producer->SetInfo("EventGetInfo", EVENT_SIZE_MAX, scripted::Size(std::size_t{256} << 20));
    ASSERT_TRUE(Fire("fits"));
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, WaitForEvent()), "fits");
}

TEST_F(EventController, BlockLargerThanItsMaximumIsTheProducersFailure)
{
    producer->SetInfo("EventGetInfo", EVENT_SIZE_MAX, scripted::Size(3));
    ASSERT_TRUE(Fire("four"));
    EXPECT_EQ(OutcomeOfWait(0), Failure("EventGetData", GC_ERR_BUFFER_TOO_SMALL));
    EXPECT_EQ(OutcomeOfWait(0).code, KORO_RETURN_CODE_BUFFER_TOO_SMALL);
}

TEST_F(EventController, FailingQueryOfTheSizeEndsTheWait)
{
    producer->SetInfo("EventGetInfo", EVENT_SIZE_MAX, scripted::Failing(GC_ERR_IO));
    EXPECT_EQ(OutcomeOfWait(0), InfoFailure({"EventGetInfo", 3, "EVENT_SIZE_MAX"}, ProducerErrorOf(GC_ERR_IO)));
    EXPECT_THAT(CallsOf({"EventGetData"}), IsEmpty());
}

TEST_F(EventController, DestructUnregistersAndEndsTheHandlesOfItsEvents)
{
    ASSERT_TRUE(Fire("block"));
    const auto event = WaitForEvent();
    EXPECT_EQ(Outcome(KORO_EventController_Destruct(controller)), Error{});
    EXPECT_EQ(CallsOf({"GCUnregisterEvent"}), Journal{unregister});
    EXPECT_EQ(Outcome(KORO_EventController_Destruct(controller)), InvalidHandle("eventControllerHandle"));
    EXPECT_EQ(Outcome(KORO_Event_Destruct(event)), InvalidHandle("eventHandle"));
    controller = EnableEvents(EVENT_MODULE); // free again
}

TEST_F(EventController, FailingUnregistrationReachesNobody)
{
    producer->AnswerOnce("GCUnregisterEvent", GC_ERR_IO);
    EXPECT_EQ(Outcome(KORO_EventController_Destruct(controller)), Error{});
}

TEST_F(EventController, EndAfterTheModulesEndGivesNoFailure)
{
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
    EXPECT_EQ(CallsOf({"GCUnregisterEvent"}), Journal{"GCUnregisterEvent(dead, 5)"});
    EXPECT_EQ(Outcome(KORO_EventController_Destruct(controller)), InvalidHandle("eventControllerHandle"));
}

TEST_F(EventController, OperationsRefuseADeadHandle)
{
    Require(KORO_EventController_Destruct(controller));
    const auto expected = InvalidHandle("eventControllerHandle");
    KORO_EventHandle event = nullptr;
    EXPECT_EQ(Outcome(KORO_EventController_WaitForEvent(controller, 0, &event)), expected);
    EXPECT_EQ(Outcome(KORO_EventController_KillWait(controller)), expected);
    EXPECT_EQ(Outcome(KORO_EventController_FlushPendingKillWaits(controller)), expected);
    EXPECT_EQ(Outcome(KORO_EventController_FlushEvents(controller)), expected);
    EXPECT_EQ(Outcome(KORO_EventController_GetNumEventsFired(controller, nullptr)), expected);
}

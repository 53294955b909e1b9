// The thread behind a producer's own reports: when it is there, what it asks of the producer, and how it ends.
#include "tests/boundary/connection_changes.h"
#include "tests/boundary/outputs.h"
#include "tests/boundary/producer_errors.h"
#include "tests/support/journal.h"
#include "tests/support/num_threads.h"

#include <atomic>
#include <fstream>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;
using testing::ElementsAre;
using testing::IsEmpty;

// Returns when the system has put the thread to sleep, for a lock or a condition, or when the thread has ended.
void AwaitSleepOrEnd(pid_t thread)
{
    const std::string path = "/proc/self/task/" + std::to_string(thread) + "/stat";
    for (;;)
    {
        std::ifstream file(path);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        const auto name = text.rfind(") "); // the state follows
        if (name == std::string::npos || text[name + 2] == 'S') return;
        std::this_thread::yield();
    }
}

class ConnectionChangeThread : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        std::thread([] {}).join(); // with the first one a race detector starts one of its own
        idle = NumThreads();
    }

    explicit ConnectionChangeThread(std::size_t recordSize = connectionRecordSize) : producer(recordSize)
    {
        AwaitNumThreads(idle);
        Require(KORO_ProducerLibrary_Construct(producer.Path().c_str(), producer.Path().size() + 1, &producerLibrary));
        const auto descriptor = Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, producerLibrary);
        system = Get<KORO_SystemHandle>(KORO_SystemDescriptor_OpenSystem, descriptor);
        Require(KORO_System_UpdateInterfaces(system, 0));
        producer->ClearJournal();
    }

    KORO_InterfaceDescriptorHandle Descriptor(std::size_t index) const
    {
        return Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, system, index);
    }
    KORO_InterfaceHandle Open(std::size_t index = 0) const
    {
        return Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, Descriptor(index));
    }
    Error OutcomeOfOpen(std::size_t index = 0) const
    {
        KORO_InterfaceHandle interface = nullptr;
        return Outcome(KORO_InterfaceDescriptor_OpenInterface(Descriptor(index), &interface));
    }
    Strings CallsOf(const Strings& functions) const { return koro::test::CallsOf(producer->Journal(), functions); }

    // What the producer was asked about events, once the thread waits.
    Strings EventCalls() const
    {
        return CallsOf(
            {"GCRegisterEvent", "GCUnregisterEvent", "EventGetInfo", "EventFlush", "EventGetData", "EventKill"});
    }

    static inline std::size_t idle = 0; // the number of threads of a program without an interface
    const ReportingProducer producer;
    const KoroLibrary library;
    KORO_ProducerLibraryHandle producerLibrary = nullptr;
    KORO_SystemHandle system = nullptr;
};

class ConnectionChangeEventOfAnotherSize : public ConnectionChangeThread,
                                           public testing::WithParamInterface<std::size_t>
{
protected:
    ConnectionChangeEventOfAnotherSize() : ConnectionChangeThread(GetParam()) {}
};

class ConnectionChangeEventThatIsUnknown : public ConnectionChangeThread,
                                           public testing::WithParamInterface<GenTL::GC_ERROR>
{};

const std::string sizeCalls[] = {"EventGetInfo(system:event1000, 3, size)", "EventGetInfo(system:event1000, 3, data)"};

// All three kinds are accepted.
void ExpectRegistrationsSucceed(KORO_InterfaceHandle interface)
{
    const ConnectionReports reports(interface);
    EXPECT_NE(reports.listChanged, nullptr);
    EXPECT_NE(reports.disconnected, nullptr);
    EXPECT_NE(reports.reconnected, nullptr);
}

} // namespace

TEST_F(ConnectionChangeThread, EventIsRegisteredMeasuredAndFlushedBeforeTheFirstWait)
{
    const auto interface = Open();
    producer->AwaitWaiters(1);
    EXPECT_THAT(
        EventCalls(), ElementsAre(
                          "GCRegisterEvent(system, 1000)", sizeCalls[0], sizeCalls[1], "EventFlush(system:event1000)",
                          sizeCalls[0], sizeCalls[1], "EventGetData(system:event1000, infinite)"));
    EXPECT_EQ(NumThreads(), idle + 1);
    Require(KORO_Interface_Destruct(interface));
}

TEST_F(ConnectionChangeThread, SystemWithoutAnInterfaceHasNeitherEventNorThread)
{
    EXPECT_THAT(EventCalls(), IsEmpty());
    EXPECT_EQ(NumThreads(), idle);
    Require(KORO_System_Destruct(system));
    EXPECT_THAT(EventCalls(), IsEmpty());
}

TEST_F(ConnectionChangeThread, InterfacesOfASystemShareItUntilTheLastOneEnds)
{
    const auto first = Open(0);
    const auto second = Open(1);
    EXPECT_EQ(NumThreads(), idle + 1);
    Require(KORO_Interface_Destruct(first));
    EXPECT_EQ(NumThreads(), idle + 1);
    ConnectionReports reports(second);
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}, "if1"));
    EXPECT_EQ(reports.Next(), "list changed");
    producer->AwaitWaiters(1);
    producer->ClearJournal();
    Require(KORO_Interface_Destruct(second));
    AwaitNumThreads(idle);
    EXPECT_THAT(EventCalls(), ElementsAre("EventKill(system:event1000)")); // it stays registered
    EXPECT_EQ(CallsOf({"IFClose"}), Strings{"IFClose(if1)"});
}

TEST_F(ConnectionChangeThread, NextInterfaceStartsItAnewAndWhatCameInBetweenIsDiscarded)
{
    for (int round = 0; round < 3; ++round)
    {
        const auto interface = Open();
        ConnectionReports reports(interface);
        ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
        EXPECT_EQ(reports.Next(), "list changed");
        producer->AwaitWaiters(1);
        Require(KORO_Interface_Destruct(interface));
        AwaitNumThreads(idle);

        producer->ClearJournal();
        ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
        EXPECT_THAT(EventCalls(), IsEmpty());
    }
    Open();
    producer->AwaitWaiters(1); // it would not wait if there were anything left
    EXPECT_THAT(
        CallsOf({"GCRegisterEvent", "EventFlush", "EventGetData"}),
        ElementsAre("EventFlush(system:event1000)", "EventGetData(system:event1000, infinite)"));
}

TEST_F(ConnectionChangeThread, EventEndsBeforeItsSystem)
{
    Open();
    producer->AwaitWaiters(1);
    producer->ClearJournal();
    Require(KORO_System_Destruct(system));
    EXPECT_THAT(
        CallsOf({"EventKill", "GCUnregisterEvent", "TLClose", "IFClose"}),
        ElementsAre(
            "EventKill(system:event1000)", "GCUnregisterEvent(system, 1000)", "TLClose(system)", "IFClose(dead)"));
    AwaitNumThreads(idle);
}

TEST_F(ConnectionChangeThread, EndOfTheProducerLibraryAndOfTheLibraryEndItToo)
{
    Open();
    Require(KORO_ProducerLibrary_Destruct(producerLibrary));
    AwaitNumThreads(idle);
    EXPECT_EQ(producer->Open(), Strings());

    const OpenTree tree(producer.Path());
    ConnectionReports reports(tree.interface);
    EXPECT_EQ(NumThreads(), idle + 1);
    Require(KORO_Library_Close());
    AwaitNumThreads(idle);
    EXPECT_EQ(producer->Open(), Strings());
    Require(KORO_Library_Initialize());
}

TEST_P(ConnectionChangeEventThatIsUnknown, IsNotAvailableAndNoFailure)
{
    producer->Answer("GCRegisterEvent", GetParam());
    const auto interface = Open();
    EXPECT_THAT(EventCalls(), ElementsAre("GCRegisterEvent(system, 1000)"));
    ExpectRegistrationsSucceed(interface);
    EXPECT_EQ(NumThreads(), idle);
    EXPECT_FALSE(producer.Send({.deviceFlag = 0}));
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(interface)), Error{});
    EXPECT_THAT(EventCalls(), ElementsAre("GCRegisterEvent(system, 1000)"));
}

INSTANTIATE_TEST_SUITE_P(
    Codes, ConnectionChangeEventThatIsUnknown,
    testing::Values(GenTL::GC_ERR_NOT_IMPLEMENTED, GenTL::GC_ERR_NOT_AVAILABLE));

TEST_F(ConnectionChangeThread, AnswerOfAProducerWithoutTheEventIsAskedForOnce)
{
    producer->Answer("GCRegisterEvent", GenTL::GC_ERR_NOT_IMPLEMENTED);
    Open(0);
    Open(1);
    EXPECT_EQ(CallsOf({"GCRegisterEvent"}).size(), 1u);
}

TEST_F(ConnectionChangeThread, EveryOtherFailureFailsTheOpeningAndTheNextOneTriesAgain)
{
    for (const auto& error : producerErrors)
    {
        if (error.code == GenTL::GC_ERR_NOT_IMPLEMENTED || error.code == GenTL::GC_ERR_NOT_AVAILABLE) continue;
        producer->ClearJournal();
        producer->AnswerOnce("GCRegisterEvent", error.code);
        EXPECT_EQ(OutcomeOfOpen(), CallFailure("GCRegisterEvent", error));
        EXPECT_EQ(CallsOf({"IFClose"}), Strings{"IFClose(if0)"});
        EXPECT_EQ(producer->Open(), Strings{"system"});
    }
    const auto interface = Open();
    ConnectionReports reports(interface);
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    EXPECT_EQ(reports.Next(), "list changed");
    Require(KORO_Interface_Destruct(interface));
}

TEST_P(ConnectionChangeEventOfAnotherSize, IsNotAvailableAndNoFailure)
{
    const auto interface = Open();
    EXPECT_THAT(
        EventCalls(),
        ElementsAre("GCRegisterEvent(system, 1000)", sizeCalls[0], sizeCalls[1], "GCUnregisterEvent(system, 1000)"));
    EXPECT_EQ(NumThreads(), idle);
    ExpectRegistrationsSucceed(interface);
    EXPECT_FALSE(producer.Send({.deviceFlag = 0}));
}

INSTANTIATE_TEST_SUITE_P(Sizes, ConnectionChangeEventOfAnotherSize, testing::Values(0, 350, 352, SIZE_MAX));

TEST_F(ConnectionChangeThread, SizeThatCannotBeReadFailsTheOpeningAndLeavesNoEvent)
{
    producer->AnswerOnce("EventGetInfo", GenTL::GC_ERR_IO);
    EXPECT_EQ(OutcomeOfOpen(), InfoFailure({"EventGetInfo", 3, "EVENT_SIZE_MAX"}, ProducerErrorOf(GenTL::GC_ERR_IO)));
    EXPECT_EQ(producer->Open(), Strings{"system"});
    Open();
    EXPECT_EQ(NumThreads(), idle + 1);
}

TEST_F(ConnectionChangeThread, FlushThatFailsReachesTheOneWhoOpens)
{
    producer->AnswerOnce("EventFlush", GenTL::GC_ERR_BUSY);
    EXPECT_EQ(OutcomeOfOpen(), CallFailure("EventFlush", ProducerErrorOf(GenTL::GC_ERR_BUSY)));
    EXPECT_EQ(CallsOf({"IFClose"}), Strings{"IFClose(if0)"});
    AwaitNumThreads(idle);

    const auto interface = Open();
    ConnectionReports reports(interface);
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    EXPECT_EQ(reports.Next(), "list changed");
    Require(KORO_Interface_Destruct(interface));
}

TEST_F(ConnectionChangeThread, WaitsThatFailAreTriedAgain)
{
    const auto interface = Open();
    ConnectionReports reports(interface);
    for (const auto code : {GenTL::GC_ERR_IO, GenTL::GC_ERR_TIMEOUT, GenTL::GC_ERR_ABORT, GenTL::GC_ERR_INVALID_HANDLE})
    {
        producer->AwaitWaiters(1);
        producer->AnswerOnce("EventGetData", code); // the wait after the one that is running
        for (int record = 0; record < 3; ++record)
            ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
        for (int record = 0; record < 3; ++record)
            EXPECT_EQ(reports.Next(), "list changed");
    }
    Require(KORO_Interface_Destruct(interface));
}

TEST_F(ConnectionChangeThread, ProducerThatRefusesEveryWaitDoesNotKeepItFromEnding)
{
    producer->Answer("EventGetData", GenTL::GC_ERR_ERROR);
    Require(KORO_Interface_Destruct(Open()));
    AwaitNumThreads(idle);
    producer->AnswerAsUsual("EventGetData");

    const auto interface = Open();
    producer->AwaitWaiters(1);
    ASSERT_TRUE(producer.SendBytes(std::string(connectionRecordSize + 1, 'x'))); // too large: it stays in the queue
    Require(KORO_Interface_Destruct(interface));
    AwaitNumThreads(idle);
}

TEST_F(ConnectionChangeThread, ProducerThatRefusesTheKillDoesNotKeepItFromEnding)
{
    const auto interface = Open();
    producer->AwaitWaiters(1);
    producer->Answer("EventKill", GenTL::GC_ERR_ERROR);
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(interface)), Error{});
    AwaitNumThreads(idle);
    EXPECT_THAT(
        CallsOf({"GCUnregisterEvent", "GCRegisterEvent"}),
        ElementsAre("GCUnregisterEvent(system, 1000)", "GCRegisterEvent(system, 1000)"));
}

// The producer is asked for the event while the system ends on another thread.
TEST_F(ConnectionChangeThread, DoesNotBeginBehindTheEndOfTheSystemInAnOpenThatIsUnderWay)
{
    std::promise<void> entered;
    std::promise<void> gate;
    producer->OnEntry("GCRegisterEvent", [&] {
        entered.set_value();
        gate.get_future().wait();
    });
    const auto descriptor = Descriptor(0);
    auto opening = std::async(std::launch::async, [&] {
        KORO_InterfaceHandle interface = nullptr;
        return Outcome(KORO_InterfaceDescriptor_OpenInterface(descriptor, &interface));
    });
    entered.get_future().wait();
    EXPECT_EQ(Outcome(KORO_System_Destruct(system)), Error{});
    gate.set_value();
    EXPECT_EQ(opening.get(), parentExpired);
    EXPECT_THAT(CallsOf({"EventFlush", "EventGetData"}), IsEmpty());
    EXPECT_EQ(producer->Open(), Strings());
}

// With a listener that runs, which the end stops first; then it waits for a monitor.
TEST_F(ConnectionChangeThread, DoesNotBeginAgainWhileItsSystemEnds)
{
    const auto interface = Open(0);
    Require(KORO_Interface_UpdateDevices(interface, 0));
    std::promise<void> reading;
    std::promise<void> gate;
    std::promise<void> stopping;
    producer->OnEntry("IFGetDeviceInfo", [&] {
        producer->OnEntry("IFGetDeviceInfo", nullptr);
        reading.set_value();
        gate.get_future().wait();
    });
    producer->OnEntry("EventKill", [&] {
        producer->OnEntry("EventKill", nullptr);
        stopping.set_value();
    });
    const auto device = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, interface, std::size_t{0});
    KORO_DeviceDescriptorInformationChangedCallbackHandle handle = nullptr;
    Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(device, 0));
    Require(KORO_DeviceDescriptor_RegisterInformationChangedCallback(
        device, [](const std::int32_t*, std::size_t, void*) {}, nullptr, &handle));
    reading.get_future().wait();

    auto ending = std::async(std::launch::async, [&] { return Outcome(KORO_System_Destruct(system)); });
    stopping.get_future().wait();
    EXPECT_EQ(OutcomeOfOpen(1), parentExpired);
    gate.set_value();
    EXPECT_EQ(ending.get(), Error{});
}

// Each end of what a callback comes from, while the callback is inside a call that holds the system.
class EndDuringACallback : public ConnectionChangeThread
{
protected:
    void ExpectToWait(const std::function<KORO_ReturnCode()>& end)
    {
        std::promise<void> entered;
        std::atomic<bool> ended{false};
        std::atomic<bool> callbackIsOver{false};
        producer->OnEntry("IFUpdateDeviceList", [&] {
            entered.set_value();
            for (int turn = 0; turn < 1000 && !ended; ++turn)
                std::this_thread::yield();
        });
        reports.onReport = [&](KORO_DeviceDescriptorHandle) {
            EXPECT_EQ(Outcome(KORO_Interface_UpdateDevices(interface, 0)), Error{});
            for (int turn = 0; turn < 1000 && !ended; ++turn)
                std::this_thread::yield();
            EXPECT_FALSE(ended);
            callbackIsOver = true;
        };
        ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
        entered.get_future().wait();
        EXPECT_EQ(Outcome(end()), Error{});
        ended = true;
        EXPECT_TRUE(callbackIsOver);
        EXPECT_EQ(reports.NumUnread(), 1u);
        AwaitNumThreads(idle);
    }

    const KORO_InterfaceHandle interface = Open();
    ConnectionReports reports{interface};
};

TEST_F(EndDuringACallback, OfTheInterfaceWaits)
{
    ExpectToWait([&] { return KORO_Interface_Destruct(interface); });
}

TEST_F(EndDuringACallback, OfTheInterfaceWaitsOnTwoThreads)
{
    std::promise<void> entered;
    std::promise<pid_t> begun[2];
    std::atomic<int> numEnded{0};
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        entered.set_value();
        for (auto& thread : begun)
            AwaitSleepOrEnd(thread.get_future().get());
        EXPECT_EQ(numEnded, 0);
    };
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    entered.get_future().wait();
    const auto end = [&](int thread) {
        begun[thread].set_value(gettid());
        const auto code = KORO_Interface_Destruct(interface);
        ++numEnded;
        return code;
    };
    auto other = std::async(std::launch::async, end, 1);
    const auto code = end(0);
    const auto otherCode = other.get();
    EXPECT_TRUE(code == KORO_RETURN_CODE_SUCCESS || otherCode == KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(CallsOf({"IFClose"}), Strings{"IFClose(if0)"});
}

TEST_F(EndDuringACallback, OfTheInterfaceIsRefusedToTheCallbackThatAnotherThreadWaitsFor)
{
    std::promise<void> entered;
    std::promise<pid_t> ending;
    Error outcome;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        entered.set_value();
        AwaitSleepOrEnd(ending.get_future().get());
        outcome = Outcome(KORO_Interface_Destruct(interface));
    };
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    entered.get_future().wait();
    ending.set_value(gettid());
    EXPECT_EQ(Outcome(KORO_Interface_Destruct(interface)), Error{});
    EXPECT_EQ(outcome, deadlock);
    EXPECT_EQ(CallsOf({"IFClose"}), Strings{"IFClose(if0)"});
}

TEST_F(EndDuringACallback, OfTheSystemWaits)
{
    ExpectToWait([&] { return KORO_System_Destruct(system); });
    EXPECT_EQ(producer->Open(), Strings());
}

TEST_F(EndDuringACallback, OfTheProducerLibraryWaits)
{
    ExpectToWait([&] { return KORO_ProducerLibrary_Destruct(producerLibrary); });
    EXPECT_EQ(producer->Open(), Strings());
}

TEST_F(EndDuringACallback, OfTheLibraryWaits)
{
    ExpectToWait([] { return KORO_Library_Close(); });
    EXPECT_EQ(producer->Open(), Strings());
    Require(KORO_Library_Initialize());
}

TEST_F(EndDuringACallback, OfTheLibraryRefusesItsStartAndItsEndToTheCallbackThatItWaitsFor)
{
    std::promise<void> entered;
    std::promise<void> ending;
    std::vector<Error> outcomes;
    producer->OnEntry("EventKill", [&] { ending.set_value(); });
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        entered.set_value();
        ending.get_future().wait();
        outcomes = {Outcome(KORO_Library_Initialize()), Outcome(KORO_Library_Close())};
    };
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    entered.get_future().wait();
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});
    EXPECT_EQ(outcomes, (std::vector{deadlock, deadlock}));
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Library_IsInitialized), 0);
    Require(KORO_Library_Initialize());
}

TEST_F(EndDuringACallback, OfOneOfTwoInitializationsIsFree)
{
    std::vector<Error> outcomes;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        outcomes = {Outcome(KORO_Library_Initialize()), Outcome(KORO_Library_Close())};
    };
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    EXPECT_EQ(reports.Next(), "list changed");
    EXPECT_EQ(outcomes, (std::vector{Error{}, Error{}}));
}

// Two producers: the one whose callback asks for the end, and one that must not be stopped by a refusal.
TEST_F(EndDuringACallback, OfTheLibraryInsideTheCallbackIsRefusedAndAllGoOn)
{
    const ReportingProducer another;
    const OpenTree anotherTree(another.Path());
    ConnectionReports ofAnother(anotherTree.interface);
    std::optional<Error> outcome;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) { outcome = Outcome(KORO_Library_Close()); };
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
        EXPECT_EQ(reports.Next(), "list changed");
        EXPECT_EQ(outcome, deadlock);
        ASSERT_TRUE(another.Send({.deviceFlag = 0}));
        EXPECT_EQ(ofAnother.Next(), "list changed");
    }
    reports.onReport = {};
}

TEST_F(EndDuringACallback, OfAnotherProducerLibraryIsNotRefused)
{
    const ReportingProducer another;
    const OpenTree anotherTree(another.Path());
    std::optional<Error> outcome;
    reports.onReport = [&](KORO_DeviceDescriptorHandle) {
        outcome = Outcome(KORO_ProducerLibrary_Destruct(anotherTree.producerLibrary));
    };
    ASSERT_TRUE(producer.Send({.deviceFlag = 0}));
    EXPECT_EQ(reports.Next(), "list changed");
    EXPECT_EQ(outcome, Error{});
    EXPECT_EQ(another->Open(), Strings());
}

} // namespace koro::test

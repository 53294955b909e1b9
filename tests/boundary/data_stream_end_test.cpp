#include "tests/boundary/stream_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace koro::test;
using namespace GenTL;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const std::vector<std::string> stepsOfTheEnd = {
    "DSStopAcquisition", "DSFlushQueue", "DSRevokeBuffer", "DSClose", "GCUnregisterEvent"};

const std::string stop = "DSStopAcquisition(if0-dev0-stream0, 0)";
const std::string flush = "DSFlushQueue(if0-dev0-stream0, 4)";
const std::string revokeFirst = "DSRevokeBuffer(if0-dev0-stream0, if0-dev0-stream0/0)";
const std::string unregister = "GCUnregisterEvent(if0-dev0-stream0, 1)";

using DataStreamEnd = StreamTest;

// The function that fails, and the calls that are made all the same.
using FailingStep = std::pair<std::string, std::vector<std::string>>;

class FailingEnd : public StreamTest, public testing::WithParamInterface<FailingStep>
{};

void CountUp(void*, void*, void* count)
{
    ++*static_cast<int*>(count);
}

} // namespace

TEST_F(DataStreamEnd, GrabbingStreamStopsDiscardsRevokesAndClosesInThisOrder)
{
    std::array<Memory, 3> memory{};
    std::vector<std::string> order;
    for (auto& one : memory)
    {
        const auto noteRevocation = [](void*, void*, void* context) {
            static_cast<std::vector<std::string>*>(context)->push_back("callback");
        };
        Require(KORO_DataStream_QueueBuffer(tree.stream, Announce(one, noteRevocation, &order)));
    }
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    ASSERT_TRUE(Deliver()); // one waits to be taken
    for (const std::string& function : stepsOfTheEnd)
        producer->OnEntry(function, [&order, function] { order.push_back(function); });

    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
    EXPECT_THAT(
        order, ElementsAre(
                   "DSStopAcquisition", "DSFlushQueue", "DSRevokeBuffer", "callback", "DSRevokeBuffer", "callback",
                   "DSRevokeBuffer", "callback", "DSClose", "GCUnregisterEvent"));
    EXPECT_EQ(
        CallsOf({"DSStopAcquisition", "DSFlushQueue"}),
        (Journal{"DSStopAcquisition(if0-dev0-stream0, 0)", "DSFlushQueue(if0-dev0-stream0, 4)"}));
    for (const std::string& function : stepsOfTheEnd)
        producer->OnEntry(function, nullptr);
}

TEST_F(DataStreamEnd, BuffersAreRevokedInTheOrderOfTheirAnnouncement)
{
    tree.QueueBuffers(4);
    const auto second = tree.QueueBuffers(1, 16).front();
    Require(KORO_DataStream_Flush(tree.stream, KORO_ACQ_QUEUE_ALL_DISCARD));
    Require(KORO_DataStream_RevokeBuffer(tree.stream, second));
    producer->ClearJournal();
    Require(KORO_DataStream_Destruct(tree.stream));
    EXPECT_THAT(
        CallsOf({"DSRevokeBuffer"}), ElementsAre(
                                         "DSRevokeBuffer(if0-dev0-stream0, if0-dev0-stream0/0)",
                                         "DSRevokeBuffer(if0-dev0-stream0, if0-dev0-stream0/1)",
                                         "DSRevokeBuffer(if0-dev0-stream0, if0-dev0-stream0/2)",
                                         "DSRevokeBuffer(if0-dev0-stream0, if0-dev0-stream0/3)"));
}

TEST_F(DataStreamEnd, IdleStreamIsNotStopped)
{
    Require(KORO_DataStream_Destruct(tree.stream));
    EXPECT_EQ(CallsOf(stepsOfTheEnd), (Journal{"DSFlushQueue(if0-dev0-stream0, 4)", "DSClose(if0-dev0-stream0)"}));
    EXPECT_THAT(producer->Open(), ElementsAre("if0", "if0-dev0", "system"));
}

// Each step that fails ends the steps; what is left is the event, which goes with the object.
TEST_P(FailingEnd, LeavesTheProducersStreamOpen)
{
    const auto& [function, steps] = GetParam();
    StartWithBuffers(2);
    producer->ClearJournal();
    producer->AnswerOnce(function, GC_ERR_IO);
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
    EXPECT_EQ(CallsOf(stepsOfTheEnd), steps);
    EXPECT_THAT(producer->Open(), Contains(streamID));
}

INSTANTIATE_TEST_SUITE_P(
    DataStreamEnd, FailingEnd,
    testing::Values(
        FailingStep{"DSGetInfo", {unregister}}, FailingStep{"DSStopAcquisition", {stop, unregister}},
        FailingStep{"DSFlushQueue", {stop, flush, unregister}},
        FailingStep{"DSRevokeBuffer", {stop, flush, revokeFirst, unregister}}),
    [](const auto& step) { return step.param.first; });

TEST_F(DataStreamEnd, FailureOfTheCloseItselfReachesNobody)
{
    producer->AnswerOnce("DSClose", GC_ERR_IO);
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
    EXPECT_EQ(CallsOf({"DSClose"}).size(), 1u);
}

TEST_F(DataStreamEnd, StreamWhoseDeviceWentFirstIsNotClosed)
{
    Memory memory{};
    int revocations = 0;
    const auto buffer = Announce(memory, CountUp, &revocations);
    StartWithBuffers(1);
    producer->ClearJournal();
    Require(KORO_Device_Destruct(tree.device));
    EXPECT_THAT(CallsOf({"DSGetInfo", "DSStopAcquisition", "DSFlushQueue", "DSRevokeBuffer", "DSClose"}), IsEmpty());
    EXPECT_EQ(revocations, 0);
    EXPECT_EQ(Outcome(KORO_DataStream_KillWait(tree.stream)), InvalidHandle("dataStreamHandle"));
    EXPECT_FALSE(IsAlive(buffer));
}

TEST_F(DataStreamEnd, HandlesOfBuffersEndWithTheObjectAndNotBefore)
{
    Memory memory{};
    struct Seen
    {
        KORO_BufferHandle buffer = nullptr;
        Error outcome;
    } seen;
    const auto askOnce = [](void*, void*, void* context) {
        auto& what = *static_cast<Seen*>(context);
        std::size_t size = 0;
        what.outcome = Outcome(KORO_Buffer_GetSize(what.buffer, &size));
    };
    seen.buffer = Announce(memory, askOnce, &seen);
    Require(KORO_DataStream_Destruct(tree.stream));
    // The entry was still there while the stream went, and the object knew that its stream had gone.
    EXPECT_EQ(seen.outcome, parentExpired);
    EXPECT_FALSE(IsAlive(seen.buffer));
}

TEST_F(DataStreamEnd, StreamCanBeOpenedAgain)
{
    StartWithBuffers(2);
    Require(KORO_DataStream_Destruct(tree.stream));
    tree.stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, tree.streamDescriptor);
    const auto buffers = StartWithBuffers(1);
    Deliver();
    EXPECT_EQ(Wait(), buffers.front());
}

TEST(ClosingTheLibrary, ReleasesARunningStream)
{
    const ScriptedProducer producer;
    {
        const KoroLibrary library;
        OpenTree tree(producer.Path());
        tree.QueueBuffers(2);
        Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
        ASSERT_TRUE(producer->Deliver("if0-dev0-stream0"));
    }
    EXPECT_THAT(producer->Open(), IsEmpty());
    EXPECT_EQ(producer->InitCount(), 0);
    EXPECT_EQ(CallsOf(producer->Journal(), {"DSClose"}), std::vector<std::string>{"DSClose(if0-dev0-stream0)"});
}

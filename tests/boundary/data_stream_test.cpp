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

// Where a revocation callback writes down what it was given.
struct Revocation
{
    void* buffer = this; // neither null nor any buffer
    void* userPtr = this;
    int count = 0;
    std::thread::id thread;

    static void Record(void* buffer, void* userPtr, void* context)
    {
        auto& revocation = *static_cast<Revocation*>(context);
        revocation.buffer = buffer;
        revocation.userPtr = userPtr;
        ++revocation.count;
        revocation.thread = std::this_thread::get_id();
    }
};

using DataStream = StreamTest;

} // namespace

TEST_F(DataStream, SizesAreAskedOfTheProducerEachTime)
{
    const auto expect = [&](std::int32_t command, const char* name, const std::string& parameter, auto function) {
        const auto value = (std::size_t{5} << 32) + static_cast<std::size_t>(command);
        ExpectNumberGetter(
            producer, {"DSGetInfo", command, name}, scripted::Size(value), "12 (INFO_DATATYPE_SIZET)", parameter, value,
            function, tree.stream);
    };
    expect(3, "STREAM_INFO_NUM_ANNOUNCED", "numBuffersAnnounced", KORO_DataStream_GetNumBuffersAnnounced);
    expect(
        12, "STREAM_INFO_BUF_ANNOUNCE_MIN", "numBuffersAnnouncedMinRequired",
        KORO_DataStream_GetNumBuffersAnnouncedMinRequired);
    expect(5, "STREAM_INFO_NUM_AWAIT_DELIVERY", "numBuffersAwaitDelivery", KORO_DataStream_GetNumBuffersAwaitDelivery);
    expect(4, "STREAM_INFO_NUM_QUEUED", "numBuffersQueued", KORO_DataStream_GetNumBuffersQueued);
    expect(11, "STREAM_INFO_NUM_CHUNKS_MAX", "numChunksPerBufferMax", KORO_DataStream_GetNumChunksPerBufferMax);
    expect(13, "STREAM_INFO_BUF_ALIGNMENT", "bufferAlignment", KORO_DataStream_GetBufferAlignment);
    expect(7, "STREAM_INFO_PAYLOAD_SIZE", "payloadSize", KORO_DataStream_GetPayloadSize);
}

TEST_F(DataStream, CountersAreAskedOfTheProducerEachTime)
{
    const auto expect = [&](std::int32_t command, const char* name, const std::string& parameter, auto function) {
        const auto value = (std::uint64_t{7} << 60) + static_cast<std::uint64_t>(command);
        ExpectNumberGetter(
            producer, {"DSGetInfo", command, name}, scripted::UInt64(value), "8 (INFO_DATATYPE_UINT64)", parameter,
            value, function, tree.stream);
    };
    expect(1, "STREAM_INFO_NUM_DELIVERED", "numBuffersDelivered", KORO_DataStream_GetNumBuffersDelivered);
    expect(6, "STREAM_INFO_NUM_STARTED", "numBuffersStarted", KORO_DataStream_GetNumBuffersStarted);
    expect(2, "STREAM_INFO_NUM_UNDERRUN", "numUnderruns", KORO_DataStream_GetNumUnderruns);
}

TEST_F(DataStream, FlagsAreAskedOfTheProducerEachTime)
{
    const auto expect = [&](std::int32_t command, const char* name, const std::string& parameter, auto function) {
        ExpectNumberGetter(
            producer, {"DSGetInfo", command, name}, scripted::Bool8(true), "11 (INFO_DATATYPE_BOOL8)", parameter,
            KORO_Bool8{1}, function, tree.stream);
    };
    expect(9, "STREAM_INFO_DEFINES_PAYLOADSIZE", "definesPayloadSize", KORO_DataStream_GetDefinesPayloadSize);
    expect(8, "STREAM_INFO_IS_GRABBING", "isGrabbing", KORO_DataStream_GetIsGrabbing);
}

TEST_F(DataStream, TLTypeIsAskedOfTheProducerEachTime)
{
    ExpectTextGetter(
        producer, {"DSGetInfo", 10, "STREAM_INFO_TLTYPE"}, "tlType", KORO_DataStream_GetTLType, tree.stream);
}

TEST_F(DataStream, InfoOfAnyCommandPassesThrough)
{
    ExpectRawInfo(producer, "DSGetInfo", KORO_DataStream_GetInfo, tree.stream);
}

TEST_F(DataStream, IdAndKeyComeWithoutACallOfTheProducer)
{
    EXPECT_EQ(GetText(KORO_DataStream_GetID, tree.stream), streamID);
    EXPECT_EQ(GetText(KORO_DataStream_GetKey, tree.stream), GetText(KORO_Device_GetKey, tree.device) + "|" + streamID);
    EXPECT_THAT(producer->Journal(), IsEmpty());
}

TEST_F(DataStream, ParentIsTheHandleOfTheOpening)
{
    EXPECT_EQ(Get<KORO_DeviceHandle>(KORO_DataStream_GetParentDevice, tree.stream), tree.device);
    EXPECT_EQ(Outcome(KORO_DataStream_GetParentDevice(tree.stream, nullptr)), NullPointer("deviceHandle"));
    EXPECT_EQ(Outcome(KORO_DataStream_GetParentDevice(nullptr, nullptr)), InvalidHandle("dataStreamHandle"));
}

TEST_F(DataStream, CastsGiveTheSameHandleUntilTheStreamIsDestructed)
{
    const auto stream = tree.stream;
    const auto module = Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, stream);
    const auto events = Get<KORO_EventSupportingModuleHandle>(KORO_DataStream_ToEventSupportingModule, stream);
    EXPECT_EQ(Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, stream), module);
    EXPECT_EQ(Get<KORO_EventSupportingModuleHandle>(KORO_DataStream_ToEventSupportingModule, stream), events);
    const auto port = Get<KORO_PortHandle>(KORO_Module_GetPort, module);
    EXPECT_EQ(GetText(KORO_Port_GetModuleName, port), "TLDataStream");

    EXPECT_EQ(Outcome(KORO_DataStream_ToModule(stream, nullptr)), NullPointer("moduleHandle"));
    EXPECT_EQ(
        Outcome(KORO_DataStream_ToEventSupportingModule(stream, nullptr)), NullPointer("eventSupportingModuleHandle"));

    Require(KORO_DataStream_Destruct(stream));
    KORO_PortHandle anotherPort = nullptr;
    KORO_EventControllerHandle controller = nullptr;
    EXPECT_EQ(Outcome(KORO_Module_GetPort(module, &anotherPort)), InvalidHandle("moduleHandle"));
    EXPECT_EQ(
        Outcome(KORO_EventSupportingModule_EnableEvents(events, 0, &controller)),
        InvalidHandle("eventSupportingModuleHandle"));
    EXPECT_EQ(Outcome(KORO_Port_GetModuleName(port, nullptr, nullptr)), InvalidHandle("portHandle"));
}

TEST_F(DataStream, AnnounceTestsTheOutputBeforeTheMemory)
{
    KORO_BufferHandle buffer = nullptr;
    EXPECT_EQ(
        Outcome(KORO_DataStream_AnnounceBuffer(nullptr, nullptr, 8, nullptr, nullptr, nullptr, nullptr)),
        InvalidHandle("dataStreamHandle"));
    EXPECT_EQ(
        Outcome(KORO_DataStream_AnnounceBuffer(tree.stream, nullptr, 8, nullptr, nullptr, nullptr, nullptr)),
        NullPointer("bufferHandle"));
    EXPECT_EQ(
        Outcome(KORO_DataStream_AnnounceBuffer(tree.stream, nullptr, 8, nullptr, nullptr, nullptr, &buffer)),
        NullPointer("buffer"));
    EXPECT_EQ(buffer, nullptr);
    EXPECT_THAT(producer->Journal(), IsEmpty());
}

TEST_F(DataStream, AnnouncedMemoryIsTheCallersAndSoIsTheUserPointer)
{
    Memory memory{};
    const auto buffer = Announce(memory);
    EXPECT_EQ(CallsOf({"DSAnnounceBuffer"}), Journal{"DSAnnounceBuffer(if0-dev0-stream0, 8)"});
    EXPECT_EQ(Get<void*>(KORO_Buffer_GetBasePtr, buffer), memory.data());
    EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetSize, buffer), memory.size());
    EXPECT_EQ(Get<void*>(KORO_Buffer_GetUserPtr, buffer), memory.data() + 1);
}

TEST_F(DataStream, AnnouncingTheSameMemoryAgainIsTheProducersToRefuse)
{
    Memory memory{};
    const auto buffer = Announce(memory);
    KORO_BufferHandle second = nullptr;
    EXPECT_EQ(
        Outcome(KORO_DataStream_AnnounceBuffer(
            tree.stream, memory.data(), memory.size(), nullptr, nullptr, nullptr, &second)),
        Failure("DSAnnounceBuffer", GC_ERR_RESOURCE_IN_USE));
    EXPECT_EQ(second, nullptr);
    EXPECT_TRUE(IsAlive(buffer));
}

TEST_F(DataStream, ProducersMemoryComesWithTheHandle)
{
    KORO_BufferHandle buffer = nullptr;
    int user = 0;
    EXPECT_EQ(
        Outcome(KORO_DataStream_AllocAndAnnounceBuffer(tree.stream, 24, &user, nullptr)), NullPointer("bufferHandle"));
    EXPECT_THAT(producer->Journal(), IsEmpty());

    EXPECT_EQ(Outcome(KORO_DataStream_AllocAndAnnounceBuffer(tree.stream, 24, &user, &buffer)), Error{});
    EXPECT_NE(Get<void*>(KORO_Buffer_GetBasePtr, buffer), nullptr);
    EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetSize, buffer), 24u);
    EXPECT_EQ(Get<void*>(KORO_Buffer_GetUserPtr, buffer), &user);
}

TEST_F(DataStream, OutOfMemoryIsTheResultOfTheAllocationItself)
{
    KORO_BufferHandle buffer = nullptr;
    const auto alloc = [&] {
        return Outcome(KORO_DataStream_AllocAndAnnounceBuffer(tree.stream, 8, nullptr, &buffer));
    };
    producer->Answer("DSAllocAndAnnounceBuffer", GC_ERR_OUT_OF_MEMORY);
    EXPECT_EQ(alloc(), FailureAs(KORO_RETURN_CODE_BAD_ALLOC, "DSAllocAndAnnounceBuffer", GC_ERR_OUT_OF_MEMORY));

    // The text contains the producer's reason.
    producer->SetLastError({.code = GC_ERR_BUSY});
    EXPECT_EQ(alloc(), FailureAs(KORO_RETURN_CODE_BAD_ALLOC, "DSAllocAndAnnounceBuffer", GC_ERR_BUSY));

    producer->Answer("DSAllocAndAnnounceBuffer", GC_ERR_BUSY);
    producer->SetLastError({.code = GC_ERR_OUT_OF_MEMORY});
    EXPECT_EQ(alloc(), Failure("DSAllocAndAnnounceBuffer", GC_ERR_OUT_OF_MEMORY));
    EXPECT_EQ(buffer, nullptr);
}

TEST_F(DataStream, QueueNamesTheStreamBeforeTheBuffer)
{
    EXPECT_EQ(Outcome(KORO_DataStream_QueueBuffer(nullptr, nullptr)), InvalidHandle("dataStreamHandle"));
    EXPECT_EQ(Outcome(KORO_DataStream_QueueBuffer(tree.stream, nullptr)), InvalidHandle("bufferHandle"));
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(nullptr, nullptr)), InvalidHandle("dataStreamHandle"));
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(tree.stream, nullptr)), InvalidHandle("bufferHandle"));
    EXPECT_THAT(producer->Journal(), IsEmpty());
}

TEST_F(DataStream, QueueingTwiceIsTheProducersToRefuse)
{
    const auto buffer = tree.QueueBuffers(1).front();
    EXPECT_EQ(
        Outcome(KORO_DataStream_QueueBuffer(tree.stream, buffer)), Failure("DSQueueBuffer", GC_ERR_RESOURCE_IN_USE));
    EXPECT_EQ(Get<std::size_t>(KORO_DataStream_GetNumBuffersQueued, tree.stream), 1u);
}

TEST_F(DataStream, RefusedRevokeLeavesTheBufferAnnouncedAndItsHandleValid)
{
    Memory memory{};
    Revocation revocation;
    const auto buffer = Announce(memory, Revocation::Record, &revocation);
    const auto module = Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer);
    Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));

    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(tree.stream, buffer)), Failure("DSRevokeBuffer", GC_ERR_BUSY));
    EXPECT_EQ(revocation.count, 0);
    EXPECT_EQ(Get<void*>(KORO_Buffer_GetBasePtr, buffer), memory.data());
    EXPECT_NE(Get<KORO_PortHandle>(KORO_Module_GetPort, module), nullptr);

    // Still listed: it comes out of the wait under its handle, and can be revoked then.
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    Deliver();
    EXPECT_EQ(Wait(), buffer);
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(tree.stream, buffer)), Error{});
    EXPECT_EQ(revocation.count, 1);
}

TEST_F(DataStream, ProducersMemoryIsRevokedWithoutACallback)
{
    const auto buffer = tree.QueueBuffers(1).front();
    Require(KORO_DataStream_Flush(tree.stream, KORO_ACQ_QUEUE_ALL_DISCARD));
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(tree.stream, buffer)), Error{});
    EXPECT_EQ(Get<std::size_t>(KORO_DataStream_GetNumBuffersAnnounced, tree.stream), 0u);
}

TEST_F(DataStream, QueueingOnAnotherStreamIsTheProducersToRefuse)
{
    const auto buffer = tree.QueueBuffers(1).front();
    const auto other = OpenSecondStream();
    EXPECT_EQ(Outcome(KORO_DataStream_QueueBuffer(other, buffer)), Failure("DSQueueBuffer", GC_ERR_INVALID_HANDLE));
    EXPECT_TRUE(IsAlive(buffer));
}

TEST_F(DataStream, RevokeGoesToTheStreamThatOwnsTheBuffer)
{
    const auto buffer = tree.QueueBuffers(1).front();
    Require(KORO_DataStream_Flush(tree.stream, KORO_ACQ_QUEUE_ALL_DISCARD));
    const auto other = OpenSecondStream();
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(other, buffer)), Error{});
    EXPECT_FALSE(IsAlive(buffer));
    EXPECT_EQ(Get<std::size_t>(KORO_DataStream_GetNumBuffersAnnounced, tree.stream), 0u);

    // It is not revoked again, which would leave the stream open.
    Require(KORO_DataStream_Destruct(tree.stream));
    EXPECT_EQ(CallsOf({"DSRevokeBuffer"}).size(), 1u);
    EXPECT_EQ(CallsOf({"DSClose"}).size(), 1u);
}

TEST_F(DataStream, RevokeEndsTheHandleAndWhatItWasCastTo)
{
    const auto buffer = Get<KORO_BufferHandle>(
        KORO_DataStream_AllocAndAnnounceBuffer, tree.stream, std::size_t{8}, static_cast<void*>(nullptr));
    const auto module = Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer);
    const auto events = Get<KORO_EventSupportingModuleHandle>(KORO_Buffer_ToEventSupportingModule, buffer);
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(tree.stream, buffer)), Error{});

    EXPECT_FALSE(IsAlive(buffer));
    KORO_PortHandle port = nullptr;
    KORO_EventControllerHandle controller = nullptr;
    EXPECT_EQ(Outcome(KORO_Module_GetPort(module, &port)), InvalidHandle("moduleHandle"));
    EXPECT_EQ(
        Outcome(KORO_EventSupportingModule_EnableEvents(events, 0, &controller)),
        InvalidHandle("eventSupportingModuleHandle"));
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(tree.stream, buffer)), InvalidHandle("bufferHandle"));
    EXPECT_EQ(Outcome(KORO_DataStream_QueueBuffer(tree.stream, buffer)), InvalidHandle("bufferHandle"));
}

TEST_F(DataStream, RevocationIsToldOnceOnTheRevokingThreadWithWhatTheProducerGaveBack)
{
    Memory memory{};
    Revocation revocation;
    const auto buffer = Announce(memory, Revocation::Record, &revocation);
    std::thread::id revoker;
    std::thread([&] {
        revoker = std::this_thread::get_id();
        Require(KORO_DataStream_RevokeBuffer(tree.stream, buffer));
    }).join();
    EXPECT_EQ(revocation.count, 1);
    EXPECT_EQ(revocation.thread, revoker);
    EXPECT_EQ(revocation.buffer, memory.data());
    EXPECT_EQ(revocation.userPtr, memory.data() + 1);

    // A producer that gives nothing back: what was announced is not put in its place.
    Revocation empty;
    const auto another = Announce(memory, Revocation::Record, &empty);
    producer->AnswerOnce("DSRevokeBuffer", GC_ERR_SUCCESS);
    Require(KORO_DataStream_RevokeBuffer(tree.stream, another));
    EXPECT_EQ(empty.count, 1);
    EXPECT_EQ(empty.buffer, nullptr);
    EXPECT_EQ(empty.userPtr, nullptr);
}

TEST_F(DataStream, NullRevocationCallbackIsNotCalled)
{
    Memory memory{};
    const auto buffer = Announce(memory);
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(tree.stream, buffer)), Error{});
    EXPECT_EQ(CallsOf({"DSRevokeBuffer"}).size(), 1u);
    EXPECT_FALSE(IsAlive(buffer));
}

TEST_F(DataStream, OperationsRefuseADeadHandle)
{
    Require(KORO_DataStream_Destruct(tree.stream));
    const auto dead = tree.stream;
    const auto expected = InvalidHandle("dataStreamHandle");
    KORO_BufferHandle buffer = nullptr;
    char byte = 0;
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(dead)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_AnnounceBuffer(dead, &byte, 1, nullptr, nullptr, nullptr, &buffer)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_AllocAndAnnounceBuffer(dead, 1, nullptr, &buffer)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_WaitForFinishedBuffer(dead, 0, &buffer)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_KillWait(dead)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_FlushPendingKillWaits(dead)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_StartAcquisition(dead, 0, 1)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_StartAcquisitionInfinite(dead, 0)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_StopAcquisition(dead, 0)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_Flush(dead, 0)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_GetID(dead, nullptr, nullptr)), expected);
    EXPECT_EQ(Outcome(KORO_DataStream_GetKey(dead, nullptr, nullptr)), expected);
}

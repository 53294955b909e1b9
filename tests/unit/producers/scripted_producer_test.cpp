// The scripted producer itself: other tests stand on its default behaviour.
#include "tests/unit/gentl/bound_producer.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using namespace koro::test;
using koro::internal::GenTLProxy;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class ScriptedStream : public testing::Test
{
protected:
    ScriptedStream()
    {
        EXPECT_EQ(gentl.TLOpenInterface(producer.system, "if0", &interface), GenTL::GC_ERR_SUCCESS);
        EXPECT_EQ(gentl.IFOpenDevice(interface, "if0-dev1", 4, &device), GenTL::GC_ERR_SUCCESS);
        EXPECT_EQ(gentl.DevOpenDataStream(device, id, &stream), GenTL::GC_ERR_SUCCESS);
        EXPECT_EQ(gentl.GCRegisterEvent(stream, GenTL::EVENT_NEW_BUFFER, &event), GenTL::GC_ERR_SUCCESS);
        for (std::size_t index = 0; index < buffers.size(); ++index)
        {
            void* const userPointer = reinterpret_cast<void*>(index);
            EXPECT_EQ(gentl.DSAllocAndAnnounceBuffer(stream, 8, userPointer, &buffers[index]), GenTL::GC_ERR_SUCCESS);
        }
    }

    void QueueAllAndStart()
    {
        for (const auto buffer : buffers)
            EXPECT_EQ(gentl.DSQueueBuffer(stream, buffer), GenTL::GC_ERR_SUCCESS);
        EXPECT_EQ(gentl.DSStartAcquisition(stream, 0, GenTL::GENTL_INFINITE), GenTL::GC_ERR_SUCCESS);
    }

    GenTL::GC_ERROR Take(std::uint64_t timeout_ms = 0)
    {
        std::size_t size = sizeof taken;
        return gentl.EventGetData(event, &taken, &size, timeout_ms);
    }

    std::uint64_t StreamNumber(GenTL::STREAM_INFO_CMD command)
    {
        std::uint64_t number = 0;
        std::size_t size = sizeof number;
        GenTL::INFO_DATATYPE type = 0;
        EXPECT_EQ(gentl.DSGetInfo(stream, command, &type, &number, &size), GenTL::GC_ERR_SUCCESS);
        return number;
    }

    static constexpr const char* id = "if0-dev1-stream0";
    OpenProducer producer;
    const GenTLProxy& gentl = *producer.proxy;
    GenTL::IF_HANDLE interface = nullptr;
    GenTL::DEV_HANDLE device = nullptr;
    GenTL::DS_HANDLE stream = nullptr;
    GenTL::EVENT_HANDLE event = nullptr;
    std::vector<GenTL::BUFFER_HANDLE> buffers = {nullptr, nullptr};
    GenTL::EVENT_NEW_BUFFER_DATA taken{};
};

} // namespace

TEST_F(ScriptedStream, OpenTellsWhatTheConsumerHolds)
{
    EXPECT_THAT(
        producer->Open(), ElementsAre(
                              "if0", "if0-dev1", "if0-dev1-stream0", "if0-dev1-stream0/0", "if0-dev1-stream0/1",
                              "if0-dev1-stream0:event1", "system"));
    gentl.TLClose(producer.system);
    EXPECT_THAT(producer->Open(), IsEmpty());
}

TEST_F(ScriptedStream, CloseOfAParentLeavesDeadHandles)
{
    EXPECT_EQ(gentl.IFClose(interface), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSClose(stream), GenTL::GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.DevClose(device), GenTL::GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.EventKill(event), GenTL::GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(gentl.GCUnregisterEvent(stream, GenTL::EVENT_NEW_BUFFER), GenTL::GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(producer->Journal().back(), "GCUnregisterEvent(dead, 1)");
}

TEST_F(ScriptedStream, SecondOpeningOfTheSameThingIsInUse)
{
    GenTL::DS_HANDLE second = nullptr;
    EXPECT_EQ(gentl.DevOpenDataStream(device, id, &second), GenTL::GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(gentl.DevOpenDataStream(device, "elsewhere", &second), GenTL::GC_ERR_INVALID_ID);
}

TEST_F(ScriptedStream, FramesComeInTheOrderOfTheQueueWithTheirBytes)
{
    QueueAllAndStart();
    EXPECT_TRUE(producer->Deliver(id));
    EXPECT_TRUE(producer->Deliver(id, {.bytes = "12345678"}));
    EXPECT_FALSE(producer->Deliver(id));
    EXPECT_EQ(StreamNumber(GenTL::STREAM_INFO_NUM_UNDERRUN), 1u);

    for (const auto buffer : buffers)
    {
        ASSERT_EQ(Take(), GenTL::GC_ERR_SUCCESS);
        EXPECT_EQ(taken.BufferHandle, buffer);
    }
    EXPECT_EQ(Take(), GenTL::GC_ERR_TIMEOUT);
    EXPECT_EQ(StreamNumber(GenTL::STREAM_INFO_NUM_DELIVERED), 2u);

    char* base = nullptr;
    std::size_t size = sizeof base;
    GenTL::INFO_DATATYPE type = 0;
    gentl.DSGetBufferInfo(stream, buffers[1], GenTL::BUFFER_INFO_BASE, &type, &base, &size);
    ASSERT_NE(base, nullptr);
    EXPECT_EQ(std::string(base, 8), "12345678");
}

TEST_F(ScriptedStream, NothingIsDeliveredBeforeTheStartAndAfterTheWantedNumber)
{
    EXPECT_FALSE(producer->Deliver(id));
    gentl.DSQueueBuffer(stream, buffers[0]);
    gentl.DSQueueBuffer(stream, buffers[1]);
    EXPECT_FALSE(producer->Deliver(id));
    EXPECT_EQ(gentl.DSStartAcquisition(stream, 0, 1), GenTL::GC_ERR_SUCCESS);
    EXPECT_TRUE(producer->Deliver(id));
    EXPECT_FALSE(producer->Deliver(id));
    EXPECT_EQ(gentl.DSStopAcquisition(stream, 0), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSStopAcquisition(stream, 0), GenTL::GC_ERR_RESOURCE_IN_USE);
}

TEST_F(ScriptedStream, BufferInAnyQueueIsBusy)
{
    QueueAllAndStart();
    EXPECT_EQ(gentl.DSQueueBuffer(stream, buffers[0]), GenTL::GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), GenTL::GC_ERR_BUSY);
    producer->Deliver(id);
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), GenTL::GC_ERR_BUSY);
    Take();
    EXPECT_EQ(gentl.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSQueueBuffer(stream, buffers[0]), GenTL::GC_ERR_INVALID_HANDLE);
}

TEST_F(ScriptedStream, FlushMovesBuffersAndTheirEntries)
{
    QueueAllAndStart();
    gentl.DSFlushQueue(stream, GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT);
    EXPECT_EQ(StreamNumber(GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY), 2u);
    EXPECT_EQ(Take(), GenTL::GC_ERR_SUCCESS);
    gentl.DSFlushQueue(stream, GenTL::ACQ_QUEUE_OUTPUT_DISCARD);
    EXPECT_EQ(Take(), GenTL::GC_ERR_TIMEOUT);
    gentl.DSFlushQueue(stream, GenTL::ACQ_QUEUE_UNQUEUED_TO_INPUT);
    EXPECT_EQ(StreamNumber(GenTL::STREAM_INFO_NUM_QUEUED), 2u);
    gentl.DSFlushQueue(stream, GenTL::ACQ_QUEUE_ALL_DISCARD);
    EXPECT_EQ(StreamNumber(GenTL::STREAM_INFO_NUM_QUEUED), 0u);
    EXPECT_EQ(gentl.DSFlushQueue(stream, 99), GenTL::GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(ScriptedStream, KillIsKeptForTheNextWaitAndComesBeforeEntries)
{
    QueueAllAndStart();
    producer->Deliver(id);
    gentl.EventKill(event);
    EXPECT_EQ(Take(), GenTL::GC_ERR_ABORT);
    EXPECT_EQ(Take(), GenTL::GC_ERR_SUCCESS);
}

TEST_F(ScriptedStream, WaiterIsEndedByKillUnregisteringAndDelivery)
{
    QueueAllAndStart();
    GenTL::GC_ERROR result = 0;
    const auto waitWhile = [&](const auto& happening) {
        std::thread waiter([&] { result = Take(GenTL::GENTL_INFINITE); });
        producer->AwaitWaiters(1);
        happening();
        waiter.join();
        return result;
    };
    EXPECT_EQ(waitWhile([&] { producer->Deliver(id); }), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(waitWhile([&] { gentl.EventKill(event); }), GenTL::GC_ERR_ABORT);
    EXPECT_EQ(waitWhile([&] { gentl.GCUnregisterEvent(stream, GenTL::EVENT_NEW_BUFFER); }), GenTL::GC_ERR_ABORT);
}

TEST_F(ScriptedStream, ResetBringsBackTheDefaultsAndRevivesNoHandle)
{
    producer->Answer("DSClose", GenTL::GC_ERR_IO);
    producer->Edit([](scripted::Tree& tree) { tree.interfaces.clear(); });
    producer->Reset();
    EXPECT_THAT(producer->Open(), IsEmpty());
    EXPECT_THAT(producer->Journal(), IsEmpty());
    EXPECT_EQ(gentl.GCInitLib(), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(gentl.DSClose(stream), GenTL::GC_ERR_INVALID_HANDLE);
}

TEST_F(ScriptedStream, RegistersAreReadAndWrittenAsMemory)
{
    const std::uint32_t written = 0x01020304;
    std::size_t size = sizeof written;
    EXPECT_EQ(gentl.GCWritePort(device, 60, &written, &size), GenTL::GC_ERR_SUCCESS);
    std::uint32_t read = 0;
    EXPECT_EQ(gentl.GCReadPort(device, 60, &read, &size), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(read, written);
    EXPECT_EQ(gentl.GCReadPort(device, 61, &read, &size), GenTL::GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(gentl.GCReadPort(device, UINT64_MAX, &read, &size), GenTL::GC_ERR_INVALID_ADDRESS);
}

TEST_F(ScriptedStream, EventsThatATestFiresAreReadAsTheyAre)
{
    GenTL::EVENT_HANDLE module = nullptr;
    EXPECT_FALSE(producer->Fire("if0-dev1", GenTL::EVENT_MODULE, "x"));
    EXPECT_EQ(gentl.GCRegisterEvent(device, GenTL::EVENT_MODULE, &module), GenTL::GC_ERR_SUCCESS);
    EXPECT_TRUE(producer->Fire("if0-dev1", GenTL::EVENT_MODULE, std::string("\x34\x12payload", 9)));
    char block[64];
    std::size_t size = 4;
    EXPECT_EQ(gentl.EventGetData(module, block, &size, 0), GenTL::GC_ERR_BUFFER_TOO_SMALL);
    size = sizeof block;
    EXPECT_EQ(gentl.EventGetData(module, block, &size, 0), GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(size, 9u);

    char text[16];
    std::size_t textSize = sizeof text;
    GenTL::INFO_DATATYPE type = 0;
    EXPECT_EQ(
        gentl.EventGetDataInfo(module, block, size, GenTL::EVENT_DATA_ID, &type, text, &textSize),
        GenTL::GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "1234");
}

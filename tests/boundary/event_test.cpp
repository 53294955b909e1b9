#include "tests/boundary/stream_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace koro::test;
using namespace GenTL;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class Event : public StreamTest
{
protected:
    // The scripted producer reads the first two bytes of a block as its number and the rest as its data.
    KORO_EventHandle Take(const std::string& bytes) const
    {
        if (!producer->Fire(streamID, EVENT_MODULE, bytes)) throw std::runtime_error("nobody listens");
        return Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, controller, std::uint64_t{0});
    }

    KORO_EventControllerHandle controller = EnableEvents(EVENT_MODULE);
    const std::string block = std::string("\x34\x12", 2) + "payload";
    KORO_EventHandle event = Take(block);
};

} // namespace

TEST_F(Event, RawDataIsTheBlockAsDeliveredAndOfExactlyItsSize)
{
    producer->ClearJournal();
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, event), block); // of 1024 bytes that it could have
    ExpectBufferOut<std::uint8_t>("rawData", block, [&](std::uint8_t* rawData, std::size_t* size) {
        return KORO_Event_GetRawData(event, rawData, size);
    });
    EXPECT_THAT(producer->Journal(), IsEmpty());
}

TEST_F(Event, EmptyBlockIsDeliveredAsOne)
{
    const auto empty = Take("");
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, empty), "");
    std::uint8_t byte = 9;
    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_Event_GetRawData(empty, &byte, &size)), Error{});
    size = 1;
    EXPECT_EQ(Outcome(KORO_Event_GetRawData(empty, &byte, &size)), Error{});
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(byte, 9);
}

TEST_F(Event, BlockOfTheLargestSizeIsWhole)
{
    const std::string largest(1024, 'x');
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, Take(largest)), largest);
}

TEST_F(Event, TypeIsThatOfTheControllerAndAsksNobody)
{
    producer->ClearJournal();
    ExpectScalarOut("type", std::int32_t{EVENT_MODULE}, KORO_Event_GetType, event);
    EXPECT_THAT(producer->Journal(), IsEmpty());
}

TEST_F(Event, DataIsAskedOnceHoweverOftenItIsRead)
{
    producer->ClearJournal();
    for (int round = 0; round < 3; ++round)
        EXPECT_EQ(GetBytes(KORO_Event_GetData, event), "payload");
    EXPECT_THAT(
        producer->Journal(), ElementsAre(
                                 "EventGetDataInfo(if0-dev0-stream0:event5, 9, 1, size)",
                                 "EventGetDataInfo(if0-dev0-stream0:event5, 9, 1, data)"));
    ExpectBufferOut<std::uint8_t>("data", "payload", [&](std::uint8_t* data, std::size_t* size) {
        return KORO_Event_GetData(event, data, size);
    });
}

TEST_F(Event, DataIsTakenInWhateverTypeTheProducerGives)
{
    for (const std::int32_t type : {0, 1, 8, 13, 1000})
    {
        producer->SetInfo("EventGetDataInfo", EVENT_DATA_VALUE, scripted::Bytes(type, "anything"));
        EXPECT_EQ(GetBytes(KORO_Event_GetData, Take(block)), "anything");
    }
}

TEST_F(Event, DataMayBeAsLargeAsAnEventMayBe)
{
    const std::string large((16u << 20) + 1, 'x');
    producer->SetInfo("EventGetDataInfo", EVENT_DATA_VALUE, scripted::Bytes(INFO_DATATYPE_BUFFER, large));
    EXPECT_TRUE(GetBytes(KORO_Event_GetData, Take(block)) == large);

    auto beyond = scripted::Bytes(INFO_DATATYPE_BUFFER, "x");
    beyond.claimedSize = (std::size_t{256} << 20) + 1;
    producer->SetInfo("EventGetDataInfo", EVENT_DATA_VALUE, beyond);
    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_Event_GetData(Take(block), nullptr, &size)),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: EventGetDataInfo | Error: 268435457 event block bytes exceed the bound of 268435456]"}));
}

TEST_F(Event, FailedDataIsAskedAgain)
{
    const InfoQuery query{"EventGetDataInfo", 1, "EVENT_DATA_VALUE"};
    std::size_t size = 0;
    producer->AnswerOnce("EventGetDataInfo", GC_ERR_NO_DATA);
    EXPECT_EQ(Outcome(KORO_Event_GetData(event, nullptr, &size)), InfoFailure(query, ProducerErrorOf(GC_ERR_NO_DATA)));
    producer->AnswerAtCall("EventGetDataInfo", 2, GC_ERR_IO);
    EXPECT_EQ(Outcome(KORO_Event_GetData(event, nullptr, &size)), InfoFailure(query, ProducerErrorOf(GC_ERR_IO)));
    EXPECT_EQ(GetBytes(KORO_Event_GetData, event), "payload");
}

TEST_F(Event, NumberIsAskedEachTime)
{
    ExpectNumberGetter(
        producer, {"EventGetDataInfo", 2, "EVENT_DATA_NUMID"}, scripted::UInt64(1ULL << 63), "8 (INFO_DATATYPE_UINT64)",
        "id", std::uint64_t{1} << 63, KORO_Event_GetID, event);
}

TEST_F(Event, InfoIsAskedOfTheBlock)
{
    ExpectRawInfo(producer, "EventGetDataInfo", KORO_Event_GetInfo, event);
    std::int32_t type = 0;
    std::uint8_t text[5] = {};
    std::size_t size = sizeof text;
    EXPECT_EQ(Outcome(KORO_Event_GetInfo(event, EVENT_DATA_ID, &type, text, &size)), Error{});
    EXPECT_EQ(type, INFO_DATATYPE_STRING);
    EXPECT_STREQ(reinterpret_cast<const char*>(text), "1234");
}

TEST_F(Event, RegistrationAnewLeavesBlockAndTypeReadable)
{
    Require(KORO_EventController_FlushPendingKillWaits(controller));
    std::uint64_t number = 0;
    EXPECT_EQ(
        Outcome(KORO_Event_GetID(event, &number)),
        InfoFailure({"EventGetDataInfo", 2, "EVENT_DATA_NUMID"}, ProducerErrorOf(GC_ERR_INVALID_HANDLE)));
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, event), block);
    EXPECT_EQ(Get<std::int32_t>(KORO_Event_GetType, event), EVENT_MODULE);
}

TEST_F(Event, DestructEndsThisEventAlone)
{
    const auto other = Take("other");
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_Event_Destruct(event)), Error{});
    EXPECT_THAT(producer->Journal(), IsEmpty());
    const auto expected = InvalidHandle("eventHandle");
    std::int32_t type = 0;
    EXPECT_EQ(Outcome(KORO_Event_Destruct(event)), expected);
    EXPECT_EQ(Outcome(KORO_Event_GetID(event, nullptr)), expected);
    EXPECT_EQ(Outcome(KORO_Event_GetData(event, nullptr, nullptr)), expected);
    EXPECT_EQ(Outcome(KORO_Event_GetRawData(event, nullptr, nullptr)), expected);
    EXPECT_EQ(Outcome(KORO_Event_GetType(event, &type)), expected);
    EXPECT_EQ(Outcome(KORO_Event_GetInfo(event, 0, &type, nullptr, nullptr)), expected);
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, other), "other");
}

TEST_F(Event, BlockOfANewBufferIsTheStandardsRecord)
{
    const auto buffers = tree.QueueBuffers(1);
    const auto newBuffers = EnableEvents(EVENT_NEW_BUFFER);
    Require(KORO_Event_Destruct(event));
    // The application listens in the stream's place, so the stream itself cannot be started through the library.
    ASSERT_TRUE(producer->Fire(streamID, EVENT_NEW_BUFFER, std::string(sizeof(EVENT_NEW_BUFFER_DATA), '\1')));
    const auto taken = Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, newBuffers, std::uint64_t{0});
    EXPECT_EQ(GetBytes(KORO_Event_GetRawData, taken).size(), 16u);
    EXPECT_EQ(Get<std::int32_t>(KORO_Event_GetType, taken), EVENT_NEW_BUFFER);
    EXPECT_EQ(Get<std::uint64_t>(KORO_Event_GetID, taken), 0x0101010101010101u);
}

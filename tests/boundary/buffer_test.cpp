#include "tests/boundary/stream_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace koro::test;
using namespace GenTL;
using testing::IsEmpty;

namespace
{

class Buffer : public StreamTest
{
protected:
    template <class Output>
    void ExpectNumber(
        std::int32_t command, const char* name, const scripted::Info& answer, const std::string& type,
        const std::string& parameter, Output value, ScalarExport<KORO_BufferHandle, Output> function) const
    {
        ExpectNumberGetter(
            producer, {"DSGetBufferInfo", command, name}, answer, type, parameter, value, function, buffer);
    }

    // Beyond 32 bits, and another one for each command.
    static std::uint64_t BigValue(std::int32_t command)
    {
        return (std::uint64_t{9} << 60) + static_cast<std::uint64_t>(command);
    }

    void ExpectSize(
        std::int32_t command, const char* name, const std::string& parameter,
        ScalarExport<KORO_BufferHandle, std::size_t> function) const
    {
        const std::size_t value = BigValue(command);
        ExpectNumber(command, name, scripted::Size(value), "12 (INFO_DATATYPE_SIZET)", parameter, value, function);
    }

    void ExpectCount(
        std::int32_t command, const char* name, const std::string& parameter,
        ScalarExport<KORO_BufferHandle, std::uint64_t> function) const
    {
        const auto value = BigValue(command);
        ExpectNumber(command, name, scripted::UInt64(value), "8 (INFO_DATATYPE_UINT64)", parameter, value, function);
    }

    void ExpectFlag(
        std::int32_t command, const char* name, const std::string& parameter,
        ScalarExport<KORO_BufferHandle, KORO_Bool8> function) const
    {
        const auto expect = [&](bool value) {
            ExpectNumber(
                command, name, scripted::Bool8(value), "11 (INFO_DATATYPE_BOOL8)", parameter, KORO_Bool8{value},
                function);
        };
        expect(true);
        expect(false);
    }

    void ExpectPointer(
        std::int32_t command, const char* name, const std::string& parameter,
        ScalarExport<KORO_BufferHandle, void*> function) const
    {
        void* const value = reinterpret_cast<void*>(static_cast<std::uintptr_t>(BigValue(command)));
        ExpectNumber(command, name, scripted::Pointer(value), "10 (INFO_DATATYPE_PTR)", parameter, value, function);
    }

    void ExpectText(
        std::int32_t command, const char* name, const std::string& parameter,
        TextExport<KORO_BufferHandle> function) const
    {
        ExpectTextGetter(producer, {"DSGetBufferInfo", command, name}, parameter, function, buffer);
    }

    KORO_BufferHandle buffer = tree.QueueBuffers(1).front();
};

} // namespace

TEST_F(Buffer, PointersAreAskedOfTheProducerEachTime)
{
    ExpectPointer(0, "BUFFER_INFO_BASE", "basePtr", KORO_Buffer_GetBasePtr);
    ExpectPointer(2, "BUFFER_INFO_USER_PTR", "userPtr", KORO_Buffer_GetUserPtr);
}

TEST_F(Buffer, SizesAreAskedOfTheProducerEachTime)
{
    ExpectSize(1, "BUFFER_INFO_SIZE", "size", KORO_Buffer_GetSize);
    ExpectSize(27, "BUFFER_INFO_DATA_SIZE", "expectedDataSize", KORO_Buffer_GetExpectedDataSize);
    ExpectSize(9, "BUFFER_INFO_SIZE_FILLED", "deliveredDataSize", KORO_Buffer_GetDeliveredDataSize);
    ExpectSize(10, "BUFFER_INFO_WIDTH", "width", KORO_Buffer_GetWidth);
    ExpectSize(11, "BUFFER_INFO_HEIGHT", "height", KORO_Buffer_GetHeight);
    ExpectSize(12, "BUFFER_INFO_XOFFSET", "xOffset", KORO_Buffer_GetXOffset);
    ExpectSize(13, "BUFFER_INFO_YOFFSET", "yOffset", KORO_Buffer_GetYOffset);
    ExpectSize(14, "BUFFER_INFO_XPADDING", "xPadding", KORO_Buffer_GetXPadding);
    ExpectSize(15, "BUFFER_INFO_YPADDING", "yPadding", KORO_Buffer_GetYPadding);
    ExpectSize(18, "BUFFER_INFO_IMAGEOFFSET", "imageOffset", KORO_Buffer_GetImageOffset);
    ExpectSize(22, "BUFFER_INFO_DELIVERED_IMAGEHEIGHT", "deliveredImageHeight", KORO_Buffer_GetDeliveredImageHeight);
    ExpectSize(
        23, "BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE", "deliveredChunkPayloadSize",
        KORO_Buffer_GetDeliveredChunkPayloadSize);
}

TEST_F(Buffer, NumbersAreAskedOfTheProducerEachTime)
{
    ExpectCount(3, "BUFFER_INFO_TIMESTAMP", "timestamp_ticks", KORO_Buffer_GetTimestamp_ticks);
    ExpectCount(28, "BUFFER_INFO_TIMESTAMP_NS", "timestamp_ns", KORO_Buffer_GetTimestamp_ns);
    ExpectCount(16, "BUFFER_INFO_FRAMEID", "frameId", KORO_Buffer_GetFrameID);
    ExpectCount(20, "BUFFER_INFO_PIXELFORMAT", "pixelFormat", KORO_Buffer_GetPixelFormat);
}

TEST_F(Buffer, ChunkLayoutReportsANullOutputUnderTheNameOfTheDeliveredHeight)
{
    ExpectCount(24, "BUFFER_INFO_CHUNKLAYOUTID", "deliveredImageHeight", KORO_Buffer_GetChunkLayoutID);
}

TEST_F(Buffer, FlagsAreAskedOfTheProducerEachTime)
{
    ExpectFlag(4, "BUFFER_INFO_NEW_DATA", "hasNewData", KORO_Buffer_GetHasNewData);
    ExpectFlag(5, "BUFFER_INFO_IS_QUEUED", "isQueued", KORO_Buffer_GetIsQueued);
    ExpectFlag(6, "BUFFER_INFO_IS_ACQUIRING", "isAcquiring", KORO_Buffer_GetIsAcquiring);
    ExpectFlag(7, "BUFFER_INFO_IS_INCOMPLETE", "isIncomplete", KORO_Buffer_GetIsIncomplete);
    ExpectFlag(17, "BUFFER_INFO_IMAGEPRESENT", "hasImage", KORO_Buffer_GetHasImage);
    ExpectFlag(30, "BUFFER_INFO_CONTAINS_CHUNKDATA", "hasChunks", KORO_Buffer_GetHasChunks);
}

TEST_F(Buffer, EnumerationsAreAskedOfTheProducerEachTimeAndLeaveAsInt32)
{
    ExpectNumber(
        19, "BUFFER_INFO_PAYLOADTYPE", scripted::Size(PAYLOAD_TYPE_MULTI_PART), "12 (INFO_DATATYPE_SIZET)",
        "payloadType", std::int32_t{10}, KORO_Buffer_GetPayloadType);
    ExpectNumber(
        21, "BUFFER_INFO_PIXELFORMAT_NAMESPACE", scripted::UInt64(PIXELFORMAT_NAMESPACE_PFNC_32BIT),
        "8 (INFO_DATATYPE_UINT64)", "pixelFormatNamespace", std::int32_t{4}, KORO_Buffer_GetPixelFormatNamespace);
    ExpectNumber(
        26, "BUFFER_INFO_PIXEL_ENDIANNESS", scripted::Int32(PIXELENDIANNESS_BIG), "5 (INFO_DATATYPE_INT32)",
        "pixelEndianness", std::int32_t{2}, KORO_Buffer_GetPixelEndianness);
}

TEST_F(Buffer, TextsAreAskedOfTheProducerEachTime)
{
    ExpectText(8, "BUFFER_INFO_TLTYPE", "tlType", KORO_Buffer_GetTLType);
    ExpectText(25, "BUFFER_INFO_FILENAME", "fileName", KORO_Buffer_GetFileName);
}

TEST_F(Buffer, InfoOfAnyCommandPassesThrough)
{
    ExpectRawInfo(producer, "DSGetBufferInfo", KORO_Buffer_GetInfo, buffer);
}

TEST_F(Buffer, TimestampsAreIndependentOfEachOther)
{
    producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_TIMESTAMP, scripted::UInt64(17));
    producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_TIMESTAMP_NS, scripted::Failing(GC_ERR_NOT_IMPLEMENTED));
    std::uint64_t time = 0;
    EXPECT_EQ(Get<std::uint64_t>(KORO_Buffer_GetTimestamp_ticks, buffer), 17u);
    EXPECT_EQ(
        Outcome(KORO_Buffer_GetTimestamp_ns(buffer, &time)),
        InfoFailure({"DSGetBufferInfo", 28, "BUFFER_INFO_TIMESTAMP_NS"}, ProducerErrorOf(GC_ERR_NOT_IMPLEMENTED)));

    producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_TIMESTAMP, scripted::Failing(GC_ERR_NOT_AVAILABLE));
    producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_TIMESTAMP_NS, scripted::UInt64(18));
    EXPECT_EQ(Get<std::uint64_t>(KORO_Buffer_GetTimestamp_ns, buffer), 18u);
    EXPECT_EQ(
        Outcome(KORO_Buffer_GetTimestamp_ticks(buffer, &time)),
        InfoFailure({"DSGetBufferInfo", 3, "BUFFER_INFO_TIMESTAMP"}, ProducerErrorOf(GC_ERR_NOT_AVAILABLE)));
}

TEST_F(Buffer, TellsOfItsPlaceInTheProducersQueues)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetIsQueued, buffer), 1);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetHasNewData, buffer), 0);
    ASSERT_TRUE(Deliver());
    ASSERT_EQ(Wait(), buffer);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetIsQueued, buffer), 0);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetHasNewData, buffer), 1);
}

TEST_F(Buffer, ImageBytesLieWhereTheMemoryWasAnnounced)
{
    Require(KORO_DataStream_Flush(tree.stream, KORO_ACQ_QUEUE_ALL_DISCARD));
    Memory memory{};
    Require(KORO_DataStream_QueueBuffer(tree.stream, Announce(memory)));
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    ASSERT_TRUE(Deliver({.bytes = "pixels"}));
    const auto finished = Wait();
    EXPECT_EQ(Get<void*>(KORO_Buffer_GetBasePtr, finished), memory.data());
    EXPECT_EQ(std::string(memory.data(), Get<std::size_t>(KORO_Buffer_GetDeliveredDataSize, finished)), "pixels");
}

TEST_F(Buffer, CastsGiveTheSameHandleAndAreRefusedWithoutAPlace)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer);
    EXPECT_EQ(Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer), module);
    EXPECT_NE(Get<KORO_PortHandle>(KORO_Module_GetPort, module), nullptr);
    const auto events = Get<KORO_EventSupportingModuleHandle>(KORO_Buffer_ToEventSupportingModule, buffer);
    EXPECT_EQ(Get<KORO_EventSupportingModuleHandle>(KORO_Buffer_ToEventSupportingModule, buffer), events);

    EXPECT_EQ(Outcome(KORO_Buffer_ToModule(buffer, nullptr)), NullPointer("moduleHandle"));
    EXPECT_EQ(
        Outcome(KORO_Buffer_ToEventSupportingModule(buffer, nullptr)), NullPointer("eventSupportingModuleHandle"));
}

TEST_F(Buffer, HandleOfAnotherKindIsInvalid)
{
    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_Buffer_GetSize(reinterpret_cast<KORO_BufferHandle>(tree.stream), &size)),
        InvalidHandle("bufferHandle"));
    EXPECT_THAT(CallsOf({"DSGetBufferInfo"}), IsEmpty());
}

// A producer that has nothing to say of a buffer before its first delivery is no reason to lose the buffer.
TEST_F(Buffer, EmptyFirstBufferIsDeliveredWithWhatTheProducerSaysOfIt)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    producer->SetInfo("DSGetInfo", STREAM_INFO_NUM_UNDERRUN, scripted::UInt64(UINT64_MAX));
    ASSERT_TRUE(Deliver(
        {.bytes = "",
         .info =
             {{BUFFER_INFO_WIDTH, scripted::Failing(GC_ERR_NOT_AVAILABLE)},
              {BUFFER_INFO_DATA_SIZE, scripted::Failing(GC_ERR_NOT_IMPLEMENTED)}},
         .incomplete = true}));
    ASSERT_EQ(Wait(), buffer);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetIsIncomplete, buffer), 1);
    EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetDeliveredDataSize, buffer), 0u);
    EXPECT_EQ(Get<std::uint64_t>(KORO_DataStream_GetNumUnderruns, tree.stream), UINT64_MAX);
    std::size_t width = 0;
    EXPECT_EQ(
        Outcome(KORO_Buffer_GetWidth(buffer, &width)),
        InfoFailure({"DSGetBufferInfo", 10, "BUFFER_INFO_WIDTH"}, ProducerErrorOf(GC_ERR_NOT_AVAILABLE)));

    Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
    ASSERT_TRUE(Deliver());
    EXPECT_EQ(Wait(), buffer);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetIsIncomplete, buffer), 0);
}

TEST_F(Buffer, FlushToTheOutputDeliversBuffersWithoutNewData)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
    Require(KORO_DataStream_Flush(tree.stream, KORO_ACQ_QUEUE_INPUT_TO_OUTPUT));
    ASSERT_EQ(Wait(), buffer);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetHasNewData, buffer), 0);
}

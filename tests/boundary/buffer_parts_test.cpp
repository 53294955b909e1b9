// The parts of a buffer: a list that one call refreshes, and parts that ask the producer for their index each time.
#include "tests/boundary/stream_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

using namespace koro::test;
using namespace GenTL;
using testing::ElementsAre;

namespace
{

using Parts = std::vector<scripted::Infos>;

// Parts that report these data sizes.
Parts PartsOfSizes(const std::vector<std::size_t>& sizes)
{
    Parts parts;
    for (const std::size_t size : sizes)
        parts.push_back({{BUFFER_PART_INFO_DATA_SIZE, scripted::Size(size)}});
    return parts;
}

class BufferParts : public StreamTest
{
protected:
    BufferParts() { Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0)); }

    // The buffer comes back with these parts.
    void Fill(const Parts& parts)
    {
        if (isFilled) Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
        ASSERT_TRUE(Deliver({.parts = parts}));
        ASSERT_EQ(Wait(), buffer);
        isFilled = true;
        producer->ClearJournal();
    }
    void FillAndUpdate(const std::vector<std::size_t>& sizes)
    {
        Fill(PartsOfSizes(sizes));
        Require(KORO_Buffer_UpdateParts(buffer));
        producer->ClearJournal();
    }

    Error Update() const { return Outcome(KORO_Buffer_UpdateParts(buffer)); }
    bool HasParts() const { return Get<KORO_Bool8>(KORO_Buffer_GetHasParts, buffer) != 0; }
    std::size_t NumParts() const { return Get<std::size_t>(KORO_Buffer_GetNumParts, buffer); }
    KORO_BufferPartHandle Part(std::size_t index) const
    {
        return Get<KORO_BufferPartHandle>(KORO_Buffer_GetPart, buffer, index);
    }
    static std::size_t Size(KORO_BufferPartHandle part) { return Get<std::size_t>(KORO_BufferPart_GetSize, part); }
    static Error OutcomeOfSize(KORO_BufferPartHandle part)
    {
        std::size_t size = 0;
        return Outcome(KORO_BufferPart_GetSize(part, &size));
    }

    template <class Output>
    void ExpectNumber(
        std::int32_t command, const char* name, const scripted::Info& answer, const std::string& type,
        const std::string& parameter, Output value, ScalarExport<KORO_BufferPartHandle, Output> function) const
    {
        ExpectNumberGetter(
            producer, {"DSGetBufferPartInfo", command, name}, answer, type, parameter, value, function, Part(1));
    }
    // Beyond 32 bits, and another one for each command.
    static std::uint64_t BigValue(std::int32_t command)
    {
        return (std::uint64_t{9} << 60) + static_cast<std::uint64_t>(command);
    }
    void ExpectSize(
        std::int32_t command, const char* name, const std::string& parameter,
        ScalarExport<KORO_BufferPartHandle, std::size_t> function) const
    {
        const std::size_t value = BigValue(command);
        ExpectNumber(command, name, scripted::Size(value), "12 (INFO_DATATYPE_SIZET)", parameter, value, function);
    }
    void ExpectCount(
        std::int32_t command, const char* name, const std::string& parameter,
        ScalarExport<KORO_BufferPartHandle, std::uint64_t> function) const
    {
        const auto value = BigValue(command);
        ExpectNumber(command, name, scripted::UInt64(value), "8 (INFO_DATATYPE_UINT64)", parameter, value, function);
    }

    KORO_BufferHandle buffer = tree.QueueBuffers(1).front();
    bool isFilled = false;
};

const Error invalidSubscript{KORO_RETURN_CODE_ERROR, "invalid vector subscript"};
const InfoQuery sizeQuery{"DSGetBufferPartInfo", 1, "BUFFER_PART_INFO_DATA_SIZE"};

} // namespace

// Work that grows with the square of their number would not end in time.
TEST_F(BufferParts, EachOfAsManyAsThereMayBeIsFound)
{
    constexpr std::size_t count = 65536;
    std::vector<std::size_t> sizes(count);
    std::iota(sizes.begin(), sizes.end(), 0u);
    FillAndUpdate(sizes);
    ASSERT_EQ(NumParts(), count);
    for (std::size_t index = 0; index < count; ++index)
        ASSERT_NE(Part(index), nullptr);
    EXPECT_EQ(Size(Part(count - 1)), count - 1);
}

TEST_F(BufferParts, BufferHasPartsWhenTheirNumberIsNotZero)
{
    Fill(PartsOfSizes({1, 2}));
    EXPECT_TRUE(HasParts());
    EXPECT_THAT(producer->Journal(), ElementsAre("DSGetNumBufferParts(if0-dev0-stream0, if0-dev0-stream0/0)"));
    producer->SetCount("DSGetNumBufferParts", 0);
    EXPECT_FALSE(HasParts());
    EXPECT_EQ(Update(), Error{});
    EXPECT_EQ(NumParts(), 0u);
}

TEST_F(BufferParts, NoDataIsAnAnswerToTheQuestionAndAFailureOfTheUpdate)
{
    Fill({});
    EXPECT_FALSE(HasParts());
    EXPECT_EQ(Update(), FailureAs(KORO_RETURN_CODE_NO_DATA, "DSGetNumBufferParts", GC_ERR_NO_DATA));
    EXPECT_EQ(NumParts(), 0u);
}

TEST_F(BufferParts, EveryOtherFailureIsOneOfBoth)
{
    FillAndUpdate({1, 2});
    for (const auto code : {GC_ERR_NOT_IMPLEMENTED, GC_ERR_NOT_AVAILABLE, GC_ERR_IO, GC_ERR_INVALID_BUFFER})
    {
        producer->Answer("DSGetNumBufferParts", code);
        EXPECT_EQ(Outcome(KORO_Buffer_GetHasParts(buffer, nullptr)), Failure("DSGetNumBufferParts", code));
        EXPECT_EQ(Update(), Failure("DSGetNumBufferParts", code));
        EXPECT_EQ(NumParts(), 2u);
    }
}

TEST_F(BufferParts, ListIsFilledByAnUpdateAloneAndReadWithoutACall)
{
    Fill(PartsOfSizes({1, 2, 3}));
    EXPECT_EQ(NumParts(), 0u);
    EXPECT_EQ(Update(), Error{});
    EXPECT_THAT(CallsOf({"DSGetNumBufferParts", "DSGetBufferPartInfo"}), testing::SizeIs(1));
    producer->ClearJournal();
    EXPECT_EQ(NumParts(), 3u);
    EXPECT_EQ(Part(1), Part(1));
    EXPECT_NE(Part(1), Part(2));
    EXPECT_EQ(Get<KORO_BufferHandle>(KORO_BufferPart_GetParentBuffer, Part(0)), buffer);
    EXPECT_EQ(producer->Journal(), Journal());
    EXPECT_EQ(Size(Part(0)), 1u);
    EXPECT_EQ(Size(Part(1)), 2u);
    EXPECT_EQ(Size(Part(2)), 3u);
}

TEST_F(BufferParts, QueryNamesStreamBufferAndIndex)
{
    FillAndUpdate({1, 2});
    EXPECT_EQ(Size(Part(1)), 2u);
    EXPECT_THAT(
        producer->Journal(), ElementsAre(
                                 "DSGetBufferPartInfo(if0-dev0-stream0, if0-dev0-stream0/0, 1, 1, size)",
                                 "DSGetBufferPartInfo(if0-dev0-stream0, if0-dev0-stream0/0, 1, 1, data)"));
}

TEST_F(BufferParts, PointerIsAskedOfTheProducerEachTime)
{
    FillAndUpdate({1, 2});
    void* const value = reinterpret_cast<void*>(static_cast<std::uintptr_t>(BigValue(0)));
    ExpectNumber(
        0, "BUFFER_PART_INFO_BASE", scripted::Pointer(value), "10 (INFO_DATATYPE_PTR)", "basePtr", value,
        KORO_BufferPart_GetBasePtr);
}

TEST_F(BufferParts, SizesAreAskedOfTheProducerEachTime)
{
    FillAndUpdate({1, 2});
    ExpectSize(1, "BUFFER_PART_INFO_DATA_SIZE", "size", KORO_BufferPart_GetSize);
    ExpectSize(5, "BUFFER_PART_INFO_WIDTH", "width", KORO_BufferPart_GetWidth);
    ExpectSize(6, "BUFFER_PART_INFO_HEIGHT", "height", KORO_BufferPart_GetHeight);
    ExpectSize(7, "BUFFER_PART_INFO_XOFFSET", "xOffset", KORO_BufferPart_GetXOffset);
    ExpectSize(8, "BUFFER_PART_INFO_YOFFSET", "yOffset", KORO_BufferPart_GetYOffset);
    ExpectSize(9, "BUFFER_PART_INFO_XPADDING", "xPadding", KORO_BufferPart_GetXPadding);
    ExpectSize(
        11, "BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT", "deliveredImageHeight", KORO_BufferPart_GetDeliveredImageHeight);
}

TEST_F(BufferParts, NumbersAreAskedOfTheProducerEachTime)
{
    FillAndUpdate({1, 2});
    ExpectCount(3, "BUFFER_PART_INFO_DATA_FORMAT", "format", KORO_BufferPart_GetFormat);
    ExpectCount(4, "BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE", "formatNamespace", KORO_BufferPart_GetFormatNamespace);
    ExpectCount(10, "BUFFER_PART_INFO_SOURCE_ID", "sourceId", KORO_BufferPart_GetSourceID);
}

TEST_F(BufferParts, TypeIsASizeThatLeavesAsInt32)
{
    FillAndUpdate({1, 2});
    ExpectNumber(
        2, "BUFFER_PART_INFO_DATA_TYPE", scripted::Size(PART_DATATYPE_CONFIDENCE_MAP), "12 (INFO_DATATYPE_SIZET)",
        "type", std::int32_t{KORO_PART_DATATYPE_CONFIDENCE_MAP}, KORO_BufferPart_GetType);
}

TEST_F(BufferParts, InfoOfAnyCommandPassesThrough)
{
    FillAndUpdate({1, 2});
    ExpectRawInfo(producer, "DSGetBufferPartInfo", KORO_BufferPart_GetInfo, Part(1));
}

TEST_F(BufferParts, IndexBeyondTheListIsAFailureOfItsOwnKindAndComesBeforeThePointer)
{
    KORO_BufferPartHandle part = nullptr;
    EXPECT_EQ(Outcome(KORO_Buffer_GetPart(buffer, 0, &part)), invalidSubscript);
    FillAndUpdate({1, 2});
    EXPECT_EQ(Outcome(KORO_Buffer_GetPart(buffer, 2, &part)), invalidSubscript);
    EXPECT_EQ(Outcome(KORO_Buffer_GetPart(buffer, SIZE_MAX, &part)), invalidSubscript);
    EXPECT_EQ(Outcome(KORO_Buffer_GetPart(buffer, 2, nullptr)), invalidSubscript);
    EXPECT_EQ(Outcome(KORO_Buffer_GetPart(buffer, 1, nullptr)), NullPointer("bufferPartHandle"));
    EXPECT_EQ(part, nullptr);
}

TEST_F(BufferParts, NullOutputsAreReported)
{
    FillAndUpdate({1, 2});
    EXPECT_EQ(Outcome(KORO_Buffer_GetHasParts(buffer, nullptr)), NullPointer("hasParts"));
    EXPECT_EQ(Outcome(KORO_Buffer_GetNumParts(buffer, nullptr)), NullPointer("numParts"));
    EXPECT_EQ(Outcome(KORO_BufferPart_GetParentBuffer(Part(0), nullptr)), NullPointer("bufferHandle"));
}

TEST_F(BufferParts, HandleFromBeforeAnUpdateKeepsAnsweringForItsIndex)
{
    FillAndUpdate({1, 2, 3});
    const auto old = Part(1);
    FillAndUpdate({10, 20});
    EXPECT_NE(Part(1), old);
    EXPECT_EQ(Size(old), 20u); // of what the buffer holds now
    EXPECT_EQ(Size(Part(1)), 20u);
}

TEST_F(BufferParts, LengthOfTheListIsAllThatGetsStale)
{
    FillAndUpdate({1, 2, 3});
    const auto third = Part(2);
    Fill(PartsOfSizes({10, 20}));
    EXPECT_EQ(NumParts(), 3u);
    EXPECT_EQ(Size(Part(0)), 10u);
    EXPECT_EQ(OutcomeOfSize(third), InfoFailure(sizeQuery, ProducerErrorOf(GC_ERR_INVALID_INDEX)));
}

TEST_F(BufferParts, ClaimBeyondTheBoundIsRefused)
{
    FillAndUpdate({1, 2});
    producer->SetCount("DSGetNumBufferParts", 65537);
    EXPECT_TRUE(HasParts());
    const Error refusal = Update();
    EXPECT_EQ(refusal.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(refusal.text, testing::HasSubstr("parts of one buffer"));
    EXPECT_THAT(refusal.text, testing::HasSubstr("DSGetNumBufferParts"));
    EXPECT_EQ(NumParts(), 2u);
    producer->SetCount("DSGetNumBufferParts", 65536);
    EXPECT_EQ(Update(), Error{});
    EXPECT_EQ(NumParts(), 65536u);
}

TEST_F(BufferParts, HandleEndsByItselfAndTheListGivesItAgain)
{
    FillAndUpdate({1, 2});
    const auto part = Part(1);
    EXPECT_EQ(Outcome(KORO_BufferPart_Destruct(part)), Error{});
    EXPECT_EQ(Outcome(KORO_BufferPart_Destruct(part)), InvalidHandle("bufferPartHandle"));
    EXPECT_EQ(NumParts(), 2u);
    EXPECT_EQ(Part(1), part);
    EXPECT_EQ(Size(part), 2u);
}

TEST_F(BufferParts, HandleEndsWithItsBufferAndWithTheStream)
{
    FillAndUpdate({1, 2});
    const auto old = Part(1);
    Require(KORO_Buffer_UpdateParts(buffer));
    const auto part = Part(1);
    Require(KORO_DataStream_RevokeBuffer(tree.stream, buffer));
    EXPECT_EQ(OutcomeOfSize(old), InvalidHandle("bufferPartHandle"));
    EXPECT_EQ(OutcomeOfSize(part), InvalidHandle("bufferPartHandle"));

    buffer = tree.QueueBuffers(1).front();
    isFilled = false;
    FillAndUpdate({1, 2});
    const auto another = Part(1);
    Require(KORO_DataStream_Destruct(tree.stream));
    EXPECT_EQ(OutcomeOfSize(another), InvalidHandle("bufferPartHandle"));
}

TEST_F(BufferParts, BufferThatIsRevokedDuringAQueryHasExpiredAtTheNext)
{
    FillAndUpdate({1, 2});
    const auto part = Part(1);
    producer->OnEntry("DSGetBufferPartInfo", [&] { KORO_DataStream_RevokeBuffer(tree.stream, buffer); });
    EXPECT_NE(OutcomeOfSize(part).code, KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(OutcomeOfSize(part), InvalidHandle("bufferPartHandle"));
}

TEST(BufferPartsOfOldProducers, MissingFunctionIsNamed)
{
    const ScriptedProducer producer("scripted_1_2");
    const KoroLibrary library;
    OpenTree tree(producer.Path());
    const auto buffer = tree.QueueBuffers(1).front();
    KORO_Bool8 hasParts = 1;
    for (const Error& outcome :
         {Outcome(KORO_Buffer_GetHasParts(buffer, &hasParts)), Outcome(KORO_Buffer_UpdateParts(buffer))})
    {
        EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
        EXPECT_THAT(outcome.text, testing::StartsWith("[Function: DSGetNumBufferParts | Error: The instrumented TL ("));
        EXPECT_THAT(outcome.text, testing::EndsWith(") does not implement DSGetNumBufferParts()!]"));
    }
}

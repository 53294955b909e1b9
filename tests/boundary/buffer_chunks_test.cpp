// The chunks of a buffer: a list that one call refreshes, and what each chunk returns from its copy.
#include "tests/boundary/stream_test.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using namespace koro::test;
using namespace GenTL;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

using Chunks = std::vector<SINGLE_CHUNK_DATA>;

class BufferChunks : public StreamTest
{
protected:
    BufferChunks() { Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0)); }

    // The buffer comes back with these chunks.
    void Fill(const Chunks& chunks)
    {
        if (isFilled) Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
        ASSERT_TRUE(Deliver({.chunks = chunks}));
        ASSERT_EQ(Wait(), buffer);
        isFilled = true;
        producer->ClearJournal();
    }

    // What the producer holds changes between the two calls of an update.
    void FillBeforeTheSecondCall(const Chunks& chunks)
    {
        auto calls = std::make_shared<int>(0);
        producer->OnEntry("DSGetBufferChunkData", [this, calls, chunks] {
            if (++*calls == 2) Fill(chunks);
        });
    }

    Error Update() const { return Outcome(KORO_Buffer_UpdateChunks(buffer)); }
    std::size_t NumChunks() const { return Get<std::size_t>(KORO_Buffer_GetNumChunks, buffer); }
    KORO_BufferChunkHandle Chunk(std::size_t index) const
    {
        return Get<KORO_BufferChunkHandle>(KORO_Buffer_GetChunk, buffer, index);
    }
    static std::uint64_t ID(KORO_BufferChunkHandle chunk) { return Get<std::uint64_t>(KORO_BufferChunk_GetID, chunk); }
    std::vector<std::uint64_t> IDs() const
    {
        std::vector<std::uint64_t> ids;
        for (std::size_t index = 0; index < NumChunks(); ++index)
            ids.push_back(ID(Chunk(index)));
        return ids;
    }
    char* Base() const { return static_cast<char*>(Get<void*>(KORO_Buffer_GetBasePtr, buffer)); }

    KORO_BufferHandle buffer = tree.QueueBuffers(1).front();
    bool isFilled = false;

    static constexpr std::uint64_t bigID = 0xfedcba9876543210;
    const Chunks three{{bigID, 0, 3}, {7, 5, 0}, {9, 4, 2}};
};

const Error invalidSubscript{KORO_RETURN_CODE_ERROR, "invalid vector subscript"};

} // namespace

TEST_F(BufferChunks, FreshBufferHasNoneUntilTheFirstUpdateThoughItSaysThatItHas)
{
    Fill(three);
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Buffer_GetHasChunks, buffer), 1);
    EXPECT_EQ(NumChunks(), 0u);
    EXPECT_EQ(Update(), Error{});
    EXPECT_EQ(NumChunks(), 3u);
}

TEST_F(BufferChunks, UpdateAsksForTheNumberAndThenForTheRecords)
{
    Fill(three);
    EXPECT_EQ(Update(), Error{});
    EXPECT_THAT(
        CallsOf({"DSGetBufferChunkData"}), ElementsAre(
                                               "DSGetBufferChunkData(if0-dev0-stream0, if0-dev0-stream0/0, size)",
                                               "DSGetBufferChunkData(if0-dev0-stream0, if0-dev0-stream0/0, data)"));
}

TEST_F(BufferChunks, ListIsInTheProducersOrderAndReadWithoutACall)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    producer->ClearJournal();
    EXPECT_THAT(IDs(), ElementsAre(bigID, 7, 9));
    EXPECT_EQ(Get<std::size_t>(KORO_BufferChunk_GetSize, Chunk(0)), 3u);
    EXPECT_EQ(Get<std::size_t>(KORO_BufferChunk_GetSize, Chunk(1)), 0u);
    EXPECT_EQ(Get<KORO_BufferHandle>(KORO_BufferChunk_GetParentBuffer, Chunk(2)), buffer);
    EXPECT_EQ(producer->Journal(), Journal());
}

TEST_F(BufferChunks, BaseIsThatOfTheBufferPlusTheOffset)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    EXPECT_EQ(Get<void*>(KORO_BufferChunk_GetBasePtr, Chunk(0)), Base()); // offset 0
    EXPECT_EQ(Get<void*>(KORO_BufferChunk_GetBasePtr, Chunk(1)), Base() + 5);
    EXPECT_EQ(Get<void*>(KORO_BufferChunk_GetBasePtr, Chunk(2)), Base() + 4);
}

TEST_F(BufferChunks, BaseIsAskedAnewEachTime)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto chunk = Chunk(1);
    for (const std::uintptr_t base : {0x1000u, 0x2000u})
    {
        producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_BASE, scripted::Pointer(reinterpret_cast<const void*>(base)));
        EXPECT_EQ(Get<void*>(KORO_BufferChunk_GetBasePtr, chunk), reinterpret_cast<void*>(base + 5));
    }

    void* ignored = nullptr;
    producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_BASE, scripted::Failing(GC_ERR_IO));
    EXPECT_EQ(
        Outcome(KORO_BufferChunk_GetBasePtr(chunk, &ignored)),
        InfoFailure({"DSGetBufferInfo", 0, "BUFFER_INFO_BASE"}, ProducerErrorOf(GC_ERR_IO)));
}

TEST_F(BufferChunks, RecordsThatLieAnywhereAreHandedOnAsTheyAre)
{
    constexpr auto farthest = std::numeric_limits<std::ptrdiff_t>::max();
    Fill({{1, -3, SIZE_MAX}, {1, farthest, 1}, {1, -farthest - 1, 0}});
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto base = reinterpret_cast<std::uintptr_t>(Base());
    const auto address = [&](std::size_t index) {
        return reinterpret_cast<std::uintptr_t>(Get<void*>(KORO_BufferChunk_GetBasePtr, Chunk(index)));
    };
    EXPECT_EQ(address(0), base - 3);
    EXPECT_EQ(address(1), base + (UINTPTR_MAX >> 1));
    EXPECT_EQ(address(2), base + (UINTPTR_MAX >> 1) + 1);
    EXPECT_EQ(Get<std::size_t>(KORO_BufferChunk_GetSize, Chunk(0)), SIZE_MAX);
}

TEST_F(BufferChunks, ChunkIsOneObjectUntilTheNextUpdate)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto chunk = Chunk(1);
    EXPECT_EQ(Chunk(1), chunk);
    EXPECT_NE(Chunk(2), chunk);
    Require(KORO_Buffer_UpdateChunks(buffer));
    EXPECT_NE(Chunk(1), chunk);
}

TEST_F(BufferChunks, IndexBeyondTheListIsAFailureOfItsOwnKindAndComesBeforeThePointer)
{
    KORO_BufferChunkHandle chunk = nullptr;
    EXPECT_EQ(Outcome(KORO_Buffer_GetChunk(buffer, 0, &chunk)), invalidSubscript);
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    EXPECT_EQ(Outcome(KORO_Buffer_GetChunk(buffer, 3, &chunk)), invalidSubscript);
    EXPECT_EQ(Outcome(KORO_Buffer_GetChunk(buffer, SIZE_MAX, &chunk)), invalidSubscript);
    EXPECT_EQ(Outcome(KORO_Buffer_GetChunk(buffer, 3, nullptr)), invalidSubscript);
    EXPECT_EQ(Outcome(KORO_Buffer_GetChunk(buffer, 2, nullptr)), NullPointer("bufferChunkHandle"));
    EXPECT_EQ(chunk, nullptr);
}

TEST_F(BufferChunks, NullOutputsAreReported)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto chunk = Chunk(0);
    EXPECT_EQ(Outcome(KORO_Buffer_GetNumChunks(buffer, nullptr)), NullPointer("numChunks"));
    EXPECT_EQ(Outcome(KORO_BufferChunk_GetID(chunk, nullptr)), NullPointer("id"));
    EXPECT_EQ(Outcome(KORO_BufferChunk_GetBasePtr(chunk, nullptr)), NullPointer("basePtr"));
    EXPECT_EQ(Outcome(KORO_BufferChunk_GetSize(chunk, nullptr)), NullPointer("size"));
    EXPECT_EQ(Outcome(KORO_BufferChunk_GetParentBuffer(chunk, nullptr)), NullPointer("bufferHandle"));
}

TEST_F(BufferChunks, ListTellsOfTheFormerFillUntilTheNextUpdate)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto stale = Chunk(1);
    Fill({{100, 1, 1}});
    EXPECT_THAT(IDs(), ElementsAre(bigID, 7, 9));
    Require(KORO_Buffer_UpdateChunks(buffer));
    EXPECT_THAT(IDs(), ElementsAre(100));

    // The earlier handle still returns the same values.
    EXPECT_EQ(ID(stale), 7u);
    EXPECT_EQ(Get<void*>(KORO_BufferChunk_GetBasePtr, stale), Base() + 5);
}

TEST_F(BufferChunks, FailureOfEitherCallLeavesTheListAsItWas)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    for (const auto code : {GC_ERR_NO_DATA, GC_ERR_PARSING_CHUNK_DATA, GC_ERR_IO})
    {
        for (const std::uint64_t call : {1u, 2u})
        {
            producer->AnswerAtCall("DSGetBufferChunkData", call, code);
            EXPECT_EQ(Update(), Failure("DSGetBufferChunkData", code));
            EXPECT_THAT(IDs(), ElementsAre(bigID, 7, 9));
        }
    }
}

TEST_F(BufferChunks, BufferWithoutChunksFailsWithTheNoDataCode)
{
    Fill({});
    EXPECT_EQ(Update(), FailureAs(KORO_RETURN_CODE_NO_DATA, "DSGetBufferChunkData", GC_ERR_NO_DATA));
    EXPECT_EQ(NumChunks(), 0u);
}

TEST_F(BufferChunks, RecordsThatAreNotDeliveredAfterAllAreZeroAndStandInTheList)
{
    Fill(three);
    FillBeforeTheSecondCall({{100, 1, 2}});
    EXPECT_EQ(Update(), Error{});
    EXPECT_THAT(IDs(), ElementsAre(100, 0, 0));
    EXPECT_EQ(Get<std::size_t>(KORO_BufferChunk_GetSize, Chunk(2)), 0u);
    EXPECT_EQ(Get<void*>(KORO_BufferChunk_GetBasePtr, Chunk(2)), Base());
}

TEST_F(BufferChunks, ListThatGrewMeanwhileIsTooLargeAndNotAskedAgain)
{
    Fill(three);
    FillBeforeTheSecondCall({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    EXPECT_EQ(Update(), FailureAs(KORO_RETURN_CODE_BUFFER_TOO_SMALL, "DSGetBufferChunkData", GC_ERR_BUFFER_TOO_SMALL));
    EXPECT_EQ(NumChunks(), 0u);
    EXPECT_THAT(
        CallsOf({"DSGetBufferChunkData"}), IsEmpty()); // since the second call, in which the journal was cleared
}

TEST_F(BufferChunks, ClaimBeyondTheBoundIsRefused)
{
    Fill(Chunks(65536));
    EXPECT_EQ(Update(), Error{});
    EXPECT_EQ(NumChunks(), 65536u);
    Fill(Chunks(65537));
    const Error refusal = Update();
    EXPECT_EQ(refusal.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(refusal.text, testing::HasSubstr("chunks of one buffer"));
    EXPECT_THAT(refusal.text, testing::HasSubstr("DSGetBufferChunkData"));
    EXPECT_EQ(NumChunks(), 65536u);
}

TEST_F(BufferChunks, HandleEndsByItselfAndTheListGivesItAgain)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto chunk = Chunk(1);
    EXPECT_EQ(Outcome(KORO_BufferChunk_Destruct(chunk)), Error{});
    EXPECT_EQ(Outcome(KORO_BufferChunk_Destruct(chunk)), InvalidHandle("bufferChunkHandle"));
    EXPECT_EQ(NumChunks(), 3u);
    EXPECT_EQ(Chunk(1), chunk);
    EXPECT_EQ(ID(chunk), 7u);
}

TEST_F(BufferChunks, HandleEndsWithItsBuffer)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto stale = Chunk(1);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto chunk = Chunk(1);
    Require(KORO_DataStream_RevokeBuffer(tree.stream, buffer));
    for (const auto ended : {stale, chunk})
    {
        std::uint64_t id = 0;
        EXPECT_EQ(Outcome(KORO_BufferChunk_GetID(ended, &id)), InvalidHandle("bufferChunkHandle"));
    }
    EXPECT_EQ(Update(), InvalidHandle("bufferHandle"));
}

TEST_F(BufferChunks, HandleEndsWithTheStream)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto chunk = Chunk(1);
    Require(KORO_DataStream_Destruct(tree.stream));
    std::uint64_t id = 0;
    EXPECT_EQ(Outcome(KORO_BufferChunk_GetID(chunk, &id)), InvalidHandle("bufferChunkHandle"));
}

TEST_F(BufferChunks, BufferThatIsRevokedDuringACallHasExpiredForItsChunk)
{
    Fill(three);
    Require(KORO_Buffer_UpdateChunks(buffer));
    const auto chunk = Chunk(1);
    producer->OnEntry("DSGetBufferInfo", [&] { KORO_DataStream_RevokeBuffer(tree.stream, buffer); });
    void* base = nullptr;
    // The size query ran into the revocation and the data query comes behind it.
    EXPECT_NE(Outcome(KORO_BufferChunk_GetBasePtr(chunk, &base)).code, KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(Outcome(KORO_BufferChunk_GetBasePtr(chunk, &base)), InvalidHandle("bufferChunkHandle"));
}

TEST(BufferChunksOfOldProducers, UpdateNamesTheFunctionThatIsMissing)
{
    const ScriptedProducer producer("scripted_1_2");
    const KoroLibrary library;
    OpenTree tree(producer.Path());
    const auto buffer = tree.QueueBuffers(1).front();
    const Error outcome = Outcome(KORO_Buffer_UpdateChunks(buffer));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(outcome.text, testing::StartsWith("[Function: DSGetBufferChunkData | Error: The instrumented TL ("));
    EXPECT_THAT(outcome.text, testing::EndsWith(") does not implement DSGetBufferChunkData()!]"));
    EXPECT_EQ(Get<std::size_t>(KORO_Buffer_GetNumChunks, buffer), 0u);
}

// Chunks and parts that are still held when their buffer has gone, and the lists of a buffer that has.
#include "modules/buffer.h"
#include "modules/buffer_chunk.h"
#include "modules/buffer_part.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <array>
#include <gtest/gtest.h>

using namespace koro::internal;
using namespace koro::test;
using namespace GenTL;
using testing::IsEmpty;

namespace
{

class BufferLists : public testing::Test
{
protected:
    BufferLists()
    {
        objects.stream->QueueBuffer(buffer);
        objects.stream->StartAcquisition(ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
        objects.producer->Deliver(
            "if0-dev0-stream0", {.parts = {{{BUFFER_PART_INFO_DATA_SIZE, scripted::Size(1)}}}, .chunks = {{7, 5, 2}}});
        objects.stream->WaitForFinishedBuffer(0);
        buffer->UpdateChunks();
        buffer->UpdateParts();
        chunk = buffer->Chunks()->front();
        part = buffer->Parts()->front();
        objects.producer->ClearJournal();
    }

    OpenObjects objects;
    std::array<char, 8> memory{};
    std::shared_ptr<Buffer> buffer = objects.stream->AnnounceBuffer(memory.data(), 8, nullptr, {});
    std::shared_ptr<BufferChunk> chunk;
    std::shared_ptr<BufferPart> part;
};

const auto expired = ThrowsExactly<InternalErrorException>("Pointer has expired!");

} // namespace

TEST_F(BufferLists, ChunkAndPartBelongToTheBuffer)
{
    EXPECT_EQ(chunk->ParentBuffer(), buffer);
    EXPECT_EQ(part->ParentBuffer(), buffer);
    EXPECT_EQ(chunk->BasePtr(), memory.data() + 5);
    EXPECT_EQ(part->Size(), 1u);
}

TEST_F(BufferLists, NeitherKeepsTheBufferAlive)
{
    objects.stream->RevokeBuffer(buffer);
    const std::weak_ptr<Buffer> watched = buffer;
    buffer.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(BufferLists, ChunkOfABufferThatHasGoneTellsItsIDAlone)
{
    objects.stream->RevokeBuffer(buffer);
    buffer.reset();
    objects.producer->ClearJournal();
    EXPECT_EQ(chunk->ID(), 7u);
    EXPECT_THAT([&] { chunk->Size(); }, expired);
    EXPECT_THAT([&] { chunk->BasePtr(); }, expired);
    EXPECT_THAT([&] { chunk->ParentBuffer(); }, expired);
    EXPECT_THAT(objects.producer->Journal(), IsEmpty());
}

TEST_F(BufferLists, PartOfABufferThatHasGoneHasExpired)
{
    objects.stream->RevokeBuffer(buffer);
    buffer.reset();
    objects.producer->ClearJournal();
    EXPECT_THAT([&] { part->BasePtr(); }, expired);
    EXPECT_THAT([&] { part->Size(); }, expired);
    EXPECT_THAT([&] { part->Type(); }, expired);
    EXPECT_THAT([&] { part->Format(); }, expired);
    EXPECT_THAT([&] { part->Info(1000); }, expired);
    EXPECT_THAT([&] { part->ParentBuffer(); }, expired);
    EXPECT_THAT(objects.producer->Journal(), IsEmpty());
}

TEST_F(BufferLists, StreamThatHasGoneHasExpiredForBoth)
{
    objects.stream.reset();
    objects.producer->ClearJournal();
    EXPECT_THAT([&] { part->Size(); }, expired);
    EXPECT_THAT([&] { chunk->BasePtr(); }, expired);
    EXPECT_EQ(chunk->Size(), 2u); // the buffer itself is still there
    EXPECT_THAT(objects.producer->Journal(), IsEmpty());
}

TEST_F(BufferLists, AreNotCopiedForWhoAsksForThem)
{
    EXPECT_EQ(buffer->Chunks().get(), buffer->Chunks().get());
    EXPECT_EQ(buffer->Parts().get(), buffer->Parts().get());
}

TEST_F(BufferLists, RevokedBufferIsNotUpdatedAndKeepsItsLists)
{
    objects.stream->RevokeBuffer(buffer);
    objects.producer->ClearJournal();
    EXPECT_THAT([&] { buffer->UpdateChunks(); }, expired);
    EXPECT_THAT([&] { buffer->UpdateParts(); }, expired);
    EXPECT_THAT([&] { buffer->HasParts(); }, expired);
    EXPECT_EQ(buffer->Chunks()->size(), 1u);
    EXPECT_EQ(buffer->Parts()->size(), 1u);
    EXPECT_THAT(objects.producer->Journal(), IsEmpty());
}

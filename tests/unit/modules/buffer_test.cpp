#include "modules/buffer.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace koro::internal;
using namespace koro::test;
using namespace GenTL;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{

class BufferClass : public testing::Test
{
protected:
    Buffer::RevocationCallback Note(const std::string& text)
    {
        return [this, text](BUFFER_HANDLE handle, void* base, void* userPtr) {
            EXPECT_EQ(handle, buffer->Handle());
            EXPECT_EQ(base, memory.data());
            EXPECT_EQ(userPtr, &notes);
            notes.push_back(text);
        };
    }

    OpenObjects objects;
    std::array<char, 8> memory{};
    std::vector<std::string> notes;
    std::shared_ptr<Buffer> buffer = objects.stream->AnnounceBuffer(memory.data(), 8, &notes, {});
};

const auto expired = ThrowsExactly<InternalErrorException>("Pointer has expired!");

} // namespace

TEST_F(BufferClass, StaleReferenceToARevokedBufferHasExpired)
{
    objects.stream->RevokeBuffer(buffer);
    objects.producer->ClearJournal();
    EXPECT_THAT([&] { buffer->Size(); }, expired);
    EXPECT_THAT([&] { buffer->TLType(); }, expired);
    EXPECT_THAT([&] { buffer->HasNewData(); }, expired);
    EXPECT_THAT([&] { buffer->Info(1000); }, expired);
    EXPECT_THAT([&] { buffer->ParentStream(); }, expired);
    EXPECT_THAT([&] { buffer->ParentModule(); }, expired);
    EXPECT_THAT([&] { objects.stream->RevokeBuffer(buffer); }, expired);
    EXPECT_THAT(objects.producer->Journal(), IsEmpty());
}

TEST_F(BufferClass, BufferWhoseStreamHasGoneHasExpired)
{
    objects.stream.reset();
    EXPECT_THAT([&] { buffer->Size(); }, expired);
    EXPECT_THAT([&] { buffer->ParentStream(); }, expired);
}

TEST_F(BufferClass, StreamIsItsParent)
{
    EXPECT_EQ(buffer->ParentStream(), objects.stream);
    EXPECT_EQ(buffer->ParentModule(), objects.stream);
}

TEST_F(BufferClass, EveryEntryRunsAtTheRevocationAndNoneSurvivesIt)
{
    const int keys[2] = {};
    buffer->AddRevocationCallback(&keys[0], Note("one"));
    buffer->AddRevocationCallback(&keys[1], Note("two"));
    objects.stream->RevokeBuffer(buffer);
    EXPECT_THAT(notes, UnorderedElementsAre("one", "two"));
}

TEST_F(BufferClass, EarlierEntryOfAKeyStays)
{
    const int key = 0;
    buffer->AddRevocationCallback(&key, Note("earlier"));
    buffer->AddRevocationCallback(&key, Note("later"));
    // The stream's own entry is there already, for the callback that is none.
    buffer->AddRevocationCallback(objects.stream.get(), Note("in the stream's place"));
    objects.stream->RevokeBuffer(buffer);
    EXPECT_THAT(notes, UnorderedElementsAre("earlier"));
}

TEST_F(BufferClass, EntryThatComesTooLateIsNotKept)
{
    const int keys[2] = {};
    bool isKept = true;
    EXPECT_TRUE(buffer->AddRevocationCallback(&keys[0], [&](BUFFER_HANDLE, void*, void*) {
        isKept = buffer->AddRevocationCallback(&keys[1], Note("late"));
    }));
    objects.stream->RevokeBuffer(buffer);
    EXPECT_FALSE(isKept);
    EXPECT_FALSE(buffer->AddRevocationCallback(&keys[1], Note("later")));
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(BufferClass, RefusedRevocationKeepsTheEntries)
{
    const int key = 0;
    buffer->AddRevocationCallback(&key, Note("kept"));
    objects.producer->AnswerOnce("DSRevokeBuffer", GC_ERR_BUSY);
    EXPECT_THROW(objects.stream->RevokeBuffer(buffer), BadAccessException);
    EXPECT_THAT(notes, IsEmpty());
    EXPECT_EQ(buffer->Size(), 8u);
    objects.stream->RevokeBuffer(buffer);
    EXPECT_THAT(notes, UnorderedElementsAre("kept"));
}

TEST_F(BufferClass, EndOfTheObjectAsksNothingOfTheProducer)
{
    objects.stream->RevokeBuffer(buffer);
    objects.producer->ClearJournal();
    const std::weak_ptr<Buffer> watched = buffer;
    buffer.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_THAT(objects.producer->Journal(), IsEmpty());
}

TEST_F(BufferClass, BufferKeepsNoStreamAlive)
{
    const std::weak_ptr<DataStream> watched = objects.stream;
    objects.stream.reset();
    EXPECT_TRUE(watched.expired());
}

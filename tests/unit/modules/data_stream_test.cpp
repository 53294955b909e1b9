#include "modules/buffer.h"
#include "modules/data_stream.h"
#include "modules/event_controller.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

using namespace koro::internal;
using namespace koro::test;
using namespace GenTL;
using testing::IsEmpty;

namespace
{

class DataStreamClass : public testing::Test
{
protected:
    std::vector<std::string> CallsOf(const std::vector<std::string>& functions) const
    {
        return koro::test::CallsOf(objects.producer->Journal(), functions);
    }

    bool Fire(BUFFER_HANDLE handle) const
    {
        const EVENT_NEW_BUFFER_DATA block{handle, nullptr};
        const std::string bytes(reinterpret_cast<const char*>(&block), sizeof block);
        return objects.producer->Fire("if0-dev0-stream0", EVENT_NEW_BUFFER, bytes);
    }

    OpenObjects objects;
    std::shared_ptr<DataStream> stream = objects.stream;
};

const auto expired = ThrowsExactly<InternalErrorException>("Pointer has expired!");

// A producer whose handle of a buffer is free again after the revocation.
BUFFER_HANDLE const reusedHandle = reinterpret_cast<BUFFER_HANDLE>(std::uintptr_t{0x70});

GC_ERROR AnnounceUnderTheSameHandle(DS_HANDLE, void*, size_t, void*, BUFFER_HANDLE* handle)
{
    *handle = reusedHandle;
    return GC_ERR_SUCCESS;
}

GC_ERROR RevokeAnything(DS_HANDLE, BUFFER_HANDLE, void**, void**)
{
    return GC_ERR_SUCCESS;
}

} // namespace

TEST_F(DataStreamClass, WaitThatComesBehindTheEndOfItsDeviceIsAborted)
{
    stream->EndWaits();
    objects.device->MarkEnded(EndingScope());
    EXPECT_THROW(stream->WaitForFinishedBuffer(0), AbortedException);
    EXPECT_THAT([&] { stream->PayloadSize(); }, expired);
}

TEST_F(DataStreamClass, NullMemoryIsRefused)
{
    EXPECT_THAT(
        [&] { stream->AnnounceBuffer(nullptr, 8, nullptr, {}); },
        ThrowsExactly<InvalidArgumentException>("Buffer is a null pointer!"));
    EXPECT_THAT(CallsOf({"DSAnnounceBuffer"}), IsEmpty());
}

TEST_F(DataStreamClass, EmptyReferencesAreRefused)
{
    const auto refused = ThrowsExactly<InvalidArgumentException>("Buffer is an empty shared pointer!");
    EXPECT_THAT([&] { stream->QueueBuffer(nullptr); }, refused);
    EXPECT_THAT([&] { stream->RevokeBuffer(nullptr); }, refused);
}

TEST_F(DataStreamClass, OperationsButTheKeyNeedTheDevice)
{
    const auto buffer = stream->AllocAndAnnounceBuffer(8, nullptr);
    stream->StartAcquisition(0, 1);
    std::array<char, 8> memory{};
    const std::string key = stream->Key();
    objects.device.reset();
    objects.producer->ClearJournal();

    const std::vector<std::pair<const char*, std::function<void()>>> operations = {
        {"ID", [&] { stream->ID(); }},
        {"Info", [&] { stream->Info(0); }},
        {"TLType", [&] { stream->TLType(); }},
        {"NumBuffersAnnounced", [&] { stream->NumBuffersAnnounced(); }},
        {"NumUnderruns", [&] { stream->NumUnderruns(); }},
        {"IsGrabbing", [&] { stream->IsGrabbing(); }},
        {"AnnounceBuffer", [&] { stream->AnnounceBuffer(memory.data(), 8, nullptr, {}); }},
        {"AllocAndAnnounceBuffer", [&] { stream->AllocAndAnnounceBuffer(8, nullptr); }},
        {"AnnounceBuffer without memory", [&] { stream->AnnounceBuffer(nullptr, 8, nullptr, {}); }},
        {"QueueBuffer", [&] { stream->QueueBuffer(buffer); }},
        {"QueueBuffer of none", [&] { stream->QueueBuffer(nullptr); }},
        {"RevokeBuffer", [&] { stream->RevokeBuffer(buffer); }},
        {"RevokeBuffer of none", [&] { stream->RevokeBuffer(nullptr); }},
        {"WaitForFinishedBuffer", [&] { stream->WaitForFinishedBuffer(0); }},
        {"KillWait", [&] { stream->KillWait(); }},
        {"FlushPendingKillWaits", [&] { stream->FlushPendingKillWaits(); }},
        {"StartAcquisition", [&] { stream->StartAcquisition(0, 1); }},
        {"StopAcquisition", [&] { stream->StopAcquisition(0); }},
        {"Flush", [&] { stream->Flush(0); }},
        {"ParentDevice", [&] { stream->ParentDevice(); }},
        {"ParentModule", [&] { stream->ParentModule(); }},
    };
    for (const auto& [name, operation] : operations)
    {
        SCOPED_TRACE(name);
        EXPECT_THAT(operation, expired);
    }
    EXPECT_EQ(stream->Key(), key);
    EXPECT_THAT(objects.producer->Journal(), IsEmpty());
}

TEST_F(DataStreamClass, EndAfterTheDevicesEndLeavesTheProducersStreamOpen)
{
    int revocations = 0;
    std::array<char, 8> memory{};
    stream->AnnounceBuffer(memory.data(), 8, nullptr, [&](BUFFER_HANDLE, void*, void*) { ++revocations; });
    stream->StartAcquisition(0, 1);
    objects.device.reset();
    objects.producer->ClearJournal();
    objects.stream.reset();
    stream.reset();
    EXPECT_EQ(revocations, 0);
    // The event was registered by the stream, and its end is nobody's concern.
    EXPECT_EQ(objects.producer->Journal().size(), CallsOf({"GCUnregisterEvent", "GCGetLastError"}).size());
}

TEST_F(DataStreamClass, BufferAnnouncedBehindItsBackIsANewObjectEachTime)
{
    stream->StartAcquisition(0, 1);
    BUFFER_HANDLE const stranger = reinterpret_cast<BUFFER_HANDLE>(std::uintptr_t{0xABC0});
    ASSERT_TRUE(Fire(stranger));
    ASSERT_TRUE(Fire(stranger));
    const auto first = stream->WaitForFinishedBuffer(0);
    const auto second = stream->WaitForFinishedBuffer(0);
    EXPECT_EQ(first->Handle(), stranger);
    EXPECT_NE(first, second);
    EXPECT_EQ(first.use_count(), 1); // in no list of the stream
    EXPECT_EQ(first->ParentStream(), stream);

    // Nothing is revoked for it at the end.
    objects.producer->ClearJournal();
    objects.stream.reset();
    stream.reset();
    EXPECT_THAT(CallsOf({"DSRevokeBuffer"}), IsEmpty());
}

TEST_F(DataStreamClass, RevokedBufferIsListedNoLonger)
{
    const auto buffer = stream->AllocAndAnnounceBuffer(8, nullptr);
    const auto handle = buffer->Handle();
    stream->StartAcquisition(0, 1);
    ASSERT_TRUE(Fire(handle));
    EXPECT_EQ(stream->WaitForFinishedBuffer(0), buffer);
    stream->RevokeBuffer(buffer);
    ASSERT_TRUE(Fire(handle));
    EXPECT_NE(stream->WaitForFinishedBuffer(0), buffer);
}

TEST_F(DataStreamClass, RefusedRevokeKeepsBothLists)
{
    const auto buffer = stream->AllocAndAnnounceBuffer(8, nullptr);
    stream->StartAcquisition(0, 1);
    objects.producer->AnswerOnce("DSRevokeBuffer", GC_ERR_BUSY);
    EXPECT_THAT(
        [&] { stream->RevokeBuffer(buffer); },
        ThrowsExactly<BadAccessException>("[Function: DSRevokeBuffer | Error-Code: -1022 (GC_ERR_BUSY) | Error-Text: "
                                          "scripted failure of DSRevokeBuffer]"));
    ASSERT_TRUE(Fire(buffer->Handle()));
    EXPECT_EQ(stream->WaitForFinishedBuffer(0), buffer);
    objects.producer->ClearJournal();
    objects.stream.reset();
    stream.reset();
    EXPECT_EQ(CallsOf({"DSRevokeBuffer"}).size(), 1u);
}

// The memory can be announced again as soon as its revocation is reported, and the producer may return the same handle
// for it: the new buffer must not be removed together with the old one.
TEST_F(DataStreamClass, BufferAnnouncedInTheRevocationOfAnotherIsListedUnderTheSameHandle)
{
    const auto proxy = std::make_shared<GenTLProxy>(objects.producer.Path());
    const std::string path = proxy->CTIPath();
    proxy->DSAnnounceBuffer.Bind(reinterpret_cast<void*>(&AnnounceUnderTheSameHandle), path);
    proxy->DSRevokeBuffer.Bind(reinterpret_cast<void*>(&RevokeAnything), path);
    const auto reusing = std::make_shared<DataStream>(stream->Handle(), "reusing", objects.device, proxy);
    std::array<char, 8> memory{};
    std::shared_ptr<Buffer> again;
    const auto first = reusing->AnnounceBuffer(memory.data(), 8, nullptr, [&](BUFFER_HANDLE, void*, void*) {
        again = reusing->AnnounceBuffer(memory.data(), 8, nullptr, {});
    });
    reusing->StartAcquisition(0, 1);
    reusing->RevokeBuffer(first);

    ASSERT_TRUE(again);
    ASSERT_TRUE(Fire(reusedHandle));
    EXPECT_EQ(reusing->WaitForFinishedBuffer(0), again);
}

TEST_F(DataStreamClass, FailedRegistrationOfAnObjectThatNobodySharesIsUndone)
{
    {
        DataStream unshared(stream->Handle(), "unshared", objects.device, objects.library->Proxy());
        objects.producer->ClearJournal();
        EXPECT_THAT(
            [&] { unshared.EnableEvents(EVENT_MODULE); }, ThrowsExactly<InternalErrorException>("bad_weak_ptr"));
        EXPECT_EQ(
            CallsOf({"GCRegisterEvent", "GCUnregisterEvent"}),
            (std::vector<std::string>{
                "GCRegisterEvent(if0-dev0-stream0, 5)", "GCUnregisterEvent(if0-dev0-stream0, 5)"}));
    }
}

#include "modules/data_stream.h"

#include "base/ending_scope.h"
#include "modules/buffer.h"
#include "modules/device.h"
#include "modules/event_controller.h"

#include <algorithm>
#include <cstring>

namespace koro::internal
{

using namespace GenTL;

namespace
{

void CheckNotEmpty(const std::shared_ptr<Buffer>& buffer)
{
    if (!buffer) throw InvalidArgumentException("Buffer is an empty shared pointer!");
}

// The first field of the block; the user pointer after it is not read.
BUFFER_HANDLE FinishedBufferHandle(const std::vector<std::uint8_t>& block)
{
    BUFFER_HANDLE handle = GENTL_INVALID_HANDLE;
    if (block.size() < sizeof handle)
    {
        throw InternalErrorException(
            "[Function: EventGetData | Error: a new buffer event of " + std::to_string(block.size()) +
            " bytes holds no buffer handle]");
    }
    std::memcpy(&handle, block.data(), sizeof handle);
    return handle;
}

} // namespace

// Every operation holds the device while it runs.
template <class Operation>
decltype(auto) DataStream::WithDevice(Operation&& operation) const
{
    return WithStandardExceptionsAsInternalErrors([&]() -> decltype(auto) {
        const auto device = ParentDevice();
        return operation();
    });
}

DataStream::DataStream(
    DS_HANDLE handle, std::string streamID, const std::weak_ptr<Device>& device,
    const std::shared_ptr<const GenTLProxy>& proxy)
    : TGenTLInfoAccessor(GenTLCaller(proxy)), EventSupportingModule(handle, proxy), parent(device),
      key(ModuleKey(LockOrThrow(device)->Key(), streamID)), id(std::move(streamID))
{}

DataStream::~DataStream()
{
    try
    {
        const auto device = parent.lock(); // other threads may have ended it
        const EndingScope scope({device.get()});
        StopAndReleaseAll();
    }
    catch (const std::exception&) // the failure is ignored; a stream with unreleased buffers must not be closed
    {
        return;
    }
    gentl.CallIgnoringFailures<&GenTLProxy::DSClose>(Handle());
}

void DataStream::StopAndReleaseAll()
{
    WithDevice([&] {
        if (IsGrabbing()) gentl.Call<&GenTLProxy::DSStopAcquisition>(Handle(), ACQ_STOP_FLAGS_DEFAULT);
        gentl.Call<&GenTLProxy::DSFlushQueue>(Handle(), ACQ_QUEUE_ALL_DISCARD);
        std::vector<std::shared_ptr<Buffer>> announced;
        {
            const std::lock_guard lock(buffersLock);
            announced = buffers;
        }
        for (const auto& buffer : announced)
            Release(buffer);
    });
}

std::string DataStream::ID() const
{
    const auto device = ParentDevice();
    return id;
}

std::string DataStream::TLType() const
{
    return StringInfo(STREAM_INFO_TLTYPE);
}

std::size_t DataStream::NumBuffersAnnounced() const
{
    return SizeInfo(STREAM_INFO_NUM_ANNOUNCED);
}

std::size_t DataStream::NumBuffersAnnouncedMinRequired() const
{
    return SizeInfo(STREAM_INFO_BUF_ANNOUNCE_MIN);
}

std::size_t DataStream::NumBuffersAwaitDelivery() const
{
    return SizeInfo(STREAM_INFO_NUM_AWAIT_DELIVERY);
}

std::size_t DataStream::NumBuffersQueued() const
{
    return SizeInfo(STREAM_INFO_NUM_QUEUED);
}

std::uint64_t DataStream::NumBuffersDelivered() const
{
    return CountInfo(STREAM_INFO_NUM_DELIVERED);
}

std::uint64_t DataStream::NumBuffersStarted() const
{
    return CountInfo(STREAM_INFO_NUM_STARTED);
}

std::uint64_t DataStream::NumUnderruns() const
{
    return CountInfo(STREAM_INFO_NUM_UNDERRUN);
}

std::size_t DataStream::NumChunksPerBufferMax() const
{
    return SizeInfo(STREAM_INFO_NUM_CHUNKS_MAX);
}

std::size_t DataStream::BufferAlignment() const
{
    return SizeInfo(STREAM_INFO_BUF_ALIGNMENT);
}

std::size_t DataStream::PayloadSize() const
{
    return SizeInfo(STREAM_INFO_PAYLOAD_SIZE);
}

bool DataStream::DefinesPayloadSize() const
{
    return BooleanInfo(STREAM_INFO_DEFINES_PAYLOADSIZE);
}

bool DataStream::IsGrabbing() const
{
    return BooleanInfo(STREAM_INFO_IS_GRABBING);
}

std::size_t DataStream::SizeInfo(std::int32_t command) const
{
    return NumericInfo<std::size_t>(command, INFO_DATATYPE_SIZET);
}

std::uint64_t DataStream::CountInfo(std::int32_t command) const
{
    return NumericInfo<std::uint64_t>(command, INFO_DATATYPE_UINT64);
}

std::shared_ptr<Buffer> DataStream::AnnounceBuffer(
    void* buffer, std::size_t bufferSize, void* userPtr, RevocationCallback onRevocation)
{
    return WithDevice([&] {
        if (!buffer) throw InvalidArgumentException("Buffer is a null pointer!");
        auto announced = Announced([&](BUFFER_HANDLE* handle) {
            gentl.Call<&GenTLProxy::DSAnnounceBuffer>(Handle(), buffer, bufferSize, userPtr, handle);
        });
        try
        {
            announced->AddRevocationCallback(this, std::move(onRevocation));
        }
        catch (...)
        {
            Withdraw(announced);
            throw;
        }
        return announced;
    });
}

std::shared_ptr<Buffer> DataStream::AllocAndAnnounceBuffer(std::size_t bufferSize, void* userPtr)
{
    return Announced([&](BUFFER_HANDLE* handle) {
        const auto result = gentl.Result<&GenTLProxy::DSAllocAndAnnounceBuffer>(Handle(), bufferSize, userPtr, handle);
        if (result == GC_ERR_OUT_OF_MEMORY)
        {
            throw BadAllocException(StandardMessage("DSAllocAndAnnounceBuffer", FetchProducerError(*gentl.Proxy())));
        }
        gentl.Check<&GenTLProxy::DSAllocAndAnnounceBuffer>(result);
    });
}

// A buffer that cannot be stored is revoked again.
template <class Announce>
std::shared_ptr<Buffer> DataStream::Announced(Announce&& announce)
{
    return WithDevice([&] {
        BUFFER_HANDLE handle = GENTL_INVALID_HANDLE;
        announce(&handle);
        try
        {
            auto buffer = std::make_shared<Buffer>(
                handle, std::static_pointer_cast<DataStream>(shared_from_this()), gentl.Proxy());
            const std::lock_guard lock(buffersLock);
            buffers.reserve(buffers.size() + 1);
            buffersByHandle.insert_or_assign(handle, buffer);
            buffers.push_back(buffer);
            return buffer;
        }
        catch (...)
        {
            void* ignored = nullptr;
            gentl.CallIgnoringFailures<&GenTLProxy::DSRevokeBuffer>(Handle(), handle, &ignored, &ignored);
            throw;
        }
    });
}

void DataStream::QueueBuffer(const std::shared_ptr<Buffer>& buffer)
{
    WithDevice([&] {
        CheckNotEmpty(buffer);
        gentl.Call<&GenTLProxy::DSQueueBuffer>(Handle(), buffer->Handle());
    });
}

void DataStream::RevokeBuffer(const std::shared_ptr<Buffer>& buffer)
{
    WithDevice([&] {
        CheckNotEmpty(buffer);
        const auto owner = buffer->ParentStream();
        owner->WithDevice([&] { owner->Release(buffer); });
    });
}

void DataStream::Withdraw(const std::shared_ptr<Buffer>& buffer) noexcept
{
    try
    {
        buffer->DropRevocationCallbacks();
        Release(buffer);
    }
    catch (const std::exception&) // the producer refused: the end of the stream tries again
    {}
}

void DataStream::Release(const std::shared_ptr<Buffer>& buffer)
{
    buffer->Revoke(Handle());
    const std::lock_guard lock(buffersLock);
    std::erase(buffers, buffer);
    // The producer may have given the handle to a newer buffer that the revocation callback announced.
    const auto entry = buffersByHandle.find(buffer->Handle());
    if (entry != buffersByHandle.end() && entry->second == buffer) buffersByHandle.erase(entry);
}

std::shared_ptr<Buffer> DataStream::WaitForFinishedBuffer(std::uint64_t timeout_ms)
{
    return WithStandardExceptionsAsInternalErrors([&] {
        try
        {
            const auto device = ParentDevice();
            auto buffer = FindOrWrap(FinishedBufferHandle(NewBufferEvents().WaitForBlock(timeout_ms)));
            if (HasEndReached()) throw EventController::EndedWait(); // the frame is lost with its stream
            return buffer;
        }
        catch (const InternalErrorException&) // possibly caused by the end of the stream
        {
            if (HasEndReached()) throw EventController::EndedWait();
            throw;
        }
    });
}

std::shared_ptr<Buffer> DataStream::FindOrWrap(BUFFER_HANDLE handle)
{
    {
        const std::lock_guard lock(buffersLock);
        if (const auto found = buffersByHandle.find(handle); found != buffersByHandle.end()) return found->second;
    }
    return std::make_shared<Buffer>(handle, std::static_pointer_cast<DataStream>(shared_from_this()), gentl.Proxy());
}

void DataStream::KillWait()
{
    WithDevice([&] { NewBufferEvents().KillWait(); });
}

// Either the events exist by now, or the thread that creates them sees that waits have ended.
void DataStream::EndWaits() noexcept
{
    haveWaitsEnded = true;
    if (newBufferEventsOnce.IsDone()) newBufferEvents->EndWaits();
}

void DataStream::FlushPendingKillWaits()
{
    WithDevice([&] {
        if (!newBufferEventsOnce.IsDone())
        {
            throw InternalErrorException(
                "[Function: FlushPendingKillWaits | Error: there is no new buffer event yet: start the acquisition, "
                "wait or kill a wait first]");
        }
        newBufferEvents->FlushPendingKillWaits();
    });
}

EventController& DataStream::NewBufferEvents()
{
    newBufferEventsOnce.Run([this] { newBufferEvents = EnableEvents(EVENT_NEW_BUFFER); });
    if (haveWaitsEnded) newBufferEvents->EndWaits();
    return *newBufferEvents;
}

void DataStream::StartAcquisition(std::int32_t startMode, std::uint64_t numToAcquire)
{
    WithDevice([&] {
        NewBufferEvents();
        gentl.Call<&GenTLProxy::DSStartAcquisition>(Handle(), startMode, numToAcquire);
    });
}

void DataStream::StopAcquisition(std::int32_t stopMode)
{
    WithDevice([&] { gentl.Call<&GenTLProxy::DSStopAcquisition>(Handle(), stopMode); });
}

void DataStream::Flush(std::int32_t flushMode)
{
    WithDevice([&] { gentl.Call<&GenTLProxy::DSFlushQueue>(Handle(), flushMode); });
}

std::shared_ptr<Device> DataStream::ParentDevice() const
{
    return LockOrThrow(parent);
}

std::shared_ptr<Module> DataStream::ParentModule() const
{
    return ParentDevice();
}

GC_ERROR DataStream::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    const auto device = ParentDevice();
    return gentl.Result<&GenTLProxy::DSGetInfo>(Handle(), command, dataType, buffer, size);
}

} // namespace koro::internal

#include "producers/kit/data_stream.h"

#include "producers/kit/device.h"

#include <utility>

namespace koro::kit
{
namespace
{

constexpr std::size_t announceMinimum = 1;
constexpr std::size_t maxBufferBytes = std::size_t{1} << 32; // of one allocation of ours

} // namespace

DataStream::DataStream(std::shared_ptr<Device> parentDevice, std::string streamId, PortFacts bufferFacts)
    : parent(std::move(parentDevice)), id(std::move(streamId)), factsOfBuffers(std::move(bufferFacts))
{}

bool DataStream::SupportsEvent(EVENT_TYPE type) const noexcept
{
    return type == EVENT_NEW_BUFFER || Module::SupportsEvent(type);
}

void DataStream::OnRegistration(EVENT_TYPE type, EventQueue* registration) noexcept
{
    if (type == EVENT_NEW_BUFFER) queue.SetOutput(registration);
}

std::shared_ptr<Buffer> DataStream::Add(std::shared_ptr<Buffer> buffer)
{
    const std::lock_guard lock(mutex);
    if (IsClosed()) throw Failure(GC_ERR_INVALID_HANDLE, "the stream was closed meanwhile");
    queue.Announce(buffer);
    Handles().Add(buffer);
    return buffer;
}

std::shared_ptr<Buffer> DataStream::Announce(void* memory, std::size_t bytes, void* userPointer)
{
    if (bytes == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "a buffer needs at least one byte");
    return Add(std::make_shared<Buffer>(memory, bytes, userPointer, factsOfBuffers));
}

std::shared_ptr<Buffer> DataStream::AllocAndAnnounce(std::size_t bytes, void* userPointer)
{
    if (bytes == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "a buffer needs at least one byte");
    if (bytes > maxBufferBytes) throw Failure(GC_ERR_OUT_OF_MEMORY, std::to_string(bytes) + " bytes are too many");
    return Add(std::make_shared<Buffer>(bytes, userPointer, factsOfBuffers));
}

std::shared_ptr<Buffer> DataStream::BufferAt(std::uint32_t index) const
{
    const std::lock_guard lock(mutex);
    return queue.At(index);
}

void DataStream::Revoke(Buffer& buffer)
{
    std::shared_ptr<Buffer> revoked;
    {
        const std::lock_guard lock(mutex);
        revoked = queue.Revoke(buffer);
    }
    revoked->Close();
}

void DataStream::Queue(Buffer& buffer)
{
    const std::lock_guard lock(mutex);
    RequireBufferLocked(buffer);
    queue.QueueInput(buffer);
    Engine().NotifyInput();
}

void DataStream::Flush(ACQ_QUEUE_TYPE operation)
{
    const std::lock_guard steering(control);
    const auto flush = [this, operation] {
        queue.Flush(operation);
        Engine().NotifyInput();
    };
    if (operation == ACQ_QUEUE_ALL_TO_INPUT || operation == ACQ_QUEUE_ALL_DISCARD) return Engine().WithoutFill(flush);
    const std::lock_guard lock(mutex);
    flush();
}

void DataStream::Start(ACQ_START_FLAGS flags, std::uint64_t number)
{
    if (flags != ACQ_START_FLAGS_DEFAULT) throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown start flag");
    if (number == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "the number of buffers must not be 0");
    const std::lock_guard steering(control);
    if (IsClosed()) throw Failure(GC_ERR_INVALID_HANDLE, "the stream was closed meanwhile");
    if (Engine().IsStarted()) throw Failure(GC_ERR_RESOURCE_IN_USE, "the acquisition is started, a stop is due");
    RequireStart();
    {
        const std::lock_guard lock(mutex);
        if (queue.NumAnnounced() < announceMinimum)
            throw Failure(GC_ERR_INVALID_BUFFER, "at least one buffer must be announced");
    }
    OnStart();
    try
    {
        Engine().Start(number);
    }
    catch (...)
    {
        OnStop();
        throw;
    }
    OnRunning(true);
}

void DataStream::StopEngine(bool kill)
{
    if (!Engine().IsStarted()) return;
    Engine().Stop(kill);
    OnStop();
    OnRunning(false);
}

void DataStream::Stop(ACQ_STOP_FLAGS flags)
{
    if (flags != ACQ_STOP_FLAGS_DEFAULT && flags != ACQ_STOP_FLAGS_KILL)
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown stop flag");
    const std::lock_guard steering(control);
    if (!Engine().IsStarted()) throw Failure(GC_ERR_RESOURCE_IN_USE, "the acquisition is not started");
    StopEngine(flags == ACQ_STOP_FLAGS_KILL);
}

void DataStream::CutOff()
{
    const std::lock_guard steering(control);
    Engine().CutOff();
}

void DataStream::OnClose()
{
    {
        const std::lock_guard steering(control);
        StopEngine(true);
    }
    std::vector<std::shared_ptr<Buffer>> buffers;
    {
        const std::lock_guard lock(mutex);
        buffers = queue.RevokeAll();
    }
    for (const auto& buffer : buffers)
        buffer->Close();
    parent->Forget(*this);
}

InfoValue DataStream::Info(STREAM_INFO_CMD command) const
{
    const std::lock_guard lock(mutex);
    switch (command)
    {
    case STREAM_INFO_ID:
        return InfoValue::Text(id);
    case STREAM_INFO_NUM_DELIVERED:
        return InfoValue::UInt64(queue.counters.delivered);
    case STREAM_INFO_NUM_UNDERRUN:
        return InfoValue::UInt64(queue.counters.underruns);
    case STREAM_INFO_NUM_ANNOUNCED:
        return InfoValue::Size(queue.NumAnnounced());
    case STREAM_INFO_NUM_QUEUED:
        return InfoValue::Size(queue.NumQueued());
    case STREAM_INFO_NUM_AWAIT_DELIVERY:
        return InfoValue::Size(queue.NumAwaitingDelivery());
    case STREAM_INFO_NUM_STARTED:
        return InfoValue::UInt64(queue.counters.started);
    case STREAM_INFO_PAYLOAD_SIZE:
        return InfoValue::Size(PayloadBytes());
    case STREAM_INFO_IS_GRABBING:
        return InfoValue::Bool(Engine().IsGrabbing());
    case STREAM_INFO_DEFINES_PAYLOADSIZE:
        return InfoValue::Bool(true);
    case STREAM_INFO_TLTYPE:
        return InfoValue::Text(factsOfBuffers.tlType);
    case STREAM_INFO_NUM_CHUNKS_MAX:
        return InfoValue::Size(MaxChunks());
    case STREAM_INFO_BUF_ANNOUNCE_MIN:
        return InfoValue::Size(announceMinimum);
    case STREAM_INFO_BUF_ALIGNMENT:
        return InfoValue::Size(1);
    case STREAM_INFO_FLOW_TABLE:
    case STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR:
        throw Failure(GC_ERR_NO_DATA, "flows are not in use");
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown stream information");
    }
}

void DataStream::RequireBufferLocked(const Buffer& buffer) const
{
    if (!queue.Owns(buffer)) throw Failure(GC_ERR_INVALID_HANDLE, "the buffer is not announced to this stream");
}

void DataStream::RequireBuffer(const Buffer& buffer) const
{
    const std::lock_guard lock(mutex);
    RequireBufferLocked(buffer);
}

InfoValue DataStream::BufferInfo(const Buffer& buffer, BUFFER_INFO_CMD command) const
{
    const std::lock_guard lock(mutex);
    RequireBufferLocked(buffer);
    const bool isQueued = buffer.place != Place::Idle;
    switch (command)
    {
    case BUFFER_INFO_BASE:
        return InfoValue::Pointer(buffer.Memory().data());
    case BUFFER_INFO_SIZE:
        return InfoValue::Size(buffer.Memory().size());
    case BUFFER_INFO_USER_PTR:
        return InfoValue::Pointer(buffer.UserPointer());
    case BUFFER_INFO_NEW_DATA:
        return InfoValue::Bool(buffer.hasNewData);
    case BUFFER_INFO_IS_QUEUED:
        return InfoValue::Bool(isQueued);
    case BUFFER_INFO_IS_ACQUIRING:
        return InfoValue::Bool(buffer.place == Place::Filling);
    case BUFFER_INFO_TLTYPE:
        return InfoValue::Text(factsOfBuffers.tlType);
    case BUFFER_INFO_IS_COMPOSITE:
        return InfoValue::Bool(false);
    case BUFFER_INFO_SIZE_FILLED:
    case BUFFER_INFO_DATA_SIZE:
        if (!buffer.hasNewData) return InfoValue::Size(0);
        break;
    default:
        break;
    }
    if (command < 0 || command > BUFFER_INFO_IS_COMPOSITE)
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown buffer information");
    if (isQueued) throw Failure(GC_ERR_NOT_AVAILABLE, "the buffer is queued");
    if (!buffer.hasNewData) throw Failure(GC_ERR_NOT_AVAILABLE, "the buffer holds no new image");
    return buffer.frame.Info(command);
}

std::vector<SINGLE_CHUNK_DATA> DataStream::Chunks(const Buffer& buffer) const
{
    const std::lock_guard lock(mutex);
    RequireBufferLocked(buffer);
    if (buffer.place != Place::Idle) throw Failure(GC_ERR_NOT_AVAILABLE, "the buffer is queued");
    if (!buffer.hasNewData || !buffer.frame.HasChunks()) throw Failure(GC_ERR_NO_DATA, "the buffer holds no chunks");
    return ChunksIn(buffer.Memory().first(buffer.frame.sizeFilled));
}

std::vector<SINGLE_CHUNK_DATA> DataStream::ChunksIn(std::span<const std::byte>) const
{
    throw Failure(GC_ERR_NO_DATA, "the buffer holds no chunks");
}

const FrameFacts& DataStream::PartsLocked(const Buffer& buffer) const
{
    RequireBufferLocked(buffer);
    if (buffer.place != Place::Idle) throw Failure(GC_ERR_NOT_AVAILABLE, "the buffer is queued");
    if (!buffer.hasNewData || !buffer.frame.isMultiPart) throw Failure(GC_ERR_NO_DATA, "the buffer holds no parts");
    return buffer.frame;
}

std::uint32_t DataStream::NumParts(const Buffer& buffer) const
{
    const std::lock_guard lock(mutex);
    return static_cast<std::uint32_t>(PartsLocked(buffer).parts.size());
}

InfoValue DataStream::PartInfo(const Buffer& buffer, std::uint32_t index, BUFFER_PART_INFO_CMD command) const
{
    const std::lock_guard lock(mutex);
    return PartsLocked(buffer).PartInfo(buffer.Memory().data(), index, command);
}

InfoValue DataStream::SegmentInfo(const Buffer& buffer, std::uint32_t index, SEGMENT_INFO_CMD command) const
{
    RequireBuffer(buffer);
    if (index > 0) throw Failure(GC_ERR_INVALID_INDEX, "the buffer has one segment");
    switch (command)
    {
    case SEGMENT_INFO_BASE:
        return BufferInfo(buffer, BUFFER_INFO_BASE);
    case SEGMENT_INFO_SIZE:
        return BufferInfo(buffer, BUFFER_INFO_SIZE);
    case SEGMENT_INFO_IS_INCOMPLETE:
        return BufferInfo(buffer, BUFFER_INFO_IS_INCOMPLETE);
    case SEGMENT_INFO_SIZE_FILLED:
        return BufferInfo(buffer, BUFFER_INFO_SIZE_FILLED);
    case SEGMENT_INFO_DATA_SIZE:
        return BufferInfo(buffer, BUFFER_INFO_DATA_SIZE);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown segment information");
    }
}

} // namespace koro::kit

#include "producers/simulator/face/data_stream.h"

#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/face/device.h"
#include "producers/simulator/face/system.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::size_t announceMinimum = 1;
constexpr std::size_t maxBufferBytes = std::size_t{1} << 32; // of one allocation of ours

constexpr std::uint64_t oldestFirst = 1; // of StreamBufferHandlingMode

// A whole number of up to eight bytes.
std::uint64_t NumberIn(const InfoValue& value)
{
    std::uint64_t number = 0;
    std::memcpy(&number, value.bytes.data(), std::min(value.bytes.size(), sizeof number));
    return number;
}

PortFacts StreamFacts(const Device& device)
{
    return {DataStream::TheId(), vendorName,   modelName,      device.TheCamera().TLType(),
            "TLDataStream",      "StreamPort", producerVersion};
}

PortFacts BufferFacts(const Camera& camera)
{
    return {"", vendorName, modelName, camera.TLType(), "TLBuffer", "BufferPort", producerVersion};
}

} // namespace

const std::string& DataStream::TheId()
{
    static const std::string id = "Stream0";
    return id;
}

DataStream::DataStream(std::shared_ptr<Device> parentDevice)
    : parent(std::move(parentDevice)), camera(parent->SharedCamera()), port(StreamFacts(*parent), MakeRegisters()),
      engine(
          mutex, queue, camera, parent->TheConnection(),
          {[this] { parent->OnCameraLost(); },
           [this] {
               RaiseEvent(EVENT_ERROR, ErrorBlock(GC_ERR_BUFFER_TOO_SMALL, "the buffer is too small for the image"));
           },
           [this](std::uint64_t frame) { return parent->Parent()->Parent()->Plugs().IsUnpluggedAt(*camera, frame); }})
{}

PortRegisters DataStream::MakeRegisters()
{
    auto map = std::make_shared<RegisterMap>();
    AddCommonRegisters(*map, StreamFacts(*parent), streamDescription);
    map->AddInteger(0x140, 4, TransportTypeNumber(camera->TLType()));
    map->AddInteger(0x144, 4, oldestFirst);
    const auto mirror = [this, &map](std::uint64_t address, std::size_t bytes, STREAM_INFO_CMD command) {
        map->AddInteger(address, bytes, [this, command] { return NumberIn(Info(command)); });
    };
    mirror(0x148, 4, STREAM_INFO_IS_GRABBING);
    mirror(0x180, 8, STREAM_INFO_PAYLOAD_SIZE);
    mirror(0x188, 8, STREAM_INFO_NUM_ANNOUNCED);
    mirror(0x190, 8, STREAM_INFO_BUF_ANNOUNCE_MIN);
    mirror(0x198, 8, STREAM_INFO_BUF_ALIGNMENT);
    mirror(0x1A0, 8, STREAM_INFO_NUM_QUEUED);
    mirror(0x1A8, 8, STREAM_INFO_NUM_AWAIT_DELIVERY);
    mirror(0x1B0, 8, STREAM_INFO_NUM_CHUNKS_MAX);
    mirror(0x1B8, 8, STREAM_INFO_NUM_STARTED);
    mirror(0x1C0, 8, STREAM_INFO_NUM_DELIVERED);
    mirror(0x1C8, 8, STREAM_INFO_NUM_UNDERRUN);
    AddEventRegisters(*map, camera->TLType());
    return {map, {LocalURL(streamDescription)}};
}

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
    return Add(std::make_shared<Buffer>(memory, bytes, userPointer, BufferFacts(*camera)));
}

std::shared_ptr<Buffer> DataStream::AllocAndAnnounce(std::size_t bytes, void* userPointer)
{
    if (bytes == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "a buffer needs at least one byte");
    if (bytes > maxBufferBytes) throw Failure(GC_ERR_OUT_OF_MEMORY, std::to_string(bytes) + " bytes are too many");
    return Add(std::make_shared<Buffer>(bytes, userPointer, BufferFacts(*camera)));
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
    engine.NotifyInput();
}

void DataStream::Flush(ACQ_QUEUE_TYPE operation)
{
    const std::lock_guard steering(control);
    const auto flush = [this, operation] {
        queue.Flush(operation);
        engine.NotifyInput();
    };
    if (operation == ACQ_QUEUE_ALL_TO_INPUT || operation == ACQ_QUEUE_ALL_DISCARD) return engine.WithoutFill(flush);
    const std::lock_guard lock(mutex);
    flush();
}

void DataStream::Start(ACQ_START_FLAGS flags, std::uint64_t number)
{
    if (flags != ACQ_START_FLAGS_DEFAULT) throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown start flag");
    if (number == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "the number of buffers must not be 0");
    const std::lock_guard steering(control);
    if (IsClosed()) throw Failure(GC_ERR_INVALID_HANDLE, "the stream was closed meanwhile");
    if (engine.IsStarted()) throw Failure(GC_ERR_RESOURCE_IN_USE, "the acquisition is started, a stop is due");
    parent->RequireConnection();
    parent->RequireStreamAccess();
    {
        const std::lock_guard lock(mutex);
        if (queue.NumAnnounced() < announceMinimum)
            throw Failure(GC_ERR_INVALID_BUFFER, "at least one buffer must be announced");
    }
    camera->Features().OnStreamStart();
    try
    {
        engine.Start(number);
    }
    catch (...)
    {
        camera->Features().OnStreamStop();
        throw;
    }
    TellLock("1");
}

// The standard's word to a consumer that it is time to lock the format, or to unlock it.
void DataStream::TellLock(const char* value)
{
    parent->RaiseEvent(EVENT_FEATURE_CHANGE, FeatureBlock("TLParamsLocked") + FeatureBlock(value));
}

void DataStream::StopEngine(bool kill)
{
    if (!engine.IsStarted()) return;
    engine.Stop(kill);
    // A camera that went has stopped by itself, and may be open again elsewhere.
    if (!parent->TheConnection()->IsLost()) camera->Features().OnStreamStop();
    TellLock("0");
}

void DataStream::Stop(ACQ_STOP_FLAGS flags)
{
    if (flags != ACQ_STOP_FLAGS_DEFAULT && flags != ACQ_STOP_FLAGS_KILL)
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown stop flag");
    const std::lock_guard steering(control);
    if (!engine.IsStarted()) throw Failure(GC_ERR_RESOURCE_IN_USE, "the acquisition is not started");
    StopEngine(flags == ACQ_STOP_FLAGS_KILL);
}

void DataStream::CutOff()
{
    const std::lock_guard steering(control);
    engine.CutOff();
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
        return InfoValue::Text(Id());
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
        return InfoValue::Size(camera->Features().PayloadBytes());
    case STREAM_INFO_IS_GRABBING:
        return InfoValue::Bool(engine.IsGrabbing());
    case STREAM_INFO_DEFINES_PAYLOADSIZE:
        return InfoValue::Bool(true);
    case STREAM_INFO_TLTYPE:
        return InfoValue::Text(camera->TLType());
    case STREAM_INFO_NUM_CHUNKS_MAX:
        return InfoValue::Size(numChunks);
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
        return InfoValue::Text(camera->TLType());
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
    return FilledBufferInfo(buffer, command);
}

} // namespace koro::simulator

#include "producers/simulator/face/data_stream.h"

#include "producers/simulator/camera/descriptions.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/face/device.h"
#include "producers/simulator/face/interface.h"
#include "producers/simulator/face/library.h"
#include "producers/simulator/face/system.h"

#include <algorithm>
#include <cstring>
#include <stream_register_names.h>
#include <utility>

namespace koro::simulator
{
namespace
{

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
    return {StreamId(0),    vendorName,   modelName,      device.TheCamera().TLType(),
            "TLDataStream", "StreamPort", producerVersion};
}

PortFacts BufferFacts(const Camera& camera)
{
    return {"", vendorName, modelName, camera.TLType(), "TLBuffer", "BufferPort", producerVersion};
}

} // namespace

DataStream::DataStream(std::shared_ptr<Device> parentDevice)
    : kit::DataStream(parentDevice, StreamId(0), BufferFacts(parentDevice->TheCamera())),
      device(std::move(parentDevice)), camera(device->SharedCamera()), port(StreamFacts(*device), MakeRegisters()),
      engine(
          mutex, queue, camera, device->TheConnection(),
          {[this] { device->OnCameraLost(); },
           [this] {
               RaiseEvent(EVENT_ERROR, ErrorBlock(GC_ERR_BUFFER_TOO_SMALL, "the buffer is too small for the image"));
           },
           [this](std::uint64_t frame) {
               return device->TheInterface().TheSystem().Plugs().IsUnpluggedAt(*camera, frame);
           }})
{}

PortRegisters DataStream::MakeRegisters()
{
    auto map = std::make_shared<RegisterMap>();
    AddCommonRegisters(*map, StreamFacts(*device), streamDescription);
    map->AddInteger(registers::stream::StreamTypeReg, TransportTypeNumber(camera->TLType()));
    map->AddInteger(registers::stream::StreamBufferHandlingModeReg, oldestFirst);
    const auto mirror = [this, &map](RegisterPlace place, STREAM_INFO_CMD command) {
        map->AddInteger(place, [this, command] { return NumberIn(Info(command)); });
    };
    mirror(registers::stream::StreamIsGrabbingReg, STREAM_INFO_IS_GRABBING);
    mirror(registers::stream::PayloadSize, STREAM_INFO_PAYLOAD_SIZE);
    mirror(registers::stream::StreamAnnouncedBufferCount, STREAM_INFO_NUM_ANNOUNCED);
    mirror(registers::stream::StreamAnnounceBufferMinimum, STREAM_INFO_BUF_ANNOUNCE_MIN);
    mirror(registers::stream::StreamBufferAlignment, STREAM_INFO_BUF_ALIGNMENT);
    mirror(registers::stream::StreamInputBufferCount, STREAM_INFO_NUM_QUEUED);
    mirror(registers::stream::StreamOutputBufferCount, STREAM_INFO_NUM_AWAIT_DELIVERY);
    mirror(registers::stream::StreamChunkCountMaximum, STREAM_INFO_NUM_CHUNKS_MAX);
    mirror(registers::stream::StreamStartedFrameCount, STREAM_INFO_NUM_STARTED);
    mirror(registers::stream::StreamDeliveredFrameCount, STREAM_INFO_NUM_DELIVERED);
    mirror(registers::stream::StreamLostFrameCount, STREAM_INFO_NUM_UNDERRUN);
    AddEventRegisters(*map, camera->TLType());
    return {map, {LocalURL(streamDescription)}};
}

std::vector<SINGLE_CHUNK_DATA> DataStream::ChunksIn(std::span<const std::byte> payload) const
{
    return ParseChunks(camera->Features().ChunksForm(), payload);
}

void DataStream::RequireStart() const
{
    device->RequireConnection();
    device->RequireStreamAccess();
}

void DataStream::OnStop() noexcept
{
    // A camera that went has stopped by itself, and may be open again elsewhere.
    if (!device->TheConnection()->IsLost()) camera->Features().OnStreamStop();
}

// The standard's word to a consumer that it is time to lock the format, or to unlock it.
void DataStream::OnRunning(bool runs)
{
    device->RaiseEvent(EVENT_FEATURE_CHANGE, FeatureBlock("TLParamsLocked") + FeatureBlock(runs ? "1" : "0"));
}

} // namespace koro::simulator

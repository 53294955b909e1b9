// The pictures that the wild cameras take, and behaviours that concern them.
#include "producers/scripted/wild/frame_source.h"
#include "producers/scripted/wild/producer.h"
#include "producers/scripted/wild/steering.h"

#include <chrono>
#include <utility>

namespace scripted::wild
{

using namespace GenTL;

void FrameSource::Start(const std::vector<std::shared_ptr<Camera>>& cameras)
{
    if (thread.joinable()) return;
    thread = std::jthread([this, cameras](const std::stop_token& stop) { Run(stop, cameras); });
}

void FrameSource::Stop()
{
    thread.request_stop();
    if (thread.joinable()) thread.join();
}

void FrameSource::Notify()
{
    const std::lock_guard lock(mutex);
    news = true;
    happened.notify_all();
}

void FrameSource::Run(const std::stop_token& stop, const std::vector<std::shared_ptr<Camera>>& cameras)
{
    constexpr std::chrono::milliseconds period(5);
    while (!stop.stop_requested())
    {
        bool anyTaken = false;
        for (const auto& camera : cameras)
            anyTaken |= TakePicture(*camera);

        std::unique_lock lock(mutex);
        const auto hasNews = [this] { return std::exchange(news, false); };
        if (anyTaken)
        {
            happened.wait_for(lock, stop, period, [] { return false; });
        }
        else
        {
            happened.wait(lock, stop, hasNews);
        }
    }
}

// False when the camera takes none.
bool FrameSource::TakePicture(Camera& camera)
{
    if (!camera.isStarted || camera.pictures >= limit) return false;
    Frame frame = camera.Picture();
    if (change) change(frame, camera.pictures);
    if (script.Deliver(camera.id + "-stream0", frame)) ++camera.pictures;
    return true;
}

namespace
{

void MarkIncomplete(Frame& frame)
{
    frame.incomplete = true;
    frame.bytes.resize(frame.bytes.size() / 2);
}

Infos OfPart(std::size_t size, std::int32_t dataType, std::uint64_t format, std::uint64_t purpose)
{
    return {
        {BUFFER_PART_INFO_DATA_SIZE, Size(size)},
        {BUFFER_PART_INFO_DATA_TYPE, Size(static_cast<std::size_t>(dataType))},
        {BUFFER_PART_INFO_DATA_FORMAT, UInt64(format)},
        {BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE, UInt64(PIXELFORMAT_NAMESPACE_PFNC_32BIT)},
        {BUFFER_PART_INFO_WIDTH, Size(8)},
        {BUFFER_PART_INFO_HEIGHT, Size(4)},
        {BUFFER_PART_INFO_XOFFSET, Size(0)},
        {BUFFER_PART_INFO_YOFFSET, Size(0)},
        {BUFFER_PART_INFO_XPADDING, Size(0)},
        {BUFFER_PART_INFO_SOURCE_ID, UInt64(0)},
        {BUFFER_PART_INFO_REGION_ID, UInt64(0)},
        {BUFFER_PART_INFO_DATA_PURPOSE_ID, UInt64(purpose)},
    };
}

} // namespace

// Each third picture has lost its leader: it is incomplete, and what the leader says is unknown.
void LostLeaders(Producer& producer)
{
    producer.source.change = [](Frame& frame, std::uint64_t number) {
        if (number % 3 != 2) return;
        MarkIncomplete(frame);
        for (const auto command :
             {BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_PIXELFORMAT_NAMESPACE, BUFFER_INFO_WIDTH, BUFFER_INFO_HEIGHT,
              BUFFER_INFO_XOFFSET, BUFFER_INFO_YOFFSET, BUFFER_INFO_XPADDING, BUFFER_INFO_PAYLOADTYPE,
              BUFFER_INFO_TIMESTAMP, BUFFER_INFO_TIMESTAMP_NS, BUFFER_INFO_DELIVERED_IMAGEHEIGHT})
        {
            frame.info[command] = Failing(GC_ERR_NOT_IMPLEMENTED);
        }
    };
}

// The first two pictures of a camera are incomplete and empty, and the count of underruns is absurd.
void BrokenFirstFrames(Producer& producer)
{
    producer.source.change = [](Frame& frame, std::uint64_t number) {
        if (number >= 2) return;
        frame.incomplete = true;
        frame.bytes.clear();
    };
    producer.script.SetInfo("DSGetInfo", STREAM_INFO_NUM_UNDERRUN, UInt64(4'000'000'000));
}

// The camera takes a few pictures, then no more; every call still succeeds.
void SilentAfterFrames(Producer& producer)
{
    producer.source.limit = NumberOf("KORO_WILD_FRAMES", 5);
}

// Frames of two parts: an image, and a disparity map whose format is that of a picture. The frame has no pixel format.
void Parts(Producer& producer)
{
    constexpr std::size_t imageSize = 8 * 4;
    constexpr std::uint64_t mono8 = 0x01080001;
    constexpr std::uint64_t mono12 = 0x01100005;
    constexpr std::uint64_t disparity = 4;
    producer.source.change = [](Frame& frame, std::uint64_t) {
        frame.bytes.resize(3 * imageSize);
        for (std::size_t pixel = 0; pixel < imageSize; ++pixel)
        {
            frame.bytes[imageSize + 2 * pixel] = static_cast<char>(pixel);
            frame.bytes[imageSize + 2 * pixel + 1] = 2;
        }
        frame.parts = {
            OfPart(imageSize, PART_DATATYPE_2D_IMAGE, mono8, 0),
            OfPart(2 * imageSize, PART_DATATYPE_2D_IMAGE, mono12, disparity)};
        frame.partOffsets = {0, imageSize};
        frame.info[BUFFER_INFO_PIXELFORMAT] = Failing(GC_ERR_NOT_AVAILABLE);
    };
}

} // namespace scripted::wild

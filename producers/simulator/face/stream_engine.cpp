#include "producers/simulator/face/stream_engine.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t virtualPeriod_ns = 1'000'000;

std::chrono::steady_clock::time_point TimeOf(std::uint64_t time_ns)
{
    return std::chrono::steady_clock::time_point(std::chrono::nanoseconds(time_ns));
}

std::chrono::steady_clock::duration PeriodOf(double rate)
{
    constexpr double longest_s = 86400 * 365;
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(std::min(1 / rate, longest_s)));
}

} // namespace

StreamEngine::StreamEngine(
    std::mutex& streamsMutex, BufferQueue& bufferQueue, std::shared_ptr<Camera> streamsCamera,
    std::shared_ptr<const Connection> streamsConnection, Reports streamsReports)
    : kit::StreamEngine(streamsMutex, bufferQueue), camera(std::move(streamsCamera)),
      connection(std::move(streamsConnection)), reports(std::move(streamsReports)), drawer(camera->Source())
{}

void StreamEngine::BeforeThread()
{
    run = 0;
    listener = camera->Features().Listen([this] { OnCameraWritten(); });
}

void StreamEngine::OnCameraWritten()
{
    const std::lock_guard lock(mutex);
    written = true;
    Call();
}

void StreamEngine::Run(Lock& lock, std::uint64_t number)
{
    std::uint64_t numFilled = 0;
    while (numFilled < number)
    {
        const FrameRequest request = AwaitRequest(lock);
        const bool isTurn = AwaitTurn(lock, request);
        if (stopping) break;
        if (!isTurn) continue;
        if (connection->IsLost()) return;
        if (!connection->IsUp()) continue;
        const auto frame = camera->Features().TakeFrame(request.run);
        if (!frame) continue;
        if (camera->VanishesAtFrame(frame->id))
        {
            lock.unlock();
            reports.cameraLost();
            return;
        }
        if (reports.isUnpluggedAt(frame->id))
        {
            AwaitCutOff(lock);
            continue;
        }
        const std::uint64_t timestamp_ns = Timestamp_ns(request);
        if (!TellExposureEnd(lock, *frame, timestamp_ns)) continue;
        if (FillNextFrom(lock, *frame, request, timestamp_ns)) ++numFilled;
    }
    grabbing = grabbing && numFilled < number;
}

FrameRequest StreamEngine::AwaitRequest(Lock& lock)
{
    for (;;)
    {
        written = false;
        const FrameRequest request = connection->IsUp() ? camera->Features().Look() : FrameRequest();
        if (stopping || request.state != FrameRequest::State::Silent)
        {
            if (request.run != run) lastDue = Clock::now();
            run = request.run;
            return request;
        }
        wake.wait(lock, [this] { return stopping || written; });
    }
}

bool StreamEngine::AwaitTurn(Lock& lock, const FrameRequest& request)
{
    if (request.state == FrameRequest::State::Unpaced) return AwaitInput(lock, written) && !written;
    if (request.state == FrameRequest::State::Paced && !AwaitDue(lock, request.rate)) return false;
    if (request.state == FrameRequest::State::Triggered && !AwaitExposure(lock, request)) return false;
    return AwaitPermission(lock);
}

// A camera that is written to may have another exposure time, or be stopped.
bool StreamEngine::AwaitExposure(Lock& lock, const FrameRequest& request)
{
    const Clock::time_point end = TimeOf(request.exposureEnd_ns);
    wake.wait_until(lock, end, [this] { return stopping || written; });
    return !stopping && Clock::now() >= end;
}

// A machine that cannot keep up shifts the schedule instead of sending bursts.
bool StreamEngine::AwaitDue(Lock& lock, double rate)
{
    const Clock::duration period = PeriodOf(rate);
    Clock::time_point due = lastDue + period;
    const auto now = Clock::now();
    if (now > due + period) due = now;
    const bool isCalled = wake.wait_until(lock, due, [this] { return stopping || written; });
    // However often the camera is written to, frames that are due are taken.
    if (stopping || (isCalled && Clock::now() < due)) return false;
    lastDue = due;
    return true;
}

void StreamEngine::AwaitCutOff(Lock& lock)
{
    const std::uint64_t before = numCutOffs;
    wake.wait(lock, [this, before] { return stopping || numCutOffs != before || !connection->IsUp(); });
}

std::uint64_t StreamEngine::Timestamp_ns(const FrameRequest& request) noexcept
{
    if (request.state == FrameRequest::State::Unpaced) return virtualTime_ns += virtualPeriod_ns;
    if (request.state == FrameRequest::State::Triggered) return request.exposureEnd_ns;
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch()).count());
}

bool StreamEngine::TellExposureEnd(Lock& lock, const Frame& frame, std::uint64_t timestamp_ns)
{
    CameraEvents& events = camera->Features().Events();
    if (!frame.tellsExposureEnd || !events.IsWanted()) return true;
    lock.unlock();
    events.Send({CameraEvent::ExposureEnd, frame.id, timestamp_ns, 0});
    lock.lock();
    return connection->IsUp();
}

bool StreamEngine::FillNextFrom(Lock& lock, const Frame& frame, const FrameRequest& request, std::uint64_t timestamp_ns)
{
    const FrameFault* fault = camera->FaultOfFrame(frame.id);
    return FillNext([&](const Buffer& buffer, FrameFacts& result) {
        Describe(frame, timestamp_ns, result);
        if (!AwaitImage(lock, request, fault))
        {
            result.incomplete = true;
            return;
        }
        lock.unlock();
        Draw(buffer, frame, result, fault);
        if (result.largerThanBuffer) reports.bufferTooSmall();
        lock.lock();
    });
}

ImageFacts StreamEngine::ImageOf(const FramePlan& plan, const ImageShape& shape)
{
    return {shape.format->code, shape.width, shape.height, plan.x.offset, plan.y.offset, 0};
}

// Lines and bytes come with the drawing.
void StreamEngine::Describe(const Frame& frame, std::uint64_t timestamp_ns, FrameFacts& result)
{
    const FramePlan& plan = *frame.plan;
    result.frameId = frame.id;
    result.timestamp_ns = timestamp_ns;
    result.dataSize = plan.chunks.PayloadBytes();
    result.image = ImageOf(plan, plan.shape);
    result.isMultiPart = plan.isMultiPart;
    if (!plan.isMultiPart) return;
    for (const Part& part : plan.parts.Parts())
        result.parts.push_back(
            {ImageOf(plan, part.shape), part.offset, 0, DataTypeOf(part.kind), PurposeOf(part.kind)});
}

void StreamEngine::Draw(const Buffer& buffer, const Frame& frame, FrameFacts& result, const FrameFault* fault)
{
    const std::span<std::byte> memory = buffer.Memory();
    const bool losesLines = fault != nullptr && fault->deliveredLines;
    result.largerThanBuffer = memory.size() < result.dataSize;
    result.incomplete = result.largerThanBuffer || losesLines;
    std::size_t index = 0;
    for (const Part& part : frame.plan->parts.Parts())
    {
        const auto room = memory.subspan(std::min(part.offset, memory.size()));
        const std::size_t lineBytes = part.shape.LineBytes();
        std::size_t lines = std::min(room.size() / lineBytes, part.shape.height);
        if (losesLines) lines = std::min(lines, *fault->deliveredLines);
        drawer.Draw(frame.id, frame.plan, part, room.first(lines * lineBytes));
        if (lines > 0) result.sizeFilled = part.offset + lines * lineBytes;
        if (result.isMultiPart)
        {
            result.parts[index].image.deliveredLines = lines;
            result.parts[index].bytes = lines * lineBytes;
        }
        if (index++ == 0) result.image.deliveredLines = lines;
    }
    if (!result.incomplete) AddChunks(memory.first(result.dataSize), frame, result, fault);
}

void StreamEngine::AddChunks(
    std::span<std::byte> payload, const Frame& frame, FrameFacts& result, const FrameFault* fault)
{
    const ChunkLayout& chunks = frame.plan->chunks;
    if (!chunks.HasChunks()) return;
    ChunkValues values = frame.plan->chunkValues;
    values.frameId = frame.id;
    values.timestamp_ns = result.timestamp_ns;
    values.counters = frame.counters;
    const std::size_t arrived = chunks.Write(values, fault == nullptr ? ChunkSpoil::None : fault->chunkSpoil, payload);
    result.chunkLayoutId = chunks.Id();
    result.chunkBytes = chunks.ChunkBytes() - (payload.size() - arrived);
    result.sizeFilled = arrived;
    result.incomplete = arrived < payload.size();
}

// False when a kill, a flush or a pulled cable ended it.
bool StreamEngine::AwaitImage(Lock& lock, const FrameRequest& request, const FrameFault* fault)
{
    const bool isLate = fault != nullptr && fault->late_ms != 0;
    if (request.state != FrameRequest::State::Triggered && !isLate) return true;
    auto time = Clock::now();
    if (request.state == FrameRequest::State::Triggered)
        time = std::max(time, TimeOf(request.exposureEnd_ns + request.readout_ns));
    if (isLate) time += std::chrono::milliseconds(fault->late_ms);
    const auto givenUp = [this] { return IsFillGivenUp(); };
    return !wake.wait_until(lock, time, givenUp);
}

} // namespace koro::simulator

#include "producers/simulator/face/stream_engine.h"

#include "producers/kit/failure.h"

#include <algorithm>
#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t virtualPeriod_ns = 1'000'000;
constexpr int maxLooks = 5000; // a few microseconds

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
    : mutex(streamsMutex), queue(bufferQueue), camera(std::move(streamsCamera)),
      connection(std::move(streamsConnection)), reports(std::move(streamsReports)), drawer(camera->Source())
{}

void StreamEngine::Start(std::uint64_t number)
{
    {
        const std::lock_guard lock(mutex);
        stopping = false;
        killing = false;
        grabbing = true;
        queue.counters.delivered = 0;
        run = 0;
    }
    listener = camera->Features().Listen([this] { OnCameraWritten(); });
    try
    {
        thread = std::thread([this, number] { RunOrLose(number); });
    }
    catch (...)
    {
        camera->Features().Unlisten(listener);
        const std::lock_guard lock(mutex);
        grabbing = false;
        throw;
    }
}

void StreamEngine::Stop(bool kill)
{
    if (!thread.joinable()) return;
    {
        const std::lock_guard lock(mutex);
        stopping = true;
        killing = kill;
        wake.notify_all();
    }
    thread.join();
    camera->Features().Unlisten(listener);
    const std::lock_guard lock(mutex);
    grabbing = false;
}

void StreamEngine::OnCameraWritten()
{
    const std::lock_guard lock(mutex);
    written = true;
    called.store(true, std::memory_order_relaxed);
    wake.notify_all();
}

void StreamEngine::NotifyInput() noexcept
{
    called.store(true, std::memory_order_relaxed);
    if (waitsForInput) wake.notify_all();
}

void StreamEngine::WithoutFill(const std::function<void()>& change)
{
    Lock lock(mutex);
    paused = true;
    wake.notify_all();
    fillEnded.wait(lock, [this] { return !filling; });
    const auto resume = [this] {
        paused = false;
        wake.notify_all();
    };
    try
    {
        change();
    }
    catch (...)
    {
        resume();
        throw;
    }
    resume();
}

void StreamEngine::CutOff()
{
    Lock lock(mutex);
    cutOff = true;
    ++numCutOffs;
    wake.notify_all();
    fillEnded.wait(lock, [this] { return !filling; });
    cutOff = false;
}

// A camera whose memory cannot be reached any more is as good as gone.
void StreamEngine::RunOrLose(std::uint64_t number)
{
    try
    {
        Run(number);
    }
    catch (const Failure&)
    {
        reports.cameraLost();
    }
}

void StreamEngine::Run(std::uint64_t number)
{
    Lock lock(mutex);
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
        if (FillNext(lock, *frame, request, timestamp_ns)) ++numFilled;
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
    if (request.state == FrameRequest::State::Unpaced) return AwaitInput(lock);
    if (request.state == FrameRequest::State::Paced && !AwaitDue(lock, request.rate)) return false;
    if (request.state == FrameRequest::State::Triggered && !AwaitExposure(lock, request)) return false;
    wake.wait(lock, [this] { return stopping || !paused; });
    return !stopping;
}

// A camera that is written to may have another exposure time, or be stopped.
bool StreamEngine::AwaitExposure(Lock& lock, const FrameRequest& request)
{
    const Clock::time_point end = TimeOf(request.exposureEnd_ns);
    wake.wait_until(lock, end, [this] { return stopping || written; });
    return !stopping && Clock::now() >= end;
}

bool StreamEngine::AwaitInput(Lock& lock)
{
    const auto ready = [this] { return stopping || written || (!paused && queue.HasInput()); };
    if (!ready()) LookOut(lock);
    waitsForInput = true;
    wake.wait(lock, ready);
    waitsForInput = false;
    return !stopping && !written;
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

// Waking a sleeper costs more than a small image: for a consumer that keeps up the thread stays awake a little.
void StreamEngine::LookOut(Lock& lock)
{
    called = false;
    lock.unlock();
    for (int look = 0; look < maxLooks && !called.load(std::memory_order_relaxed); ++look)
    {}
    lock.lock();
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

bool StreamEngine::FillNext(Lock& lock, const Frame& frame, const FrameRequest& request, std::uint64_t timestamp_ns)
{
    const auto buffer = queue.BeginFill();
    if (!buffer) return false;
    filling = true;
    const FramePlan& plan = *frame.plan;
    FillResult result;
    result.frameId = frame.id;
    result.timestamp_ns = timestamp_ns;
    result.dataSize = plan.chunks.PayloadBytes();
    result.shape = plan.shape;
    result.parts = plan.parts;
    result.isMultiPart = plan.isMultiPart;
    result.offsetX = plan.x.offset;
    result.offsetY = plan.y.offset;
    const FrameFault* fault = camera->FaultOfFrame(frame.id);

    if (AwaitImage(lock, request, fault))
    {
        lock.unlock();
        Draw(*buffer, frame, result, fault);
        if (result.largerThanBuffer) reports.bufferTooSmall();
        lock.lock();
    }
    else
        result.incomplete = true;

    filling = false;
    fillEnded.notify_all();
    if (paused)
        queue.CancelFill(*buffer);
    else
        queue.EndFill(buffer, result);
    return !paused;
}

void StreamEngine::Draw(const Buffer& buffer, const Frame& frame, FillResult& result, const FrameFault* fault)
{
    const std::span<std::byte> memory = buffer.Memory();
    const bool losesLines = fault != nullptr && fault->deliveredLines;
    result.largerThanBuffer = memory.size() < result.dataSize;
    result.incomplete = result.largerThanBuffer || losesLines;
    std::size_t index = 0;
    for (const Part& part : result.parts.Parts())
    {
        const auto room = memory.subspan(std::min(part.offset, memory.size()));
        const std::size_t lineBytes = part.shape.LineBytes();
        std::size_t lines = std::min(room.size() / lineBytes, part.shape.height);
        if (losesLines) lines = std::min(lines, *fault->deliveredLines);
        drawer.Draw(frame.id, frame.plan, part, room.first(lines * lineBytes));
        if (lines > 0) result.sizeFilled = part.offset + lines * lineBytes;
        result.partLines[index++] = lines;
    }
    if (!result.incomplete) AddChunks(memory.first(result.dataSize), frame, result, fault);
}

void StreamEngine::AddChunks(
    std::span<std::byte> payload, const Frame& frame, FillResult& result, const FrameFault* fault)
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
    const auto givenUp = [this] { return killing || paused || cutOff; };
    return !wake.wait_until(lock, time, givenUp);
}

} // namespace koro::simulator

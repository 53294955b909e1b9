#include "producers/simulator/stream_engine.h"

#include <algorithm>
#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t virtualPeriod_ns = 1'000'000;
constexpr int maxLooks = 5000; // a few microseconds

std::chrono::steady_clock::duration PeriodOf(double rate)
{
    if (rate <= 0) return {};
    constexpr double longest_s = 86400 * 365;
    return std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(std::min(1 / rate, longest_s)));
}

} // namespace

StreamEngine::StreamEngine(
    std::mutex& streamsMutex, BufferQueue& bufferQueue, std::shared_ptr<Camera> streamsCamera,
    std::shared_ptr<const std::atomic<bool>> connectionLost, Reports streamsReports)
    : mutex(streamsMutex), queue(bufferQueue), camera(std::move(streamsCamera)), lost(std::move(connectionLost)),
      reports(std::move(streamsReports)), period(PeriodOf(camera->Settings().rate))
{}

void StreamEngine::Start(std::uint64_t number)
{
    {
        const std::lock_guard lock(mutex);
        stopping = false;
        killing = false;
        grabbing = true;
        queue.counters.delivered = 0;
        nextDue = Clock::now();
    }
    try
    {
        thread = std::thread([this, number] { Run(number); });
    }
    catch (...)
    {
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
    const std::lock_guard lock(mutex);
    grabbing = false;
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

void StreamEngine::Run(std::uint64_t number)
{
    Lock lock(mutex);
    std::uint64_t numFilled = 0;
    for (std::uint64_t frameId = 1; numFilled < number && WaitForFrame(lock); ++frameId)
    {
        if (*lost) return;
        if (camera->VanishesAtFrame(frameId))
        {
            lock.unlock();
            reports.cameraLost();
            return;
        }
        if (FillNext(lock, frameId)) ++numFilled;
    }
    grabbing = grabbing && numFilled < number;
}

bool StreamEngine::WaitForFrame(Lock& lock)
{
    if (period > Clock::duration::zero() && !WaitUntilDue(lock)) return false;
    const auto ready = [this] {
        return stopping || (!paused && (period > Clock::duration::zero() || queue.HasInput()));
    };
    if (!ready()) LookOut(lock);
    waitsForInput = true;
    wake.wait(lock, ready);
    waitsForInput = false;
    return !stopping;
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

// A machine that cannot keep up shifts the schedule instead of sending bursts.
bool StreamEngine::WaitUntilDue(Lock& lock)
{
    nextDue += period;
    const auto now = Clock::now();
    if (now > nextDue + period) nextDue = now;
    wake.wait_until(lock, nextDue, [this] { return stopping; });
    return !stopping;
}

std::uint64_t StreamEngine::Timestamp_ns() noexcept
{
    if (period == Clock::duration::zero()) return virtualTime_ns += virtualPeriod_ns;
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch()).count());
}

bool StreamEngine::FillNext(Lock& lock, std::uint64_t frameId)
{
    const auto buffer = queue.BeginFill();
    if (!buffer) return false;
    filling = true;
    FillResult result;
    result.frameId = frameId;
    result.timestamp_ns = Timestamp_ns();
    result.dataSize = camera->Source().Shape().PayloadBytes();
    const FrameFault* fault = camera->FaultOfFrame(frameId);

    if (BeLate(lock, fault))
    {
        lock.unlock();
        Draw(*buffer, result, fault);
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

void StreamEngine::Draw(const Buffer& buffer, FillResult& result, const FrameFault* fault) const
{
    const ImageShape& shape = camera->Source().Shape();
    const std::size_t fitting = buffer.Memory().size() / shape.LineBytes();
    result.largerThanBuffer = fitting < shape.height;
    result.deliveredLines = std::min(fitting, shape.height);
    if (fault != nullptr && fault->deliveredLines)
        result.deliveredLines = std::min(result.deliveredLines, *fault->deliveredLines);
    result.incomplete = result.deliveredLines < shape.height || (fault != nullptr && fault->deliveredLines);
    result.sizeFilled = result.deliveredLines * shape.LineBytes();
    camera->Source().Draw(result.frameId, buffer.Memory().first(result.sizeFilled));
}

// False when a kill or a flush ended it.
bool StreamEngine::BeLate(Lock& lock, const FrameFault* fault)
{
    if (fault == nullptr || fault->late_ms == 0) return true;
    const auto givenUp = [this] { return killing || paused; };
    return !wake.wait_for(lock, std::chrono::milliseconds(fault->late_ms), givenUp);
}

} // namespace koro::simulator

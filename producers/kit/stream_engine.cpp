#include "producers/kit/stream_engine.h"

#include "producers/kit/failure.h"

namespace koro::kit
{
namespace
{

constexpr int maxLooks = 5000; // a few microseconds

} // namespace

void StreamEngine::Start(std::uint64_t number)
{
    {
        const std::lock_guard lock(mutex);
        stopping = false;
        killing = false;
        grabbing = true;
        queue.counters.delivered = 0;
    }
    BeforeThread();
    try
    {
        thread = std::thread([this, number] { RunThread(number); });
    }
    catch (...)
    {
        AfterThread();
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
    AfterThread();
    const std::lock_guard lock(mutex);
    grabbing = false;
}

void StreamEngine::RunThread(std::uint64_t number)
{
    try
    {
        Lock lock(mutex);
        Run(lock, number);
    }
    catch (const Failure& failure)
    {
        {
            const std::lock_guard lock(mutex);
            if (filling) queue.CancelFill(*filling);
            filling.reset();
            fillEnded.notify_all();
        }
        OnFailure(failure);
    }
}

void StreamEngine::Call() noexcept
{
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

bool StreamEngine::AwaitTime(Lock& lock, Clock::time_point time)
{
    wake.wait_until(lock, time, [this] { return stopping; });
    return !stopping;
}

bool StreamEngine::AwaitInput(Lock& lock, const bool& interrupted)
{
    const auto ready = [&] { return stopping || interrupted || (!paused && queue.HasInput()); };
    if (!ready()) LookOut(lock);
    waitsForInput = true;
    wake.wait(lock, ready);
    waitsForInput = false;
    return !stopping;
}

bool StreamEngine::AwaitPermission(Lock& lock)
{
    wake.wait(lock, [this] { return stopping || !paused; });
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

bool StreamEngine::EndFill(FrameFacts frame)
{
    const auto buffer = std::exchange(filling, nullptr);
    fillEnded.notify_all();
    if (paused)
        queue.CancelFill(*buffer);
    else
        queue.EndFill(buffer, std::move(frame));
    return !paused;
}

} // namespace koro::kit

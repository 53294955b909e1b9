#include "tools/koro/closing.h"

#include "tools/koro/process_end.h"

#include <condition_variable>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

namespace koro::tool
{

namespace
{

// Shared with the thread, which may outlive the wait.
struct Progress
{
    std::mutex mutex; // guards isDone
    std::condition_variable changed;
    bool isDone = false;

    bool AwaitUntil(std::chrono::steady_clock::time_point end)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_until(lock, end, [this] { return isDone; });
    }
};

} // namespace

bool CloseWithin(const ClosingLimits& limits, std::function<void()> close)
{
    const auto start = std::chrono::steady_clock::now();
    const auto progress = std::make_shared<Progress>();
    std::thread worker([progress, close = std::move(close)] {
        close();
        const std::lock_guard<std::mutex> lock(progress->mutex);
        progress->isDone = true;
        progress->changed.notify_all();
    });
    bool isDone = progress->AwaitUntil(start + limits.notice);
    if (!isDone)
    {
        std::fprintf(stderr, "koro: closing, the camera does not answer\n");
        isDone = progress->AwaitUntil(start + limits.end);
    }
    if (isDone)
        worker.join();
    else
        worker.detach();
    return isDone;
}

void EndProcess(int status)
{
    std::fflush(nullptr);
    EndNow(status);
}

bool ClosingReport::Attempt(const std::function<void()>& step)
{
    try
    {
        step();
        return true;
    }
    catch (const std::runtime_error& error)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        failures.emplace_back(error.what());
        return false;
    }
}

void ClosingReport::AddUnderruns(uint64_t number)
{
    const std::lock_guard<std::mutex> lock(mutex);
    numUnderruns = numUnderruns.value_or(0) + number;
}

void ClosingReport::ForgetFailures()
{
    const std::lock_guard<std::mutex> lock(mutex);
    failures.clear();
}

std::vector<std::string> ClosingReport::Failures() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return failures;
}

std::optional<uint64_t> ClosingReport::NumUnderruns() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return numUnderruns;
}

} // namespace koro::tool

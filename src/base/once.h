// Once: a step that is executed once, by the first caller; after a failure the next caller tries again.
//
// std::call_once promises the same, but its underlying pthread_once hangs at the second call after an
// exception when a thread sanitizer watches it.
#pragma once

#include <atomic>
#include <mutex>

namespace koro::internal
{

class Once
{
public:
    // Thread-safe. Callers that come while the step runs wait for its end.
    template <class Step>
    void Run(Step&& step)
    {
        if (done) return;
        const std::lock_guard lock(mutex);
        if (done) return;
        step();
        done = true;
    }

    // Sequentially consistent.
    bool IsDone() const { return done; }

private:
    std::mutex mutex;
    std::atomic<bool> done{false};
};

} // namespace koro::internal

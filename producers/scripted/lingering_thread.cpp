#include "producers/scripted/lingering_thread.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <poll.h>
#include <thread>

namespace scripted
{

namespace
{

// Looks after its work again and again, so it returns into this file's code all its life.
void Work(const std::shared_ptr<std::atomic<bool>>& isAskedToEnd)
{
    constexpr int period_ms = 1;
    while (!*isAskedToEnd)
        poll(nullptr, 0, period_ms);
}

class LastThread
{
public:
    ~LastThread()
    {
        if (!thread.joinable()) return;
        *isAskedToEnd = true;
        thread.join();
    }

    // The thread before is forgotten.
    void Start()
    {
        const std::lock_guard lock(mutex);
        if (thread.joinable()) thread.detach();
        isAskedToEnd = std::make_shared<std::atomic<bool>>(false);
        thread = std::thread(Work, isAskedToEnd);
    }

private:
    std::mutex mutex;
    std::shared_ptr<std::atomic<bool>> isAskedToEnd;
    std::thread thread;
};

LastThread lastThread;

} // namespace

void StartLingeringThread()
{
    lastThread.Start();
}

} // namespace scripted

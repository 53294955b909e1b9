#include "tools/koro/interrupt.h"

#include "tools/koro/exit_codes.h"

#include <cstdio>
#include <pthread.h>
#include <unistd.h>
#include <utility>

namespace koro::tool
{

namespace
{

// Tells the watcher to end; sent to that thread alone.
constexpr int endOfWatch = SIGUSR1;

} // namespace

Interrupt::Interrupt()
{
    sigemptyset(&watched);
    sigaddset(&watched, SIGINT);
    sigaddset(&watched, SIGTERM);
    sigaddset(&watched, endOfWatch);
    pthread_sigmask(SIG_BLOCK, &watched, &before);
    watcher = std::thread([this] { WatchSignals(); });
}

Interrupt::~Interrupt()
{
    pthread_kill(watcher.native_handle(), endOfWatch);
    watcher.join();
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void Interrupt::WatchSignals()
{
    for (;;)
    {
        int signal = 0;
        if (sigwait(&watched, &signal) != 0 || signal == endOfWatch) return;
        if (requested.exchange(true)) _exit(exitInterrupted);
        std::fputs("koro: stopping; once more ends at once\n", stderr);

        const std::lock_guard<std::mutex> lock(wakeMutex);
        if (wake) wake();
    }
}

Interrupt::WakeUp::WakeUp(Interrupt& woken, std::function<void()> function) : interrupt(woken)
{
    const std::lock_guard<std::mutex> lock(interrupt.wakeMutex);
    interrupt.wake = std::move(function);
}

Interrupt::WakeUp::~WakeUp()
{
    const std::lock_guard<std::mutex> lock(interrupt.wakeMutex);
    interrupt.wake = nullptr;
}

} // namespace koro::tool

#include "tools/koro/interrupt.h"

#include "tools/koro/exit_codes.h"
#include "tools/koro/process_end.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/standard_streams.h"

#include <cstdio>
#include <pthread.h>
#include <utility>

namespace koro::tool
{

namespace
{

// Tells the watcher to end; sent to that thread alone.
constexpr int endOfWatch = SIGUSR1;

void EndAtOnce(int)
{
    EndNow(exitInterrupted);
}

// This thread is the only one that lets the signals through, so they reach it whatever it does.
void EndAtNextSignal()
{
    struct sigaction action = {};
    action.sa_handler = EndAtOnce;
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGINT, SIGTERM})
    {
        sigaction(number, &action, nullptr);
        sigaddset(&ending, number);
    }
    pthread_sigmask(SIG_UNBLOCK, &ending, nullptr);
}

} // namespace

Interrupt::Interrupt(const char* answered, Calls treated) : answer(answered), calls(treated)
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
    int signal = 0;
    if (sigwait(&watched, &signal) != 0 || signal == endOfWatch) return;

    requested = true;
    anyRequested = true;
    // Before the wake, which calls a producer and may never come back.
    EndAtNextSignal();
    std::fprintf(Errors(), "koro: %s; once more ends at once\n", answer);
    if (calls == Calls::Bounded) ProducerWatch::OfProcess().NoteInterrupt();
    {
        const std::lock_guard<std::mutex> lock(wakeMutex);
        if (wake) wake();
    }
    sigset_t last;
    sigemptyset(&last);
    sigaddset(&last, endOfWatch);
    sigwait(&last, &signal);
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

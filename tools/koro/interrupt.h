// Interrupt: Ctrl-C as a request. The first SIGINT or SIGTERM asks for an end, the second ends the process at once.
//
// One at a time, made on the main thread before any other thread starts: signals are blocked there and in every
// thread that comes later, and a thread of this object waits for them.
#pragma once

#include <atomic>
#include <cstdint>
#include <csignal>
#include <functional>
#include <mutex>
#include <thread>

namespace koro::tool
{

class Interrupt
{
public:
    enum class Calls : uint8_t
    {
        Bounded, // a call into a producer that does not return after a request ends the process
        NotCutOff,
    };

    // `answer` is what a person reads who has asked for an end.
    explicit Interrupt(const char* answer = "stopping", Calls calls = Calls::Bounded);
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;
    ~Interrupt();

    bool IsRequested() const noexcept { return requested; }
    // Of whichever there is in this process.
    static bool IsAnyRequested() noexcept { return anyRequested; }

    // While it lives, a request also calls `wake` on the waiting thread; the destructor waits for a running call.
    class WakeUp
    {
    public:
        WakeUp(Interrupt& interrupt, std::function<void()> wake);
        WakeUp(const WakeUp&) = delete;
        WakeUp& operator=(const WakeUp&) = delete;
        ~WakeUp();

    private:
        Interrupt& interrupt;
    };

private:
    void WatchSignals();

    static inline std::atomic<bool> anyRequested{false};

    const char* const answer;
    const Calls calls;
    std::atomic<bool> requested{false};
    std::mutex wakeMutex; // guards wake, held while it runs
    std::function<void()> wake;
    sigset_t watched;
    sigset_t before; // the mask to restore
    std::thread watcher;
};

} // namespace koro::tool

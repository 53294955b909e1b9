// ProducerWatch: the eye on calls into producers that do not return, from the load of a file to the end of the process.
//
// A call that takes long is named. One that does not return after an interrupt, when the producer is closed, or in its
// static destructors ends the process, since nothing else can end it. What is seen are the places where the tool goes
// on, not the calls themselves: a signal that looks into a thread would break waits of the producer, which need not
// expect one.
//
// Any thread. Its own thread starts with the first producer. While it ends the process, every other thread that comes
// by stays here.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace koro::tool
{

struct WatchLimits
{
    std::chrono::milliseconds notice{2000}; // until standard error says that it takes long
    std::chrono::milliseconds call{5000};   // of a call after an interrupt
    // Dead cameras were seen to let each call wait for two seconds, and the close of the device for ten.
    std::chrono::milliseconds closing{20000};
    std::chrono::milliseconds leaving{5000}; // of the producers' static destructors
};

class ProducerWatch
{
public:
    // That of the process; it is never destroyed. Others are for tests, and live as long.
    static ProducerWatch& OfProcess();
    explicit ProducerWatch(const WatchLimits& wished = {}) : limits(wished) {}
    ProducerWatch(const ProducerWatch&) = delete;
    ProducerWatch& operator=(const ProducerWatch&) = delete;

    // A process that another one watches does not watch itself.
    void SwitchOff();

    // The calls from now on go into this producer.
    void Call(const std::string& producer);
    // A call has returned.
    void NoteProgress();
    // The calls from now on close what is open, until the next Call() or End().
    void BeginClosing();
    // All is closed.
    void End();
    // The user wants the end.
    void NoteInterrupt();
    // Only static destructors are left. Output has to be written before.
    void Leave(int status);

    // A wait that may be long: only an interrupt bounds it.
    void BeginWait();
    void EndWait();

    // Called on the watch's thread before it ends the process; returns the status.
    void SetLastWords(std::function<int()> words);

private:
    using Clock = std::chrono::steady_clock;
    enum class Phase
    {
        Idle, // nothing of a producer runs
        Calling,
        Closing,
        Leaving,
    };

    std::unique_lock<std::mutex> Lock();
    void Enter(Phase next);
    void Start();
    void Run();
    Clock::time_point NextNotice() const;
    Clock::time_point Limit() const;
    void GiveNotice();
    [[noreturn]] void EndProcess(std::unique_lock<std::mutex> lock);
    int StatusOfEnd() const;
    void SayWhy() const;

    const WatchLimits limits;
    std::mutex mutex; // guards all below
    std::condition_variable changed;
    bool isOff = false;
    bool isRunning = false;
    std::thread::id watcher;
    bool isEnding = false;
    Phase phase = Phase::Idle;
    std::string producer;
    Clock::time_point since; // the beginning of the phase, or the last progress in it
    bool isNoticed = false;  // in this phase
    int numWaits = 0;
    std::optional<Clock::time_point> interrupted;
    int finalStatus = 0;
    std::function<int()> lastWords;
};

// From the load of a producer to its end; the first member of what owns it. Objects in the same process may overlap.
struct WatchedWork
{
    WatchedWork();
    WatchedWork(const WatchedWork&) = delete;
    WatchedWork& operator=(const WatchedWork&) = delete;
    ~WatchedWork();
};

// Where this goes closing begins; the last member or variable of what is to be closed.
struct ClosingMark
{
    ClosingMark() = default;
    ClosingMark(const ClosingMark&) = delete;
    ClosingMark& operator=(const ClosingMark&) = delete;
    ~ClosingMark() { ProducerWatch::OfProcess().BeginClosing(); }
};

struct ExpectedWait
{
    ExpectedWait() { ProducerWatch::OfProcess().BeginWait(); }
    ExpectedWait(const ExpectedWait&) = delete;
    ExpectedWait& operator=(const ExpectedWait&) = delete;
    ~ExpectedWait() { ProducerWatch::OfProcess().EndWait(); }
};

inline void NoteProgress()
{
    ProducerWatch::OfProcess().NoteProgress();
}

} // namespace koro::tool

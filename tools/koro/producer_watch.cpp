#include "tools/koro/producer_watch.h"

#include "tools/koro/exit_codes.h"
#include "tools/koro/output.h"
#include "tools/koro/process_end.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <poll.h>
#include <pthread.h>
#include <utility>

namespace koro::tool
{

namespace
{

std::atomic<int> numWorks{0};

// Whoever reads the output takes a rest, so the tool may be waiting for that and not for a producer.
bool OutputIsFull()
{
    pollfd output{fileno(Output()), POLLOUT, 0};
    return poll(&output, 1, 0) == 0;
}

// Signals are for the threads that wait for them.
class WithoutSignals
{
public:
    WithoutSignals()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before);
    }
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;
    ~WithoutSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

private:
    sigset_t before;
};

} // namespace

ProducerWatch& ProducerWatch::OfProcess()
{
    static ProducerWatch& watch = *new ProducerWatch;
    return watch;
}

// Does not return while the process is being ended.
std::unique_lock<std::mutex> ProducerWatch::Lock()
{
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return !isEnding || std::this_thread::get_id() == watcher; });
    return lock;
}

void ProducerWatch::Enter(Phase next)
{
    phase = next;
    since = Clock::now();
    isNoticed = false;
    changed.notify_all();
}

void ProducerWatch::SwitchOff()
{
    const auto lock = Lock();
    isOff = true;
}

void ProducerWatch::Call(const std::string& called)
{
    const auto lock = Lock();
    if (isOff) return;
    if (phase != Phase::Calling || producer != called) Enter(Phase::Calling);
    since = Clock::now();
    producer = called;
    if (!isRunning) Start();
}

void ProducerWatch::Start()
{
    const WithoutSignals blocked;
    std::thread thread([this] { Run(); });
    watcher = thread.get_id();
    thread.detach();
    isRunning = true;
}

void ProducerWatch::NoteProgress()
{
    const auto lock = Lock();
    // The time of closing counts as a whole.
    if (phase == Phase::Calling) since = Clock::now();
}

void ProducerWatch::BeginClosing()
{
    const auto lock = Lock();
    if (phase == Phase::Calling) Enter(Phase::Closing);
}

void ProducerWatch::End()
{
    const auto lock = Lock();
    Enter(Phase::Idle);
}

void ProducerWatch::NoteInterrupt()
{
    const auto lock = Lock();
    interrupted = Clock::now();
    changed.notify_all();
}

void ProducerWatch::Leave(int status)
{
    const auto lock = Lock();
    if (!isRunning) return;
    finalStatus = status;
    lastWords = nullptr;
    Enter(Phase::Leaving);
}

void ProducerWatch::BeginWait()
{
    const auto lock = Lock();
    ++numWaits;
}

void ProducerWatch::EndWait()
{
    const auto lock = Lock();
    --numWaits;
    if (phase == Phase::Calling) since = Clock::now();
}

void ProducerWatch::SetLastWords(std::function<int()> words)
{
    const auto lock = Lock();
    lastWords = std::move(words);
}

void ProducerWatch::Run()
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;)
    {
        const Clock::time_point now = Clock::now();
        if (now >= NextNotice()) GiveNotice();
        if (now >= Limit()) EndProcess(std::move(lock));
        // What moves a time forward need not wake this thread: it looks again when the time has come.
        const Clock::time_point next = std::min(Limit(), NextNotice());
        if (next == Clock::time_point::max())
            changed.wait(lock);
        else
            changed.wait_until(lock, next);
    }
}

ProducerWatch::Clock::time_point ProducerWatch::NextNotice() const
{
    const bool isExpected = phase == Phase::Idle || (phase == Phase::Calling && numWaits > 0);
    return isNoticed || isExpected ? Clock::time_point::max() : since + limits.notice;
}

ProducerWatch::Clock::time_point ProducerWatch::Limit() const
{
    switch (phase)
    {
    case Phase::Calling:
        return interrupted ? std::max(since, *interrupted) + limits.call : Clock::time_point::max();
    case Phase::Closing:
        return since + limits.closing;
    case Phase::Leaving:
        return since + limits.leaving;
    default:
        return Clock::time_point::max();
    }
}

void ProducerWatch::GiveNotice()
{
    isNoticed = true;
    if (phase == Phase::Calling && OutputIsFull()) return;
    if (phase == Phase::Closing) std::fprintf(Errors(), "koro: closing, the camera does not answer\n");
    std::fprintf(Errors(), "koro: waiting for %s\n", Printable(producer).c_str());
}

void ProducerWatch::EndProcess(std::unique_lock<std::mutex> lock)
{
    isEnding = true;
    const std::function<int()> words = lastWords;
    lock.unlock();
    const int status = words ? words() : StatusOfEnd();
    SayWhy();
    if (ftrylockfile(Output()) == 0) std::fflush(Output()); // whoever holds it may be what hangs
    EndNow(status);
}

// From here on nothing changes any more.
int ProducerWatch::StatusOfEnd() const
{
    if (phase == Phase::Leaving) return finalStatus;
    return interrupted ? exitInterrupted : exitFailure;
}

void ProducerWatch::SayWhy() const
{
    const std::string name = Printable(producer);
    if (phase == Phase::Leaving)
    {
        std::fprintf(Errors(), "koro: %s does not let the process end.\n", name.c_str());
        return;
    }
    const char* const what = phase == Phase::Closing ? "cannot be closed" : "does not return from a call";
    std::fprintf(
        Errors(),
        "koro: %s %s.\nhint: `koro doctor` checks the producers. A camera that was open is free again when it notices "
        "the end.\n",
        name.c_str(), what);
}

WatchedWork::WatchedWork()
{
    ++numWorks;
}

WatchedWork::~WatchedWork()
{
    if (--numWorks == 0) ProducerWatch::OfProcess().End();
}

} // namespace koro::tool

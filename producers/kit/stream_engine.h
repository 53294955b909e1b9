// StreamEngine: what fills the buffers of a stream: one thread from start to stop.
//
//     Stopped --Start--> grabbing --the wanted number is filled--> idle --Stop--> Stopped
//
// A producer derives from it and writes Run. Owned by its stream and shares its mutex; Start, Stop and CutOff are
// serialised by the stream's control lock. A derived class calls Stop(true) in its destructor, since Run is its.
#pragma once

#include "producers/kit/buffer_queue.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace koro::kit
{

class StreamEngine
{
public:
    StreamEngine(std::mutex& streamsMutex, BufferQueue& bufferQueue) : mutex(streamsMutex), queue(bufferQueue) {}
    StreamEngine(const StreamEngine&) = delete;
    StreamEngine& operator=(const StreamEngine&) = delete;
    virtual ~StreamEngine() = default;

    // The wanted number of filled buffers; GENTL_INFINITE without end.
    void Start(std::uint64_t number);
    // Kill: a buffer being filled is delivered as it is. Otherwise its frame is finished. Joins the thread.
    void Stop(bool kill);
    // A stop is due, also after the engine ended by number.
    bool IsStarted() const noexcept { return thread.joinable(); }

    // With the stream's mutex held.
    bool IsGrabbing() const noexcept { return grabbing; }
    void NotifyInput() noexcept;

    // Runs `change` with the mutex held and nothing being filled: the present fill is given up first.
    void WithoutFill(const std::function<void()>& change);
    // The connection ended: a buffer being filled is delivered as it is. Returns behind that.
    void CutOff();

protected:
    using Clock = std::chrono::steady_clock;
    using Lock = std::unique_lock<std::mutex>;

    // On the engine's thread, with the mutex held: fills `number` buffers, or returns when `stopping`.
    virtual void Run(Lock& lock, std::uint64_t number) = 0;
    // Run threw. On the engine's thread, without the mutex.
    virtual void OnFailure(const Failure& failure) = 0;
    // Around the thread, without the mutex.
    virtual void BeforeThread() {}
    virtual void AfterThread() noexcept {}

    // Wakes the thread, with the mutex held: something that Run waits for has changed.
    void Call() noexcept;
    // Sleeps until then; false when stopping.
    bool AwaitTime(Lock& lock, Clock::time_point time);
    // Sleeps until a buffer can be filled or `interrupted`; false when stopping.
    bool AwaitInput(Lock& lock, const bool& interrupted);
    // Sleeps while somebody is in WithoutFill; false when stopping.
    bool AwaitPermission(Lock& lock);
    // Whether a fill has to end early, and its frame is incomplete.
    bool IsFillGivenUp() const noexcept { return killing || paused || cutOff; }

    // Takes the next input buffer and fills it: `fill(Buffer&, FrameFacts&)` runs with the mutex held, and may give it
    // up meanwhile. Whether a buffer went to the output queue; without input buffer an underrun is counted.
    template <typename Fill>
    bool FillNext(const Fill& fill);

    std::mutex& mutex; // the stream's; guards all below
    BufferQueue& queue;
    std::condition_variable wake;
    bool grabbing = false;
    bool stopping = false;
    std::uint64_t numCutOffs = 0;

private:
    void RunThread(std::uint64_t number);
    void LookOut(Lock& lock);
    bool EndFill(FrameFacts frame);

    std::thread thread;              // guarded by the control lock
    std::atomic<bool> called{false}; // a hint that there is input, to look at without the mutex

    // Guarded by mutex.
    std::condition_variable fillEnded;
    bool killing = false;
    std::shared_ptr<Buffer> filling; // the buffer that is being filled
    bool paused = false;             // somebody is in WithoutFill
    bool cutOff = false;             // somebody is in CutOff
    bool waitsForInput = false;
};

template <typename Fill>
bool StreamEngine::FillNext(const Fill& fill)
{
    filling = queue.BeginFill();
    if (!filling) return false;
    FrameFacts frame;
    fill(*filling, frame);
    return EndFill(std::move(frame));
}

} // namespace koro::kit

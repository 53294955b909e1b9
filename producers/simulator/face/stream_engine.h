// StreamEngine: the acquisition engine of a stream, one thread from start to stop.
//
// It makes frames while the camera takes images. Paced: frame n of a start is due n periods after it, and is lost as an
// underrun when no input buffer is there. Triggered: the exposure begins at the trigger, and the
// buffer is filled when the image has been exposed and read out. Unpaced (rate 0): the next frame comes
// as soon as there is an input buffer, one virtual millisecond after the last.
// Owned by its stream and shares its mutex; Start, Stop and Abandon are serialised by the stream's control lock.
#pragma once

#include "producers/simulator/camera/camera.h"
#include "producers/simulator/face/buffer_queue.h"
#include "producers/simulator/face/connection.h"
#include "producers/simulator/frames/frame_drawer.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace koro::simulator
{

class StreamEngine
{
public:
    // What the stream does about an event on the engine's thread; called without any lock but for the last.
    struct Reports
    {
        std::function<void()> cameraLost;
        std::function<void()> bufferTooSmall;
        // With the mutex held: whether the cable is pulled in place of this frame.
        std::function<bool(std::uint64_t)> isUnpluggedAt;
    };

    StreamEngine(
        std::mutex& streamsMutex, BufferQueue& bufferQueue, std::shared_ptr<Camera> streamsCamera,
        std::shared_ptr<const Connection> streamsConnection, Reports streamsReports);
    ~StreamEngine() { Stop(true); }

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

private:
    using Clock = std::chrono::steady_clock;
    using Lock = std::unique_lock<std::mutex>;

    void RunOrLose(std::uint64_t number);
    void Run(std::uint64_t number);
    void OnCameraWritten();
    // What to do next; sleeps while the camera is silent or out of reach. When stopping, anything.
    FrameRequest AwaitRequest(Lock& lock);
    // False when the camera was written to before that, or when stopping.
    bool AwaitTurn(Lock& lock, const FrameRequest& request);
    bool AwaitDue(Lock& lock, double rate);
    bool AwaitExposure(Lock& lock, const FrameRequest& request);
    bool AwaitInput(Lock& lock);
    void AwaitCutOff(Lock& lock);
    void LookOut(Lock& lock);
    // Whether the camera is still in reach afterwards.
    bool TellExposureEnd(Lock& lock, const Frame& frame, std::uint64_t timestamp_ns);
    std::uint64_t Timestamp_ns(const FrameRequest& request) noexcept;
    // Whether a buffer went to the output queue.
    bool FillNext(Lock& lock, const Frame& frame, const FrameRequest& request, std::uint64_t timestamp_ns);
    void Draw(const Buffer& buffer, const Frame& frame, FillResult& result, const FrameFault* fault);
    // What comes behind the image, unless something of that was lost already.
    static void AddChunks(
        std::span<std::byte> payload, const Frame& frame, FillResult& result, const FrameFault* fault);
    bool AwaitImage(Lock& lock, const FrameRequest& request, const FrameFault* fault);

    std::mutex& mutex; // the stream's
    BufferQueue& queue;
    const std::shared_ptr<Camera> camera;
    const std::shared_ptr<const Connection> connection;
    const Reports reports;

    std::thread thread;              // guarded by the control lock, as the next
    std::uint64_t listener = 0;      // at the camera's features
    FrameDrawer drawer;              // the thread's own
    std::atomic<bool> called{false}; // a hint that there is input, to look at without the mutex

    // Guarded by mutex.
    std::condition_variable wake;
    std::condition_variable fillEnded;
    bool grabbing = false;
    bool stopping = false;
    bool killing = false;
    bool filling = false;
    bool paused = false; // somebody is in WithoutFill
    bool cutOff = false; // somebody is in CutOff
    std::uint64_t numCutOffs = 0;
    bool waitsForInput = false;
    bool written = false; // the camera, since it was looked at
    std::uint64_t run = 0;
    Clock::time_point lastDue;
    std::uint64_t virtualTime_ns = 0; // goes on from start to start
};

} // namespace koro::simulator

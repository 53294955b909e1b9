// StreamEngine: the acquisition engine of a stream, one thread from start to stop.
//
// It makes frames while the camera takes images. Paced: frame n of a start is due n periods after it, and is lost as an
// underrun when no input buffer is there. Triggered: the exposure begins at the trigger, and the
// buffer is filled when the image has been exposed and read out. Unpaced (rate 0): the next frame comes
// as soon as there is an input buffer, one virtual millisecond after the last.
// Owned by its stream and shares its mutex; Start, Stop and Abandon are serialised by the stream's control lock.
#pragma once

#include "producers/kit/stream_engine.h"
#include "producers/simulator/camera/camera.h"
#include "producers/simulator/face/connection.h"
#include "producers/simulator/frames/frame_drawer.h"
#include "producers/simulator/kit.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace koro::simulator
{

class StreamEngine final : public kit::StreamEngine
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
    ~StreamEngine() override { Stop(true); }

private:
    void Run(Lock& lock, std::uint64_t number) override;
    // A camera whose memory cannot be reached any more is as good as gone.
    void OnFailure(const Failure&) override { reports.cameraLost(); }
    void BeforeThread() override;
    void AfterThread() noexcept override { camera->Features().Unlisten(listener); }
    void OnCameraWritten();
    // What to do next; sleeps while the camera is silent or out of reach. When stopping, anything.
    FrameRequest AwaitRequest(Lock& lock);
    // False when the camera was written to before that, or when stopping.
    bool AwaitTurn(Lock& lock, const FrameRequest& request);
    bool AwaitDue(Lock& lock, double rate);
    bool AwaitExposure(Lock& lock, const FrameRequest& request);
    void AwaitCutOff(Lock& lock);
    // Whether the camera is still in reach afterwards.
    bool TellExposureEnd(Lock& lock, const Frame& frame, std::uint64_t timestamp_ns);
    std::uint64_t Timestamp_ns(const FrameRequest& request) noexcept;
    // Whether a buffer went to the output queue.
    bool FillNextFrom(Lock& lock, const Frame& frame, const FrameRequest& request, std::uint64_t timestamp_ns);
    static ImageFacts ImageOf(const FramePlan& plan, const ImageShape& shape);
    static void Describe(const Frame& frame, std::uint64_t timestamp_ns, FrameFacts& result);
    void Draw(const Buffer& buffer, const Frame& frame, FrameFacts& result, const FrameFault* fault);
    // What comes behind the image, unless something of that was lost already.
    static void AddChunks(
        std::span<std::byte> payload, const Frame& frame, FrameFacts& result, const FrameFault* fault);
    bool AwaitImage(Lock& lock, const FrameRequest& request, const FrameFault* fault);

    const std::shared_ptr<Camera> camera;
    const std::shared_ptr<const Connection> connection;
    const Reports reports;

    std::uint64_t listener = 0; // at the camera's features; guarded by the control lock
    FrameDrawer drawer;         // the thread's own

    // Guarded by the mutex.
    bool written = false; // the camera, since it was looked at
    std::uint64_t run = 0;
    Clock::time_point lastDue;
    std::uint64_t virtualTime_ns = 0; // goes on from start to start
};

} // namespace koro::simulator

// FrameSource: the thread that takes the pictures of all cameras of a wild producer.
//
// Owned by the Producer. Runs from Start() to Stop(); waits while no camera is started.
#pragma once

#include "producers/scripted/script.h"
#include "producers/scripted/wild/camera.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace scripted::wild
{

class FrameSource
{
public:
    explicit FrameSource(Script& behindIt) : script(behindIt) {}
    ~FrameSource() { Stop(); }

    void Start(const std::vector<std::shared_ptr<Camera>>& cameras);
    void Stop();
    // A camera has been started or stopped. May be called with the script's lock held.
    void Notify();

    // Changes a picture before it is delivered; `number` counts the camera's pictures from 0 on. Set before the start.
    std::function<void(Frame& frame, std::uint64_t number)> change;
    // Pictures that each camera takes before it goes silent.
    std::atomic<std::uint64_t> limit{UINT64_MAX};

private:
    void Run(const std::stop_token& stop, const std::vector<std::shared_ptr<Camera>>& cameras);
    bool TakePicture(Camera& camera);

    Script& script;
    std::mutex mutex;
    std::condition_variable_any happened;
    bool news = false; // guarded by mutex
    std::jthread thread;
};

} // namespace scripted::wild

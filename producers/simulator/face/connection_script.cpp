#include "producers/simulator/face/connection_script.h"

#include "producers/kit/failure.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace koro::simulator
{

ConnectionScript::ConnectionScript(const ConnectionSettings& connectionSettings, Perform performStep)
    : settings(connectionSettings), perform(std::move(performStep)), numSteps(settings.script.size() * settings.repeat),
      hasOccasions(std::any_of(settings.script.begin(), settings.script.end(), [](const ConnectionStep& step) {
          return step.WaitsForOccasion();
      }))
{}

void ConnectionScript::Start()
{
    const std::lock_guard lock(mutex);
    if (settings.isStepwise || numSteps == 0 || stopping) return;
    thread = std::thread([this] { Run(); });
}

void ConnectionScript::Stop()
{
    std::thread ending;
    {
        const std::lock_guard lock(mutex);
        stopping = true;
        changed.notify_all();
        ending.swap(thread);
    }
    if (ending.joinable()) ending.join();
}

bool ConnectionScript::OnFrame(const std::string& camera, std::uint64_t frame)
{
    if (!hasOccasions) return false;
    const std::lock_guard lock(mutex);
    if (!NextWaits(camera) || Next().atFrame != frame) return false;
    isOccasion = true;
    changed.notify_all();
    return true;
}

void ConnectionScript::OnMissed(const std::string& camera)
{
    const std::lock_guard lock(mutex);
    if (!NextWaits(camera) || Next().missingUpdates == 0) return;
    isOccasion = ++numMissed >= Next().missingUpdates;
    changed.notify_all();
}

bool ConnectionScript::NextWaits(const std::string& camera) const
{
    return thread.joinable() && numDone < numSteps && Next().camera == camera && Next().WaitsForOccasion();
}

void ConnectionScript::Advance()
{
    ++numDone;
    isOccasion = false;
    numMissed = 0;
}

// Each step is due by the sum of the times before it, however long those took. An occasion starts the times again.
void ConnectionScript::Run()
{
    auto due = std::chrono::steady_clock::now();
    std::unique_lock lock(mutex);
    while (numDone < numSteps)
    {
        const ConnectionStep& step = Next();
        if (step.WaitsForOccasion())
        {
            changed.wait(lock, [this] { return stopping || isOccasion; });
            due = std::chrono::steady_clock::now();
        }
        else
        {
            due += std::chrono::milliseconds(step.after_ms);
            changed.wait_until(lock, due, [this] { return stopping; });
        }
        if (stopping) return;
        Advance();
        lock.unlock();
        perform(step);
        lock.lock();
    }
}

std::uint64_t ConnectionScript::StepsLeft() const
{
    const std::lock_guard lock(mutex);
    return numSteps - numDone;
}

void ConnectionScript::Step()
{
    const ConnectionStep* step = nullptr;
    {
        const std::lock_guard lock(mutex);
        if (!settings.isStepwise) throw Failure(GC_ERR_NOT_AVAILABLE, "the script is not stepwise");
        if (numDone == numSteps) throw Failure(GC_ERR_NOT_AVAILABLE, "the script has no step left");
        step = &Next();
        Advance();
    }
    perform(*step);
}

} // namespace koro::simulator

#include "producers/simulator/connection_script.h"

#include "producers/simulator/failure.h"

#include <chrono>
#include <utility>

namespace koro::simulator
{

ConnectionScript::ConnectionScript(const ConnectionSettings& connectionSettings, Perform performStep)
    : settings(connectionSettings), perform(std::move(performStep)), numSteps(settings.script.size() * settings.repeat)
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
        stop.notify_all();
        ending.swap(thread);
    }
    if (ending.joinable()) ending.join();
}

const ConnectionStep& ConnectionScript::Next()
{
    return settings.script[numDone++ % settings.script.size()];
}

// Each step is due by the sum of the times before it, however long those took.
void ConnectionScript::Run()
{
    auto due = std::chrono::steady_clock::now();
    std::unique_lock lock(mutex);
    while (numDone < numSteps)
    {
        const ConnectionStep& step = Next();
        due += std::chrono::milliseconds(step.after_ms);
        if (stop.wait_until(lock, due, [this] { return stopping; })) return;
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
    }
    perform(*step);
}

} // namespace koro::simulator

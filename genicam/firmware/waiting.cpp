#include "firmware/waiting.h"

#include "firmware/bounds.h"

#include <algorithm>
#include <thread>

namespace GENAPI_NAMESPACE::runtime
{

bool ExecuteAndWait(ICommand& command, uint32_t limit_ms)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(limit_ms);
    command.Execute();
    for (Pauses pauses; !command.IsDone();)
    {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(pauses.Next());
    }
    return true;
}

std::chrono::microseconds Pauses::Next()
{
    const std::chrono::microseconds shortest(shortestPause_us);
    const std::chrono::microseconds longest(longestPause_us);
    former = std::clamp(2 * former, shortest, longest);
    return former;
}

} // namespace GENAPI_NAMESPACE::runtime

#include "firmware/waiting.h"

#include "firmware/bounds.h"

#include <chrono>
#include <thread>

namespace GENAPI_NAMESPACE::runtime
{

bool ExecuteAndWait(ICommand& command, uint32_t limit_ms)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(limit_ms);
    command.Execute();
    while (!command.IsDone())
    {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(pollInterval_ms));
    }
    return true;
}

} // namespace GENAPI_NAMESPACE::runtime

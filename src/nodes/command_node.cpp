#include "nodes/command_node.h"

#include "base/exceptions.h"

#include <chrono>
#include <thread>

namespace koro::internal
{

void CommandNode::Execute()
{
    AskLocked([&] { command->Execute(true); });
}

bool CommandNode::IsDone() const
{
    return Ask([&] { return command->IsDone(true); });
}

void CommandNode::WaitUntilDone(std::uint64_t waitTimeout_ms) const
{
    using Clock = std::chrono::steady_clock;
    using std::chrono::milliseconds;

    const auto map = ParentNodeMap(); // held during the whole wait, not just during each query
    const auto start = Clock::now();
    std::uint64_t elapsed_ms = 0;
    while (!IsDone() && elapsed_ms < waitTimeout_ms)
    {
        std::this_thread::sleep_for(milliseconds(1));
        elapsed_ms = static_cast<std::uint64_t>(std::chrono::duration_cast<milliseconds>(Clock::now() - start).count());
    }
    if (!IsDone()) throw TimeoutException("Execution waiting time expired.");
}

} // namespace koro::internal

// The threads of this process, counted by the system.
#pragma once

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace koro::test
{

inline std::size_t NumThreads()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

// A thread that was joined may be in the list for a moment longer.
inline void AwaitNumThreads(std::size_t count)
{
    while (NumThreads() != count)
        std::this_thread::yield();
}

} // namespace koro::test

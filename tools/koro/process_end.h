// The end of the process as the tool decides it: at once, by the system call. The functions `_exit` and `_Exit` are for
// those who end a process that is not theirs, see exit_calls.cpp.
#pragma once

#include <sys/syscall.h>
#include <unistd.h>

namespace koro::tool
{

// Runs no handler and writes out nothing. Safe in a signal handler.
[[noreturn]] inline void EndNow(int status) noexcept
{
    for (;;)
        syscall(SYS_exit_group, status);
}

} // namespace koro::tool

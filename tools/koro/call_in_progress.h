// The call of a producer in which the calling thread is, by its stack. Any thread; safe in a signal handler.
#pragma once

namespace koro::tool
{

struct CallInProgress
{
    // The file of the producer; null when none of its functions is on the stack.
    const char* producer = nullptr;
    // The function of the GenTL standard that was called; null when the stack does not show it.
    const char* function = nullptr;
    // The function of the library that is at work; null when none is.
    const char* libraryFunction = nullptr;
};

// The texts live as long as the files that they are from stay loaded.
CallInProgress FindCallInProgress() noexcept;

} // namespace koro::tool

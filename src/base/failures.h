// Succeeds: runs a step that may fail in any way without consequences for its caller.
#pragma once

#include <cxxabi.h>

namespace koro::internal
{

// Returns false when the step throws. Only the unwinding of a cancelled thread passes, since it must reach the end of
// the thread. It has no exception object, so the reference to it is null; the sanitizer must not report this.
template <class Step>
__attribute__((noinline, no_sanitize("null"))) bool Succeeds(Step&& step)
{
    try
    {
        step();
        return true;
    }
    catch (const abi::__forced_unwind&)
    {
        throw;
    }
    catch (...)
    {
        return false;
    }
}

} // namespace koro::internal

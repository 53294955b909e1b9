// Succeeds: runs a step that may fail in any way without consequences for its caller.
#pragma once

#include <Base/GCNamespace.h>
#include <cxxabi.h>

namespace GENAPI_NAMESPACE::runtime
{

// Returns false when the step throws. Only the unwinding of a cancelled thread passes, since that has to reach the end
// of the thread. It has no object, so the reference to it is null, which is no fault for the sanitizer to report.
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

} // namespace GENAPI_NAMESPACE::runtime

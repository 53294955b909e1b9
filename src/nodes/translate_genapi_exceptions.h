// TranslateGenApiExceptions: the wrapper around every call into the GenICam runtime that can throw.
//
// The runtime's exceptions are not standard exceptions; here they become exceptions of the library, with the complete
// text. All other exceptions pass unchanged, including exceptions of the library that a port throws through the
// runtime. Thread-safe.
#pragma once

#include "base/exceptions.h"

#include <Base/GCException.h>
#include <utility>

namespace koro::internal
{

// To be called in a catch clause for GenericException only.
[[noreturn]] void RethrowGenApiExceptionAsOwn();

template <class Callable>
decltype(auto) TranslateGenApiExceptions(Callable&& callable)
{
    try
    {
        return std::forward<Callable>(callable)();
    }
    catch (const GENICAM_NAMESPACE::GenericException&)
    {
        RethrowGenApiExceptionAsOwn();
    }
}

// The same around an operation that has standard failures of its own as well: those become InternalErrorException.
template <class Callable>
decltype(auto) InBothLayers(Callable&& callable)
{
    return TranslateGenApiExceptions(
        [&]() -> decltype(auto) { return WithStandardExceptionsAsInternalErrors(std::forward<Callable>(callable)); });
}

} // namespace koro::internal

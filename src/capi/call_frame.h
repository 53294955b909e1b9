// The call frame, in which the body of every exported function runs.
//
// It refuses calls before initialisation and converts every exception of the body into a return code and a last error.
// No exception crosses the C interface, except the unwinding of a cancelled thread. It takes no lock; a successful call
// allocates nothing here.
#pragma once

#include "capi/library_state.h"
#include <koro/return_codes.h>

namespace koro::internal
{

// A typed zero, so that all branches of a body have the same type.
inline constexpr KORO_ReturnCode success = KORO_RETURN_CODE_SUCCESS;

enum class InitializationCheck
{
    Required,
    Skipped
};

KORO_ReturnCode RecordNotInitialized() noexcept;

// Records the exception that is being handled and returns its code. Rethrows a thread's cancellation.
KORO_ReturnCode RecordCurrentException();

// `body` returns success, or the code that it has recorded.
template <class Body>
KORO_ReturnCode ExecuteAndMapExceptions(Body&& body, InitializationCheck check = InitializationCheck::Required)
{
    if (check == InitializationCheck::Required && !IsLibraryInitialized()) return RecordNotInitialized();
    try
    {
        return body();
    }
    catch (...)
    {
        return RecordCurrentException();
    }
}

} // namespace koro::internal

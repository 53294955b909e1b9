#include "capi/last_error.h"

#include "base/per_thread.h"

#include <new>

namespace koro::internal
{

namespace
{

struct LastError
{
    KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
    std::string text;
};

// Keeps the library mapped until the thread ends, even after dlclose: docs/abi.md.
constinit thread_local PerThread<LastError> lastError;

} // namespace

KORO_ReturnCode RecordLastError(KORO_ReturnCode code, std::string_view text) noexcept
{
    LastError& record = lastError.Get();
    record.code = code;
    try
    {
        record.text.assign(text);
    }
    catch (const std::bad_alloc&)
    {
        record.text.clear();
    }
    return code;
}

KORO_ReturnCode LastErrorCode() noexcept
{
    return lastError.Get().code;
}

const std::string& LastErrorText() noexcept
{
    return lastError.Get().text;
}

} // namespace koro::internal

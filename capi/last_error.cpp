#include "capi/last_error.h"

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

// Its destructor keeps the library mapped until the thread ends, also after dlclose: docs/abi.md.
thread_local LastError lastError;

} // namespace

KORO_ReturnCode RecordLastError(KORO_ReturnCode code, std::string_view text) noexcept
{
    lastError.code = code;
    try
    {
        lastError.text.assign(text);
    }
    catch (const std::bad_alloc&)
    {
        lastError.text.clear();
    }
    return code;
}

KORO_ReturnCode LastErrorCode() noexcept
{
    return lastError.code;
}

const std::string& LastErrorText() noexcept
{
    return lastError.text;
}

} // namespace koro::internal

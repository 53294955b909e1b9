#include "producers/kit/call.h"

#include "producers/kit/last_error.h"

#include <new>

namespace koro::kit
{

GC_ERROR RecordException(const char* function) noexcept
{
    try
    {
        throw;
    }
    catch (const Failure& failure)
    {
        RecordLastError(failure.RecordedCode(), function, failure.what());
        return failure.Code();
    }
    catch (const std::bad_alloc&)
    {
        RecordLastError(GC_ERR_OUT_OF_MEMORY, function, "out of memory");
        return GC_ERR_OUT_OF_MEMORY;
    }
    catch (const std::exception& error)
    {
        RecordLastError(GC_ERR_ERROR, function, error.what());
    }
    catch (...)
    {
        RecordLastError(GC_ERR_ERROR, function, "an unknown exception");
    }
    return GC_ERR_ERROR;
}

GC_ERROR RecordResult(GC_ERROR code, const char* function) noexcept
{
    switch (code)
    {
    case GC_ERR_SUCCESS:
        return code;
    case GC_ERR_TIMEOUT:
        RecordLastError(code, function, "nothing came in time");
        break;
    case GC_ERR_ABORT:
        RecordLastError(code, function, "the wait was ended");
        break;
    case GC_ERR_BUFFER_TOO_SMALL:
        RecordLastError(code, function, "the buffer is too small for the event");
        break;
    case GC_ERR_INVALID_HANDLE:
        RecordLastError(code, function, "the event was unregistered meanwhile");
        break;
    default:
        RecordLastError(code, function, "failed");
        break;
    }
    return code;
}

void RequireInitialised()
{
    if (!Runtime::Instance().IsInitialised()) throw Failure(GC_ERR_NOT_INITIALIZED, "GCInitLib was not called");
}

void Watch(const char* function)
{
    if (const auto watch = Runtime::Instance().Watch()) watch->OnCall(function);
}

void RequireVersion(GenTLVersion since)
{
    const GenTLVersion newest = Runtime::Instance().Newest();
    if (newest < since)
        throw Failure(
            GC_ERR_NOT_IMPLEMENTED,
            "the function came with GenTL " + since.Text() + ", the producer claims " + newest.Text());
}

} // namespace koro::kit

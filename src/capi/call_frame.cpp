#include "capi/call_frame.h"

#include "base/exceptions.h"
#include "capi/last_error.h"

#include <cxxabi.h>
#include <exception>

namespace koro::internal
{

KORO_ReturnCode RecordNotInitialized() noexcept
{
    return RecordLastError(
        KORO_RETURN_CODE_NOT_INITIALIZED,
        "ZVR koro genericAPI library not initialized. Call koro::Library::Initialize() / "
        "KORO_Library_Initialize() before anything else.");
}

// The order is part of the contract: Exception comes after its derived classes, which it would catch. The unwinding of
// a cancelled thread has no exception object, so its reference binds to null, which the sanitizer must not report.
__attribute__((no_sanitize("null"))) KORO_ReturnCode RecordCurrentException()
{
    try
    {
        throw;
    }
    // Cancelling a thread unwinds by an exception that must not be swallowed.
    catch (const abi::__forced_unwind&)
    {
        throw;
    }
    catch (const AbortedException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_ABORTED, exception.what());
    }
    catch (const BadAccessException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_BAD_ACCESS, exception.what());
    }
    catch (const BadAllocException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_BAD_ALLOC, exception.what());
    }
    catch (const InternalErrorException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_ERROR, exception.what());
    }
    catch (const InvalidAddressException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_INVALID_ADDRESS, exception.what());
    }
    catch (const InvalidArgumentException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_INVALID_ARGUMENT, exception.what());
    }
    catch (const IOException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_IO_ERROR, exception.what());
    }
    catch (const NotAvailableException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_NOT_AVAILABLE, exception.what());
    }
    catch (const NotFoundException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_NOT_FOUND, exception.what());
    }
    catch (const NotImplementedException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_NOT_IMPLEMENTED, exception.what());
    }
    catch (const NotInitializedException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_NOT_INITIALIZED, exception.what());
    }
    catch (const OutOfRangeException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_OUT_OF_RANGE, exception.what());
    }
    catch (const TimeoutException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_TIMEOUT, exception.what());
    }
    catch (const CTILoadingException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_CTI_LOADING_ERROR, exception.what());
    }
    catch (const BufferTooSmallException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_BUFFER_TOO_SMALL, exception.what());
    }
    catch (const NoDataException& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_NO_DATA, exception.what());
    }
    catch (const Exception& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_ERROR, exception.what());
    }
    catch (const std::exception& exception)
    {
        return RecordLastError(KORO_RETURN_CODE_ERROR, exception.what());
    }
    catch (...)
    {
        return RecordLastError(KORO_RETURN_CODE_ERROR, "Unhandled exception!");
    }
}

} // namespace koro::internal

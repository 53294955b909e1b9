// The frame around each exported function: failures become codes and texts, and results are written in one place.
#pragma once

#include "image/failure.h"
#include <koro/image.h>

#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <string_view>

namespace koro::image
{

// Names only the exceptions that the library can meet, so that the cancellation of a thread passes untouched.
template <class Work>
KIMG_ReturnCode Call(Work&& work)
{
    try
    {
        work();
        return KIMG_RETURN_CODE_SUCCESS;
    }
    catch (const Failure& failure)
    {
        return RecordFailure(failure.Code(), failure.what());
    }
    catch (const std::bad_alloc&)
    {
        return RecordFailure(
            KIMG_RETURN_CODE_BAD_ALLOC, "There is not enough memory for the lines that are being processed.");
    }
    catch (const std::exception& exception)
    {
        return RecordFailure(KIMG_RETURN_CODE_ERROR, exception.what());
    }
}

inline void RequirePointer(const void* pointer, const char* name)
{
    if (!pointer) ThrowInvalidArgument(std::string(name) + " is not a valid pointer!");
}

// True if `buffer` is there and large enough; a size query is answered here.
inline bool TakesOutput(const void* buffer, const char* name, size_t needed, size_t* size)
{
    if (!size) ThrowInvalidArgument(std::string(name) + "Size is not a valid pointer!");
    if (!buffer)
    {
        *size = needed;
        return false;
    }
    if (*size < needed)
    {
        throw Failure(
            KIMG_RETURN_CODE_BUFFER_TOO_SMALL, std::string(name) + " is too small: " + std::to_string(*size) +
                                                   " bytes where " + std::to_string(needed) + " are needed.");
    }
    return true;
}

inline void WriteText(std::string_view text, char* buffer, const char* name, size_t* size)
{
    if (!TakesOutput(buffer, name, text.size() + 1, size)) return;
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
    *size = text.size() + 1;
}

} // namespace koro::image

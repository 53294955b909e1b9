#include "image/failure.h"

#include <cstdio>
#include <utility>

namespace koro::image
{

namespace
{
thread_local constinit LastFailure lastFailure{};
}

KIMG_ReturnCode RecordFailure(KIMG_ReturnCode code, const char* text) noexcept
{
    lastFailure.code = code;
    std::snprintf(lastFailure.text, sizeof lastFailure.text, "%s", text);
    return code;
}

const LastFailure& LastFailureOfThread() noexcept
{
    return lastFailure;
}

void ThrowInvalidArgument(std::string text)
{
    throw Failure(KIMG_RETURN_CODE_INVALID_ARGUMENT, std::move(text));
}

} // namespace koro::image

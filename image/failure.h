// Failure: the one exception inside the library, and the last error of each thread.
//
// The record of a thread is plain memory without a destructor, so that it never keeps the library loaded.
#pragma once

#include <koro/image.h>

#include <cstddef>
#include <exception>
#include <string>

namespace koro::image
{

class Failure : public std::exception
{
public:
    Failure(KIMG_ReturnCode code, std::string text) : returnCode(code), description(std::move(text)) {}
    KIMG_ReturnCode Code() const noexcept { return returnCode; }
    const char* what() const noexcept override { return description.c_str(); }

private:
    KIMG_ReturnCode returnCode;
    std::string description;
};

// A text longer than the record is cut.
KIMG_ReturnCode RecordFailure(KIMG_ReturnCode code, const char* text) noexcept;

struct LastFailure
{
    KIMG_ReturnCode code;
    char text[512];
};
const LastFailure& LastFailureOfThread() noexcept;

[[noreturn]] void ThrowInvalidArgument(std::string text);

} // namespace koro::image

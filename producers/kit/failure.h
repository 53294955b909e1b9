// Failure: the way a call of a producer ends without success: code and text for the last error.
//
// Thrown below the entry points and caught there; none ever leaves an exported function.
#pragma once

#include "producers/kit/gentl.h"

#include <exception>
#include <string>
#include <utility>

namespace koro::kit
{

class Failure : public std::exception
{
public:
    Failure(GC_ERROR code, std::string text) : failureCode(code), failureText(std::move(text)) {}

    GC_ERROR Code() const noexcept { return failureCode; }
    // What GCGetLastError reports of it.
    virtual GC_ERROR RecordedCode() const noexcept { return failureCode; }
    const char* what() const noexcept override { return failureText.c_str(); }

private:
    GC_ERROR failureCode;
    std::string failureText;
};

// A pointer that the standard calls invalid: null or all bits set.
inline bool IsInvalidPointer(const void* pointer) noexcept
{
    const auto bits = reinterpret_cast<std::uintptr_t>(pointer);
    return bits == 0 || bits == UINTPTR_MAX;
}

inline void RequirePointer(const void* pointer, const char* name)
{
    if (IsInvalidPointer(pointer)) throw Failure(GC_ERR_INVALID_PARAMETER, std::string(name) + " is no valid pointer");
}

} // namespace koro::kit

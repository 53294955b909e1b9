// Last error: code and text of the calling thread's last failure, as GCGetLastError reports it.
//
// Plain thread-local memory without a destructor: one with a destructor would pin the file until the thread ends.
#pragma once

#include "producers/kit/gentl.h"

#include <cstddef>

namespace koro::kit
{

inline constexpr std::size_t lastErrorCapacity = 2048; // bytes with terminator; longer texts are cut

void RecordLastError(GC_ERROR code, const char* text) noexcept;
// The text is stored as "<function>: <text>".
void RecordLastError(GC_ERROR code, const char* function, const char* text) noexcept;

// False as long as this thread has recorded nothing.
bool HasLastError() noexcept;

GC_ERROR LastErrorCode() noexcept;

// "No Error" as long as this thread has recorded nothing.
const char* LastErrorText() noexcept;

} // namespace koro::kit

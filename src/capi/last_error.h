// The last error: code and text of the calling thread's most recent failure.
//
// There is one record per thread, from its first use to the end of the thread; it needs no lock. Neither a later
// success nor closing the library clears it.
#pragma once

#include <koro/return_codes.h>

#include <string>
#include <string_view>

namespace koro::internal
{

// Stores both and returns `code`, so that a body can return its result. When no memory is left for the text, the code
// is stored with an empty one.
KORO_ReturnCode RecordLastError(KORO_ReturnCode code, std::string_view text) noexcept;

KORO_ReturnCode LastErrorCode() noexcept;
const std::string& LastErrorText() noexcept;

} // namespace koro::internal

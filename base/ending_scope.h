// EndingScope: while it lives, its thread works on objects that have been ended.
//
// It finds the entries that end with them, which are hidden from other threads, and parents that have been ended do not
// count as gone. For the thread that closes them, and for an operation that outlasts the end of a parent on purpose.
#pragma once

namespace koro::internal
{

bool IsInEndingScope() noexcept;

class EndingScope
{
public:
    EndingScope() noexcept;
    ~EndingScope();
    EndingScope(const EndingScope&) = delete;
    EndingScope& operator=(const EndingScope&) = delete;
};

} // namespace koro::internal

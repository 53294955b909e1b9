// EndingScope: while it lives, its thread works on objects that have been ended.
//
// Each end has a number, which marks the objects that it ends. Its thread finds their entries, which are hidden from
// other threads, and as parents they do not count as gone. Nor do the parents that a scope names: for an object that
// closes after others have ended its parent, and for an operation that outlasts the end of a parent on purpose. What
// other ends have ended is ended for this thread as well, in the callbacks that it runs meanwhile too.
#pragma once

#include <cstdint>
#include <vector>

namespace koro::internal
{

class Instance;

using EndNumber = std::uint64_t; // 0: of no end

class EndingScope
{
public:
    using Objects = std::vector<const Instance*>;

    // A new end.
    EndingScope() noexcept;
    // Nothing ends: these objects count as parents as long as they live.
    explicit EndingScope(Objects parentObjects) noexcept;
    ~EndingScope();
    EndingScope(const EndingScope&) = delete;
    EndingScope& operator=(const EndingScope&) = delete;

    EndNumber Number() const noexcept { return number; }

    // Of the calling thread.
    static bool IsInEndOf(const Instance& object) noexcept;
    static bool HasParent(const Instance& object) noexcept;

private:
    const EndNumber number;
    const Objects parents;
    const EndingScope* const outer;
};

} // namespace koro::internal

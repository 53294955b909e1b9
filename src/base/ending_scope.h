// EndingScope: while it exists, its thread works on objects that have been ended.
//
// Each end has a number, which marks the objects that it ends. Its thread still finds their entries, which other
// threads do not see, and these objects still count as parents for it. A scope can also name parents that still count:
// for an object that closes after its parent was ended by others, and for an operation that intentionally outlasts the
// end of a parent. Objects that other ends have ended count as ended for this thread too, also in the callbacks that it
// runs meanwhile.
#pragma once

#include <cstdint>
#include <vector>

namespace koro::internal
{

class Instance;

using EndNumber = std::uint64_t; // 0: not part of an end

class EndingScope
{
public:
    using Objects = std::vector<const Instance*>;

    // Begins a new end.
    EndingScope() noexcept;
    // Ends nothing: these objects count as parents while they are alive.
    explicit EndingScope(Objects parentObjects) noexcept;
    ~EndingScope();
    EndingScope(const EndingScope&) = delete;
    EndingScope& operator=(const EndingScope&) = delete;

    EndNumber Number() const noexcept { return number; }

    // Whether the calling thread ends the object.
    static bool IsInEndOf(const Instance& object) noexcept;
    static bool HasParent(const Instance& object) noexcept;

private:
    const EndNumber number;
    const Objects parents;
    const EndingScope* const outer;
};

} // namespace koro::internal

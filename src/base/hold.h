// Hold: the reference to an object that the entry of a handle shares with the calls that use the handle.
//
// An object ends with its last hold: after its entries have been removed and the last call has returned, on the thread
// of that call. A call costs one reference to the hold of its own object and none for the parents. The thread that ends
// a parent links the remaining holds: a hold that is still used keeps the hold of its parent, so no parent closes
// before its child. See capi/closing.h.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <utility>

namespace koro::internal
{

class Instance;

class Hold
{
public:
    Hold() { ++numLiving; }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    virtual ~Hold() { --numLiving; } // of the object first, of what is above it afterwards

    // Of all kinds: 0 when the library is closed and no call is inside any more.
    static std::size_t NumLiving() noexcept { return numLiving; }

    virtual Instance& Object() const = 0;
    // Of the object that the entry ends with; empty without one, and when that has gone.
    virtual std::shared_ptr<Hold> HoldAbove() const = 0;

    // From now on the entry is found by the thread that ends its object, and by no other. Returns whether anybody has a
    // reference but the entry and the caller, who has one; also when there is no entry any more, since the object would
    // have gone with it if nobody had been inside.
    virtual bool HideEntry() = 0;
    // The same for the end of what is above. An entry that outlives it is left to a new hold.
    virtual bool HideEntryWithParent() = 0;
    // Nothing when there is none.
    virtual void RemoveEntry() = 0;

    // Not by two threads at a time. The first one stays: any other would be of the same object.
    void Keep(std::shared_ptr<Hold> holdAbove)
    {
        if (!above) above = std::move(holdAbove);
        isLeft = false;
    }
    bool KeepsAbove() const noexcept { return above != nullptr; }
    // The entry goes with the object above, on the thread that ends this. No other thread takes it before, also not the
    // library's close.
    void LeaveToObjectAbove() noexcept { isLeft = true; }
    bool IsLeftToObjectAbove() const noexcept { return isLeft; }

private:
    static inline std::atomic<std::size_t> numLiving{0};
    std::shared_ptr<Hold> above;
    std::atomic<bool> isLeft{false};
};

} // namespace koro::internal

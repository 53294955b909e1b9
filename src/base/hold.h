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
    virtual ~Hold() { --numLiving; } // ends the object first, then the hold of its parent

    // Counts holds of all kinds: 0 when the library is closed and no call is running any more.
    static std::size_t NumLiving() noexcept { return numLiving; }

    virtual Instance& Object() const = 0;
    // The hold of the object with which the entry ends; empty if there is none or it has been destroyed.
    virtual std::shared_ptr<Hold> HoldAbove() const = 0;

    // Hides the entry from all threads except the one that ends its object. Returns whether anything except the entry
    // and the caller has a reference. Also returns true when the entry is already removed, since the object would have
    // been destroyed with it if no call were running.
    virtual bool HideEntry() = 0;
    // Does the same for the end of a parent. An entry that outlives the parent gets a new hold.
    virtual bool HideEntryWithParent() = 0;
    // Does nothing when there is no entry.
    virtual void RemoveEntry() = 0;

    // Must not be called by two threads at a time. The first hold stays: any other would belong to the same object.
    void Keep(std::shared_ptr<Hold> holdAbove)
    {
        if (!above) above = std::move(holdAbove);
        isLeft = false;
    }
    bool KeepsAbove() const noexcept { return above != nullptr; }
    // The entry is removed together with the parent, on the thread that ends the parent. No other thread removes it
    // earlier, not even the library's close.
    void LeaveToObjectAbove() noexcept { isLeft = true; }
    bool IsLeftToObjectAbove() const noexcept { return isLeft; }

private:
    static inline std::atomic<std::size_t> numLiving{0};
    std::shared_ptr<Hold> above;
    std::atomic<bool> isLeft{false};
};

} // namespace koro::internal

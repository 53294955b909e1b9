// Instance: the common base of all objects that have handles.
//
// It stores the destruction callbacks and the links between handles: the holds of its own handles, and those of the
// handles that end with it. Thread-safe.
#pragma once

#include "base/ending_scope.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace koro::internal
{

class Hold;

class Instance
{
public:
    using DestructionCallback = std::function<void()>;
    using DestructionCallbackID = std::uint64_t;
    using Holds = std::vector<std::shared_ptr<Hold>>;

    Instance() = default;
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    // Runs the remaining callbacks; then removes the entries of the child handles. An empty callback ends the process
    // with std::bad_function_call, like any exception from a destructor.
    virtual ~Instance();

    // Returns the address of the stored callable, unique while it is stored.
    DestructionCallbackID AddDestructionCallback(DestructionCallback callback);
    // An unknown id is ignored.
    void RemoveDestructionCallback(DestructionCallbackID id);

    // The handles of this object and of its children. Ended entries are removed from the lists automatically.
    void AddHold(const std::shared_ptr<Hold>& hold);
    // Does the same for an additional handle. Throws InternalErrorException when the object has been ended.
    void AddFurtherHold(const std::shared_ptr<Hold>& hold);
    Holds OwnHolds() const;
    // Throws InternalErrorException when the object has been ended.
    void AddHoldBelow(const std::shared_ptr<Hold>& hold);
    Holds HoldsBelow() const;
    // From now on the object counts as ended for its children, and it gets no more handles or children. It may stay
    // alive for running calls. If several ends reach it, it belongs to the first one.
    void MarkEnded(const EndingScope& end);
    EndNumber EndedBy() const noexcept { return endedBy; }
    bool HasEnded() const noexcept { return endedBy != 0; }
    // Stores holds that are released when the entries of the child handles are removed, and in their order: one after
    // the other, for all children that exist at that time.
    void KeepUntilItsEnd(std::shared_ptr<Hold> ended);

    // The steps before the end of an object or of a parent; see capi/closing.h. The first one throws the standard
    // deadlock error on a thread for which the third one would wait.
    virtual void RefuseEndInCallback() const {}
    virtual void EndWaits() noexcept {}
    virtual void EndThreads() {}

protected:
    // For the class whose child entries must be removed before its own close call.
    void RunDestructionCallbacks();

private:
    using WeakHolds = std::vector<std::weak_ptr<Hold>>;
    static Holds Living(const WeakHolds& holds);
    void RunStoredCallbacks();
    void EndHoldsBelow();
    void CheckNotEnded() const;

    // Never held while a callback runs: callbacks take the locks of the handle tables, and the tables take this
    // one while they hold theirs.
    mutable std::mutex destructionMutex;
    std::map<DestructionCallbackID, std::unique_ptr<DestructionCallback>> destructionCallbacks;
    WeakHolds ownHolds;
    WeakHolds holdsBelow;
    std::size_t numHoldsToPrune = 16; // for the holds of children
    Holds endedBelow;
    std::atomic<EndNumber> endedBy{0};
};

} // namespace koro::internal

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

    // Runs the callbacks that are left; then the entries of the handles below go. An empty callback ends the process
    // with std::bad_function_call, as any exception out of a destructor does.
    virtual ~Instance();

    // Returns the address of the stored callable, unique while it is stored.
    DestructionCallbackID AddDestructionCallback(DestructionCallback callback);
    // An unknown id is ignored.
    void RemoveDestructionCallback(DestructionCallbackID id);

    // The handles of this object, and of those below it. The lists forget by themselves what has ended.
    void AddHold(const std::shared_ptr<Hold>& hold);
    // The same for a further handle. Throws InternalErrorException when the object has been ended.
    void AddFurtherHold(const std::shared_ptr<Hold>& hold);
    Holds OwnHolds() const;
    // Throws InternalErrorException when the object has been ended.
    void AddHoldBelow(const std::shared_ptr<Hold>& hold);
    Holds HoldsBelow() const;
    // From now on the object counts as gone for what is below it, and neither a further handle nor one below it comes;
    // it may live on for the calls that are inside.
    // The first end that comes to it has it.
    void MarkEnded(const EndingScope& end);
    EndNumber EndedBy() const noexcept { return endedBy; }
    bool HasEnded() const noexcept { return endedBy != 0; }
    // To be dropped when the entries of the handles below go, and in their place: one after the other, all that are
    // below by now.
    void KeepUntilItsEnd(std::shared_ptr<Hold> ended);

    // What comes before the end of an object, or of one above it; see capi/closing.h. The first throws the standard
    // deadlock error on a thread that the third would wait for.
    virtual void RefuseEndInCallback() const {}
    virtual void EndWaits() noexcept {}
    virtual void EndThreads() {}

protected:
    // For the class whose children's entries have to go before its own close call.
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
    std::size_t numHoldsToPrune = 16; // of those below
    Holds endedBelow;
    std::atomic<EndNumber> endedBy{0};
};

} // namespace koro::internal

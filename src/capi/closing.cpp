#include "capi/closing.h"

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <unordered_set>
#include <utility>
#include <vector>

namespace koro::internal
{

namespace
{

constinit std::mutex
    endMutex; // only one thread at a time determines the running calls; nothing is called or closed under it

// The holds of the ending objects and of everything below them; parents come before children.
class Subtree
{
public:
    // For an end it marks the objects before it collects the handles, so it does not miss a handle that another thread
    // creates meanwhile.
    explicit Subtree(Instance::Holds roots, const EndingScope* ofEnd = nullptr) : end(ofEnd), numRoots(roots.size())
    {
        for (auto& root : roots)
            parts.push_back({std::move(root)});
        for (std::size_t index = 0; index < numRoots; ++index)
            AddBelow(index);
    }

    // Between the first end of waits and threads and the hiding of entries, other threads may have opened and started
    // more.
    void EndActivityThatCameMeanwhile() const
    {
        for (const auto& part : parts)
            part.hold->Object().EndWaits();
        for (const auto& part : parts)
            part.hold->Object().EndThreads();
    }
    std::vector<std::weak_ptr<Hold>> WeakHolds() const
    {
        std::vector<std::weak_ptr<Hold>> holds;
        for (const auto& part : parts)
            holds.push_back(part.hold);
        return holds;
    }

    // From now on no call can use the objects, except calls of this thread. Objects that already keep the hold of their
    // parent are about to be closed by the library's close on another thread.
    void Hide()
    {
        for (std::size_t index = 0; index < parts.size(); ++index)
        {
            auto& [hold, above, isUsed] = parts[index];
            isUsed = index < numRoots ? hold->HideEntry() : hold->HideEntryWithParent();
            if (hold->KeepsAbove()) isUsed = true;
        }
    }
    // For the library's close, which removes the entries kind by kind and itself uses the objects that it closes.
    void CountAllAsUsed()
    {
        for (auto& part : parts)
            part.isUsed = true;
    }

    // If a call is running below the roots, everything below the roots keeps its parents, even objects that were idle
    // when they were hidden: EndActivity on another thread may have reached them afterwards and may be the last to
    // leave them. The roots keep their parents too, since this thread uses them.
    void KeepAbove()
    {
        const std::size_t numKeeping = IsUsedBelow() ? parts.size() : numRoots;
        for (std::size_t index = 0; index < numKeeping; ++index)
        {
            auto& [hold, above, isUsed] = parts[index];
            hold->Keep(index < numRoots ? hold->HoldAbove() : parts[above].hold);
        }
    }

    // Removes the entries of the roots, and also those below them if a call is running anywhere. If no call is running
    // below the roots, the end of each object removes the entries below it.
    void RemoveEntries()
    {
        const bool isUsed = IsUsedFrom(0);
        for (std::size_t index = 0; index < parts.size(); ++index)
        {
            if (isUsed || index < numRoots)
                parts[index].hold->RemoveEntry();
            else
                parts[index].hold->LeaveToObjectAbove();
        }
        if (isUsed && !IsUsedBelow()) GiveToObjectsAbove();
    }
    // Closes the objects that no call uses, starting at the leaves. Entries that have stayed are removed with the
    // roots.
    void Drop()
    {
        while (!parts.empty())
            parts.pop_back();
    }

private:
    struct Part
    {
        std::shared_ptr<Hold> hold;
        std::size_t above = 0; // its index in the list
        bool isUsed = false;   // by a call
    };

    bool IsUsedFrom(std::size_t first) const
    {
        return std::any_of(parts.begin() + static_cast<std::ptrdiff_t>(first), parts.end(), [](const Part& part) {
            return part.isUsed;
        });
    }
    bool IsUsedBelow() const { return IsUsedFrom(numRoots); }

    // An object may have several holds: its children are added once.
    void AddBelow(std::size_t index)
    {
        Instance& object = parts[index].hold->Object();
        if (!seen.insert(&object).second) return;
        if (end) object.MarkEnded(*end);
        for (auto& hold : object.HoldsBelow())
        {
            parts.push_back({std::move(hold), index});
            AddBelow(parts.size() - 1);
        }
    }

    // Each to its own, so that the order is the one without a call. The references here stay for what comes before the
    // drop, and are not the last ones then.
    void GiveToObjectsAbove() const
    {
        for (std::size_t index = numRoots; index < parts.size(); ++index)
            parts[parts[index].above].hold->Object().KeepUntilItsEnd(parts[index].hold);
    }

    const EndingScope* const end;
    const std::size_t numRoots;
    std::vector<Part> parts;
    std::unordered_set<const Instance*> seen;
};

// One object after the other, since a thread may take some time to end: another thread that closes meanwhile must not
// find references of this one. A reference to an object that was hidden meanwhile was not counted as a call. It need
// not be: either the children keep their parents, see KeepAbove, or the object closes after its parents in any case.
template <class Step>
void ForEachObject(const std::vector<std::weak_ptr<Hold>>& holds, Step&& step)
{
    for (const auto& weakHold : holds)
    {
        if (const auto hold = weakHold.lock()) step(hold->Object());
    }
}

// Not before the waits have ended: another thread may have made further handles meanwhile.
Instance::Holds OwnHoldsAt(const EndingScope& end, std::shared_ptr<Hold> hold)
{
    hold->Object().MarkEnded(end);
    return hold->Object().OwnHolds();
}

} // namespace

void EndActivity(const Instance::Holds& roots)
{
    const auto holds = Subtree(roots).WeakHolds();
    ForEachObject(holds, [](const Instance& object) { object.RefuseEndInCallback(); });
    ForEachObject(holds, [](Instance& object) { object.EndWaits(); });
    ForEachObject(holds, [](Instance& object) { object.EndThreads(); });
}

void EndObject(std::shared_ptr<Hold> hold)
{
    EndActivity({hold});

    const EndingScope scope;
    std::unique_lock lock(endMutex);
    Subtree subtree(OwnHoldsAt(scope, std::move(hold)), &scope);
    subtree.Hide();
    subtree.KeepAbove();
    subtree.RemoveEntries();
    lock.unlock();
    subtree.EndActivityThatCameMeanwhile();
    subtree.Drop();
}

EndOfAll::EndOfAll(const Instance::Holds& roots)
{
    std::unique_lock lock(endMutex);
    Subtree subtree(roots, &scope);
    subtree.Hide();
    subtree.CountAllAsUsed();
    subtree.KeepAbove();
    lock.unlock();
    subtree.EndActivityThatCameMeanwhile();
}

} // namespace koro::internal
